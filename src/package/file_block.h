// A whole file in memory, to be read with the cursor that entries of a package are read with.
#pragma once

#include "base/memory.h"
#include "package/package_data.h"

struct FXFileBlock {
    // False, with no data, when the file cannot be read, is beyond 2 GiB, or there is no memory for it.
    bool Load(const char* path);

    FXPackageData data;

private:
    FXBytes bytes_;
};
