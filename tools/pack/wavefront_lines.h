// The lines of Wavefront files, written, and looked at before the reader takes them: the reader passes over
// what it does not understand, and a person wants to know the line.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

struct WavefrontLine {
    int number = 0;
    std::string keyword;            // "v", "usemtl"; empty for a blank line or a comment
    std::string rest;               // what follows, trimmed
    std::vector<std::string> words; // the same, word by word
};

// Calls `take` with every line of the text.
void ForEachLine(const std::string& text, const std::function<void(const WavefrontLine&)>& take);
// The words `from` .. `from + count - 1` are finite numbers.
bool HasNumbers(const WavefrontLine& line, std::size_t count);

// "v 1 2 3" and a line feed: a position, a normal, a colour.
std::string Line3(const char* keyword, const float* numbers);
