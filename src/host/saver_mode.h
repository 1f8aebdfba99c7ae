// What the command line asks for.
#pragma once

#include <cstdint>
#include <string_view>

enum class SaverMode { Configure, Saver, Preview, ChangePassword };

struct SaverCommand {
    SaverMode mode = SaverMode::Configure;
    bool hasWindow = false;   // a number was read
    std::uint32_t window = 0; // Preview and ChangePassword only: the parent window's, wrapped to 32 bits
};

// `text` is what follows the program's name. The first of the letters s, p, c, a (either case) decides,
// whatever stands before it; with none of them it is Configure. The number may follow the letter at once, or
// after blanks and tabs.
SaverCommand ParseSaverCommandLine(std::string_view text);
