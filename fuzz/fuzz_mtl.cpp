// Any bytes as a Wavefront MTL file: made a library, and written as such a file again.
#include "pack/wavefront.h"
#include "work_file.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    WriteFile(WorkFile(), AsText(bytes, size));
    FXMatlib library;
    std::string error;
    Expect(ReadMtl(WorkFile(), &library, &error) == error.empty());
    if (!error.empty())
        return 0;
    WriteFile(WorkFile(), MtlText(library, [](const char* picture) { return std::string(picture); }));
    FXMatlib again;
    Expect(ReadMtl(WorkFile(), &again, &error) && again.materials.count == library.materials.count);
    return 0;
}
