#include "image/wavefront_lines.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sstream>

std::string fxTrimmed(const std::string& text) {
    const char* const kBlank = " \t\r\n";
    const std::size_t from = text.find_first_not_of(kBlank);
    return from == std::string::npos ? "" : text.substr(from, text.find_last_not_of(kBlank) + 1 - from);
}

void fxForEachLine(const std::string& text, const std::function<void(const FXWavefrontLine&)>& take) {
    std::istringstream lines(text);
    FXWavefrontLine line;
    for (std::string raw; std::getline(lines, raw);) {
        ++line.number;
        std::istringstream words(raw);
        line.keyword.clear();
        line.words.clear();
        words >> line.keyword;
        if (line.keyword.starts_with('#'))
            line.keyword.clear();
        const std::size_t behind = raw.find(line.keyword) + line.keyword.size();
        line.rest = line.keyword.empty() ? "" : fxTrimmed(raw.substr(behind));
        for (std::string word; !line.keyword.empty() && words >> word;)
            line.words.push_back(word);
        take(line);
    }
}

int fxLineOfZero(const std::string& text) {
    const auto zero = std::ranges::find(text, '\0');
    return zero == text.end() ? 0 : static_cast<int>(std::count(text.begin(), zero, '\n')) + 1;
}

bool fxIsNumber(const std::string& word, double* value) {
    char* end = nullptr;
    const double number = std::strtod(word.c_str(), &end);
    if (value != nullptr)
        *value = number;
    return !word.empty() && *end == '\0' && std::isfinite(static_cast<float>(number));
}

bool fxHasNumbers(const FXWavefrontLine& line, std::size_t count, double* numbers) {
    if (line.words.size() < count)
        return false;
    for (std::size_t i = 0; i < count; ++i)
        if (!fxIsNumber(line.words[i], numbers != nullptr ? &numbers[i] : nullptr))
            return false;
    return true;
}
