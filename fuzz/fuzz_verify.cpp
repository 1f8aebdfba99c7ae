// Any bytes as a package that tamb-pack looks into, takes apart and builds again. The first byte chooses
// what stands before the others.
#include "pack/content_check.h"
#include "pack/description.h"
#include "pack/extraction.h"
#include "pack/kinds.h"
#include "pack/package_check.h"
#include "work_file.h"

#include <cstdint>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    if (size == 0)
        return 0;
    constexpr std::string_view kHeaders[] = {{}, {"\5\0\0\0pck01", 9}, {"\6\0\0\0pck01s", 10}};
    std::string start(kHeaders[bytes[0] % 3]);
    // One entry that is all the rest, which is where most of the reading is done.
    if (bytes[0] % 3 == 1) {
        const std::int32_t tables[] = {1, 7, 1, 0, 1, static_cast<std::int32_t>(size - 1), 1, kRaw};
        start.append(reinterpret_cast<const char*>(tables), sizeof tables);
    }
    WriteFile(WorkFile(), start.append(AsText(bytes + 1, size - 1)));

    Faults faults;
    PackageFacts facts;
    FXPackage package;
    if (!CheckPackage(WorkFile(), &faults, &facts)) {
        Expect(!faults.Good());
        return 0;
    }
    Expect(package.Load(WorkFile().c_str()));
    const FewElements few(size);
    if (OverlapsTooMuch(package))
        return 0;
    static_cast<void>(CheckContents(&package, [] {}));
    const std::vector<EntryKind> kinds = KindsOf(package);
    for (int i = 0; i < package.cursors.count; ++i)
        Describe(&package, i, kinds[static_cast<std::size_t>(i)]);
    for (const bool asWavefront : {false, true})
        static_cast<void>(ExtractAll(&package, facts.isScrambled, asWavefront));
    return 0;
}
