#include "host/saver_window.h"

#include "host/configuration.h"
#include "host/default_procedure.h"
#include "host/message_routing.h"
#include "platform/clock.h"
#include "platform/report.h"
#include "scene/scene.h"
#include "win32/product.h"

#include <cstring>

bool escapeHit = false;
bool started = false;
double startTime = 0.0;
const char* const scrFile = "tamb.scr";

namespace {

// Reads the data folder into orinPath. Without a stored value, or with one longer than the buffer, orinPath
// stays as it is. Gives the status of opening, or else of closing, the configuration, 0 on success; never
// that of the reading.
LSTATUS localReadConfig() {
    configProblem.Clear();
    configSearch.Clear();
    HKEY key = nullptr;
    const LSTATUS opened = RegOpenKeyExA(HKEY_CURRENT_USER, scrRegName, 0, KEY_QUERY_VALUE, &key);
    if (opened != ERROR_SUCCESS) {
        configSearch = fxErrorWords(static_cast<DWORD>(opened));
        return opened;
    }
    char value[sizeof orinPath] = "";
    DWORD size = sizeof value;
    const LSTATUS read =
        RegQueryValueExA(key, kDataFolderValue, nullptr, nullptr, reinterpret_cast<BYTE*>(value), &size);
    value[sizeof value - 1] = '\0'; // a stored value need not be terminated
    if (read == ERROR_SUCCESS || (read != ERROR_MORE_DATA && value[0] != '\0'))
        std::memcpy(orinPath, value, sizeof orinPath);
    if (read != ERROR_SUCCESS && read != ERROR_FILE_NOT_FOUND && read != ERROR_MORE_DATA)
        configProblem.Format("configuration: %s", fxErrorWords(static_cast<DWORD>(read)).text);
    if (read == ERROR_FILE_NOT_FOUND)
        configSearch = fxErrorWords(ERROR_FILE_NOT_FOUND);
    return RegCloseKey(key);
}

// Asks the shell to install the saver file; gives the shell's answer, above 32 when it went well.
INT_PTR localRegister(HWND owner) {
    char folder[MAX_PATH] = "";
    SHGetFolderPathA(nullptr, CSIDL_SYSTEMX86, nullptr, 0, folder);
    FXStr file(folder);
    file.AppendChar('\\');
    file.Append(scrFile);
    return reinterpret_cast<INT_PTR>(
        ShellExecuteA(owner, "install", file.text, nullptr, nullptr, SW_SHOWNORMAL));
}

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
        if (SaverMayClose(fChildPreview == 1, escapeHit, started,
                          startTime + fxSecondsBetween(startTime, fxGetTime()), startTime))
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
