// Text on the heap, for what an FXStr is too short for, and the way between narrow and wide text.
#pragma once

#include <cstddef>

// Owns its text, whose block is kept for the next one and grows only when a text does not fit. A null text
// counts as empty; without memory a text stays as it was.
template <class Char> class FXLongText {
public:
    FXLongText() = default;
    ~FXLongText() { ClearBuf(); }
    FXLongText(const FXLongText&) = delete;
    FXLongText& operator=(const FXLongText&) = delete;

    void Set(const Char* s); // may be part of this text
    void Append(const Char* s);
    void TrimSpaces(); // white space at both ends
    void ToLower();
    // Case-sensitive. A null or empty s equals the empty text only.
    bool Compare(const Char* s) const;
    // Ignoring case. A null s equals the empty text; an empty s equals nothing.
    bool iCompare(const Char* s) const;
    void Clear();    // the block stays
    void ClearBuf(); // frees it
    bool IsEmpty() const { return len == 0; }

    Char* text = nullptr; // null until there was a text, else terminated
    int len = 0;
    int capacity = 0; // characters in front of the terminator that the block holds

protected:
    void Put(int at, const Char* s, std::size_t n);
};

using FXLongStr = FXLongText<char>;

class FXLongStrW : public FXLongText<wchar_t> {
public:
    void AppendChar(wchar_t c); // a zero character changes nothing
    void RemoveLast();
};

// Text converted by the C library's multibyte conversion. `text` is null for an empty or null text, one that
// the locale cannot convert, and without memory.
template <class Char> class FXConverted {
public:
    ~FXConverted();
    FXConverted(const FXConverted&) = delete;
    FXConverted& operator=(const FXConverted&) = delete;

    Char* text = nullptr;

protected:
    FXConverted() = default;
};

// Narrow text made wide.
struct FXConvertW : FXConverted<wchar_t> {
    explicit FXConvertW(const char* s);
};

// Wide text made narrow.
struct FXConvertC : FXConverted<char> {
    explicit FXConvertC(const wchar_t* s);
};
