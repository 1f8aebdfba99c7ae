// The current folder and the shell's folders.
#include "win32/win32.h"

#include <cstdio>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// The separator at the end may be the other one: "\" alone is the root.
std::string localSlashEnding(const char* path) {
    std::string name = path;
    if (!name.empty() && name.back() == '\\')
        name.back() = '/';
    return name;
}

} // namespace

DWORD GetCurrentDirectoryA(DWORD size, char* buffer) {
    if (getcwd(buffer, size) != nullptr)
        return static_cast<DWORD>(std::char_traits<char>::length(buffer));
    if (size > 0)
        buffer[0] = '\0';
    return 0;
}

BOOL SetCurrentDirectoryA(const char* path) {
    return chdir(localSlashEnding(path).c_str()) == 0 ? TRUE : FALSE;
}

DWORD GetFileAttributesA(const char* path) {
    struct stat entry = {};
    if (stat(localSlashEnding(path).c_str(), &entry) != 0)
        return INVALID_FILE_ATTRIBUTES;
    return S_ISDIR(entry.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
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
