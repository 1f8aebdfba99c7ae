// A whole file in memory, to be read with the cursor that entries of a package are read with.
#pragma once

#include "base/memory.h"
#include "package/package_data.h"

#include <cstdio>

struct FXFileBlock {
    // False, with no data, when the file cannot be read, is beyond 2 GiB, or there is no memory for it.
    bool Load(const char* path);

    FXPackageData data;

private:
    FXBytes bytes_;
};

// The rest of an open file, for the records in the middle of one. The destructor moves the file's position
// behind what was read. A file that cannot be read has no data.
class FXFileRest {
public:
    explicit FXFileRest(std::FILE* file);
    ~FXFileRest();
    FXFileRest(const FXFileRest&) = delete;
    FXFileRest& operator=(const FXFileRest&) = delete;

    FXPackageData data;

private:
    std::FILE* file_;
    long at_; // where the data begins
    FXBytes bytes_;
};
