// A package in the making, in memory.
#pragma once

#include "package/package.h"

#include <string>
#include <string_view>

class MemoryPackage {
public:
    // False when the package would be beyond what its numbers can say, 2 GiB.
    bool Add(int id, int type, std::string_view bytes);
    // The entries so far, to be read; valid until the next Add.
    FXPackage* Package();
    // False with "FILE: why" in error; what stood there is then as it was.
    bool Save(const std::string& file, bool scramble, std::string* error);

private:
    std::string data_;
    FXPackage package_;
};
