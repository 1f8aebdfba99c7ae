#include "pack/package_check.h"

#include "pack/entry_kind.h"
#include "pack/record_reader.h"
#include "pack/text.h"
#include "package/file_block.h"
#include "package/package.h"
#include "package/scramble.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <numeric>

namespace {

struct Tables {
    std::vector<int> ids, offsets, sizes, types;
    int offsetsAt = 0; // where the first offset stands
    int sizesAt = 0;
};

bool localReadTables(RecordReader* reader, Tables* tables) {
    if (!reader->Ints("id", "the package", &tables->ids))
        return false;
    tables->offsetsAt = reader->Offset() + 4;
    if (!reader->Ints("offset", "the package", &tables->offsets))
        return false;
    tables->sizesAt = reader->Offset() + 4;
    if (!reader->Ints("size", "the package", &tables->sizes))
        return false;
    const int at = reader->Offset();
    if (!reader->Ints("type", "the package", &tables->types))
        return false;
    const std::size_t n = tables->ids.size();
    return (tables->offsets.size() == n && tables->sizes.size() == n && tables->types.size() == n) ||
           reader->Fail(at, Text("the tables differ: %zu ids, %zu offsets, %zu sizes, %zu types", n,
                                 tables->offsets.size(), tables->sizes.size(), tables->types.size()));
}

void localCheckIds(const Tables& tables, Faults* faults) {
    std::map<int, std::size_t> seen;
    for (std::size_t i = 0; i < tables.ids.size(); ++i) {
        const int id = tables.ids[i];
        const auto [first, isNew] = seen.emplace(id, i);
        if (!isNew)
            faults->Add(
                -1,
                Text("entries %zu and %zu of the table have the same number, %d: the second is never found",
                     first->second, i, id));
        if (id < 0)
            faults->Warn(
                Text("entry %zu of the table has the number %d: a manifest has none below 0, and the "
                     "show asks for none",
                     i, id));
        if (tables.types[i] != kRaw && FindPictureType(tables.types[i]) == nullptr)
            faults->Warn(Text("entry %d has the type %d, which is none that is known", id, tables.types[i]));
    }
}

// The numbers of the entries that do not lie in the data block.
std::vector<int> localCheckBounds(const Tables& tables, int dataSize, Faults* faults) {
    std::vector<int> misplaced;
    for (std::size_t i = 0; i < tables.ids.size(); ++i) {
        const std::int64_t offset = tables.offsets[i], size = tables.sizes[i];
        if (offset < 0 || offset > dataSize)
            faults->Add(tables.offsetsAt + 4 * static_cast<int>(i),
                        Text("entry %d begins at %lld of the data block, which has %d bytes", tables.ids[i],
                             static_cast<long long>(offset), dataSize));
        else if (size < 0 || offset + size > dataSize)
            faults->Add(tables.sizesAt + 4 * static_cast<int>(i),
                        Text("entry %d has %lld bytes from %lld of the data block, which has %d",
                             tables.ids[i], static_cast<long long>(size), static_cast<long long>(offset),
                             dataSize));
        else
            continue;
        misplaced.push_back(tables.ids[i]);
    }
    return misplaced;
}

void localCheckOverlaps(const Tables& tables, int dataSize, Faults* faults) {
    std::vector<std::size_t> order(tables.ids.size());
    std::iota(order.begin(), order.end(), 0);
    std::ranges::stable_sort(order, {}, [&](std::size_t i) { return tables.offsets[i]; });
    int end = 0, unused = 0, last = -1;
    for (const std::size_t i : order) {
        if (tables.sizes[i] == 0)
            continue;
        if (tables.offsets[i] < end)
            faults->Add(tables.offsetsAt + 4 * static_cast<int>(i),
                        Text("entry %d begins %d bytes before entry %d ends", tables.ids[i],
                             end - tables.offsets[i], last));
        unused += std::max(0, tables.offsets[i] - end);
        if (tables.offsets[i] + tables.sizes[i] > end) {
            end = tables.offsets[i] + tables.sizes[i];
            last = tables.ids[i];
        }
    }
    unused += dataSize - end;
    if (unused > 0)
        faults->Warn(Counted(unused, "byte of the data block belongs", "bytes of the data block belong") +
                     " to no entry");
}

} // namespace

bool CheckPackage(const std::string& file, Faults* faults, PackageFacts* facts) {
    FXFileBlock block;
    if (!block.Load(file.c_str())) {
        faults->Add(-1, "it cannot be read, or is beyond 2 GiB");
        return false;
    }
    FXStr header;
    block.data.ReadString(&header);
    if (faults->onField)
        faults->onField({0, block.data.start, block.data.size - block.data.left,
                         "the header: " + std::string(header.text)});
    if (!FXPackage::IsHeader(header)) {
        faults->Add(0, "it does not begin as a package does, with 05 00 00 00 pck01 or 06 00 00 00 pck01s");
        return false;
    }
    facts->isScrambled = FXPackage::SaysScrambled(header);
    if (!header.Compare(FXPackage::kHeader) && !header.Compare(FXPackage::kScrambledHeader))
        faults->Warn(4, "its header is '" + std::string(header.text) +
                            "', neither pck01 nor pck01s: the show reads it as " +
                            (facts->isScrambled ? FXPackage::kScrambledHeader : FXPackage::kHeader));
    if (facts->isScrambled && faults->onField)
        faults->onField({block.data.size - block.data.left, block.data.cur, block.data.left,
                         "the body, scrambled; in order:"});
    const int size = block.data.left;
    auto* body = const_cast<unsigned char*>(block.data.cur); // the block is this function's own
    if (facts->isScrambled)
        fxScramble(body, static_cast<std::size_t>(size));
    FXPackageData data;
    data.InitData(body, size);
    RecordReader reader(data, faults, facts->isScrambled ? 0 : block.data.size - size);
    Tables tables;
    if (!localReadTables(&reader, &tables))
        return false;
    facts->entries = static_cast<int>(tables.ids.size());
    const int dataSize = reader.Left();
    reader.Skip(dataSize);
    reader.Tell(dataSize, "the data block");
    localCheckIds(tables, faults);
    facts->misplaced = localCheckBounds(tables, dataSize, faults);
    if (facts->misplaced.empty())
        localCheckOverlaps(tables, dataSize, faults);
    return true;
}

bool LoadPackage(const std::string& file, FXPackage* package, std::string* error) {
    const bool loaded = package->Load(file.c_str());
    if (!loaded)
        *error = file + ": is not a package, or cannot be read (tamb-pack verify says why)";
    return loaded;
}

bool OverlapsTooMuch(const FXPackage& package) {
    constexpr std::int64_t kTimesTheData = 4;
    const auto total =
        std::accumulate(package.cursors.begin(), package.cursors.end(), std::int64_t{0},
                        [](std::int64_t sum, const FXPackageData* entry) { return sum + entry->size; });
    return total > kTimesTheData * package.dataSize;
}

bool IsScrambled(const std::string& file) {
    const FXFile opened = fxOpenFile(file.c_str(), "rb");
    FXStr header;
    return opened && header.Load(opened.get()) && FXPackage::SaysScrambled(header);
}
