#include "package/file_block.h"

#include "base/file_handle.h"

#include <climits>

bool FXFileBlock::Load(const char* path) {
    data.InitData(nullptr, 0);
    const FXFile file = fxOpenFile(path, "rb");
    if (!file || std::fseek(file.get(), 0, SEEK_END) != 0)
        return false;
    const long size = std::ftell(file.get());
    if (size < 0 || size > INT_MAX || std::fseek(file.get(), 0, SEEK_SET) != 0)
        return false;
    bytes_ = fxNewBytes(static_cast<std::size_t>(size));
    if (!bytes_ || std::fread(bytes_.get(), 1, static_cast<std::size_t>(size), file.get()) !=
                       static_cast<std::size_t>(size))
        return false;
    data.InitData(bytes_.get(), static_cast<int>(size));
    return true;
}
