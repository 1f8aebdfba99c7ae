#include "geometry/num_pool.h"

#include "base/memory.h"
#include "package/record.h"

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>

bool FXNumPool::Realloc(int n) {
    if (capacity >= n)
        return true;
    const std::int64_t steps = (static_cast<std::int64_t>(n) - capacity + growStep - 1) / growStep;
    const std::int64_t wanted = capacity + steps * growStep;
    if (wanted > INT_MAX)
        return false;
    auto* block = static_cast<unsigned char*>(fxRealloc(buffer, static_cast<std::size_t>(wanted)));
    if (block == nullptr)
        return false;
    std::memset(block + capacity, 0, static_cast<std::size_t>(wanted - capacity));
    buffer = block;
    capacity = static_cast<int>(wanted);
    return true;
}

void FXNumPool::PushBytes(const void* bytes, int n) {
    if (size > INT_MAX - n || !Realloc(size + n))
        return;
    std::memcpy(buffer + size, bytes, static_cast<std::size_t>(n));
    size += n;
}

void FXNumPool::PushByte(unsigned char value) {
    PushBytes(&value, sizeof value);
}
void FXNumPool::PushWord(unsigned short value) {
    PushBytes(&value, sizeof value);
}
void FXNumPool::PushInt(int value) {
    PushBytes(&value, sizeof value);
}

void FXNumPool::Reseek() {
    readPos = 0;
}

bool FXNumPool::GetBytes(void* bytes, int n) {
    if (n > size - readPos)
        return false;
    std::memcpy(bytes, buffer + readPos, static_cast<std::size_t>(n));
    readPos += n;
    return true;
}

bool FXNumPool::GetNextByte(unsigned char* value) {
    return GetBytes(value, sizeof *value);
}
bool FXNumPool::GetNextWord(unsigned short* value) {
    return GetBytes(value, sizeof *value);
}
bool FXNumPool::GetNextInt(int* value) {
    return GetBytes(value, sizeof *value);
}

bool FXNumPool::Save(std::FILE* file) const {
    const FXStored<unsigned char> stored = {buffer, size};
    FXRecordWriter writer(file);
    return Fields(stored, writer);
}

void FXNumPool::Load(std::FILE* file) {
    FXFileRest rest(file);
    LoadC(nullptr, &rest.data);
}

void FXNumPool::LoadC(FXPackage*, FXPackageData* d) {
    FXStored<unsigned char> stored;
    FXRecordReader reader(d);
    Fields(stored, reader);
    size = 0;
    if (stored.count > 0)
        PushBytes(stored.bytes, stored.count);
}

void FXNumPool::DestroyBuf() {
    std::free(buffer);
    buffer = nullptr;
    readPos = size = capacity = 0;
}
