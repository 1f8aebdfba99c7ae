#include "package/package.h"

#include "base/file_handle.h"
#include "package/scramble.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <utility>

namespace {

constexpr const char* kCut = "is damaged or ends too early: some of its entries are missing";
constexpr const char* kNoMemory = "has more entries than there is memory for";

// False when there is no memory for all of the table.
bool localReadTable(FXPackageData* cursor, FXArray<int>* table) {
    FXPackageData ahead = *cursor;
    const int count = ahead.ReadCount();
    cursor->ReadArray(table);
    return table->count == count;
}

} // namespace

bool FXPackage::Load(const char* fileName) {
    Destroy();
    problem.Clear();
    return LoadFile(fileName);
}

bool FXPackage::LoadFile(const char* fileName) {
    const FXFile file = fxOpenFile(fileName, "rb");
    if (!file) {
        problem.Format("cannot be opened: %s", std::strerror(errno));
        return false;
    }
    FXStr header;
    const bool read = header.Load(file.get());
    if (std::ferror(file.get()) != 0) {
        problem.Format("cannot be read: %s", std::strerror(errno));
        return false;
    }
    if (!read || !IsHeader(header)) {
        problem.Set(std::ftell(file.get()) == 0 ? "is empty" : "is not a Tamblor package");
        return false;
    }
    const bool scrambled = SaysScrambled(header);

    int size = 0;
    FXBytes body = fxReadRest(file.get(), &size);
    if (!body) {
        problem.Set("cannot be read: too large, or no memory");
        return false;
    }
    if (scrambled)
        fxScramble(body.get(), static_cast<std::size_t>(size));
    if (!TakeBody(std::move(body), size)) {
        Destroy();
        problem.Set(kNoMemory);
        return false;
    }
    // Ids given to names from now on do not meet those of stored entries.
    const int* largest = std::max_element(ids.begin(), ids.end());
    firstId = ids.IsEmpty() ? 0 : *largest < INT_MAX ? *largest + 1 : INT_MAX;
    return true;
}

// Makes an unscrambled body the contents. False when there is no memory for its tables.
bool FXPackage::TakeBody(FXBytes body, int size) {
    FXPackageData cursor;
    cursor.InitData(body.get(), size);
    for (FXArray<int>* table : {&ids, &offsets, &sizes, &types})
        if (!localReadTable(&cursor, table))
            return false;

    if (ids.IsEmpty())
        problem.Set("has no entries");
    else if (offsets.count < ids.count || sizes.count < ids.count)
        problem.Set(kCut);
    // Only a malformed package has tables of different lengths: there are as many entries as ids, and what a
    // table lacks is 0.
    for (FXArray<int>* table : {&offsets, &sizes, &types}) {
        if (!table->Realloc(ids.count))
            return false;
        while (table->count < ids.count)
            table->Push(0);
        table->count = ids.count;
    }

    dataSize = cursor.left;
    dataBlock = dataSize > 0 ? body.get() + (size - dataSize) : nullptr;
    block = std::move(body);
    RecompClasses();
    return true;
}

void FXPackage::RecompClasses() {
    cursors.RemoveAll();
    const unsigned char* const data = dataBlock;
    for (int i = 0; i < ids.count; ++i) {
        FXPackageData* cursor = cursors.Realloc(ids.count) ? cursors.PushNew() : nullptr;
        if (cursor == nullptr) {
            problem.Set(kNoMemory);
            return;
        }
        const std::int64_t end = static_cast<std::int64_t>(offsets[i]) + sizes[i];
        if (offsets[i] >= 0 && sizes[i] >= 0 && end <= dataSize)
            cursor->InitData(data + offsets[i], sizes[i]);
        else
            problem.Set(kCut);
    }
}

FXPackageData* FXPackage::GetDataPtr(int id) {
    const int at = ids.Findpos(id);
    if (at < 0 || at >= cursors.count)
        return nullptr;
    cursors[at]->Reseek();
    return cursors[at];
}

int FXPackage::GetDataType(int id) const {
    const int at = ids.Findpos(id);
    return at < 0 || at >= types.count ? kRaw : types[at];
}

void FXPackage::Destroy() {
    block = nullptr;
    dataBlock = nullptr;
    dataSize = 0;
    for (FXArray<int>* table : {&ids, &offsets, &sizes, &types, &pendingIds})
        table->DestroyBuf();
    cursors.DestroyBuf();
    pendingFiles.DestroyBuf();
    tmpFiles.DestroyBuf();
}
