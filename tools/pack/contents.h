// The bytes of every planned entry, as a package.
#pragma once

#include "pack/plan.h"
#include "package/package.h"

#include <string>
#include <string_view>

// A package in the making, in memory.
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

// The picture codec is loaded when a model's material has a picture: its size is part of the model. False
// with a line in error that says where.
bool MakeContents(const Manifest& manifest, const Plan& plan, bool showProgress, MemoryPackage* package,
                  std::string* error);
