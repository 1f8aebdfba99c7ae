// The registry, modules, the shell, and the list of what was done.
#include "fakes/fake_state.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <mutex>
#include <utility>

FakeWin32 fakeWin32;

namespace {

std::mutex callsMutex; // a loop thread calls, too
std::vector<std::string> calls;
std::vector<std::string> keys; // opened; a handle is the place, from 1

} // namespace

void NoteFakeCall(const char* format, ...) {
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    const std::lock_guard lock(callsMutex);
    calls.emplace_back(text);
}

std::vector<std::string> TakeFakeCalls() {
    const std::lock_guard lock(callsMutex);
    return std::exchange(calls, {});
}

void ResetFakeWin32() {
    fakeWin32 = {};
    keys.clear();
    ResetFakeWindow();
    TakeFakeCalls();
}

LSTATUS RegOpenKeyA(HKEY root, const char* name, HKEY* key) {
    return RegOpenKeyExA(root, name, 0, KEY_QUERY_VALUE, key);
}

LSTATUS RegOpenKeyExA(HKEY root, const char* name, DWORD, DWORD, HKEY* key) {
    const std::string prefix = std::string(name) + "\\";
    const bool known = std::ranges::any_of(
        fakeWin32.registry, [&](const auto& entry) { return entry.first.starts_with(prefix); });
    if (root != HKEY_CURRENT_USER || !known)
        return ERROR_FILE_NOT_FOUND;
    keys.push_back(prefix);
    *key = reinterpret_cast<HKEY>(static_cast<UINT_PTR>(keys.size()));
    return ERROR_SUCCESS;
}

LSTATUS RegQueryValueExA(HKEY key, const char* name, DWORD*, DWORD*, BYTE* data, DWORD* size) {
    const auto value = fakeWin32.registry.find(keys.at(reinterpret_cast<UINT_PTR>(key) - 1) + name);
    if (value == fakeWin32.registry.end())
        return ERROR_FILE_NOT_FOUND;
    const DWORD room = *size;
    *size = static_cast<DWORD>(value->second.size());
    if (*size > room)
        return ERROR_MORE_DATA;
    std::memcpy(data, value->second.data(), *size);
    return ERROR_SUCCESS;
}

LSTATUS RegCloseKey(HKEY) {
    return NoteFakeCall("RegCloseKey()"), ERROR_SUCCESS;
}

DWORD GetLastError() {
    return fakeWin32.lastError;
}

void SetLastError(DWORD error) {
    fakeWin32.lastError = error;
}

DWORD FormatMessageA(DWORD, const void*, DWORD message, DWORD, char* buffer, DWORD size, void*) {
    return static_cast<DWORD>(std::snprintf(buffer, size, "status %u", message));
}

HANDLE GetCurrentProcess() {
    return nullptr;
}

BOOL SetPriorityClass(HANDLE, DWORD priorityClass) {
    return NoteFakeCall("SetPriorityClass(0x%x)", priorityClass), TRUE;
}

BOOL SetThreadPriority(HANDLE, int) {
    return TRUE;
}

HMODULE LoadLibraryA(const char* name) {
    const auto module = fakeWin32.modules.find(name);
    NoteFakeCall("LoadLibraryA(%s)", name);
    const auto number = std::distance(fakeWin32.modules.begin(), module) + 1;
    return module != fakeWin32.modules.end() ? reinterpret_cast<HMODULE>(number) : nullptr;
}

FARPROC GetProcAddress(HMODULE module, const char* name) {
    const auto entries = std::next(fakeWin32.modules.begin(), reinterpret_cast<INT_PTR>(module) - 1)->second;
    const auto entry = entries.find(name);
    return entry != entries.end() ? entry->second : nullptr;
}

BOOL FreeLibrary(HMODULE module) {
    return NoteFakeCall("FreeLibrary(%s)", module ? "module" : "null"), module != nullptr;
}

DWORD GetCurrentDirectoryA(DWORD size, char* buffer) {
    return static_cast<DWORD>(std::snprintf(buffer, size, "/start"));
}

BOOL SetCurrentDirectoryA(const char* path) {
    return NoteFakeCall("SetCurrentDirectoryA(%s)", path), !FakeFails("SetCurrentDirectoryA");
}

BOOL CreateDirectoryA(const char* path, void*) {
    return NoteFakeCall("CreateDirectoryA(%s)", path), TRUE;
}

DWORD GetFileAttributesA(const char*) {
    return INVALID_FILE_ATTRIBUTES;
}

HRESULT SHGetFolderPathA(HWND, int folder, HANDLE, DWORD, char* path) {
    std::snprintf(path, MAX_PATH, "C:\\Folder%d", folder);
    return 0;
}

HINSTANCE ShellExecuteA(HWND, const char* verb, const char* file, const char*, const char*, int show) {
    NoteFakeCall("ShellExecuteA(%s, %s, %d)", verb, file, show);
    return nullptr;
}

char* GetCommandLineA() {
    return fakeWin32.commandLine.data();
}

BOOL GetVersionExA(OSVERSIONINFOA* version) {
    version->dwPlatformId = fakeWin32.platform;
    return version->dwOSVersionInfoSize == 148;
}

BOOL SystemParametersInfoA(UINT action, UINT parameter, void*, UINT) {
    return NoteFakeCall("SystemParametersInfoA(%u, %u)", action, parameter), TRUE;
}
