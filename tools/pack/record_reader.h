// A strict reader of records: the show's own readers quietly give nothing for what does not add up; this one
// says where it is, and warns of what they read otherwise than it looks.
#pragma once

#include "pack/faults.h"
#include "package/package_data.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

// Every read names what it reads, for the fault that it may make, and gives false after one: reading then
// ends.
class RecordReader {
public:
    // `before`: the bytes that stand in front of these in the file whose places are told.
    RecordReader(const FXPackageData& data, Faults* faults, int before = 0)
        : data_(data), faults_(faults), before_(before) {
        data_.Reseek();
    }

    bool Int(const std::string& what, int* value);
    bool Float(const std::string& what, float* value);
    bool Double(const std::string& what, double* value);
    bool Flag(const std::string& what);
    bool Bytes(const std::string& what, int size, FXPackageData* block); // is not told of
    bool String(const std::string& what, std::string* value);
    // A count of elements of so many bytes at least, and no more of them than are left.
    bool Count(const std::string& what, int elementSize, int* count);
    // An int array, "corner"s of a mesh.
    bool Ints(const std::string& what, const std::string& which, std::vector<int>* values);
    bool Floats(const std::string& what, int count);
    // A float array of whole vectors, "position"s of a map; gives how many there are.
    bool Vectors(const std::string& what, int floatsEach, const std::string& which, int* count);
    // Of bytes that are there, and without telling of them.
    bool FiniteFloats(const std::string& what, int count);
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
    template <class T> bool Finite(const std::string& what, T (FXPackageData::*read)(), T* value);
    bool Need(const std::string& what, int size);

    FXPackageData data_;
    Faults* faults_;
    int before_;
};
