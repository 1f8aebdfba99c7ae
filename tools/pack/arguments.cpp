#include "pack/arguments.h"

#include <algorithm>

bool ParseArguments(std::span<const std::string> line, std::span<const OptionRule> rules,
                    Arguments* arguments, std::string* error) {
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (!line[i].starts_with("--")) {
            arguments->words.push_back(line[i]);
            continue;
        }
        const auto rule = std::ranges::find_if(rules, [&](const OptionRule& r) { return line[i] == r.name; });
        if (rule == rules.end()) {
            *error = "unknown option '" + line[i] + "'";
            return false;
        }
        if (rule->takes != nullptr && i + 1 == line.size()) {
            *error = line[i] + " takes " + rule->takes;
            return false;
        }
        arguments->options[rule->name] = rule->takes != nullptr ? line[++i] : "";
    }
    return true;
}
