// What the command line of tamb-pack asks for.
#pragma once

#include <string>
#include <vector>

struct PackEntry {
    int id = -1; // -1: the next free one, and the file's name is remembered
    std::string file;
};

struct PackOptions {
    enum class Command { Help, Build, List, Extract };

    Command command = Command::Help;
    std::string package;
    bool scramble = false;
    std::string nameHeader;         // a C header of the remembered names; empty: none
    std::vector<PackEntry> entries; // Build: all of them; Extract: one
};

extern const char* const kPackHelp;

// False with a line in `error` that says what is wrong.
bool ParsePackOptions(const std::vector<std::string>& arguments, PackOptions* options, std::string* error);
