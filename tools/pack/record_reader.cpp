#include "pack/record_reader.h"

#include "pack/text.h"

#include <cmath>
#include <functional>

std::string RecordReader::Named(const std::string& name) {
    at_[name] = Offset();
    return which_.empty() ? name : name + " " + which_;
}

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

bool RecordReader::Number(const std::string& what, int* value) {
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
template bool RecordReader::Finite(const std::string&, float (FXPackageData::*)(), float*);
template bool RecordReader::Finite(const std::string&, double (FXPackageData::*)(), double*);

bool RecordReader::Flag(const char* name, bool& value) {
    const std::string what = Named(name);
    const int at = Offset();
    if (!Need(what, 1))
        return false;
    const unsigned char byte = *data_.cur;
    value = data_.ReadBool();
    Tell(1, what + (value ? ": true" : ": false"));
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

bool RecordReader::Characters(const std::string& what, FXStr* text) {
    const int at = Offset();
    int length = 0;
    if (!Number("the length of " + what, &length))
        return false;
    if (length < 0 || length > FXStr::kCapacity)
        return Fail(at, Text("the length of %s is %d, but a text has 0 to %d bytes", what.c_str(), length,
                             FXStr::kCapacity));
    FXPackageData block;
    if (!Bytes(what, length, &block))
        return false;
    const std::string stored(reinterpret_cast<const char*>(block.start), static_cast<std::size_t>(length));
    Tell(length, what + ": " + stored);
    if (stored.find('\0') != std::string::npos)
        Warn(at + 4, what + " has a zero byte in it: the show reads it up to there");
    text->Set(stored.c_str());
    return true;
}

bool RecordReader::Counted(const std::string& many, int elementSize, int* count) {
    const int at = Offset();
    if (!Number("the number of " + many, count))
        return false;
    if (*count < 0 || *count > data_.left / elementSize)
        return Fail(at, Text("the number of %s is %d, but the %d bytes left hold 0 to %d", many.c_str(),
                             *count, data_.left, data_.left / elementSize));
    return true;
}

bool RecordReader::Ints(const char* one, const char* of, std::vector<int>* list) {
    at_[one] = Offset();
    int count = 0;
    if (!Counted(Text("%ss of %s", one, of), 4, &count))
        return false;
    list->resize(static_cast<std::size_t>(count));
    return Each(count,
                [&](int i) { return Number(Text("%s %d", one, i), &(*list)[static_cast<std::size_t>(i)]); });
}

bool RecordReader::Ints(const char* one, const char* of, FXArray<int>& list) {
    std::vector<int> values;
    if (!Ints(one, of, &values))
        return false;
    for (const int value : values)
        list.Push(value);
    return true;
}

bool RecordReader::Strings(const char* one, const char* many, FXStrArray& list) {
    int count = 0;
    return Counted(many, 4, &count) && Each(count, [&](int i) {
               FXStr text;
               const bool good = Characters(Text("%s %d", one, i), &text);
               if (good)
                   list.Push(text.text);
               return good;
           });
}

bool RecordReader::Vector(const std::string& what, float* values, int count) {
    if (!Need(what, 4 * count))
        return false;
    std::string text = what + ":";
    for (int i = 0; i < count; ++i) {
        const int at = Offset();
        values[i] = data_.ReadFloat();
        if (!std::isfinite(values[i]))
            return Fail(at, Text("number %d of %s is no finite number", i, what.c_str()));
        if (faults_->onField)
            text += " " + NumberText(values[i]);
    }
    Tell(4 * count, text);
    return true;
}

bool RecordReader::Vectors(const char* one, int width, FXFloatArray&, int& count) {
    const std::string many = Named(Text("%ss of", one));
    const int at = Offset();
    int floats = 0;
    if (!Counted("numbers in the " + many, 4, &floats))
        return false;
    count = floats / width;
    float vector[3];
    if (!Each(count, [&](int i) { return Vector(Text("%s %d", one, i), vector, width); }))
        return false;
    const int rest = floats % width;
    if (rest != 0)
        Warn(at, Text("the %s are %d numbers, no multiple of %d: the show does without the last %d",
                      many.c_str(), floats, width, rest));
    return Unused("not used", 4 * rest);
}

bool RecordReader::Unused(const char* what, int size) {
    Skip(size);
    Tell(size, what);
    return true;
}

void RecordReader::End() {
    if (data_.left == 0)
        return;
    Warn(Offset(), ::Counted(data_.left, "byte is", "bytes are") +
                       " left over at the end: the show does not read that far");
    Unused("not used", data_.left);
}
