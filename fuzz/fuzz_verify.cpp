// Any bytes as a package that tamb-pack looks into, takes apart and builds again, or as the file that it
// makes a model or a library from. The first byte chooses.
#include "geometry/model_import.h"
#include "pack/content_check.h"
#include "pack/description.h"
#include "pack/extraction.h"
#include "pack/kinds.h"
#include "pack/package_check.h"
#include "pack/wavefront.h"
#include "work_file.h"

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

void localTryPackage(std::size_t size) {
    Faults faults;
    PackageFacts facts;
    FXPackage package;
    if (!CheckPackage(WorkFile(), &faults, &facts)) {
        Expect(!faults.Good());
        return;
    }
    Expect(package.Load(WorkFile().c_str()));
    const FewElements few(size);
    if (OverlapsTooMuch(package))
        return;
    static_cast<void>(CheckContents(&package, [] {}));
    const std::vector<EntryKind> kinds = KindsOf(package);
    for (int i = 0; i < package.cursors.count; ++i)
        Describe(&package, i, kinds[static_cast<std::size_t>(i)]);
    for (const bool asWavefront : {false, true})
        static_cast<void>(ExtractAll(&package, facts.isScrambled, asWavefront));
}

void localTryObj() {
    FXObjFile obj;
    std::string error;
    if (!fxReadObj(WorkFile(), &obj, &error)) {
        Expect(!error.empty());
        return;
    }
    FXModel model;
    model.ImportObj(obj, {});
    model.UpdateMeshes();
    ObjText(model, "");
}

void localTryMtl() {
    FXMatlib library;
    std::string error;
    Expect(ReadMtl(WorkFile(), &library, &error) == error.empty());
    MtlText(library, [](const char* picture) { return std::string(picture); });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    if (size == 0)
        return 0;
    constexpr std::string_view kHeaders[] = {{}, {"\5\0\0\0pck01", 9}, {"\6\0\0\0pck01s", 10}, {}, {}};
    // One entry that is all the rest, which is where most of the reading is done.
    std::string start(kHeaders[bytes[0] % 5]);
    const auto rest = static_cast<std::int32_t>(size - 1);
    if (bytes[0] % 5 == 1) {
        const std::int32_t tables[] = {1, 7, 1, 0, 1, rest, 1, kRaw};
        start.append(reinterpret_cast<const char*>(tables), sizeof tables);
    }
    std::ofstream(WorkFile(), std::ios::binary)
        << start << std::string_view(reinterpret_cast<const char*>(bytes) + 1, size - 1);
    bytes[0] % 5 == 3 ? localTryObj() : bytes[0] % 5 == 4 ? localTryMtl() : localTryPackage(size);
    return 0;
}
