// Any bytes as a material library in a package: loaded, its pictures listed, saved and loaded again.
#include "entry_package.h"
#include "image/material_library.h"
#include "package/package.h"

#include <string>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    WritePackage({bytes, size}, kRaw);
    FXPackage package;
    Expect(package.Load(WorkFile().c_str()));
    const std::string entry = std::to_string(kEntry);
    FXMatlib library;
    {
        const FewElements few(size);
        FXArray<int> pictures;
        FXMatlib::ListPictures(&package, entry.c_str(), &pictures);
        Expect(library.LoadC(&package, entry.c_str()));
        Expect(pictures.count <= library.materials.count || library.materials.count == 0);
    }
    for (FXMaterial* material : library.materials)
        material->texRef.Set(""); // as a file, it would be one of this machine's
    Expect(library.Save(WorkFile().c_str()));
    FXMatlib again;
    Expect(again.Load(WorkFile().c_str()) && again.materials.count == library.materials.count);
    return 0;
}
