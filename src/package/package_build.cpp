// Making packages: the tools' side of FXPackage.
#include "base/file_handle.h"
#include "base/path_text.h"
#include "base/whole_file.h"
#include "package/package.h"
#include "package/scramble.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>
#include <utility>

namespace {

int localTypeOf(const char* name) {
    const char* from = name + std::min<std::size_t>(std::strlen(name), 2);
    const char* dot = std::strrchr(from, '.');
    const FXStr ending(dot ? dot + 1 : from);
    for (const FXPictureEnding& known : kPictureEndings)
        if (ending.iCompare(known.ending))
            return known.type;
    return kRaw;
}

bool localReadFile(const char* name, unsigned char* to, std::size_t size) {
    const FXFile file = fxOpenFile(name, "rb");
    return file && std::fread(to, 1, size, file.get()) == size;
}

// One table: of the entries that are there, then of those to come.
void localWriteTable(FXPackageData* cursor, const FXArray<int>& stored, const FXArray<int>& added) {
    cursor->WriteInt(stored.count + added.count);
    for (const FXArray<int>* part : {&stored, &added})
        for (const int value : *part)
            cursor->WriteInt(value);
}

} // namespace

bool FXPackage::AddDataFile(int id, const char* file) {
    if (!pendingIds.Push(id))
        return false;
    pendingFiles.Push(file);
    if (pendingFiles.count == pendingIds.count)
        return true;
    pendingIds.Pop();
    return false;
}

void FXPackage::AddDataFile1(FXStr* name) {
    if (name->IsEmpty())
        return;
    if (FindId(name->text) < 0)
        AddDataFile(BuildId(name->text), name->text);
    name->Format("%d", FindId(name->text));
}

bool FXPackage::CheckFile(const char* file, int* size, int* type) {
    *size = 0;
    *type = localTypeOf(file);
    const FXFile opened = fxOpenFile(file, "rb");
    const int length = opened ? fxBytesLeft(opened.get()) : -1;
    *size = length > 0 ? length : 0;
    return length >= 0;
}

bool FXPackage::Save(const char* fileName, int flags) {
    const int added = pendingIds.count;
    FXArray<int> newOffsets, newSizes, newTypes;
    if (!newOffsets.Realloc(added) || !newSizes.Realloc(added) || !newTypes.Realloc(added))
        return false;
    for (FXArray<int>* table : {&ids, &offsets, &sizes, &types}) // so that TakeBody cannot fail
        if (!table->Realloc(table->count + added))
            return false;
    std::int64_t end = dataSize;
    for (int i = 0; i < added; ++i) {
        int size = 0;
        int type = kRaw;
        if (!CheckFile(pendingFiles.Get(i), &size, &type) || end + size > INT_MAX)
            return false;
        newOffsets.Push(static_cast<int>(end));
        newSizes.Push(size);
        newTypes.Push(type);
        end += size;
    }

    const std::int64_t dataAt = 16 + 16 * (std::int64_t{ids.count} + added);
    const std::int64_t bodySize = dataAt + end;
    FXBytes body = bodySize > INT_MAX ? nullptr : fxNewBytes(static_cast<std::size_t>(bodySize));
    if (!body)
        return false;
    FXPackageData cursor;
    cursor.InitData(body.get(), static_cast<int>(bodySize));
    localWriteTable(&cursor, ids, pendingIds);
    localWriteTable(&cursor, offsets, newOffsets);
    localWriteTable(&cursor, sizes, newSizes);
    localWriteTable(&cursor, types, newTypes);
    unsigned char* data = body.get() + dataAt;
    if (dataSize > 0)
        std::memcpy(data, dataBlock, static_cast<std::size_t>(dataSize));
    for (int i = 0; i < added; ++i)
        if (!localReadFile(pendingFiles.Get(i), data + newOffsets[i], static_cast<std::size_t>(newSizes[i])))
            return false;

    const auto bytes = static_cast<std::size_t>(bodySize);
    const bool scrambled = (flags & kScrambled) != 0;
    if (scrambled)
        fxScramble(body.get(), bytes);
    const FXStr header(scrambled ? kScrambledHeader : kHeader);
    try {
        if (!fxReplaceFile(fileName, [&](std::FILE* file) {
                return header.Save(file) && std::fwrite(body.get(), 1, bytes, file) == bytes;
            }))
            return false;
    } catch (const std::bad_alloc&) { // nothing is written yet
        return false;
    }
    if (scrambled)
        fxScramble(body.get(), bytes);
    TakeBody(std::move(body), static_cast<int>(bodySize));
    pendingIds.RemoveAll();
    pendingFiles.RemoveAll();
    return true;
}

bool FXPackage::SaveNames(const char* file) const {
    FXFile opened = fxOpenFile(file, "wb");
    return opened && names.Save(opened.get()) && fxCloseWritten(std::move(opened));
}

bool FXPackage::LoadNames(const char* file) {
    const FXFile opened = fxOpenFile(file, "rb");
    return opened && names.Load(opened.get());
}

bool FXPackage::SaveNamesCpp(const char* file) const {
    FXFile opened = fxOpenFile(file, "wt");
    if (!opened)
        return false;
    for (int i = 0; i < names.count; ++i) {
        FXStr name(fxGetFilename(names.Get(i)));
        name.ToUpper();
        for (const char c : {'.', '\\', '/', ' ', '+', '-', '(', ')', '[', ']'})
            name.ExchangeChars(c, '_');
        std::fprintf(opened.get(), "#define FXNAME_%s  %d\n", name.text, firstId + i);
    }
    return fxCloseWritten(std::move(opened));
}

bool FXPackage::AddTmpDataFile(FXStr* name, FXStr* file) {
    name->Append(".tmp");
    *file = *name;
    const bool isNew = FindId(file->text) < 0;
    if (isNew)
        AddTmpFile(file->text);
    AddDataFile1(name);
    return isNew;
}

void FXPackage::AddTmpFile(const char* file) {
    tmpFiles.Push(file);
}

void FXPackage::DeleteTmpFiles() {
    for (int i = 0; i < tmpFiles.count; ++i)
        std::remove(tmpFiles.Get(i));
    tmpFiles.RemoveAll();
}
