#include "pack/record_reader.h"

#include "pack/text.h"

#include <cmath>
#include <cstring>
#include <functional>

namespace {

std::string localFloatsBefore(const unsigned char* end, int count) {
    std::string text;
    for (int i = count; i > 0; --i) {
        float value = 0;
        std::memcpy(&value, end - sizeof value * static_cast<std::size_t>(i), sizeof value);
        text += " " + NumberText(value);
    }
    return text;
}

} // namespace

void RecordReader::Tell(int size, const std::string& what) {
    if (faults_->onField && size > 0)
        faults_->onField({Offset() - size, data_.cur - size, size, what});
}

bool RecordReader::Inside(const FXPackageData& part, int offset,
                          const std::function<bool(RecordReader*)>& read) {
    Faults inside;
    inside.onField = faults_->onField;
    RecordReader reader(part, &inside, offset);
    const bool good = read(&reader);
    faults_->all.insert(faults_->all.end(), inside.all.begin(), inside.all.end());
    return good;
}

bool RecordReader::Fail(int offset, const std::string& text) {
    faults_->Add(offset, text);
    return false;
}

bool RecordReader::Need(const std::string& what, int size) {
    return data_.left >= size ||
           Fail(Offset(), Text("%s takes %d bytes, but only %d are left", what.c_str(), size, data_.left));
}

bool RecordReader::Int(const std::string& what, int* value) {
    if (!Need(what, 4))
        return false;
    *value = data_.ReadInt();
    Tell(4, what + ": " + std::to_string(*value));
    return true;
}

template <class T> bool RecordReader::Finite(const std::string& what, T (FXPackageData::*read)(), T* value) {
    const int at = Offset();
    if (!Need(what, sizeof *value))
        return false;
    *value = (data_.*read)();
    Tell(sizeof *value, what + ": " + NumberText(*value));
    return std::isfinite(*value) || Fail(at, what + " is no finite number");
}

bool RecordReader::Float(const std::string& what, float* value) {
    return Finite(what, &FXPackageData::ReadFloat, value);
}

bool RecordReader::Double(const std::string& what, double* value) {
    return Finite(what, &FXPackageData::ReadDouble, value);
}

bool RecordReader::Flag(const std::string& what) {
    const int at = Offset();
    if (!Need(what, 1))
        return false;
    const unsigned char byte = *data_.cur;
    data_.ReadBool();
    Tell(1, what + (byte == 1 ? ": true" : ": false"));
    if (byte > 1)
        Warn(at, Text("%s is %d, neither 0 nor 1: the show takes it for false", what.c_str(), byte));
    return true;
}

bool RecordReader::Bytes(const std::string& what, int size, FXPackageData* block) {
    if (!Need(what, size))
        return false;
    block->InitData(data_.ReadBlc(size), size);
    return true;
}

bool RecordReader::String(const std::string& what, std::string* value) {
    const int at = Offset();
    int length = 0;
    if (!Int("the length of " + what, &length))
        return false;
    if (length < 0 || length > FXStr::kCapacity)
        return Fail(at, Text("the length of %s is %d, but a text has 0 to %d bytes", what.c_str(), length,
                             FXStr::kCapacity));
    FXPackageData block;
    if (!Bytes(what, length, &block))
        return false;
    value->assign(reinterpret_cast<const char*>(block.start), static_cast<std::size_t>(length));
    Tell(length, what + ": " + *value);
    if (const std::size_t zero = value->find('\0'); zero != std::string::npos) {
        Warn(at + 4, what + " has a zero byte in it: the show reads it up to there");
        value->resize(zero);
    }
    return true;
}

bool RecordReader::Count(const std::string& what, int elementSize, int* count) {
    const int at = Offset();
    if (!Int("the number of " + what, count))
        return false;
    if (*count < 0 || *count > data_.left / elementSize)
        return Fail(at, Text("the number of %s is %d, but the %d bytes left hold 0 to %d", what.c_str(),
                             *count, data_.left, data_.left / elementSize));
    return true;
}

bool RecordReader::Ints(const std::string& what, const std::string& which, std::vector<int>* values) {
    int count = 0;
    if (!Count(what + "s of " + which, 4, &count))
        return false;
    values->clear();
    for (int i = 0; i < count; ++i) {
        values->push_back(data_.ReadInt());
        Tell(4, what + Text(" %d: %d", i, values->back()));
    }
    return true;
}

bool RecordReader::FiniteFloats(const std::string& what, int count) {
    for (int i = 0; i < count; ++i) {
        const int at = Offset();
        if (!std::isfinite(data_.ReadFloat()))
            return Fail(at, Text("number %d of %s is no finite number", i, what.c_str()));
    }
    return true;
}

bool RecordReader::Floats(const std::string& what, int count) {
    if (!Need(what, 4 * count) || !FiniteFloats(what, count))
        return false;
    if (faults_->onField)
        Tell(4 * count, what + ":" + localFloatsBefore(data_.cur, count));
    return true;
}

bool RecordReader::Vectors(const std::string& what, int floatsEach, const std::string& which, int* count) {
    const int at = Offset();
    int floats = 0;
    if (!Count("numbers in the " + what + "s of " + which, 4, &floats))
        return false;
    *count = floats / floatsEach;
    for (int i = 0; i < *count; ++i)
        if (!Floats(what + " " + std::to_string(i), floatsEach))
            return false;
    if (const int rest = floats % floatsEach; rest != 0) {
        Warn(at, Text("the %ss of %s are %d numbers, no multiple of %d: the show does without the last %d",
                      what.c_str(), which.c_str(), floats, floatsEach, rest));
        Skip(4 * rest);
        Tell(4 * rest, "not used");
    }
    return true;
}

void RecordReader::End() {
    if (data_.left == 0)
        return;
    Warn(Offset(), Counted(data_.left, "byte is", "bytes are") +
                       " left over at the end: the show does not read that far");
    const int rest = data_.left;
    Skip(rest);
    Tell(rest, "not used");
}
