#include "platform/configuration.h"

#include "platform/report.h"

#include <cstring>

char orinPath[520] = "";
const char* const scrRegName = "Software\\OrinLab\\Screensavers\\Tamblor";
FXStr configProblem;
FXStr configSearch;

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
        RegQueryValueExA(key, "path", nullptr, nullptr, reinterpret_cast<BYTE*>(value), &size);
    value[sizeof value - 1] = '\0'; // a stored value need not be terminated
    if (read == ERROR_SUCCESS || (read != ERROR_MORE_DATA && value[0] != '\0'))
        std::memcpy(orinPath, value, sizeof orinPath);
    if (read != ERROR_SUCCESS && read != ERROR_FILE_NOT_FOUND && read != ERROR_MORE_DATA)
        configProblem.Format("configuration: %s", fxErrorWords(static_cast<DWORD>(read)).text);
    if (read == ERROR_FILE_NOT_FOUND)
        configSearch = fxErrorWords(ERROR_FILE_NOT_FOUND);
    return RegCloseKey(key);
}
