#include "pack/text.h"

#include "base/file_handle.h"
#include "base/whole_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdarg>
#include <cstdio>

namespace {

template <class T> std::string localShortestText(T value) {
    std::array<char, 64> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return {text.data(), end};
}

} // namespace

std::string Text(const char* format, ...) {
    va_list arguments, again;
    va_start(arguments, format);
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::string text(static_cast<std::size_t>(length > 0 ? length : 0), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    return text;
}

std::string NumberText(float value) {
    return localShortestText(value);
}
std::string NumberText(double value) {
    return localShortestText(value);
}

std::string Line3(const char* keyword, const float* numbers) {
    return std::string(keyword) + " " + NumberText(numbers[0]) + " " + NumberText(numbers[1]) + " " +
           NumberText(numbers[2]) + "\n";
}

std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\')
            quoted += std::string("\\") + c;
        else if (byte < 0x20 || byte == 0x7F)
            quoted += Text("\\u%04X", static_cast<unsigned>(byte));
        else
            quoted += c;
    }
    return quoted + '"';
}

std::string Printable(std::string text) {
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
    std::ranges::replace_if(text, isControl, '?');
    return text;
}

std::string Counted(long long n, const char* one, const char* many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

bool WriteWhole(const std::string& file, const std::string& bytes, std::string* error) {
    return fxReplaceFile(
        file, [&](std::FILE* out) { return fxWrite(bytes.data(), 1, bytes.size(), out); }, error);
}
