#include "win32/posix/last_error.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <new>

namespace {

struct Words {
    DWORD error;
    const char* text;
};

// What this system's own functions mean by them.
constexpr Words kUsual[] = {
    {ERROR_FILE_NOT_FOUND, "there is no such file"},
    {ERROR_PATH_NOT_FOUND, "there is no such folder"},
    {ERROR_ACCESS_DENIED, "access is denied"},
    {ERROR_NOT_SUPPORTED, "there is no OpenGL here"},
    {ERROR_INVALID_WINDOW_HANDLE, "there is no such window"},
    {ERROR_BAD_DRIVER, "there is no OpenGL driver that works here (Debian: package libgl1-mesa-dri)"},
};

thread_local DWORD lastError = ERROR_SUCCESS;
std::map<DWORD, std::string> ownWords;

std::string WordsOf(DWORD error) {
    const auto own = ownWords.find(error);
    if (own != ownWords.end() && !own->second.empty())
        return own->second;
    const auto* usual = std::ranges::find(kUsual, error, &Words::error);
    return usual != std::end(kUsual) ? usual->text : "status " + std::to_string(error);
}

} // namespace

DWORD GetLastError() {
    return lastError;
}

void SetLastError(DWORD error) {
    lastError = error;
}

void SetErrorWords(DWORD error, const std::string& words) {
    ownWords[error] = words;
}

DWORD FormatMessageA(DWORD, const void*, DWORD message, DWORD, char* buffer, DWORD size, void*) try {
    const std::string text = WordsOf(message);
    const std::size_t length = std::min<std::size_t>(text.size(), size > 0 ? size - 1 : 0);
    std::memcpy(buffer, text.data(), length);
    if (size > 0)
        buffer[length] = '\0';
    return static_cast<DWORD>(length);
} catch (const std::bad_alloc&) {
    return 0;
}
