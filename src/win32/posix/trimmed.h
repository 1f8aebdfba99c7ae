// For lines of text files.
#pragma once

#include <string_view>

inline constexpr std::string_view kBlanks = " \t\r";

// Without the blanks before and behind it.
inline std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}
