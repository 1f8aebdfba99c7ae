#include "package/package.h"

#include "package/scramble.h"

#include <cstring>
#include <memory>

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
struct BlockFreer {
    void operator()(unsigned char* block) const { std::free(block); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;
using Block = std::unique_ptr<unsigned char, BlockFreer>;

// Not zeroed: every byte is written before it is read.
Block localBlock(int size) { return Block(static_cast<unsigned char*>(fxRealloc(nullptr, static_cast<std::size_t>(size)))); }

// The bytes from here to the end of the file; -1 when that is beyond what an int holds.
int localBytesLeft(std::FILE* file) {
    const long at = std::ftell(file);
    if (at < 0 || std::fseek(file, 0, SEEK_END) != 0)
        return -1;
    const long end = std::ftell(file);
    if (end < at || end - at > INT_MAX || std::fseek(file, at, SEEK_SET) != 0)
        return -1;
    return static_cast<int>(end - at);
}

} // namespace

bool FXPackage::Load(const char* fileName) {
    Destroy();
    const File file(std::fopen(fileName, "rb"));
    FXStr header;
    if (!file || !header.Load(file.get()) || !header.nCompare("pck01", 5))
        return false;
    const bool scrambled = std::strchr(header.text + 5, 's') != nullptr;

    const int size = localBytesLeft(file.get());
    Block body = size < 0 ? nullptr : localBlock(size);
    if (!body || std::fread(body.get(), 1, static_cast<std::size_t>(size), file.get()) != static_cast<std::size_t>(size))
        return false;
    if (scrambled) {
        Block plain = localBlock(size);
        if (!plain)
            return false;
        fxScramble(body.get(), plain.get(), static_cast<std::size_t>(size));
        body = std::move(plain);
    }
    FXPackageData cursor;
    cursor.InitData(body.get(), size);
    if (!ReadBody(&cursor)) {
        Destroy();
        return false;
    }
    return true;
}

bool FXPackage::ReadBody(FXPackageData* body) {
    for (FXArray<int>* table : {&ids, &offsets, &sizes, &types})
        body->ReadArray(table);
    firstId = 0;
    for (const int id : ids)
        firstId = std::max(firstId, id < INT_MAX ? id + 1 : INT_MAX);
    dataSize = body->left;
    Block block = localBlock(dataSize);
    if (!block)
        return false;
    body->ReadCopyBlc(block.get(), dataSize);
    dataBlock = block.release();
    RecompClasses();
    return true;
}

void FXPackage::RecompClasses() {
    for (FXPackageData* cursor : cursors)
        delete cursor;
    cursors.RemoveAll();
    // Only a package that lies has tables of different lengths; an entry needs a place and a length.
    const int entries = std::min({ids.count, offsets.count, sizes.count});
    if (!cursors.Realloc(entries))
        return;
    for (int i = 0; i < entries; ++i) {
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
    std::free(dataBlock);
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
