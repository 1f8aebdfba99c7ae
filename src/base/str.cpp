#include "base/str.h"

#include "base/path_text.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>

namespace {

bool localIsSpace(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}
char localLower(char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}
char localUpper(char c) {
    return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}

// Moves the text forward over white space at its front and cuts it at the end; the new length.
int localTrimSpaces(char* s, int len) {
    const int front = static_cast<int>(std::find_if_not(s, s + len, localIsSpace) - s);
    len -= front;
    std::memmove(s, s + front, static_cast<std::size_t>(len) + 1);
    while (len > 0 && localIsSpace(s[len - 1]))
        s[--len] = '\0';
    return len;
}

} // namespace

void FXStr::Clear() {
    text[0] = '\0';
    len = 0;
}

void FXStr::Set(const char* s) {
    if (s == text)
        return;
    Clear();
    Append(s);
}

void FXStr::Append(const char* s) {
    if (s == nullptr)
        return;
    const std::size_t room = static_cast<std::size_t>(kCapacity - len);
    const std::size_t n = strnlen(s, room);
    std::memmove(text + len, s, n);
    len += static_cast<int>(n);
    text[len] = '\0';
}

void FXStr::AppendChar(char c) {
    const char one[2] = {c, '\0'};
    Append(one);
}

void FXStr::InsertChar(char c) {
    if (len >= kCapacity || c == '\0')
        return;
    std::memmove(text + 1, text, static_cast<std::size_t>(len) + 1);
    text[0] = c;
    ++len;
}

void FXStr::RemoveLast() {
    if (len > 0)
        text[--len] = '\0';
}

void FXStr::Format(const char* fmt, ...) {
    va_list arguments;
    va_start(arguments, fmt);
    FormatV(fmt, arguments);
    va_end(arguments);
}

void FXStr::FormatV(const char* fmt, va_list arguments) {
    const int wanted = std::vsnprintf(text, sizeof text, fmt, arguments);
    len = std::clamp(wanted, 0, kCapacity);
    text[len] = '\0';
}

void FXStr::TrimSpaces() {
    len = localTrimSpaces(text, len);
}

void FXStr::ToLower() {
    std::transform(text, text + len, text, localLower);
}

void FXStr::ToUpper() {
    std::transform(text, text + len, text, localUpper);
}

void FXStr::ExchangeChars(char a, char b) {
    std::replace(text, text + len, a, b);
    len = static_cast<int>(std::strlen(text)); // b may be the terminator
}

bool FXStr::Compare(const char* s) const {
    return nCompare(s, kCapacity);
}

bool FXStr::nCompare(const char* s, int n) const {
    if (s == nullptr || *s == '\0')
        return IsEmpty();
    return !IsEmpty() && std::strncmp(text, s, static_cast<std::size_t>(std::clamp(n, 0, kCapacity))) == 0;
}

bool FXStr::iCompare(const char* s) const {
    if (s == nullptr)
        return IsEmpty();
    if (IsEmpty())
        return false;
    for (int i = 0; i < kCapacity; ++i) {
        if (localLower(text[i]) != localLower(s[i]))
            return false;
        if (s[i] == '\0')
            return true;
    }
    return true;
}

bool FXStr::Save(std::FILE* file) const {
    const std::int32_t n = len;
    return std::fwrite(&n, sizeof n, 1, file) == 1 &&
           std::fwrite(text, 1, static_cast<std::size_t>(n), file) == static_cast<std::size_t>(n);
}

bool FXStr::Load(std::FILE* file) {
    Clear();
    std::int32_t n = 0;
    if (std::fread(&n, sizeof n, 1, file) != 1)
        return false;
    const int kept = std::clamp(n, 0, kCapacity);
    len = static_cast<int>(std::fread(text, 1, static_cast<std::size_t>(kept), file));
    text[len] = '\0';
    if (len != kept || n < 0)
        return false;
    return n == kept || std::fseek(file, n - kept, SEEK_CUR) == 0;
}

bool FXStr::SaveShortPath(std::FILE* file, const char* base) const {
    return FXStr(IsEmpty() ? "" : fxBuildRelativePath(base, false, text, true)).Save(file);
}
