// A standard file stream that closes itself.
#pragma once

#include "base/memory.h"

#include <cstdio>

struct FXFileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FXFile = FXOwner<std::FILE, FXFileCloser>;

inline FXFile fxOpenFile(const char* name, const char* mode) {
    return FXFile(std::fopen(name, mode));
}

// Closes a written file. False when not all of it was written, which may become known only here.
inline bool fxCloseWritten(FXFile file) {
    const bool written = std::ferror(file.get()) == 0;
    return std::fclose(file.release()) == 0 && written;
}

// Writes n elements of that size; for n = 0 they may be null. False when not all of them were written.
inline bool fxWrite(const void* elements, std::size_t size, std::size_t n, std::FILE* file) {
    return n == 0 || std::fwrite(elements, size, n, file) == n;
}

// The bytes from here to the end of the file; -1 when that is beyond what an int holds, or is not known.
int fxBytesLeft(std::FILE* file);
// Those bytes. Null, with size 0, when there are too many, they cannot be read, or there is no memory.
FXBytes fxReadRest(std::FILE* file, int* size);
