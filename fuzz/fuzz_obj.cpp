// Any bytes as a Wavefront OBJ file: made a model, and written as such a file again.
#include "geometry/model_import.h"
#include "image/wavefront_lines.h"
#include "pack/wavefront.h"
#include "whole_model.h"

namespace {

// Of all polygons, each cut into a fan.
std::size_t localCountTriangles(std::string_view text) {
    std::size_t count = 0;
    fxForEachLine(std::string(text), [&](const FXWavefrontLine& line) {
        for (const std::string& corner : line.words)
            Expect(line.keyword != "f" || !corner.ends_with('/')); // else it names what stands behind it
        if (line.keyword == "f")
            count += line.words.size() - 2;
    });
    return count;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    WriteFile(WorkFile(), AsText(bytes, size));
    FXObjFile obj;
    std::string error;
    if (!fxReadObj(WorkFile(), &obj, &error)) {
        Expect(!error.empty());
        return 0;
    }
    std::size_t corners = 0;
    for (const FXObjMesh& mesh : obj.meshes)
        corners += mesh.corners.size();
    Expect(corners == 3 * localCountTriangles(AsText(bytes, size)));
    FXModel model;
    model.ImportObj(obj, {});
    model.UpdateMeshes();
    ExpectWhole(model);
    if (model.GetTotalVertices() == 0)
        return 0;
    WriteFile(WorkFile(), ObjText(model, ""));
    FXObjFile again;
    Expect(fxReadObj(WorkFile(), &again, &error));
    return 0;
}
