// Any bytes as a model in a package, of either version: loaded, moved as the show moves it, saved and loaded
// again.
#include "entry_package.h"
#include "package/package.h"
#include "whole_model.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    WritePackage({bytes, size}, kRaw);
    FXPackage package;
    Expect(package.Load(WorkFile().c_str()));
    FXModel model;
    {
        const FewElements few(size);
        FXArray<int> pictures;
        FXModel::ListPictures(&package, kEntry, &pictures);
        Expect(model.LoadCN(&package, kEntry));
    }
    model.UpdateMeshes();
    ExpectWhole(model);
    model.UnitizeStretch();
    model.Normalize(false);
    if (!IsOneThatIsWritten(size))
        return 0;
    const int vertices = model.GetTotalVertices();
    FXModel again;
    Expect(model.Save(WorkFile().c_str()) && again.Load(WorkFile().c_str()));
    again.UpdateMeshes();
    ExpectWhole(again);
    Expect(again.GetTotalVertices() <= vertices);
    return 0;
}
