#include "base/str_array.h"

#include "base/str.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

bool localIsEmpty(const char* s) {
    return s == nullptr || *s == '\0';
}

char* localCopy(const char* s, std::size_t length) {
    char* copy = static_cast<char*>(fxMalloc(length + 1));
    if (copy != nullptr)
        std::memcpy(copy, s, length);
    return copy;
}

} // namespace

void FXStrArray::Push(const char* s) {
    Insert(-1, s);
}

void FXStrArray::Insert(int i, const char* s) {
    char* copy = localIsEmpty(s) ? nullptr : localCopy(s, std::strlen(s));
    if (copy == nullptr && !localIsEmpty(s))
        return;
    const int before = count;
    FXArray::Insert(i, copy);
    if (count == before)
        std::free(copy);
}

void FXStrArray::Pop() {
    std::free(FXArray::Pop());
}

void FXStrArray::Change(int i, const char* s) {
    if (i < 0 || i >= count)
        return;
    char* copy = localIsEmpty(s) ? nullptr : localCopy(s, std::strlen(s));
    if (copy == nullptr && !localIsEmpty(s))
        return;
    std::free(items[i]);
    items[i] = copy;
}

void FXStrArray::RemovePos(int i) {
    if (i < 0 || i >= count)
        return;
    std::free(items[i]);
    FXArray::RemovePos(i);
}

void FXStrArray::RemoveAll() {
    for (char* s : *this)
        std::free(s);
    FXArray::RemoveAll();
}

void FXStrArray::DestroyBuf() {
    RemoveAll();
    FXArray::DestroyBuf();
}

int FXStrArray::Findpos(const char* s) const {
    for (int i = 0; i < count; ++i)
        if (std::strcmp(Get(i), s ? s : "") == 0)
            return i;
    return -1;
}

bool FXStrArray::Save(std::FILE* file) const {
    const std::int32_t n = count;
    bool ok = std::fwrite(&n, sizeof n, 1, file) == 1;
    for (int i = 0; i < n && ok; ++i) {
        const auto length = static_cast<std::int32_t>(std::strlen(Get(i)));
        ok = std::fwrite(&length, sizeof length, 1, file) == 1 &&
             std::fwrite(Get(i), 1, static_cast<std::size_t>(length), file) ==
                 static_cast<std::size_t>(length);
    }
    return ok;
}

bool FXStrArray::Load(std::FILE* file) {
    RemoveAll();
    std::int32_t n = 0;
    if (std::fread(&n, sizeof n, 1, file) != 1)
        return false;
    for (int i = 0; i < n; ++i) {
        std::int32_t length = 0;
        if (std::fread(&length, sizeof length, 1, file) != 1 || length < 0)
            return false;
        // Read in pieces, so that a malformed length takes no memory.
        char* s = nullptr;
        std::int32_t have = 0;
        while (have < length) {
            const auto step = static_cast<std::size_t>(std::min(length - have, FXStr::kCapacity));
            char* longer = static_cast<char*>(fxRealloc(s, static_cast<std::size_t>(have) + step + 1));
            if (longer == nullptr || std::fread(longer + have, 1, step, file) != step) {
                std::free(longer ? longer : s);
                return false;
            }
            s = longer;
            have += static_cast<std::int32_t>(step);
            s[have] = '\0';
        }
        const int before = count;
        FXArray::Push(s);
        if (count == before) {
            std::free(s);
            return false;
        }
    }
    return n >= 0;
}

bool FXStrArray::SaveShortPaths(std::FILE* file, const char* base) const {
    const std::int32_t n = count;
    bool ok = std::fwrite(&n, sizeof n, 1, file) == 1;
    for (int i = 0; i < n && ok; ++i)
        ok = FXStr(Get(i)).SaveShortPath(file, base);
    return ok;
}
