// A growable list of owned strings.
#pragma once

#include "base/arrays.h"

#include <cstdio>

// Every string pushed is copied into a block of its own; an empty or null one is stored as a null entry.
class FXStrArray : private FXArray<char*> {
public:
    explicit FXStrArray(int step = 1) : FXArray(step) {}
    ~FXStrArray() { DestroyBuf(); }

    using FXArray::capacity;
    using FXArray::count;
    using FXArray::First; // null, too, where the entry is an empty string
    using FXArray::growBy;
    using FXArray::IsEmpty;
    using FXArray::items; // an empty string is a null pointer
    using FXArray::Last;
    using FXArray::MovePos;
    using FXArray::Realloc;

    void Push(const char* s); // without memory for it, adds nothing
    void PushVoid() { Push(nullptr); }
    void Pop();
    void Change(int i, const char* s);                    // out of range, or without memory: nothing
    void Insert(int i, const char* s);                    // outside 0..count appends
    void Remove(const char* s) { RemovePos(Findpos(s)); } // the first that equals s
    void RemovePos(int i);
    void RemoveAll();
    void DestroyBuf();
    int Findpos(const char* s) const; // case-sensitive; -1 when absent
    // The text of entry i (0..count-1), "" for a null entry.
    const char* Get(int i) const { return items[i] ? items[i] : ""; }

    // File record: int32 count, then per entry an int32 length and the bytes without terminator.
    bool Save(std::FILE* file) const;
    bool Load(std::FILE* file); // replaces the contents; false, with what was there, when the file ends first
    // The record with each path made relative to the folder `base`.
    bool SaveShortPaths(std::FILE* file, const char* base) const;
};
