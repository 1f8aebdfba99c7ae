// A growable list of objects that it owns.
#pragma once

#include "base/arrays.h"

#include <utility>

// Deletes its elements, which may be null, when they are removed and in its destructor. Where there is no
// memory, the list stays as it is.
template <class T> class FXOwnerArray : private FXArray<T*> {
    using Base = FXArray<T*>;

public:
    using Base::Base;
    ~FXOwnerArray() { DestroyBuf(); }

    using Base::begin;
    using Base::count;
    using Base::end;
    using Base::Findpos;
    using Base::First;
    using Base::IsEmpty;
    using Base::items;
    using Base::Last;
    using Base::Realloc;
    using Base::operator[];

    // A new element at the end; null when there is no memory.
    T* PushNew() {
        T* const element = fxNew<T>();
        return element != nullptr ? Push(element) : nullptr;
    }
    // Takes the element, and gives it back: null, with the element deleted, when there is no memory.
    T* Push(T* element) {
        if (Base::Push(element))
            return element;
        delete element;
        return nullptr;
    }
    // An entry without an object. False when there is no memory.
    bool PushNull() { return Base::Push(nullptr); }

    // Removes element i (0..count-1), which becomes the caller's.
    T* Release(int i) {
        T* const element = (*this)[i];
        Base::RemovePos(i);
        return element;
    }
    void RemoveAll() {
        for (T* element : *this)
            delete element;
        Base::RemoveAll();
    }
    // The elements of the other list in place of its own; that one is empty then.
    void MoveFrom(FXOwnerArray& other) {
        DestroyBuf();
        std::swap(items, other.items);
        std::swap(count, other.count);
        std::swap(this->capacity, other.capacity);
    }
    void DestroyBuf() {
        RemoveAll();
        Base::DestroyBuf();
    }
};
