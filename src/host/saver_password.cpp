#include "host/saver_password.h"

#include <bit>

int w95 = 0;
HMODULE hPwdLib = nullptr;
BOOL(WINAPI* VerifyScreenSavePwd)(HWND) = nullptr;

namespace {

using ChangePasswordProc = DWORD(WINAPI*)(const char* provider, HWND parent, DWORD, void*);

template <class Proc> Proc localEntry(HMODULE module, const char* name) {
    return std::bit_cast<Proc>(GetProcAddress(module, name));
}

bool localIsWindows95() {
    OSVERSIONINFOA version = {};
    version.dwOSVersionInfoSize = sizeof version;
    static_assert(sizeof version == 148);
    return GetVersionExA(&version) != FALSE && version.dwPlatformId == VER_PLATFORM_WIN32_WINDOWS;
}

bool localPasswordIsSet(HKEY desktop) {
    DWORD value = 0;
    DWORD size = sizeof value;
    const LSTATUS read = RegQueryValueExA(desktop, "ScreenSaveUsePassword", nullptr, nullptr,
                                          reinterpret_cast<BYTE*>(&value), &size);
    return read == ERROR_SUCCESS && value != 0;
}

void localLoadVerification() {
    hPwdLib = LoadLibraryA("PASSWORD.CPL");
    if (hPwdLib != nullptr)
        VerifyScreenSavePwd = localEntry<BOOL(WINAPI*)(HWND)>(hPwdLib, "VerifyScreenSavePwd");
}

} // namespace

void LoadSaverPassword() {
    w95 = localIsWindows95() ? 1 : 0;
    HKEY desktop = nullptr;
    if (w95 == 0 || RegOpenKeyA(HKEY_CURRENT_USER, "Control Panel\\Desktop", &desktop) != ERROR_SUCCESS)
        return;
    if (localPasswordIsSet(desktop))
        localLoadVerification();
    RegCloseKey(desktop);
}

void FreeSaverPassword() {
    VerifyScreenSavePwd = nullptr;
    FreeLibrary(hPwdLib);
    hPwdLib = nullptr;
}

void ScreenSaverChangePassword(HWND parent) {
    const HMODULE module = LoadLibraryA("MPR.DLL");
    if (module == nullptr)
        return;
    if (const auto change = localEntry<ChangePasswordProc>(module, "PwdChangePasswordA"))
        change("SCRSAVE", parent, 0, nullptr);
    FreeLibrary(module);
}
