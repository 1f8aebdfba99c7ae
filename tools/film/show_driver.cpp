#include "film/show_driver.h"

#include "host/configuration.h"
#include "platform/clock.h"
#include "platform/random.h"
#include "render/gl.h"
#include "scene/scene.h"
#include "scene/show.h"
#include "win32/offscreen/offscreen.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace {

// The show's clock: far enough from zero that the phasers take their first frame as their start.
constexpr double kFirstFrame = 1000;
// Of the burn and of the path of the cube, which with this one leaves the view of the bird free.
constexpr unsigned kSeed = 5;
std::uint32_t showTicks = static_cast<std::uint32_t>(kFirstFrame * 1000);

std::vector<unsigned char> localToBgrx(const Picture& picture) {
    std::vector<unsigned char> bytes;
    bytes.reserve(picture.pixels.size() * 4);
    for (const std::uint32_t pixel : picture.pixels)
        for (const int shift : {0, 8, 16, 24})
            bytes.push_back(static_cast<unsigned char>(pixel >> shift & 255u));
    return bytes;
}

Picture localGreyDesktop(int width, int height) {
    return {width, height, std::vector<std::uint32_t>(static_cast<std::size_t>(width) * height, 0xFF607080u)};
}

// It fills the screen.
HWND localOpenWindow(int width, int height) {
    if (!OffscreenSetScreen(width, height))
        return nullptr;
    constexpr const char* kClass = "film";
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = DefWindowProcA;
    windowClass.lpszClassName = kClass;
    RegisterClassA(&windowClass);
    return CreateWindowExA(0, kClass, kClass, WS_POPUP, 0, 0, width, height, nullptr, nullptr, nullptr,
                           nullptr);
}

// Without a context, OpenGL answers nothing.
bool localCanDraw() {
    show::gr.SetAct(true);
    const bool can = glGetString(GL_VERSION) != nullptr;
    show::gr.SetAct(false);
    return can;
}

// OpenGL's rows run upwards.
Picture localReadFrame(int width, int height) {
    Picture frame{width, height, std::vector<std::uint32_t>(static_cast<std::size_t>(width) * height)};
    glReadBuffer(GL_BACK);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, height, GL_BGRA, GL_UNSIGNED_BYTE, frame.pixels.data());
    for (int y = 0; y < height / 2; ++y)
        std::swap_ranges(frame.pixels.begin() + static_cast<std::ptrdiff_t>(y) * width,
                         frame.pixels.begin() + static_cast<std::ptrdiff_t>(y + 1) * width,
                         frame.pixels.begin() + static_cast<std::ptrdiff_t>(height - 1 - y) * width);
    for (std::uint32_t& pixel : frame.pixels)
        pixel |= 0xFF000000u;
    return frame;
}

} // namespace

ShowDriver::~ShowDriver() {
    Close();
}

bool ShowDriver::Open(const Settings& settings, std::string* error) {
    Close();
    settings_ = settings;
    next_ = 0;
    window_ = localOpenWindow(settings.width, settings.height);
    if (window_ == nullptr) {
        *error = "there is no software OpenGL to draw with (Debian: apt-get install libegl1 libgl1-mesa-dri)";
        return false;
    }
    const Picture desktop = settings.desktop.Empty()
                                ? localGreyDesktop(settings.width, settings.height)
                                : Scaled(settings.desktop, settings.width, settings.height);
    OffscreenSetDesktop(localToBgrx(desktop).data(), settings.width, settings.height, settings.width * 4);
    std::snprintf(orinPath, sizeof orinPath, "%s", settings.dataFolder.c_str());
    show::logsFile = ""; // a film leaves no trace in the show's folder
    showTicks = static_cast<std::uint32_t>(kFirstFrame * 1000);
    fxSetTickSource([] { return showTicks; });
    fxSeedRandom(kSeed);
    BuildScene(window_, settings.preview);
    open_ = true;
    if (!localCanDraw()) {
        Close();
        *error = "OpenGL cannot draw pictures of " + std::to_string(settings.width) + "x" +
                 std::to_string(settings.height) + " pixels";
        return false;
    }
    return true;
}

void ShowDriver::Close() {
    if (!open_)
        return;
    DestroyScene();
    DestroyWindow(window_);
    OffscreenSetDesktop(nullptr, 0, 0, 0);
    fxSetTickSource(nullptr);
    open_ = false;
}

void ShowDriver::DrawAt(double seconds, bool visible) {
    showTicks = static_cast<std::uint32_t>(std::lround((kFirstFrame + seconds) * 1000));
    show::gr.SetAct(true);
    // A frame that nobody sees is computed whole, but fills one pixel.
    if (!visible) {
        glEnable(GL_SCISSOR_TEST);
        glScissor(0, 0, 1, 1);
    }
    show::sc.OnRender(&show::gr, fxGetTime());
    glDisable(GL_SCISSOR_TEST);
}

int ShowDriver::Stage() const {
    return show::stage;
}

void ShowDriver::RunTo(double seconds) {
    for (; next_ < seconds - 1e-9; next_ += settings_.step) {
        DrawAt(next_, false);
        show::gr.SetAct(false);
    }
}

Picture ShowDriver::FrameAt(double seconds) {
    RunTo(seconds);
    DrawAt(seconds, true);
    next_ = std::max(next_, seconds + settings_.step);
    Picture frame = localReadFrame(settings_.width, settings_.height);
    show::gr.SetAct(false);
    return frame;
}
