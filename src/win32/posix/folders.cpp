// The current folder, the program's, and the shell's folders.
#include "win32/posix/program_file.h"
#include "win32/posix/user_folder.h"
#include "win32/win32.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <new>
#include <string>
#include <sys/auxv.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// The separator at the end may be the other one: "\" alone is the root.
class SlashEnding {
public:
    explicit SlashEnding(const char* path) : path_(path) {
        const std::size_t length = std::strlen(path);
        if (length == 0 || length >= sizeof changed_ || path[length - 1] != '\\')
            return;
        std::memcpy(changed_, path, length);
        changed_[length - 1] = '/';
        path_ = changed_;
    }
    const char* Text() const { return path_; }

private:
    char changed_[PATH_MAX] = {}; // longer ones the system refuses
    const char* path_;
};

constexpr mode_t kPrivate = 0700;

void CreateFolders(const std::string& path) {
    for (std::size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1))
        mkdir(path.substr(0, end).c_str(), kPrivate);
    mkdir(path.c_str(), kPrivate);
}

} // namespace

std::string ProgramFile() {
    std::error_code failed;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", failed);
    if (!failed)
        return program.string();
    const auto* const started = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
    const bool known = started != nullptr && *started == '/';
    return known ? std::filesystem::canonical(started, failed).string() : "";
}

std::string UserFolder(const char* variable, const char* belowHome) {
    const char* named = std::getenv(variable);
    if (named != nullptr && *named == '/')
        return named;
    const char* home = std::getenv("HOME");
    return home != nullptr && *home == '/' ? std::string(home) + belowHome : "";
}

DWORD GetCurrentDirectoryA(DWORD size, char* buffer) {
    if (getcwd(buffer, size) != nullptr)
        return static_cast<DWORD>(std::char_traits<char>::length(buffer));
    if (size > 0)
        buffer[0] = '\0';
    return 0;
}

BOOL SetCurrentDirectoryA(const char* path) {
    if (chdir(SlashEnding(path).Text()) == 0)
        return TRUE;
    SetLastError(errno == EACCES ? ERROR_ACCESS_DENIED : ERROR_PATH_NOT_FOUND);
    return FALSE;
}

DWORD GetFileAttributesA(const char* path) {
    struct stat entry = {};
    if (stat(SlashEnding(path).Text(), &entry) != 0)
        return INVALID_FILE_ATTRIBUTES;
    return S_ISDIR(entry.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
}

BOOL CreateDirectoryA(const char* path, void*) {
    return mkdir(path, kPrivate) == 0 ? TRUE : FALSE;
}

HRESULT SHGetFolderPathA(HWND, int folder, HANDLE, DWORD, char* path) try {
    constexpr HRESULT kFailed = static_cast<HRESULT>(0x80004005u);
    const std::string found = folder == CSIDL_FONTS ? "/usr/share/fonts"
                              : (folder & ~CSIDL_FLAG_CREATE) == CSIDL_LOCAL_APPDATA
                                  ? UserFolder("XDG_STATE_HOME", "/.local/state")
                                  : "";
    if (found.empty() || found.size() >= MAX_PATH)
        return kFailed;
    if ((folder & CSIDL_FLAG_CREATE) != 0)
        CreateFolders(found);
    std::snprintf(path, MAX_PATH, "%s", found.c_str());
    return 0;
} catch (const std::bad_alloc&) {
    return static_cast<HRESULT>(0x8007000Eu); // no memory
}

HINSTANCE ShellExecuteA(HWND, const char* verb, const char*, const char*, const char*, int) {
    std::fprintf(stderr, "tamblor: the system has no way to %s a screen saver; see the README\n", verb);
    return reinterpret_cast<HINSTANCE>(static_cast<std::intptr_t>(ERROR_FILE_NOT_FOUND));
}
