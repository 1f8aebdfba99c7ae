#include "pack/wavefront_lines.h"

#include "pack/text.h"

#include <cmath>
#include <cstdlib>
#include <sstream>

namespace {

bool IsNumber(const std::string& word) {
    char* end = nullptr;
    const double value = std::strtod(word.c_str(), &end);
    return !word.empty() && *end == '\0' && std::isfinite(static_cast<float>(value));
}

} // namespace

void ForEachLine(const std::string& text, const std::function<void(const WavefrontLine&)>& take) {
    std::istringstream lines(text);
    WavefrontLine line;
    for (std::string raw; std::getline(lines, raw);) {
        ++line.number;
        std::istringstream words(raw);
        line.keyword.clear();
        line.words.clear();
        words >> line.keyword;
        if (line.keyword.starts_with('#'))
            line.keyword.clear();
        const std::size_t behind = raw.find(line.keyword) + line.keyword.size();
        line.rest = line.keyword.empty() ? "" : Trimmed(raw.substr(behind));
        for (std::string word; !line.keyword.empty() && words >> word;)
            line.words.push_back(word);
        take(line);
    }
}

std::string Line3(const char* keyword, const float* numbers) {
    return std::string(keyword) + " " + NumberText(numbers[0]) + " " + NumberText(numbers[1]) + " " +
           NumberText(numbers[2]) + "\n";
}

bool HasNumbers(const WavefrontLine& line, std::size_t count) {
    if (line.words.size() < count)
        return false;
    for (std::size_t i = 0; i < count; ++i)
        if (!IsNumber(line.words[i]))
            return false;
    return true;
}
