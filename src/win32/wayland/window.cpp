// The program's window, on the output of its show, and the black surfaces on those that have none.
#include "win32/wayland/frames.h"
#include "win32/wayland/sheet.h"
#include "win32/wayland/wayland.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <utility>

namespace wayland {

namespace {

const HWND kTheWindow = reinterpret_cast<HWND>(static_cast<UINT_PTR>(1));

struct Cover {
    std::uint32_t output; // its number
    std::unique_ptr<Sheet> sheet;
};

SaverWindow window;
std::unique_ptr<Sheet> sheet; // the window's; null: there is no window
std::vector<Cover> covers;
std::string title;
std::uint32_t placedOn = 0; // the number of the output; 0: it has no place
bool shown = false;
bool black = false; // there is no picture

constexpr double kLargest = 32768; // pixels a side, whatever the compositor says

// The window has as many pixels as it covers of the output, however large the compositor's coordinates are.
void FitWindow(const Output& output) {
    const Place desk = output.Logical();
    if (sheet->Width() <= 0 || sheet->Height() <= 0 || desk.width <= 0 || desk.height <= 0)
        return;
    const auto pixels = [](int length, int all, int allPixels) {
        const double found = std::round(static_cast<double>(length) * allPixels / all);
        return static_cast<int>(std::clamp(found, 1.0, kLargest));
    };
    const int width = pixels(sheet->Width(), desk.width, output.Width());
    const int height = pixels(sheet->Height(), desk.height, output.Height());
    window.pixelsPerUnit = static_cast<double>(width) / sheet->Width();
    if (std::exchange(window.width, width) == width && window.height == height)
        return;
    window.height = height;
    frames.SetSize(width, height);
    ReportSize(width, height);
}

// What lies below stays visible until the first frame, and the keyboard is the window's already. Without
// layers, the desktop would be hidden at once: the window comes with the first frame then.
void Refresh(bool isNew) {
    const auto held = frames.Hold();
    if (black)
        return sheet->Fill(Sheet::Colour::Black);
    if (isNew && sheet->CanBeSeenThrough())
        return sheet->Fill(Sheet::Colour::None);
    sheet->Fit();
    if (!isNew)
        wl_surface_commit(sheet->Id());
}

void TakeOff() {
    frames.Pause();
    sheet->Leave();
    placedOn = 0;
}

void FitCovers(std::span<const Output* const> outputs) {
    std::erase_if(covers, [&](const Cover& cover) {
        return cover.sheet->IsTakenAway() || std::ranges::none_of(outputs, [&](const Output* output) {
                   return output->global == cover.output;
               });
    });
    std::vector<std::uint32_t> missing;
    for (const Output* output : outputs)
        if (std::ranges::none_of(covers, [&](const Cover& cover) { return cover.output == output->global; }))
            missing.push_back(output->global);
    for (const std::uint32_t number : missing) {
        const std::vector<const Output*> now = OwnOutputs(); // they may change while one is waited for
        const auto output =
            std::ranges::find_if(now, [&](const Output* each) { return each->global == number; });
        auto cover = std::make_unique<Sheet>();
        if (output == now.end() || !cover->LieOn(**output, false, title.c_str()))
            continue;
        cover->Fill(Sheet::Colour::Black);
        covers.push_back({number, std::move(cover)});
    }
}

// The window last: without layers, the latest one has the keyboard.
void FollowOutputs() {
    std::vector<const Output*> own = OwnOutputs();
    FitCovers(std::span(own).subspan(std::min<std::size_t>(own.size(), 1)));
    own = OwnOutputs();
    if (placedOn != 0 && (own.empty() || own.front()->global != placedOn))
        TakeOff();
    const bool isNew = placedOn == 0;
    if (isNew && !own.empty()) {
        const std::uint32_t number = own.front()->global;
        if (sheet->LieOn(*own.front(), TakesInput(), title.c_str()))
            placedOn = number;
        own = OwnOutputs();
    }
    if (placedOn == 0)
        return frames.Pause();
    if (own.empty() || own.front()->global != placedOn)
        return; // it changes again
    FitWindow(*own.front());
    Refresh(isNew);
    if (isNew)
        frames.Begin(sheet->Id());
}

// Where the output is still there, it was somebody's wish.
void OnTakenAway() {
    const std::uint32_t before = placedOn;
    TakeOff();
    CatchUp();
    const std::vector<const Output*> own = OwnOutputs();
    if (!own.empty() && own.front()->global == before)
        ReportDestruction();
    else
        FollowOutputs();
}

} // namespace

const SaverWindow& TheWindow() {
    return window;
}

wl_surface* WindowSurface() {
    return sheet != nullptr ? sheet->Id() : nullptr;
}

void FollowSurroundings() {
    if (!shown)
        return;
    if (sheet->IsTakenAway())
        return OnTakenAway();
    if (sheet->IsAskedToClose() ||
        std::ranges::any_of(covers, [](const Cover& cover) { return cover.sheet->IsAskedToClose(); }))
        ReportCloseRequest();
    bool changed = OutputsHaveChanged();
    changed = sheet->HasChanged() || changed;
    for (const Cover& cover : covers) {
        changed = cover.sheet->IsTakenAway() || changed;
        if (cover.sheet->HasChanged())
            cover.sheet->Fill(Sheet::Colour::Black);
    }
    if (changed)
        FollowOutputs();
}

HWND CreateWindow(const WindowRequest& request) {
    if (Connection() == nullptr) {
        std::fprintf(stderr, "tamblor: %s\n", FindHindrance().c_str());
        return nullptr;
    }
    if (request.parent != nullptr || sheet != nullptr)
        return nullptr;
    sheet = std::make_unique<Sheet>();
    title = request.title;
    window = {true, request.place.width, request.place.height, 1};
    return kTheWindow;
}

void ShowWindow() {
    shown = true;
    OutputsHaveChanged();
    FollowOutputs();
    wl_display_flush(Connection());
}

void DestroyWindow() {
    frames.End();
    covers.clear();
    sheet = nullptr;
    window = {};
    placedOn = 0;
    shown = black = false;
}

bool FindWindow(HWND asked, Place* place) {
    if (!window.exists || asked != kTheWindow)
        return false;
    *place = {0, 0, window.width, window.height};
    return true;
}

void ShowBlack() {
    black = true;
    if (placedOn == 0)
        return;
    const auto held = frames.Hold();
    sheet->Fill(Sheet::Colour::Black);
}

} // namespace wayland
