// The current folder and the shell's folders.
#include "win32/win32.h"

#include <cstdio>
#include <string>
#include <unistd.h>

DWORD GetCurrentDirectoryA(DWORD size, char* buffer) {
    if (getcwd(buffer, size) != nullptr)
        return static_cast<DWORD>(std::char_traits<char>::length(buffer));
    if (size > 0)
        buffer[0] = '\0';
    return 0;
}

BOOL SetCurrentDirectoryA(const char* path) {
    std::string folder = path;
    if (!folder.empty() && folder.back() == '\\')
        folder.back() = '/'; // "\" alone is the root
    return chdir(folder.c_str()) == 0 ? TRUE : FALSE;
}

HRESULT SHGetFolderPathA(HWND, int folder, HANDLE, DWORD, char* path) {
    constexpr HRESULT kFailed = static_cast<HRESULT>(0x80004005u);
    if (folder != CSIDL_FONTS)
        return kFailed;
    std::snprintf(path, MAX_PATH, "/usr/share/fonts");
    return 0;
}

HINSTANCE ShellExecuteA(HWND, const char* verb, const char*, const char*, const char*, int) {
    std::fprintf(stderr, "tamblor: the system has no way to %s a screen saver; see the README\n", verb);
    return reinterpret_cast<HINSTANCE>(static_cast<std::intptr_t>(ERROR_FILE_NOT_FOUND));
}
