#include "package/package.h"

#include "base/file_handle.h"
#include "package/scramble.h"

#include <cstring>

bool FXPackage::Load(const char* fileName) {
    Destroy();
    const FXFile file = fxOpenFile(fileName, "rb");
    FXStr header;
    if (!file || !header.Load(file.get()) || !header.nCompare("pck01", 5))
        return false;
    const bool scrambled = std::strchr(header.text + 5, 's') != nullptr;

    int size = 0;
    FXBytes body = fxReadRest(file.get(), &size);
    if (!body)
        return false;
    if (scrambled)
        fxScramble(body.get(), static_cast<std::size_t>(size));
    TakeBody(std::move(body), size);
    // Ids given to names from now on do not meet those of stored entries.
    firstId = 0;
    for (const int id : ids)
        firstId = std::max(firstId, id < INT_MAX ? id + 1 : INT_MAX);
    return true;
}

// Makes an unscrambled body the contents.
void FXPackage::TakeBody(FXBytes body, int size) {
    FXPackageData cursor;
    cursor.InitData(body.get(), size);
    for (FXArray<int>* table : {&ids, &offsets, &sizes, &types})
        cursor.ReadArray(table);

    // Only a package that lies has tables of different lengths: an entry needs an id, a place and a length.
    const int entries = std::min({ids.count, offsets.count, sizes.count});
    for (FXArray<int>* table : {&ids, &offsets, &sizes})
        table->count = entries;
    types.count = std::min(types.count, entries);
    while (types.count < entries && types.Realloc(entries))
        types.Push(kRaw);

    dataSize = cursor.left;
    dataBlock = body.get() + (size - dataSize);
    block = std::move(body);
    RecompClasses();
}

void FXPackage::RecompClasses() {
    for (FXPackageData* cursor : cursors)
        delete cursor;
    cursors.RemoveAll();
    if (!cursors.Realloc(ids.count))
        return;
    for (int i = 0; i < ids.count; ++i) {
        auto* cursor = new FXPackageData;
        const std::int64_t end = static_cast<std::int64_t>(offsets[i]) + sizes[i];
        if (offsets[i] >= 0 && sizes[i] >= 0 && end <= dataSize)
            cursor->InitData(dataBlock + offsets[i], sizes[i]);
        cursors.Push(cursor);
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
    block.reset();
    dataBlock = nullptr;
    dataSize = 0;
    for (FXArray<int>* table : {&ids, &offsets, &sizes, &types, &pendingIds})
        table->DestroyBuf();
    for (FXPackageData* cursor : cursors)
        delete cursor;
    cursors.DestroyBuf();
    pendingFiles.DestroyBuf();
    tmpFiles.DestroyBuf();
}
