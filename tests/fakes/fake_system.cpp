// The registry, modules, the shell and the process.
#include "fakes/fake_win32.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

FAKE(LSTATUS, RegOpenKeyA, (HKEY root, const char* name, HKEY* key),
     RegOpenKeyExA(root, name, 0, KEY_QUERY_VALUE, key))

LSTATUS RegOpenKeyExA(HKEY root, const char* name, DWORD, DWORD, HKEY* key) {
    const std::string prefix = std::string(name) + "\\";
    const bool known = std::ranges::any_of(
        fakeWin32.registry, [&](const auto& entry) { return entry.first.starts_with(prefix); });
    if (root != HKEY_CURRENT_USER || !known)
        return ERROR_FILE_NOT_FOUND;
    static std::set<std::string> opened;
    *key = reinterpret_cast<HKEY>(const_cast<std::string*>(&*opened.insert(prefix).first));
    return ERROR_SUCCESS;
}

LSTATUS RegQueryValueExA(HKEY key, const char* name, DWORD*, DWORD*, BYTE* data, DWORD* size) {
    const auto value = fakeWin32.registry.find(*reinterpret_cast<std::string*>(key) + name);
    if (value == fakeWin32.registry.end())
        return ERROR_FILE_NOT_FOUND;
    const DWORD room = *size;
    *size = static_cast<DWORD>(value->second.size());
    if (*size > room)
        return ERROR_MORE_DATA;
    std::memcpy(data, value->second.data(), *size);
    return ERROR_SUCCESS;
}

FAKE(LSTATUS, RegCloseKey, (HKEY), ERROR_SUCCESS, "RegCloseKey()")

HMODULE LoadLibraryA(const char* name) {
    NoteFakeCall("LoadLibraryA(%s)", name);
    if (const auto library = fakeWin32.libraries.find(name); library != fakeWin32.libraries.end())
        return static_cast<HMODULE>(dlopen(library->second, RTLD_NOW));
    const auto module = fakeWin32.modules.find(name);
    return module != fakeWin32.modules.end() ? reinterpret_cast<HMODULE>(&module->second) : nullptr;
}

FARPROC GetProcAddress(HMODULE module, const char* name) {
    for (auto& [file, entries] : fakeWin32.modules)
        if (module == reinterpret_cast<HMODULE>(&entries))
            return entries.contains(name) ? entries[name] : nullptr;
    return reinterpret_cast<FARPROC>(dlsym(module, name));
}

FAKE(BOOL, FreeLibrary, (HMODULE module), module != nullptr, "FreeLibrary(%s)", module ? "module" : "null")

FAKE(DWORD, GetCurrentDirectoryA, (DWORD size, char* buffer),
     static_cast<DWORD>(std::snprintf(buffer, size, "/start")))
FAKE(BOOL, SetCurrentDirectoryA, (const char* path), !FakeFails("SetCurrentDirectoryA"),
     "SetCurrentDirectoryA(%s)", path)
FAKE(BOOL, CreateDirectoryA, (const char* path, void*), TRUE, "CreateDirectoryA(%s)", path)
FAKE(DWORD, GetFileAttributesA, (const char*), INVALID_FILE_ATTRIBUTES)

FAKE(HRESULT, SHGetFolderPathA, (HWND, int folder, HANDLE, DWORD, char* path),
     std::snprintf(path, MAX_PATH, "C:\\Folder%d", folder) < 0)
FAKE(HINSTANCE, ShellExecuteA, (HWND, const char* verb, const char* file, const char*, const char*, int show),
     nullptr, "ShellExecuteA(%s, %s, %d)", verb, file, show)

FAKE(char*, GetCommandLineA, (), fakeWin32.commandLine.data())
FAKE(HANDLE, GetCurrentProcess, (), nullptr)
FAKE(BOOL, SetPriorityClass, (HANDLE, DWORD priority), TRUE, "SetPriorityClass(0x%x)", priority)
FAKE(BOOL, SetThreadPriority, (HANDLE, int), TRUE)

FAKE(BOOL, GetVersionExA, (OSVERSIONINFOA * version),
     (version->dwPlatformId = fakeWin32.platform, version->dwOSVersionInfoSize == 148))
FAKE(BOOL, SystemParametersInfoA, (UINT action, UINT parameter, void*, UINT), TRUE,
     "SystemParametersInfoA(%u, %u)", action, parameter)
