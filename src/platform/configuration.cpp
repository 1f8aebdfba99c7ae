#include "platform/configuration.h"

char orinPath[520] = "";
const char* const scrRegName = "Software\\OrinLab\\Screensavers\\Tamblor";
FXStr configProblem;

namespace {

void localNoteProblem(LSTATUS status) {
    char text[512] = "";
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, static_cast<DWORD>(status), 0,
                   text, sizeof text, nullptr);
    configProblem.Format("configuration: %s", text);
    configProblem.TrimSpaces();
}

} // namespace

LSTATUS localReadConfig() {
    configProblem.Clear();
    HKEY key = nullptr;
    const LSTATUS opened = RegOpenKeyExA(HKEY_CURRENT_USER, scrRegName, 0, KEY_QUERY_VALUE, &key);
    if (opened != ERROR_SUCCESS)
        return opened;
    DWORD size = sizeof orinPath;
    const LSTATUS read =
        RegQueryValueExA(key, "path", nullptr, nullptr, reinterpret_cast<BYTE*>(orinPath), &size);
    orinPath[sizeof orinPath - 1] = '\0'; // a stored value need not be terminated
    if (read != ERROR_SUCCESS && read != ERROR_FILE_NOT_FOUND && read != ERROR_MORE_DATA)
        localNoteProblem(read);
    return RegCloseKey(key);
}
