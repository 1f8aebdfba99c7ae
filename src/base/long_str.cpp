#include "base/long_str.h"

#include "base/memory.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdlib>
#include <cwchar>
#include <cwctype>
#include <string>

namespace {

bool localIsSpace(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}
bool localIsSpace(wchar_t c) {
    return std::iswspace(static_cast<std::wint_t>(c)) != 0;
}
char localLower(char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}
wchar_t localLower(wchar_t c) {
    return static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(c)));
}

template <class Char> std::size_t localLength(const Char* s) {
    return s ? std::char_traits<Char>::length(s) : 0;
}

// `convert(target, size)` is mbstowcs or wcstombs of a text; without a target it counts.
template <class Char, class Convert> Char* localConverted(Convert convert) {
    constexpr auto kMalformed = static_cast<std::size_t>(-1);
    const std::size_t length = convert(static_cast<Char*>(nullptr), std::size_t{0});
    if (length == 0 || length == kMalformed)
        return nullptr;
    auto* text = static_cast<Char*>(fxMalloc((length + 1) * sizeof(Char)));
    if (text != nullptr)
        convert(text, length + 1);
    return text;
}

} // namespace

// n characters in place of what stands from `at` on.
template <class Char> void FXLongText<Char>::Put(int at, const Char* s, std::size_t n) {
    if (n > static_cast<std::size_t>(INT_MAX / static_cast<int>(sizeof(Char)) - 1 - at))
        return;
    const int wanted = at + static_cast<int>(n);
    Char* target = text;
    if (text == nullptr || capacity < wanted) {
        target = static_cast<Char*>(fxMalloc((static_cast<std::size_t>(wanted) + 1) * sizeof(Char)));
        if (target == nullptr)
            return;
        std::copy_n(text, at, target);
    }
    std::char_traits<Char>::move(target + at, s, n);
    target[wanted] = Char{};
    if (target != text) {
        std::free(text); // s may have been in it
        text = target;
        capacity = wanted;
    }
    len = wanted;
}

template <class Char> void FXLongText<Char>::Set(const Char* s) {
    if (const std::size_t n = localLength(s); n != 0)
        Put(0, s, n);
    else
        Clear();
}

template <class Char> void FXLongText<Char>::Append(const Char* s) {
    if (const std::size_t n = localLength(s); n != 0)
        Put(len, s, n);
}

template <class Char> void FXLongText<Char>::TrimSpaces() {
    Char* const end = text + len;
    Char* const front = std::find_if_not(text, end, [](Char c) { return localIsSpace(c); });
    int kept = static_cast<int>(end - front);
    while (kept > 0 && localIsSpace(front[kept - 1]))
        --kept;
    if (kept > 0)
        Put(0, front, static_cast<std::size_t>(kept));
    else
        Clear();
}

template <class Char> void FXLongText<Char>::ToLower() {
    std::transform(text, text + len, text, [](Char c) { return localLower(c); });
}

template <class Char> bool FXLongText<Char>::Compare(const Char* s) const {
    return localLength(s) == static_cast<std::size_t>(len) && std::equal(text, text + len, s);
}

template <class Char> bool FXLongText<Char>::iCompare(const Char* s) const {
    if (s == nullptr || IsEmpty())
        return s == nullptr && IsEmpty();
    return localLength(s) == static_cast<std::size_t>(len) &&
           std::equal(text, text + len, s, [](Char a, Char b) { return localLower(a) == localLower(b); });
}

template <class Char> void FXLongText<Char>::Clear() {
    len = 0;
    if (text != nullptr)
        *text = Char{};
}

template <class Char> void FXLongText<Char>::ClearBuf() {
    std::free(text);
    text = nullptr;
    len = capacity = 0;
}

template class FXLongText<char>;
template class FXLongText<wchar_t>;

void FXLongStrW::AppendChar(wchar_t c) {
    const wchar_t one[2] = {c, L'\0'};
    Append(one);
}

void FXLongStrW::RemoveLast() {
    if (len > 0)
        text[--len] = L'\0';
}

template <class Char> FXConverted<Char>::~FXConverted() {
    std::free(text);
}

template class FXConverted<char>;
template class FXConverted<wchar_t>;

FXConvertW::FXConvertW(const char* s) {
    if (s != nullptr)
        text = localConverted<wchar_t>([&](wchar_t* to, std::size_t n) { return std::mbstowcs(to, s, n); });
}

FXConvertC::FXConvertC(const wchar_t* s) {
    if (s != nullptr)
        text = localConverted<char>([&](char* to, std::size_t n) { return std::wcstombs(to, s, n); });
}
