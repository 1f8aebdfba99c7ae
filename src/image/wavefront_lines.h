// The lines of Wavefront files (OBJ, MTL): a keyword and its words.
#pragma once

#include <functional>
#include <string>
#include <vector>

struct FXWavefrontLine {
    int number = 0;
    std::string keyword;            // "v", "usemtl"; empty for a blank line or a comment
    std::string rest;               // what follows, trimmed
    std::vector<std::string> words; // the same, word by word
};

// Calls `take` with every line of the text.
void fxForEachLine(const std::string& text, const std::function<void(const FXWavefrontLine&)>& take);
// Whether the word is a number that a float can hold, and no more.
bool fxIsNumber(const std::string& word, double* value = nullptr);
// Whether the first `count` words are numbers, which are given in `numbers`.
bool fxHasNumbers(const FXWavefrontLine& line, std::size_t count, double* numbers = nullptr);
// The number of the first line that holds a zero byte, which no text does, and what is said of it; 0: none.
int fxLineOfZero(const std::string& text);
inline constexpr char kFXZeroInText[] = "there is a zero byte, so this is no text";
// Without blanks and line ends at its ends.
std::string fxTrimmed(const std::string& text);
