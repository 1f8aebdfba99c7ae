// Picture files, made byte by byte: TGA of every form.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct PictureFile {
    std::string name; // with its ending
    std::string bytes;
};

// Bytes that repeat every time and look like noise.
class Noise {
public:
    explicit Noise(std::uint32_t seed) : state_(seed) {}
    int Below(int n) {
        state_ = state_ * 1664525u + 1013904223u;
        return static_cast<int>((state_ >> 8) % static_cast<std::uint32_t>(n));
    }
    std::string Bytes(std::size_t n) {
        std::string bytes(n, '\0');
        for (char& each : bytes)
            each = static_cast<char>(Below(256));
        return bytes;
    }

private:
    std::uint32_t state_;
};

inline std::string Word(int value) {
    return {static_cast<char>(value), static_cast<char>(value >> 8)};
}
inline std::string Long(std::int64_t value) {
    return Word(static_cast<int>(value & 0xFFFF)) + Word(static_cast<int>(value >> 16 & 0xFFFF));
}

// What a TGA's header says; the rest is noise of the right length.
struct TargaForm {
    int kind, bits, colours, colourBits, flags;
    int width = 13, height = 9, firstColour = 0, words = 0;
};

inline std::string Targa(const TargaForm& form) {
    Noise noise(static_cast<std::uint32_t>(form.kind * 1000 + form.bits * 10 + form.colours));
    std::string file = {static_cast<char>(form.words), static_cast<char>(form.colours > 0 ? 1 : 0),
                        static_cast<char>(form.kind)};
    file += Word(form.firstColour) + Word(form.colours) + static_cast<char>(form.colourBits) + Word(0) +
            Word(0) + Word(form.width) + Word(form.height) + static_cast<char>(form.bits) +
            static_cast<char>(form.flags);
    file += noise.Bytes(static_cast<std::size_t>(form.words + form.colours * ((form.colourBits + 7) / 8)));
    const auto pixels = [&](int n) {
        std::string bytes;
        for (int i = 0; i < n; ++i)
            bytes += form.colours > 0 && form.bits == 8
                         ? std::string(1, static_cast<char>(form.firstColour + noise.Below(form.colours)))
                         : noise.Bytes(static_cast<std::size_t>((form.bits + 7) / 8));
        return bytes;
    };
    if (form.kind < 8)
        return file + pixels(form.width * form.height);
    for (int left = form.width * form.height; left > 0;) { // runs cross the ends of rows
        const int count = std::min(left, 1 + noise.Below(20));
        const bool repeats = noise.Below(2) != 0;
        file += static_cast<char>((repeats ? 128 : 0) | (count - 1));
        file += pixels(repeats ? 1 : count);
        left -= count;
    }
    return file;
}

inline std::vector<PictureFile> TargaFiles() {
    const std::pair<const char*, TargaForm> kForms[] = {
        {"colours-24", {2, 24, 0, 0, 0}},
        {"colours-24-top-first", {2, 24, 0, 0, 0x20}},
        {"colours-24-words", {2, 24, 0, 0, 0, 13, 9, 0, 40}},
        {"colours-32", {2, 32, 0, 0, 8}},
        {"colours-32-no-alpha-bits", {2, 32, 0, 0, 0}},
        {"colours-32-runs", {10, 32, 0, 0, 0x28}},
        {"colours-24-runs", {10, 24, 0, 0, 0}},
        {"colours-16", {2, 16, 0, 0, 0}},
        {"colours-16-alpha-bit", {2, 16, 0, 0, 1}},
        {"colours-15", {2, 15, 0, 0, 0}},
        {"colours-16-runs", {10, 16, 0, 0, 0x20}},
        {"greys", {3, 8, 0, 0, 0}},
        {"greys-runs", {11, 8, 0, 0, 0x20}},
        {"palette-24", {1, 8, 256, 24, 0}},
        {"palette-32", {1, 8, 256, 32, 0x20}},
        {"palette-24-runs", {9, 8, 256, 24, 0}},
        {"palette-24-short", {1, 8, 20, 24, 0}},
        {"palette-24-long", {1, 8, 300, 24, 0}},
        {"one-pixel", {2, 24, 0, 0, 0, 1, 1}},
        {"wide", {10, 24, 0, 0, 0, 700, 3}},
    };
    std::vector<PictureFile> files;
    for (const auto& [name, form] : kForms)
        files.push_back({std::string(name) + ".tga", Targa(form)});
    return files;
}
