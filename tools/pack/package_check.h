// Whether a file is put together as a package: header, tables, places.
#pragma once

#include "pack/faults.h"
#include "package/package.h"

#include <string>
#include <vector>

// What a package's faults need: the file, and whether places count in the body after unscrambling.
struct PackageFacts {
    bool isScrambled = false;
    int entries = 0;
    std::vector<int> misplaced; // numbers of entries that do not lie in the data block
};

// Places are bytes of the file, or of the unscrambled body. False when it cannot be read any further.
bool CheckPackage(const std::string& file, Faults* faults, PackageFacts* facts);

// False with "FILE: is not a package, ..." in error.
bool LoadPackage(const std::string& file, FXPackage* package, std::string* error);

// Whether its entries share so many bytes that looking into each would cost out of all proportion to the
// file.
bool OverlapsTooMuch(const FXPackage& package);
// Whether the file's header says that its body is scrambled.
bool IsScrambled(const std::string& file);
