#include "win32/wayland/outputs.h"

#include "win32/wayland/sheet.h"
#include "win32/wayland/wayland.h"

#include "xdg-output-unstable-v1-client-protocol.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <utility>

namespace wayland {

namespace {

std::vector<std::unique_ptr<Output>> outputs;
zxdg_output_manager_v1* layoutManager = nullptr;
bool changed = false;
std::size_t show = 0; // this process's
std::size_t shows = 1;
std::uint32_t chosen = 0; // the only show's output
bool hasLooked = false;   // for the one that the user works at

// No desktop in earnest reaches so far; sums of such numbers, and their differences, are ints.
constexpr int kFarthest = 1 << 24;

int Position(int told) {
    return std::clamp(told, -kFarthest, kFarthest);
}
int Length(int told) {
    return std::clamp(told, 0, kFarthest);
}

Output* Mine(void* data) {
    changed = true;
    return static_cast<Output*>(data);
}

// Versions before the fourth have no name.
constexpr wl_output_listener kOutputListener = {
    .geometry =
        [](void* data, wl_output*, std::int32_t x, std::int32_t y, std::int32_t, std::int32_t, std::int32_t,
           const char*, const char*, std::int32_t transform) {
            Output* output = Mine(data);
            output->corner = {Position(x), Position(y), 0, 0};
            output->transform = transform;
        },
    .mode =
        [](void* data, wl_output*, std::uint32_t flags, std::int32_t width, std::int32_t height,
           std::int32_t) {
            if ((flags & WL_OUTPUT_MODE_CURRENT) == 0)
                return;
            Output* output = Mine(data);
            output->modeWidth = Length(width);
            output->modeHeight = Length(height);
        },
    .done = [](void* data, wl_output*) { Mine(data); },
    .scale = [](void* data, wl_output*, std::int32_t factor) { Mine(data)->scale = std::max(factor, 1); },
    .name = [](void* data, wl_output*, const char* name) { Mine(data)->name = name; },
    .description = kPassedOver,
};

constexpr zxdg_output_v1_listener kLayoutListener = {
    .logical_position =
        [](void* data, zxdg_output_v1*, std::int32_t x, std::int32_t y) {
            Output* output = Mine(data);
            output->desk.x = Position(x);
            output->desk.y = Position(y);
        },
    .logical_size =
        [](void* data, zxdg_output_v1*, std::int32_t width, std::int32_t height) {
            Output* output = Mine(data);
            output->desk.width = Length(width);
            output->desk.height = Length(height);
        },
    .done = kPassedOver,
    .name = [](void* data, zxdg_output_v1*, const char* name) { Mine(data)->name = name; },
    .description = kPassedOver,
};

void FindLayout(Output* output) {
    if (layoutManager == nullptr || output->layout != nullptr)
        return;
    output->layout = zxdg_output_manager_v1_get_xdg_output(layoutManager, output->id);
    zxdg_output_v1_add_listener(output->layout, &kLayoutListener, output);
}

// Those that are on, the leftmost first.
std::vector<const Output*> ListOutputs() {
    std::vector<const Output*> list;
    for (const auto& output : outputs)
        if (output->modeWidth > 0 && output->modeHeight > 0)
            list.push_back(output.get());
    std::ranges::sort(list, {}, [](const Output* output) {
        const Place place = output->Logical();
        return std::tuple(place.x, place.y, output->name, output->global);
    });
    return list;
}

// Those that have a show, and behind them those that show a part of one of them.
std::vector<const Output*> ShowsFirst(std::size_t* count) {
    std::vector<const Output*> apart;
    std::vector<const Output*> others;
    for (const Output* each : ListOutputs()) {
        const bool overlaps = std::ranges::any_of(
            apart, [&](const Output* one) { return Overlap(one->Logical(), each->Logical()); });
        (overlaps ? others : apart).push_back(each);
    }
    *count = apart.size();
    apart.insert(apart.end(), others.begin(), others.end());
    return apart;
}

// Nothing says which output the user works at, but that a surface without an output of its own goes there.
// So one is shown for a moment, which nobody can see. 0: it cannot be told.
std::uint32_t FindFocusedOutput() {
    constexpr std::chrono::milliseconds kLimit{300};
    if (ListOutputs().size() < 2 || Offers().layers == nullptr || NamedLayer())
        return 0;
    Sheet scout;
    if (!scout.LieAnywhere() || !AwaitReply([&] { return scout.EnteredOutput() != nullptr; }, kLimit))
        return 0;
    const auto found = std::ranges::find_if(
        outputs, [&](const auto& output) { return output->id == scout.EnteredOutput(); });
    return found != outputs.end() ? (*found)->global : 0;
}

// The only show stays where it is as long as it can.
void PutChosenFirst(std::vector<const Output*>* all) {
    const auto isChosen = [](const Output* each) { return each->global == chosen; };
    if (std::ranges::none_of(*all, isChosen) && !all->empty())
        chosen = all->front()->global;
    std::stable_partition(all->begin(), all->end(), isChosen);
}

} // namespace

bool IsTurned(int transform) {
    return (transform & WL_OUTPUT_TRANSFORM_90) != 0;
}

int Output::Width() const {
    return IsTurned(transform) ? modeHeight : modeWidth;
}

int Output::Height() const {
    return IsTurned(transform) ? modeWidth : modeHeight;
}

Place Output::Logical() const {
    if (desk.width > 0 && desk.height > 0)
        return desk;
    return {corner.x, corner.y, Width() / scale, Height() / scale};
}

void OnOutputGlobal(wl_registry* registry, std::uint32_t global, const char* interface,
                    std::uint32_t version) {
    const std::string_view name = interface;
    if (name == wl_output_interface.name) {
        auto output = std::make_unique<Output>();
        output->global = global;
        output->id = static_cast<wl_output*>(
            wl_registry_bind(registry, global, &wl_output_interface, std::min(version, 4u)));
        wl_output_add_listener(output->id, &kOutputListener, output.get());
        FindLayout(output.get());
        outputs.push_back(std::move(output));
    } else if (name == zxdg_output_manager_v1_interface.name) {
        layoutManager = static_cast<zxdg_output_manager_v1*>(
            wl_registry_bind(registry, global, &zxdg_output_manager_v1_interface, std::min(version, 2u)));
        for (const auto& output : outputs)
            FindLayout(output.get());
    }
}

void RemoveOutput(std::uint32_t global) {
    const auto found =
        std::ranges::find_if(outputs, [&](const auto& output) { return output->global == global; });
    if (found == outputs.end())
        return;
    changed = true;
    const Output& output = **found;
    if (output.layout != nullptr)
        zxdg_output_v1_destroy(output.layout);
    if (wl_output_get_version(output.id) >= WL_OUTPUT_RELEASE_SINCE_VERSION)
        wl_output_release(output.id);
    else
        wl_output_destroy(output.id);
    outputs.erase(found);
}

Place WholeDesktop() {
    const std::vector<const Output*> all = ListOutputs();
    if (all.empty())
        return {};
    Place whole = all.front()->Logical();
    for (const Output* output : all) {
        const Place place = output->Logical();
        const int right = std::max(whole.x + whole.width, place.x + place.width);
        const int bottom = std::max(whole.y + whole.height, place.y + place.height);
        whole.x = std::min(whole.x, place.x);
        whole.y = std::min(whole.y, place.y);
        whole.width = right - whole.x;
        whole.height = bottom - whole.y;
    }
    return whole;
}

bool OutputsHaveChanged() {
    return std::exchange(changed, false);
}

int CountShows() {
    std::size_t count = 0;
    if (Connection() != nullptr)
        ShowsFirst(&count);
    return static_cast<int>(std::max<std::size_t>(count, 1));
}

void ChooseShow(int number, int count) {
    show = static_cast<std::size_t>(number);
    shows = static_cast<std::size_t>(count);
}

bool TakesInput() {
    return show == 0;
}

std::vector<const Output*> OwnOutputs() {
    std::size_t count = 0;
    if (shows == 1) {
        if (!std::exchange(hasLooked, true))
            chosen = FindFocusedOutput();
        std::vector<const Output*> all = ListOutputs();
        PutChosenFirst(&all);
        return all;
    }
    std::vector<const Output*> all = ShowsFirst(&count);
    if (show > 0)
        return show < count ? std::vector{all[show]} : std::vector<const Output*>();
    if (count > 0) // the first show covers what is left
        all.erase(all.begin() + 1, all.begin() + static_cast<std::ptrdiff_t>(std::min(shows, count)));
    return all;
}

Place FindScreen() {
    static Place last; // an output may go while this process starts
    if (Connection() == nullptr)
        return {};
    const std::vector<const Output*> own = OwnOutputs();
    if (!own.empty())
        last = {0, 0, own.front()->Width(), own.front()->Height()};
    return last;
}

} // namespace wayland
