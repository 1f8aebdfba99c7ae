// A byte stream of packed numbers: which position, normal and texture coordinate make up each corner of a
// mesh.
#pragma once

#include <cstdio>

class FXPackage;
class FXPackageData;

class FXNumPool {
public:
    static constexpr int kSaveStep = 800000; // for pools that are written: one block holds a whole mesh

    FXNumPool() : FXNumPool(1) {}
    explicit FXNumPool(int step) : growStep(step > 0 ? step : 1) {}
    ~FXNumPool() { DestroyBuf(); }
    FXNumPool(const FXNumPool&) = delete;
    FXNumPool& operator=(const FXNumPool&) = delete;

    // Room for n bytes at least, in whole steps; false when there is no memory, and a push then adds nothing.
    bool Realloc(int n);
    void PushByte(unsigned char value);
    void PushWord(unsigned short value);
    void PushInt(int value);
    void Reseek(); // reading starts over
    // The next number; false, with nothing read, when the written bytes end first.
    bool GetNextByte(unsigned char* value);
    bool GetNextWord(unsigned short* value);
    bool GetNextInt(int* value);
    // The record, of the stored bytes.
    template <class Stored, class V> static bool Fields(Stored& bytes, V& v) {
        return v.Elements("byte", "bytes in the pool of", bytes);
    }
    bool Save(std::FILE* file) const;
    // A size beyond the bytes there are leaves the pool empty.
    void LoadC(FXPackage* pck, FXPackageData* d);
    void Load(std::FILE* file);
    void DestroyBuf();

    unsigned char* buffer = nullptr;
    int readPos = 0;
    int size = 0;
    int capacity = 0;
    int growStep;

private:
    void PushBytes(const void* bytes, int n);
    bool GetBytes(void* bytes, int n);
};
