#include "platform/configuration.h"

#include <cstring>

char orinPath[520] = "";
const char* const scrRegName = "Software\\OrinLab\\Screensavers\\Tamblor";
FXStr configProblem;

namespace {

void localNoteProblem(LSTATUS status) {
    char text[512] = "";
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                   static_cast<DWORD>(status), 0, text, sizeof text, nullptr);
    FXStr reason(text); // some systems end it with a line end, or break it
    reason.ExchangeChars('\r', ' ');
    reason.ExchangeChars('\n', ' ');
    reason.TrimSpaces();
    if (reason.IsEmpty())
        reason.Format("error %ld", static_cast<long>(status));
    configProblem.Format("configuration: %s", reason.text);
}

} // namespace

LSTATUS localReadConfig() {
    configProblem.Clear();
    HKEY key = nullptr;
    const LSTATUS opened = RegOpenKeyExA(HKEY_CURRENT_USER, scrRegName, 0, KEY_QUERY_VALUE, &key);
    if (opened != ERROR_SUCCESS)
        return opened;
    char value[sizeof orinPath] = "";
    DWORD size = sizeof value;
    const LSTATUS read =
        RegQueryValueExA(key, "path", nullptr, nullptr, reinterpret_cast<BYTE*>(value), &size);
    value[sizeof value - 1] = '\0'; // a stored value need not be terminated
    if (read == ERROR_SUCCESS || (read != ERROR_MORE_DATA && value[0] != '\0'))
        std::memcpy(orinPath, value, sizeof orinPath);
    if (read != ERROR_SUCCESS && read != ERROR_FILE_NOT_FOUND && read != ERROR_MORE_DATA)
        localNoteProblem(read);
    return RegCloseKey(key);
}
