#include "host/saver_entry.h"

#include "host/default_procedure.h"
#include "host/message_routing.h"
#include "host/saver_mode.h"
#include "host/saver_password.h"
#include "host/saver_window.h"
#include "platform/report.h"
#include "win32/other_monitors.h"

HINSTANCE hMainInstance = nullptr;
HWND hMainWindow = nullptr;

namespace {

constexpr const char* kClassName = "WindowsScreenSaverClass";
constexpr const char* kTitle = "SCREENSAVER";
constexpr int kIcon = 100;
constexpr int kSettingsDialog = 2003;

// What a saver on the Windows 95 family tells the system, which then holds back the task switching keys.
void localTellRunning(BOOL running) {
    UINT old = 0;
    if (w95 == 1 && fChildPreview == 0)
        SystemParametersInfoA(SPI_SCREENSAVERRUNNING, static_cast<UINT>(running), &old, 0);
}

bool localRegisterClasses() {
    WNDCLASSA windowClass = {};
    windowClass.style = CS_VREDRAW | CS_HREDRAW | CS_PARENTDC | CS_SAVEBITS;
    windowClass.lpfnWndProc = SysScreenSaverProc;
    windowClass.hInstance = hMainInstance;
    windowClass.hIcon = LoadIconA(hMainInstance, MAKEINTRESOURCEA(kIcon));
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    windowClass.lpszClassName = kClassName;
    return RegisterClassA(&windowClass) != 0 && RegisterDialogClasses(hMainInstance) != FALSE;
}

// WM_CREATE, and with it the building of the whole scene, happens in here.
HWND localCreateWindow(HWND parent) {
    RECT area = {};
    if (parent != nullptr)
        GetClientRect(parent, &area);
    else
        area = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    const DWORD style = parent != nullptr ? WS_CHILD : WS_POPUP | WS_VISIBLE;
    const DWORD exStyle = parent != nullptr ? 0 : WS_EX_TOPMOST;
    return CreateWindowExA(exStyle, kClassName, kTitle, style, 0, 0, area.right, area.bottom, parent, nullptr,
                           hMainInstance, nullptr);
}

int localRunMessages() {
    UpdateWindow(hMainWindow);
    ShowWindow(hMainWindow, SW_SHOW);
    MSG message = {};
    while (GetMessageA(&message, nullptr, 0, 0) == 1) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return static_cast<int>(message.wParam);
}

// The window that the command line names. Null when it names none, or one that does not exist, which is
// reported.
HWND localNamedWindow(const SaverCommand& command) {
    const HWND window = reinterpret_cast<HWND>(static_cast<UINT_PTR>(command.window));
    if (!command.hasWindow)
        return nullptr;
    if (command.window != 0 && IsWindow(window) != FALSE)
        return window;
    fxReport("there is no window %u", command.window);
    return nullptr;
}

void localConfigure() {
    RegisterDialogClasses(hMainInstance);
    DialogBoxParamA(hMainInstance, MAKEINTRESOURCEA(kSettingsDialog), GetForegroundWindow(),
                    ScreenSaverConfigureDialog, 0);
}

int localPreview(const SaverCommand& command) {
    fChildPreview = 1;
    if (!command.hasWindow)
        fxReport("the preview needs the number of a window, as in /p 1234");
    const HWND parent = localNamedWindow(command);
    return parent != nullptr ? LaunchScreenSaver(parent) : 0;
}

} // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, char* commandLine, int) {
    hMainInstance = instance;
    LoadSaverPassword();
    const SaverCommand command = ParseSaverCommandLine(commandLine != nullptr ? commandLine : "");
    switch (command.mode) {
    case SaverMode::Saver:
        return LaunchScreenSaver(nullptr);
    case SaverMode::Preview:
        return localPreview(command);
    case SaverMode::ChangePassword: {
        const HWND parent = localNamedWindow(command);
        ScreenSaverChangePassword(parent != nullptr ? parent : GetForegroundWindow());
        return 0;
    }
    case SaverMode::Configure:
        localConfigure();
        break;
    }
    return 0;
}

int LaunchScreenSaver(HWND parent) {
    int result = 0;
    localTellRunning(TRUE);
    if (!localRegisterClasses()) {
        MessageBoxA(nullptr, "RegisterClasses() failed", nullptr, MB_ICONHAND);
    } else {
        hMainWindow = localCreateWindow(parent);
        if (hMainWindow != nullptr && parent == nullptr)
            CoverOtherMonitors(hMainWindow);
        if (hMainWindow != nullptr)
            result = localRunMessages();
    }
    localTellRunning(FALSE);
    FreeSaverPassword();
    return result;
}

LRESULT CALLBACK SysScreenSaverProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (RouteSysMessage(message, wParam, fChildPreview == 1, closing == 1)) {
    case SysAction::Create:
        if (fChildPreview == 0)
            SetCursor(nullptr);
        GetCursorPos(&pt_orig);
        break;
    case SysAction::Destroy:
        PostQuitMessage(0);
        break;
    case SysAction::Default:
        return DefWindowProcA(window, message, wParam, lParam);
    case SysAction::Swallow:
        return 0;
    case SysAction::Forward:
        break;
    }
    return ScreenSaverProc(window, message, wParam, lParam);
}
