// The commands of tamb-pack, each with what it does; main only chooses.
#pragma once

#include "pack/text.h"

#include <cstddef>
#include <cstdio>
#include <map>
#include <span>
#include <string>
#include <vector>

struct OptionRule {
    const char* name;  // "--names"
    const char* takes; // what follows it, "a file"; null: nothing
};

// The words behind a command: those that stand alone, and options.
struct Arguments {
    std::vector<std::string> words;
    std::map<std::string, std::string> options; // by name, with what followed

    bool Has(const char* name) const { return options.count(name) != 0; }
    std::string Value(const char* name) const { return Has(name) ? options.at(name) : std::string(); }
};

struct Command {
    const char* name;
    const char* summary; // a line
    const char* help;    // all there is to know, from "usage:" on
    std::span<const OptionRule> options;
    std::size_t leastWords;
    std::size_t mostWords;
    int (*run)(const Arguments& arguments); // the exit status
};

extern const Command kListCommand;
extern const Command kVerifyCommand;
extern const Command kExtractCommand;
extern const Command kBuildCommand;
extern const Command kNamesCommand;
extern const Command kDumpCommand;

inline constexpr int kExitGood = 0;
inline constexpr int kExitFault = 1;
inline constexpr int kExitUsage = 2;

inline int Fail(const std::string& message) {
    std::fprintf(stderr, "tamb-pack: %s\n", Printable(message).c_str());
    return kExitFault;
}
// What cannot go on, for it was not understood.
inline int FailUsage(const std::string& message, const char* command) {
    std::fprintf(stderr, "tamb-pack: %s (see tamb-pack %s --help)\n", message.c_str(), command);
    return kExitUsage;
}
