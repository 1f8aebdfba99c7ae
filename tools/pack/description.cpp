#include "pack/description.h"

#include "anim/morph_animation.h"
#include "geometry/mesh.h"
#include "image/canvas.h"
#include "image/codec.h"
#include "image/material.h"
#include "image/material_library.h"
#include "pack/entry_check.h"
#include "pack/text.h"

namespace {

std::string localThePicture(FXPackage* package, int id) {
    FXCanvas canvas;
    if (!fxDevilLoaded())
        return "";
    if (!canvas.CreateFromPictCN(package, id))
        return "damaged: cannot be decoded";
    return Text("%d x %d, %s", canvas.GetWidth(), canvas.GetHeight(), canvas.opaque ? "RGB" : "RGBA");
}

std::string localShapes(const FXModel& model) {
    int triangles = 0;
    for (const FXMesh* mesh : model.meshes)
        triangles += mesh->indexCount / 3;
    return Counted(model.meshes.count, "mesh", "meshes") + ", " +
           Counted(model.GetTotalVertices(), "vertex", "vertices") + ", " +
           Counted(triangles, "triangle", "triangles");
}

std::string localLibraryOf(const FXStr& name) {
    return name.IsEmpty() ? "no library" : std::string("library ") + name.text;
}

std::string localTheModel(FXPackage* package, int id, int version) {
    FXModel model;
    model.LoadCN(package, id);
    model.UpdateMeshes();
    return Text("om%02d %s, %s, ", version, Quoted(model.name.text).c_str(),
                localLibraryOf(model.matlibName).c_str()) +
           localShapes(model);
}

std::string localTheAnimation(FXPackage* package, int id, int version) {
    FXAnim animation;
    animation.LoadCN(package, id);
    double seconds = 0;
    for (const int time : animation.frameTimes)
        seconds += time > 0 ? time / 1000.0 : 0.5;
    std::string text = (version == 3 ? "oa03, " : "version 2, ") +
                       Counted(animation.models.count, "key frame", "key frames") + Text(", %g s", seconds);
    if (animation.loop)
        text += animation.pingPong ? ", ping-pong" : ", loop";
    const FXModel* first = animation.models.count > 0 ? animation.models[0] : nullptr;
    if (first == nullptr)
        return text;
    int corners = 0;
    for (const FXMesh* mesh : first->meshes)
        corners += mesh->indexCount;
    return text + ", " + localLibraryOf(first->matlibName) + ", " +
           Counted(first->meshes.count, "mesh", "meshes") + ", " + Counted(corners, "corner", "corners");
}

std::string localTheLibrary(FXPackage* package, int id) {
    FXMatlib library;
    library.LoadC(package, std::to_string(id).c_str());
    std::string text = Quoted(library.name.text);
    for (const FXMaterial* material : library.materials) {
        text += (material == library.materials.First() ? ": " : ", ") + std::string(material->name.text);
        if (!material->texRef.IsEmpty())
            text += std::string("=") + material->texRef.text;
    }
    return text;
}

} // namespace

Description Describe(FXPackage* package, int index, EntryKind kind) {
    const FXPackageData data = *package->cursors[index];
    const int id = package->ids[index];
    if (kind == EntryKind::Picture)
        return {FindPictureType(package->types[index])->ending, localThePicture(package, id)};
    Description description = {KindName(kind), ""};
    if (package->GetDataPtr(id) != package->cursors[index]) {
        description.contents = "cannot be reached: an entry before it has the same number";
        return description;
    }
    Faults faults;
    EntryFacts facts;
    CheckEntry(kind, data, &faults, &facts);
    if (kind == EntryKind::Model)
        description.contents = localTheModel(package, id, facts.version);
    else if (kind == EntryKind::Animation)
        description.contents = localTheAnimation(package, id, facts.version);
    else if (kind == EntryKind::Library)
        description.contents = localTheLibrary(package, id);
    if (!faults.Good())
        description.contents = "damaged: " + description.contents;
    return description;
}
