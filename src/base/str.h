// The everyday string: a fixed-capacity value with its text inline. It never allocates.
#pragma once

#include <cstdarg>
#include <cstdio>

#if defined(__MINGW32__)
#define FX_PRINTF(fmtAt, firstAt) __attribute__((format(__MINGW_PRINTF_FORMAT, fmtAt, firstAt)))
#elif defined(__GNUC__)
#define FX_PRINTF(fmtAt, firstAt) __attribute__((format(printf, fmtAt, firstAt)))
#else
#define FX_PRINTF(fmtAt, firstAt)
#endif

// Holds at most 1023 characters; every operation cuts there instead of failing. A null text counts as empty.
class FXStr {
public:
    static constexpr int kCapacity = 1023;

    FXStr() = default;
    explicit FXStr(const char* s) { Set(s); }

    void Clear();
    void Set(const char* s);
    void Append(const char* s);
    void AppendChar(char c); // a zero character changes nothing
    void InsertChar(char c); // in front; nothing when full
    void RemoveLast();
    void Format(const char* fmt, ...) FX_PRINTF(2, 3);
    void FormatV(const char* fmt, va_list arguments) FX_PRINTF(2, 0);
    void TrimSpaces(); // white space at both ends
    void ToLower();
    void ToUpper();
    void ExchangeChars(char a, char b); // every a becomes b
    bool IsEmpty() const { return len == 0; }

    // Case-sensitive. A null or empty s equals the empty string only.
    bool Compare(const char* s) const;
    bool nCompare(const char* s, int n) const; // the first n characters
    // Ignoring case. A null s equals the empty string; an empty s equals nothing.
    bool iCompare(const char* s) const;

    // File record: int32 length, then the bytes without terminator.
    bool Save(std::FILE* file) const;
    // False when the file ends first. A length beyond the capacity keeps the first 1023 characters and skips
    // the rest.
    bool Load(std::FILE* file);
    // The record of this path made relative to the folder `base`.
    bool SaveShortPath(std::FILE* file, const char* base) const;

    char text[kCapacity + 1] = {};
    int len = 0;
};
