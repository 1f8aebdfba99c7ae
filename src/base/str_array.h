// A growable list of owned strings.
#pragma once

#include "base/arrays.h"

// Every string pushed is copied into a block of its own; an empty or null one is stored as a null entry.
class FXStrArray {
public:
    explicit FXStrArray(int step = 1) : strings_(step) {}
    ~FXStrArray() { DestroyBuf(); }
    FXStrArray(const FXStrArray&) = delete;
    FXStrArray& operator=(const FXStrArray&) = delete;

    bool Realloc(int n) { return strings_.Realloc(n); }
    void Push(const char* s); // without memory for it, adds nothing
    void Pop();
    void Change(int i, const char* s); // nothing when i is out of range
    void Insert(int i, const char* s); // outside 0..Count() appends
    void RemovePos(int i);
    void RemoveAll();
    void DestroyBuf();
    int Findpos(const char* s) const; // case-sensitive; -1 when absent
    bool IsEmpty() const { return strings_.IsEmpty(); }
    int Count() const { return strings_.count; }
    int Capacity() const { return strings_.capacity; }
    // The text of entry i, "" for a null entry.
    const char* Get(int i) const { return strings_[i] ? strings_[i] : ""; }
    bool IsNull(int i) const { return strings_[i] == nullptr; }

    // File record: int32 count, then per entry an int32 length and the bytes without terminator.
    bool Save(std::FILE* file) const;
    bool Load(std::FILE* file); // replaces the contents; false, with what was there, when the file ends first
    // The record with each path made relative to the folder `base`.
    bool SaveShortPaths(std::FILE* file, const char* base) const;

private:
    FXArray<char*> strings_;
};
