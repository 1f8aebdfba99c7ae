// A block of bytes that grows.
#pragma once

#include "base/arrays.h"

// Owns its bytes.
class FXMemory {
public:
    // Room for n bytes at least; those there are stay, new ones are 0. False when there is no memory.
    bool Realloc(int n) {
        const bool grown = block_.Realloc(n);
        block_.count = block_.capacity; // all of it is in use
        return grown;
    }
    int GetSize() const { return block_.count; }
    // Byte i and what follows it; null outside of the block. Valid until the next Realloc.
    unsigned char* GetItemPtr(int i) { return i >= 0 && i < block_.count ? block_.items + i : nullptr; }
    void Destroy() { block_.DestroyBuf(); }

private:
    FXArray<unsigned char> block_;
};
