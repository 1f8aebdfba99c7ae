// A strict visitor of records (package/record.h): the show's own quietly reads nothing for what does not add
// up; this one says where it is, and warns of what the show reads otherwise than it looks.
#pragma once

#include "pack/faults.h"
#include "package/package_data.h"
#include "package/record.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

// Every read names what it reads, for the fault that it may make, and gives false after one: reading then
// ends.
class RecordReader : public FXRecordVisitor {
public:
    // `before`: the bytes that stand in front of these in the file whose places are told.
    RecordReader(const FXPackageData& data, Faults* faults, int before = 0)
        : data_(data), faults_(faults), before_(before) {
        data_.Reseek();
    }

    bool Int(const char* name, int& value) { return Number(Named(name), &value); }
    bool Float(const char* name, float& value) {
        return Finite(Named(name), &FXPackageData::ReadFloat, &value);
    }
    bool Double(const char* name, double& value) {
        return Finite(Named(name), &FXPackageData::ReadDouble, &value);
    }
    bool Flag(const char* name, bool& value);
    bool String(const char* name, FXStr& text) { return Characters(Named(name), &text); }
    bool Floats(const char* name, float* values, int count) { return Vector(Named(name), values, count); }
    bool Ints(const char* one, const char* of, FXArray<int>& list);
    bool Ints(const char* one, const char* of, std::vector<int>* list);
    bool Strings(const char* one, const char* many, FXStrArray& list);
    // No more records than the bytes left hold.
    template <class Record> bool Count(const char* many, int& count) {
        return Counted(Named(many), fxLeastSize<Record>(), &count);
    }
    template <class T> bool Elements(const char* one, const char* many, FXStored<T>& array);
    // The floats are not kept.
    bool Vectors(const char* one, int width, FXFloatArray& floats, int& count);
    bool Unused(const char* what, int size);

    // What open names belong to from now on: "material 3"; "": to nothing.
    void Of(const std::string& which) { which_ = which; }
    const std::string& Which() const { return which_; }
    // Where the field last read under that name begins.
    int OffsetOf(const std::string& name) const { return at_.at(name); }
    bool Bytes(const std::string& what, int size, FXPackageData* block); // is not told of
    void Skip(int size) { data_.ReadBlc(size); }
    void End(); // warns of bytes left over

    int Offset() const { return before_ + data_.size - data_.left; }
    int Left() const { return data_.left; }
    bool Fail(int offset, const std::string& text);
    void Warn(int offset, const std::string& text) { faults_->Warn(offset, text); }
    // Reads a part of what this one reads: its faults are this one's too, as are the fields.
    bool Inside(const FXPackageData& part, int offset, const std::function<bool(RecordReader*)>& read);
    // Tells of the last `size` bytes.
    void Tell(int size, const std::string& what);

private:
    std::string Named(const std::string& name);
    bool Need(const std::string& what, int size);
    bool Number(const std::string& what, int* value);
    template <class T> bool Finite(const std::string& what, T (FXPackageData::*read)(), T* value);
    bool Characters(const std::string& what, FXStr* text);
    bool Vector(const std::string& what, float* values, int count);
    bool Counted(const std::string& many, int elementSize, int* count);

    FXPackageData data_;
    Faults* faults_;
    int before_;
    std::string which_;
    std::map<std::string, int> at_;
};

template <class T> bool RecordReader::Elements(const char* one, const char* many, FXStored<T>& array) {
    if (!Counted(Named(many), sizeof(T), &array.count))
        return false;
    array.bytes = data_.cur;
    if constexpr (std::is_same_v<T, unsigned char>) {
        Skip(array.count); // who takes them apart tells of them
        return true;
    } else if constexpr (std::is_same_v<T, int>) {
        int value = 0;
        return Each(array.count, [&](int i) { return Number(one + (" " + std::to_string(i)), &value); });
    } else {
        const std::string whole = which_;
        const bool good = Each(array.count, [&](int i) {
            Of(one + (" " + std::to_string(i)) + " of " + whole);
            T element;
            return T::Fields(element, *this);
        });
        Of(whole);
        return good;
    }
}
