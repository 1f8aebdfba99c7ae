#include "image/material_library.h"

#include "base/file_handle.h"
#include "package/package.h"
#include "package/record.h"
#include "render/environment.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int kMostListed = 256; // pictures: a malformed library may name very many

} // namespace

void FXMatlib::AddMaterial(FXMaterial* m) {
    if (materials.Findpos(m) < 0 && materials.Realloc(materials.count + 1))
        materials.Push(m);
}

void FXMatlib::RemoveMaterial(FXMaterial* m) {
    if (const int at = materials.Findpos(m); at >= 0)
        materials.Release(at);
}

FXMaterial* FXMatlib::FindMaterial(const char* materialName) {
    if (parent != nullptr)
        if (FXMaterial* found = parent->FindMaterial(materialName))
            return found;
    const auto* at = std::find_if(materials.begin(), materials.end(), [&](const FXMaterial* m) {
        return m != nullptr && m->name.Compare(materialName);
    });
    return at == materials.end() ? nullptr : *at;
}

FXMaterial* FXMatlib::AppendOwned() {
    FXMaterial* material = materials.PushNew();
    if (material != nullptr)
        material->ownedByLibrary = true;
    return material;
}

// Appends the materials of a record, from a file when there is no package.
struct FXMatlib::Loader {
    bool Begin() const {
        const bool isWhole = data.size - data.left >= 8 + name.len; // name and count were there
        return (package != nullptr || isWhole) &&
               library.materials.Realloc(library.materials.count +
                                         std::min(count, FXPackageData::kSureCount));
    }
    bool Material(int) {
        if (package == nullptr && data.left == 0)
            return false;
        FXMaterial* material = library.AppendOwned();
        if (material != nullptr)
            material->LoadC(package, &data);
        return material != nullptr;
    }

    FXMatlib& library;
    FXPackage* package;
    // A copy: a material's picture is read through its entry's cursor, which may be the library's.
    FXPackageData data;
    FXStr& name = library.name;
    int count = 0;
};

bool FXMatlib::LoadC(FXPackage* pkg, const char* text) {
    int entry = 0;
    if (std::sscanf(text, "%d", &entry) != 1)
        return false;
    const FXPackageData* data = pkg->GetDataPtr(entry);
    if (data == nullptr)
        return false;
    Loader loader = {*this, pkg, *data};
    FXRecordReader reader(&loader.data);
    Fields(loader, reader);
    return true;
}

void FXMatlib::ListPictures(FXPackage* pkg, const char* text, FXArray<int>* entries) {
    struct Lister {
        bool Begin() const { return true; }
        bool Material(int) {
            FXMaterial material;
            fxLoadRecord(material, &data);
            int entry = 0;
            if (std::sscanf(material.texRef.text, "%d", &entry) == 1 && entries->Findpos(entry) < 0)
                entries->Push(entry);
            return data.left > 0 && entries->count < kMostListed;
        }

        FXPackageData data;
        FXArray<int>* entries;
        FXStr name = {};
        int count = 0;
    };
    int library = 0;
    const FXPackageData* data = std::sscanf(text, "%d", &library) == 1 ? pkg->GetDataPtr(library) : nullptr;
    if (data == nullptr)
        return;
    Lister lister = {*data, entries};
    FXRecordReader reader(&lister.data);
    Fields(lister, reader);
}

bool FXMatlib::Load(const char* path) {
    FXFileBlock file;
    if (!file.Load(path))
        return false;
    Loader loader = {*this, nullptr, file.data};
    FXRecordReader reader(&loader.data);
    return Fields(loader, reader);
}

bool FXMatlib::Save(const char* path) const {
    FXFile file = fxOpenFile(path, "wb");
    return file && Save(file.get()) && fxCloseWritten(std::move(file));
}

bool FXMatlib::Save(std::FILE* file) const {
    struct Saver {
        bool Begin() const { return true; }
        bool Material(int i) const { return library.materials[i]->Save(file); }

        const FXMatlib& library;
        std::FILE* file;
        const FXStr& name = library.name;
        int count = library.materials.count;
    } saver = {*this, file};
    FXRecordWriter writer(file);
    return Fields(saver, writer);
}

void FXMatlib::Compile(FXPackage* pkg) {
    for (FXMaterial* material : materials)
        if (material != nullptr)
            pkg->AddDataFile1(&material->texRef);
}

void FXMatlib::Release() {
    if (--refCount >= 1 || !autoDelete)
        return;
    if (fxglobalEnv != nullptr)
        fxglobalEnv->RemoveMatlib(this);
    delete this;
}

void FXMatlib::Destroy() {
    for (FXMaterial*& material : materials)
        if (material != nullptr && !material->ownedByLibrary)
            material = nullptr;
    materials.DestroyBuf();
}
