// Any bytes as a package: loaded, every entry read with every kind of read, saved and loaded again. The first
// byte chooses whether the rest is a whole file or the body of a plain or scrambled one.
#include "package/package.h"
#include "work_file.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

namespace {

// One read, chosen by `kind`.
void localRead(FXPackageData* data, unsigned char kind) {
    FXStr s;
    FXStrArray strings;
    FXArray<int> ints;
    FXFloatArray floats;
    float four[4];
    char copy[16];
    switch (kind % 11) {
    case 0:
        data->ReadBool();
        break;
    case 1:
        data->ReadInt();
        break;
    case 2:
        data->ReadFloat();
        break;
    case 3:
        data->ReadDouble();
        break;
    case 4:
        data->ReadFloat4(four);
        break;
    case 5:
        data->ReadBlc(data->ReadInt());
        break;
    case 6:
        data->ReadCopyBlc(copy, sizeof copy);
        break;
    case 7:
        data->ReadString(&s);
        Expect(s.len >= 0 && s.len <= FXStr::kCapacity && s.text[s.len] == '\0');
        break;
    case 8:
        data->ReadStringArray(&strings);
        break;
    case 9:
        data->ReadArray(&ints);
        break;
    case 10:
        data->ReadFloatArray(&floats);
        break;
    }
    for (const int count : {strings.count, ints.count, floats.count})
        Expect(count >= 0 && count <= std::max(data->size, FXPackageData::kSureCount));
}

void localReadEntry(const FXPackage& package, FXPackageData* data, std::string_view kinds) {
    Expect(data->size == 0 || (data->start >= package.dataBlock &&
                               data->start + data->size <= package.dataBlock + package.dataSize));
    for (const char kind : kinds) {
        const int before = data->left;
        localRead(data, static_cast<unsigned char>(kind));
        Expect(data->left >= 0 && data->left <= before &&
               data->cur == data->start + (data->size - data->left));
        if (data->left == 0)
            break;
    }
}

std::string localEntryBytes(FXPackage& package, int id) {
    const FXPackageData* data = package.GetDataPtr(id);
    return {reinterpret_cast<const char*>(data->start), static_cast<std::size_t>(data->size)};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    if (size == 0)
        return 0;
    constexpr std::string_view kHeaders[] = {{}, {"\5\0\0\0pck01", 9}, {"\6\0\0\0pck01s", 10}};
    const std::string_view rest = AsText(bytes + 1, size - 1);
    WriteFile(WorkFile(), std::string(kHeaders[bytes[0] % 3]).append(rest));

    FXPackage package;
    auto few = std::make_unique<FewElements>(size);
    if (!package.Load(WorkFile().c_str()))
        return 0;
    for (const FXArray<int>* table : {&package.offsets, &package.sizes, &package.types})
        Expect(table->count == package.ids.count);
    Expect(package.cursors.count == package.ids.count || package.problem.len > 0);
    Expect(package.ids.count <= std::max(static_cast<int>(size), FXPackageData::kSureCount));
    for (int i = 0; i < package.cursors.count; ++i)
        localReadEntry(package, package.cursors[i], rest.substr(0, 64));
    few.reset();
    if (package.cursors.count < package.ids.count)
        return 0; // without memory for its cursors no entry can be asked for

    Expect(package.Save(WorkFile().c_str(), bytes[0] & 1));
    FXPackage again;
    Expect(again.Load(WorkFile().c_str()) && again.ids.count == package.ids.count);
    for (const int id : package.ids)
        Expect(localEntryBytes(again, id) == localEntryBytes(package, id));
    return 0;
}
