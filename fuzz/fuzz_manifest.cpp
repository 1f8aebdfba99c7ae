// Any bytes as the manifest of a package, beside a few files that it can name: planned, and built in memory.
#include "pack/contents.h"
#include "work_file.h"

#include <algorithm>

namespace {

constexpr const char* kObj = "mtllib leaf.mtl\no leaf\nv 0 0 0\nv 1 0 0\nv 1 1 0\nvt 0 0\nvn 0 0 1\n"
                             "usemtl Leaf\nf 1/1/1 2/1/1 3/1/1\n";

bool localIsOurs(const std::string& file) {
    return file.starts_with(WorkFolder() + "/");
}

// No file of this machine's is read, however it is named.
bool localNamesOurs(const ManifestEntry& entry) {
    return (entry.file.empty() || localIsOurs(entry.file)) &&
           std::ranges::all_of(entry.animation.frameFiles, localIsOurs);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    static const bool prepared = [] {
        for (const char* name : {"/leaf.obj", "/leaf-up.obj"})
            WriteFile(WorkFolder() + name, kObj);
        WriteFile(WorkFolder() + "/leaf.mtl", "newmtl Leaf\nKd 0 1 0\nd 0.5\n");
        WriteFile(WorkFolder() + "/dot.png", "no picture");
        return true;
    }();
    WriteFile(WorkFile(), AsText(bytes, size));
    Manifest manifest;
    Plan plan;
    MemoryPackage package;
    std::string error, header;
    const bool read = prepared && ReadManifest(WorkFile(), WorkFolder(), &manifest, &error);
    Expect(read == error.empty());
    if (!read || !std::ranges::all_of(manifest.entries, localNamesOurs))
        return 0;
    const bool planned = MakePlan(manifest, &plan, &error) && NamesHeader(plan.names, &header, &error);
    Expect(planned == error.empty());
    if (!planned || !IsOneThatIsWritten(size))
        return 0;
    const bool built = MakeContents(manifest, plan, false, &package, &error);
    Expect(built == error.empty());
    if (!built)
        return 0;
    Expect(package.Save(WorkFile(), manifest.scramble, &error));
    FXPackage again;
    Expect(again.Load(WorkFile().c_str()) && again.ids.count == static_cast<int>(plan.entries.size()));
    return 0;
}
