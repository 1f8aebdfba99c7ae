// The one reader of stored bytes: a forward-only cursor that owns every bound.
#pragma once

#include "base/arrays.h"
#include "base/str.h"
#include "base/str_array.h"

// Walks a block that is owned elsewhere. A read that does not fit gives 0, 0.0, null or an empty string and
// consumes nothing; there is no error state. Little-endian; a bool is one byte, true when it is exactly 1.
//
// A counted read gives as many elements as the count says, defaults where the bytes have run out, whatever is
// left: up to kSureCount. Beyond that it gives no more elements than the bytes left hold, at 4 bytes each at
// the least, so that a malformed count costs little memory. A negative count gives none. Without memory for
// all elements an array stays empty, but for one of strings, which ends with the last that found memory.
class FXPackageData {
public:
    static constexpr int kSureCount = 65536;

    // n < 0 counts as 0. A block that is not const can also be written.
    void InitData(const void* p, int n);
    void InitData(void* p, int n);
    void Reseek(); // back to the start

    bool ReadBool();
    int ReadInt();
    float ReadFloat();
    double ReadDouble();
    int ReadCount();             // of elements that follow, within those bounds
    void ReadFloat4(float* dst); // leaves dst as it is when 16 bytes are not left
    // The next n bytes in place, null when they are not left or n is negative.
    const void* ReadBlc(int n);
    const void* ReadCopyBlc(void* dst, int n);
    // A stored length beyond the bytes left takes what is left; beyond 1023 characters, the rest is skipped.
    void ReadString(FXStr* s);
    void ReadStringArray(FXStrArray* a);
    void ReadArray(FXArray<int>* a);
    void ReadFloatArray(FXFloatArray* a);

    // For building a block in memory; nothing when 4 bytes are not left, or the block is const.
    void WriteInt(int v);
    void WriteArray(const FXArray<int>* a);

    const unsigned char* start = nullptr;
    int size = 0;
    const unsigned char* cur = nullptr;
    int left = 0;

private:
    template <class T> T ReadValue();

    unsigned char* writable_ = nullptr; // the block's start; null: it is only read
};
