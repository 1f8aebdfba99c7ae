// The words behind a command: those that stand alone, and options.
#pragma once

#include <map>
#include <span>
#include <string>
#include <vector>

struct OptionRule {
    const char* name;  // "--names"
    const char* takes; // what follows it, "a file"; null: nothing
};

struct Arguments {
    std::vector<std::string> words;
    std::map<std::string, std::string> options; // by name, with what followed

    bool Has(const char* name) const { return options.count(name) != 0; }
    std::string Value(const char* name) const { return Has(name) ? options.at(name) : std::string(); }
};

// False with a line in `error` that names the option and what it takes.
bool ParseArguments(std::span<const std::string> line, std::span<const OptionRule> rules,
                    Arguments* arguments, std::string* error);
