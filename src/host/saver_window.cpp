#include "host/saver_window.h"

#include "host/close_rule.h"
#include "host/default_procedure.h"
#include "host/message_routing.h"
#include "platform/clock.h"
#include "platform/configuration.h"
#include "scene/scene.h"

#include <cstring>
#include <string>

bool escapeHit = false;
bool started = false;
double startTime = 0.0;
const char* const scrFile = "tamb.scr";

namespace {

// The answer to WM_CREATE: -1 gives no window.
LRESULT localCreate(HWND window) {
    if (std::strstr(GetCommandLineA(), "register_scrsaver") != nullptr) {
        localRegister(window);
        return -1;
    }
    localReadConfig();
    InitScene(window, fChildPreview == 1);
    startTime = fxGetTime();
    started = true;
    return 0;
}

} // namespace

LRESULT CALLBACK ScreenSaverProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (RouteSaverMessage(message)) {
    case SaverAction::Create:
        return localCreate(window);
    case SaverAction::Destroy:
        DestroyScene();
        return 0;
    case SaverAction::Close:
        if (SaverMayClose(fChildPreview == 1, escapeHit, started, fxGetTime(), startTime))
            DestroyWindow(window);
        return 0;
    case SaverAction::KeepBackground:
        return 1;
    case SaverAction::KeepPainted:
        ValidateRect(window, nullptr);
        return 0;
    case SaverAction::Key:
        escapeHit = true;
        DestroyWindow(window);
        break;
    case SaverAction::Resized:
        ResizeScene(static_cast<int>(lParam & 0xFFFF), static_cast<int>(lParam >> 16 & 0xFFFF));
        break;
    case SaverAction::Default:
        break;
    }
    return DefScreenSaverProc(window, message, wParam, lParam);
}

INT_PTR CALLBACK ScreenSaverConfigureDialog(HWND, UINT, WPARAM, LPARAM) {
    return FALSE;
}

BOOL RegisterDialogClasses(HINSTANCE) {
    return TRUE;
}

INT_PTR localRegister(HWND owner) {
    char folder[MAX_PATH] = "";
    SHGetFolderPathA(nullptr, CSIDL_SYSTEMX86, nullptr, 0, folder);
    const std::string file = std::string(folder) + "\\" + scrFile;
    return reinterpret_cast<INT_PTR>(
        ShellExecuteA(owner, "install", file.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
}
