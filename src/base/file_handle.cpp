#include "base/file_handle.h"

#include <climits>

int fxBytesLeft(std::FILE* file) {
    const long at = std::ftell(file);
    if (at < 0 || std::fseek(file, 0, SEEK_END) != 0)
        return -1;
    const long end = std::ftell(file);
    if (end < at || end - at > INT_MAX || std::fseek(file, at, SEEK_SET) != 0)
        return -1;
    return static_cast<int>(end - at);
}

FXBytes fxReadRest(std::FILE* file, int* size) {
    *size = 0;
    const int left = fxBytesLeft(file);
    if (left < 0)
        return nullptr;
    const auto bytes = static_cast<std::size_t>(left);
    FXBytes rest = fxNewBytes(bytes);
    if (!rest || std::fread(rest.get(), 1, bytes, file) != bytes)
        return nullptr;
    *size = left;
    return rest;
}
