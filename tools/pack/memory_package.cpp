#include "pack/memory_package.h"

#include <cerrno>
#include <climits>
#include <cstring>

bool MemoryPackage::Add(int id, int type, std::string_view bytes) {
    constexpr std::size_t kTables = 16 + 16;
    const auto rows = static_cast<std::size_t>(package_.ids.count);
    if (data_.size() + bytes.size() + kTables + 16 * rows > INT_MAX)
        return false;
    package_.ids.Push(id);
    package_.types.Push(type);
    package_.offsets.Push(static_cast<int>(data_.size()));
    package_.sizes.Push(static_cast<int>(bytes.size()));
    data_ += bytes;
    return true;
}

FXPackage* MemoryPackage::Package() {
    package_.dataBlock = reinterpret_cast<unsigned char*>(data_.data());
    package_.dataSize = static_cast<int>(data_.size());
    for (FXPackageData* cursor : package_.cursors)
        delete cursor;
    package_.cursors.RemoveAll();
    for (int i = 0; i < package_.ids.count; ++i) {
        package_.cursors.Push(new FXPackageData);
        package_.cursors[i]->InitData(package_.dataBlock + package_.offsets[i], package_.sizes[i]);
    }
    return &package_;
}

bool MemoryPackage::Save(const std::string& file, bool scramble, std::string* error) {
    errno = 0;
    if (Package()->Save(file.c_str(), scramble ? FXPackage::kScrambled : 0))
        return true;
    *error =
        file + ": cannot be written: " + (errno != 0 ? std::strerror(errno) : "there is no memory for it");
    return false;
}
