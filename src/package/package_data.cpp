#include "package/package_data.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

static_assert(std::endian::native == std::endian::little, "records are read as they lie in memory");

void FXPackageData::InitData(const void* p, int n) {
    start = static_cast<const unsigned char*>(p);
    size = start != nullptr ? std::max(n, 0) : 0;
    writable_ = nullptr;
    Reseek();
}

void FXPackageData::InitData(void* p, int n) {
    InitData(static_cast<const void*>(p), n);
    writable_ = static_cast<unsigned char*>(p);
}

void FXPackageData::Reseek() {
    cur = start;
    left = size;
}

const void* FXPackageData::ReadBlc(int n) {
    if (n < 0 || n > left || cur == nullptr)
        return nullptr;
    const void* block = cur;
    cur += n;
    left -= n;
    return block;
}

const void* FXPackageData::ReadCopyBlc(void* dst, int n) {
    const void* block = ReadBlc(n);
    if (block != nullptr && n > 0)
        std::memcpy(dst, block, static_cast<std::size_t>(n));
    return block;
}

template <class T> T FXPackageData::ReadValue() {
    T value{};
    ReadCopyBlc(&value, sizeof value);
    return value;
}

bool FXPackageData::ReadBool() {
    return ReadValue<unsigned char>() == 1;
}
int FXPackageData::ReadInt() {
    return ReadValue<std::int32_t>();
}
float FXPackageData::ReadFloat() {
    return ReadValue<float>();
}
double FXPackageData::ReadDouble() {
    return ReadValue<double>();
}
void FXPackageData::ReadFloat4(float* dst) {
    ReadCopyBlc(dst, 4 * sizeof(float));
}

int FXPackageData::ReadCount() {
    const int stored = ReadInt();
    return std::clamp(stored, 0, std::max(kSureCount, left / 4));
}

void FXPackageData::ReadString(FXStr* s) {
    s->Clear();
    const int stored = ReadInt();
    const int length = std::clamp(stored, 0, left);
    s->len = std::min(length, FXStr::kCapacity);
    const void* block = ReadBlc(length);
    if (block != nullptr)
        std::memcpy(s->text, block, static_cast<std::size_t>(s->len));
    s->text[s->len] = '\0';
}

void FXPackageData::ReadStringArray(FXStrArray* a) {
    a->RemoveAll();
    const int count = ReadCount();
    if (!a->Realloc(count))
        return;
    FXStr s;
    for (int i = 0; i < count; ++i) {
        ReadString(&s);
        a->Push(s.text);
        if (a->count == i) // no memory
            return;
    }
}

void FXPackageData::ReadArray(FXArray<int>* a) {
    a->RemoveAll();
    const int count = ReadCount();
    if (!a->Realloc(count))
        return;
    for (int i = 0; i < count; ++i)
        a->Push(ReadInt());
}

void FXPackageData::ReadFloatArray(FXFloatArray* a) {
    a->RemoveAll();
    const int count = ReadCount();
    if (!a->Realloc(count))
        return;
    for (int i = 0; i < count; ++i)
        a->Push(ReadFloat());
}

void FXPackageData::WriteInt(int v) {
    const int at = size - left;
    if (writable_ != nullptr && ReadBlc(sizeof v) != nullptr)
        std::memcpy(writable_ + at, &v, sizeof v);
}

void FXPackageData::WriteArray(const FXArray<int>* a) {
    if (left < static_cast<int>(sizeof(int)))
        return;
    WriteInt(a->count);
    for (const int v : *a)
        WriteInt(v);
}
