// How records are written down: each once, beside its class, as a function Fields(record, visitor) that names
// the fields in their order. These visitors read a record from an entry, write it to a file, and tell its
// size; tamb-pack's own says what is wrong with one (pack/record_reader.h).
//
// Every operation takes the field's name in tamb-pack's words, and gives false when the visit ends there.
// Names of what there may be several of are open: "the name of", to which a visitor may add "material 3".
#pragma once

#include "base/arrays.h"
#include "base/file_handle.h"
#include "base/str.h"
#include "base/str_array.h"
#include "package/file_block.h"
#include "package/package_data.h"

#include <cstdint>
#include <cstring>

// An array where it lies, aligned or not. A count of -1: what was stored does not fit into the bytes there
// were.
template <class T> struct FXStored {
    const void* bytes = nullptr;
    int count = 0;
};

// What all visitors have.
class FXRecordVisitor {
public:
    // A part of a record that belongs together, and has been visited: who checks it may end the visit.
    template <class Record> bool Checked(const Record&) { return true; }
    // Visits things 0 to count - 1.
    template <class Visit> bool Each(int count, Visit visit) {
        for (int i = 0; i < count; ++i)
            if (!visit(i))
                return false;
        return true;
    }
};

// Reads as FXPackageData does: what is missing is 0 or empty. Ends no visit.
class FXRecordReader : public FXRecordVisitor {
public:
    explicit FXRecordReader(FXPackageData* data) : data_(*data) {}

    bool Int(const char*, int& value) { return value = data_.ReadInt(), true; }
    bool Float(const char*, float& value) { return value = data_.ReadFloat(), true; }
    bool Double(const char*, double& value) { return value = data_.ReadDouble(), true; }
    bool Flag(const char*, bool& value) { return value = data_.ReadBool(), true; }
    bool String(const char*, FXStr& text) { return data_.ReadString(&text), true; }
    // All of them, or they stay as they are.
    bool Floats(const char*, float* values, int count) {
        return data_.ReadCopyBlc(values, count * static_cast<int>(sizeof *values)), true;
    }
    bool Ints(const char*, const char*, FXArray<int>& list) { return data_.ReadArray(&list), true; }
    bool Strings(const char*, const char*, FXStrArray& list) { return data_.ReadStringArray(&list), true; }
    // How many such records follow.
    template <class Record> bool Count(const char*, int& count) { return count = data_.ReadCount(), true; }
    template <class T> bool Elements(const char*, const char*, FXStored<T>& array) {
        constexpr int kElement = sizeof(T);
        array.count = data_.ReadInt();
        const bool fits = array.count >= 0 && array.count <= data_.left / kElement;
        array.bytes = fits ? data_.ReadBlc(array.count * kElement) : nullptr;
        array.count = fits ? array.count : -1;
        return true;
    }
    // The floats of `count` vectors; none when they do not fit, or there is no memory for them.
    bool Vectors(const char* one, int width, FXFloatArray& floats, int& count) {
        FXStored<float> array;
        Elements(one, one, array);
        floats.DestroyBuf();
        count = 0;
        if (array.count > 0 && floats.Realloc(array.count)) {
            std::memcpy(floats.items, array.bytes, static_cast<std::size_t>(array.count) * sizeof(float));
            floats.count = array.count;
            count = array.count / width;
        }
        return true;
    }

private:
    FXPackageData& data_;
};

// Ends the visit when not all of a field was written.
class FXRecordWriter : public FXRecordVisitor {
public:
    explicit FXRecordWriter(std::FILE* file) : file_(file) {}

    bool Int(const char*, std::int32_t value) { return Write(&value, sizeof value, 1); }
    bool Float(const char*, float value) { return Write(&value, sizeof value, 1); }
    bool Double(const char*, double value) { return Write(&value, sizeof value, 1); }
    bool Flag(const char*, bool value) {
        const unsigned char byte = value ? 1 : 0;
        return Write(&byte, sizeof byte, 1);
    }
    bool String(const char*, const FXStr& text) { return text.Save(file_); }
    bool Floats(const char*, const float* values, int count) { return Write(values, sizeof *values, count); }
    bool Ints(const char*, const char*, const FXArray<int>& list) { return list.Save(file_); }
    bool Strings(const char*, const char*, const FXStrArray& list) { return list.Save(file_); }
    template <class Record> bool Count(const char* many, int count) { return Int(many, count); }
    template <class T> bool Elements(const char*, const char* many, const FXStored<T>& array) {
        return Int(many, array.count) && Write(array.bytes, sizeof(T), array.count);
    }
    bool Vectors(const char* one, int width, const FXFloatArray& floats, int count) {
        return Elements(one, one, FXStored<float>{floats.items, count * width});
    }

private:
    bool Write(const void* elements, std::size_t size, int count) {
        return fxWrite(elements, size, static_cast<std::size_t>(count), file_);
    }

    std::FILE* file_;
};

// Adds up what a record takes whose texts and arrays are empty.
class FXRecordSize : public FXRecordVisitor {
public:
    template <class T> bool Int(const char*, const T&) { return Add(4); }
    bool Float(const char*, float) { return Add(4); }
    bool Double(const char*, double) { return Add(8); }
    bool Flag(const char*, bool) { return Add(1); }
    bool String(const char*, const FXStr&) { return Add(4); }
    bool Floats(const char*, const float*, int count) { return Add(4 * count); }
    template <class T> bool Elements(const char*, const char*, const FXStored<T>&) { return Add(4); }

    int bytes = 0;

private:
    bool Add(int n) { return bytes += n, true; }
};

// The bytes of the smallest such record.
template <class Record> int fxLeastSize() {
    const Record record;
    FXRecordSize size;
    Record::Fields(record, size);
    return size.bytes;
}

// The next record of an entry.
template <class Record> void fxLoadRecord(Record& record, FXPackageData* data) {
    FXRecordReader reader(data);
    Record::Fields(record, reader);
}
// The record at which the file stands, which then stands behind it; false, with nothing changed, when it ends
// first.
template <class Record> bool fxLoadRecord(Record& record, std::FILE* file) {
    FXFileRest rest(file);
    if (rest.data.left < fxLeastSize<Record>())
        return false;
    fxLoadRecord(record, &rest.data);
    return true;
}
template <class Record> bool fxSaveRecord(const Record& record, std::FILE* file) {
    FXRecordWriter writer(file);
    return Record::Fields(record, writer);
}
