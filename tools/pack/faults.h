// What is wrong with some bytes, and where; or a warning: what is odd, and what the show makes of it.
#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

struct Fault {
    int offset; // of the byte; -1: of no one byte
    std::string text;
    bool isWarning;
};

// Some bytes that were read, and what they are.
struct Field {
    int offset;
    const unsigned char* bytes;
    int size;
    std::string what;
};

class Faults {
public:
    void Add(int offset, const std::string& text) { all.push_back({offset, text, false}); }
    void Warn(const std::string& text) { Warn(-1, text); }
    void Warn(int offset, const std::string& text) { all.push_back({offset, text, true}); }
    // Warnings do not count.
    bool Good() const {
        return std::ranges::all_of(all, [](const Fault& fault) { return fault.isWarning; });
    }

    std::vector<Fault> all;
    std::function<void(const Field&)> onField; // when set, told of every field on the way
};
