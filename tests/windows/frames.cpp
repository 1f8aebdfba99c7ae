// The show on Windows at chosen times, without waiting: the saver's own libraries in a window that covers the
// screen, over the desktop that DirectDraw photographs. frames FOLDER STEP SECONDS...: the package's folder,
// the time between two frames, the frames that are wanted, in rising order. Each is shown until a file
// "seen-N" stands beside "shown-N", which this program writes into the current folder; N counts from 1.
#include "host/configuration.h"
#include "platform/clock.h"
#include "platform/random.h"
#include "render/gl.h"
#include "scene/scene.h"
#include "scene/show.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

// As the driver of the film tool has them: the pictures are compared with its own.
constexpr double kFirstFrame = 1000;
constexpr unsigned kSeed = 5;
DWORD showTicks = 0;

void DrawAt(double seconds) {
    showTicks = static_cast<DWORD>(std::lround((kFirstFrame + seconds) * 1000));
    show::gr.SetAct(true);
    show::sc.OnRender(&show::gr, fxGetTime());
    glFinish();
    show::gr.SetAct(false);
}

void PumpMessages() {
    MSG message = {};
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
        DispatchMessageA(&message);
}

void ShowUntilSeen(const std::string& folder, int number) {
    std::ofstream(folder + "/shown-" + std::to_string(number));
    const std::string seen = folder + "/seen-" + std::to_string(number);
    while (GetFileAttributesA(seen.c_str()) == INVALID_FILE_ATTRIBUTES) {
        PumpMessages();
        Sleep(10);
    }
}

// Photographs the desktop before the window comes up, as in the saver.
LRESULT CALLBACK FramesProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CREATE)
        BuildScene(window, false);
    return DefWindowProcA(window, message, wParam, lParam);
}

} // namespace

int main(int count, char** words) {
    if (count < 4)
        return 1;
    char folder[MAX_PATH] = "";
    GetCurrentDirectoryA(sizeof folder, folder); // the show makes the package's folder the current one
    std::snprintf(orinPath, sizeof orinPath, "%s", words[1]);
    const double step = std::atof(words[2]);
    showTicks = static_cast<DWORD>(kFirstFrame * 1000);
    fxSetTickSource([]() -> std::uint32_t { return showTicks; });
    fxSeedRandom(kSeed);
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = FramesProc;
    windowClass.lpszClassName = "TamblorTestFrames";
    RegisterClassA(&windowClass);
    const HWND window = CreateWindowExA(WS_EX_TOPMOST, windowClass.lpszClassName, "Frames",
                                        WS_POPUP | WS_VISIBLE, 0, 0, GetSystemMetrics(SM_CXSCREEN),
                                        GetSystemMetrics(SM_CYSCREEN), nullptr, nullptr, nullptr, nullptr);
    PumpMessages();
    double next = 0;
    for (int i = 3; i < count; ++i) {
        const double wanted = std::atof(words[i]);
        for (; next < wanted - 1e-9; next += step)
            DrawAt(next);
        DrawAt(wanted);
        next = std::max(next, wanted + step);
        ShowUntilSeen(folder, i - 2);
    }
    DestroyScene();
    DestroyWindow(window);
    return 0;
}
