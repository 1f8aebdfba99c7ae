#include "platform/paths.h"

#include "base/path_text.h"
#include "win32/product.h"
#include "win32/win32.h"

#include <cstring>

namespace {

constexpr std::size_t kPathLength = 259;

char localStartPath[288] = "";
char localSysFontsPath[288] = "";
char localGetPath[288] = "";

// "\" unless the path separates with "/" already.
void localAddPathEnding(char* path) {
    const std::size_t length = std::strlen(path);
    if (length > 0 && (path[length - 1] == '\\' || path[length - 1] == '/'))
        return;
    path[length] = fxSeparatorOf(path);
    path[length + 1] = '\0';
}

char* localTypePath(int type) {
    return type == 1 ? localStartPath : type == 2 ? localSysFontsPath : nullptr;
}

} // namespace

void fxInitPaths() {
    fxSetTypePath(1, fxGetActPath());
    char fonts[MAX_PATH] = "";
    if (SHGetFolderPathA(nullptr, CSIDL_FONTS, nullptr, 0, fonts) != 0)
        fonts[0] = '\0';
    fxSetTypePath(2, fonts);
}

void fxSetTypePath(int type, const char* path) {
    char* target = localTypePath(type);
    if (target == nullptr)
        return;
    path = path ? path : "";
    const std::size_t length = strnlen(path, kPathLength);
    std::memmove(target, path, length);
    target[length] = '\0';
    localAddPathEnding(target);
}

const char* fxGetTypePath(int type) {
    return localTypePath(type);
}

bool fxSetActPath(const char* path) {
    return path != nullptr && SetCurrentDirectoryA(path) != FALSE;
}

bool fxSetPath(int type) {
    return fxSetActPath(fxGetTypePath(type));
}

bool fxSetSubPath(int type, const char* sub) {
    const char* folder = fxGetTypePath(type);
    return folder != nullptr && fxSetActPath(fxCombinePaths(folder, sub));
}

const char* fxGetActPath() {
    const DWORD length = GetCurrentDirectoryA(kPathLength + 1, localGetPath);
    if (length == 0 || length > kPathLength)
        std::memcpy(localGetPath, ".", 2); // too deep for a buffer: stay where we are
    localAddPathEnding(localGetPath);
    return localGetPath;
}

bool fxPathExists(const char* path) {
    return path != nullptr && GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES;
}

FXStr fxStateFile(const char* name) {
    FXStr file;
    char folder[288] = "";
    if (SHGetFolderPathA(nullptr, CSIDL_LOCAL_APPDATA | CSIDL_FLAG_CREATE, nullptr, 0, folder) != 0)
        return file;
    localAddPathEnding(folder);
    file.Set(folder);
    file.Append(kProductFolder);
    CreateDirectoryA(file.text, nullptr);
    file.AppendChar(folder[std::strlen(folder) - 1]);
    file.Append(name);
    return file;
}
