// The lines of Wavefront files, looked at before the reader takes them: it passes over what it does not
// understand, and a person wants to know the line.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

struct FXWavefrontLine {
    int number = 0;
    std::string keyword;            // "v", "usemtl"; empty for a blank line or a comment
    std::string rest;               // what follows, trimmed
    std::vector<std::string> words; // the same, word by word
};

// Calls `take` with every line of the text.
void fxForEachLine(const std::string& text, const std::function<void(const FXWavefrontLine&)>& take);
// The words `from` .. `from + count - 1` are finite numbers.
bool fxHasNumbers(const FXWavefrontLine& line, std::size_t count);
// Without blanks and line ends at its ends.
std::string fxTrimmed(const std::string& text);
