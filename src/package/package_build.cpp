// Making packages: the tools' side of FXPackage.
#include "base/path_text.h"
#include "package/package.h"
#include "package/scramble.h"

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

struct Ending {
    const char* text;
    int type;
};
constexpr Ending kEndings[] = {{"jpg", kJpeg}, {"png", kPng}, {"tga", kTga}, {"bmp", kBmp}, {"gif", kGif}};

// Up to three characters from the end of the name, stopping at a dot.
int localTypeOf(const std::string& name) {
    std::size_t from = name.size();
    while (from > 0 && name.size() - from < 3 && name[from - 1] != '.')
        --from;
    FXStr ending(name.c_str() + from);
    for (const Ending& known : kEndings)
        if (ending.iCompare(known.text))
            return known.type;
    return kRaw;
}

bool localAppendFile(const char* name, int size, std::vector<unsigned char>* bytes) {
    const File file(std::fopen(name, "rb"));
    const std::size_t at = bytes->size();
    bytes->resize(at + static_cast<std::size_t>(size));
    return file && std::fread(bytes->data() + at, 1, static_cast<std::size_t>(size), file.get()) ==
                       static_cast<std::size_t>(size);
}

bool localWritePackage(const std::string& name, const FXStr& header, const std::vector<unsigned char>& body) {
    File file(std::fopen(name.c_str(), "wb"));
    if (!file)
        return false;
    const bool written = header.Save(file.get()) && std::fwrite(body.data(), 1, body.size(), file.get()) == body.size();
    return std::fclose(file.release()) == 0 && written; // a full disk may show only here
}

// Puts the new file in the old one's place.
bool localReplace(const std::string& from, const char* to) {
    if (std::rename(from.c_str(), to) == 0)
        return true;
    std::remove(to); // some systems do not rename over a file
    return std::rename(from.c_str(), to) == 0;
}

} // namespace

void FXPackage::AddDataFile(int id, const char* file) {
    pendingIds.Push(id);
    pendingFiles.Push(file);
}

void FXPackage::AddDataFile1(FXStr* name) {
    if (name->IsEmpty())
        return;
    if (FindId(name->text) < 0)
        AddDataFile(BuildId(name->text), name->text);
    name->Format("%d", FindId(name->text));
}

bool FXPackage::CheckFile(const char* file, int* size, int* type) {
    *type = localTypeOf(file);
    const File opened(std::fopen(file, "rb"));
    if (!opened || std::fseek(opened.get(), 0, SEEK_END) != 0)
        return false;
    const long end = std::ftell(opened.get());
    *size = static_cast<int>(end);
    return end >= 0 && end <= INT_MAX;
}

bool FXPackage::Save(const char* fileName, int flags) {
    FXArray<int> newSizes;
    FXArray<int> newTypes;
    std::vector<unsigned char> data(dataBlock, dataBlock + dataSize);
    for (int i = 0; i < pendingIds.count; ++i) {
        int size = 0;
        int type = kRaw;
        if (!CheckFile(pendingFiles.Get(i), &size, &type) || data.size() + size > INT_MAX / 2 ||
            !localAppendFile(pendingFiles.Get(i), size, &data))
            return false;
        newSizes.Push(size);
        newTypes.Push(type);
    }

    FXArray<int> tables[4]; // ids, offsets, sizes, types as they will be
    const FXArray<int>* old[4] = {&ids, &offsets, &sizes, &types};
    for (int t = 0; t < 4; ++t) {
        tables[t].Realloc(old[t]->count + pendingIds.count);
        for (const int value : *old[t])
            tables[t].Push(value);
    }
    int offset = dataSize;
    for (int i = 0; i < pendingIds.count; ++i) {
        tables[0].Push(pendingIds[i]);
        tables[1].Push(offset);
        tables[2].Push(newSizes[i]);
        tables[3].Push(newTypes[i]);
        offset += newSizes[i];
    }

    std::vector<unsigned char> body(16);
    for (const FXArray<int>& table : tables)
        body.resize(body.size() + 4 * static_cast<std::size_t>(table.count));
    FXPackageData cursor;
    cursor.InitData(body.data(), static_cast<int>(body.size()));
    for (const FXArray<int>& table : tables)
        cursor.WriteArray(&table);
    body.insert(body.end(), data.begin(), data.end());

    FXStr header("pck01");
    if (flags & kScrambled) {
        header.AppendChar('s');
        std::vector<unsigned char> scrambled(body.size());
        fxScramble(body.data(), scrambled.data(), body.size());
        body.swap(scrambled);
    }
    const std::string unfinished = std::string(fileName) + ".new";
    if (!localWritePackage(unfinished, header, body) || !localReplace(unfinished, fileName)) {
        std::remove(unfinished.c_str());
        return false;
    }

    auto* block = static_cast<unsigned char*>(fxRealloc(dataBlock, data.size()));
    if (block == nullptr)
        return false;
    std::memcpy(block, data.data(), data.size());
    dataBlock = block;
    dataSize = static_cast<int>(data.size());
    FXArray<int>* kept[4] = {&ids, &offsets, &sizes, &types};
    for (int t = 0; t < 4; ++t) {
        kept[t]->RemoveAll();
        for (const int value : tables[t])
            kept[t]->Push(value);
    }
    pendingIds.RemoveAll();
    pendingFiles.RemoveAll();
    RecompClasses();
    return true;
}

bool FXPackage::SaveNames(const char* file) const {
    File opened(std::fopen(file, "wb"));
    return opened && names.Save(opened.get()) && std::fclose(opened.release()) == 0;
}

bool FXPackage::LoadNames(const char* file) {
    const File opened(std::fopen(file, "rb"));
    return opened && names.Load(opened.get());
}

bool FXPackage::SaveNamesCpp(const char* file) const {
    File opened(std::fopen(file, "wt"));
    if (!opened)
        return false;
    for (int i = 0; i < names.Count(); ++i) {
        FXStr name(fxGetFilename(names.Get(i)));
        name.ToUpper();
        for (const char c : {'.', '\\', '/', ' ', '+', '-', '(', ')', '[', ']'})
            name.ExchangeChars(c, '_');
        std::fprintf(opened.get(), "#define FXNAME_%s  %d\n", name.text, firstId + i);
    }
    return std::fclose(opened.release()) == 0;
}

void FXPackage::AddTmpFile(const char* file) { tmpFiles.Push(file); }

void FXPackage::DeleteTmpFiles() {
    for (int i = 0; i < tmpFiles.Count(); ++i)
        std::remove(tmpFiles.Get(i));
    tmpFiles.RemoveAll();
}
