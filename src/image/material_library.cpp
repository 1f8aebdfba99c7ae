#include "image/material_library.h"

#include "base/file_handle.h"
#include "image/material.h"
#include "package/package.h"
#include "render/environment.h"

#include <algorithm>
#include <cstdint>
#include <utility>

void FXMatlib::AddMaterial(FXMaterial* m) {
    if (materials.Findpos(m) < 0)
        materials.Push(m);
}

void FXMatlib::RemoveMaterial(FXMaterial* m) {
    materials.Remove(m);
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
    if (!materials.Realloc(materials.count + 1))
        return nullptr;
    materials.Push(new FXMaterial);
    materials.Last()->ownedByLibrary = true;
    return materials.Last();
}

bool FXMatlib::LoadC(FXPackage* pkg, const char* text) {
    int entry = 0;
    if (std::sscanf(text, "%d", &entry) != 1)
        return false;
    FXPackageData* data = pkg->GetDataPtr(entry);
    if (data == nullptr)
        return false;
    // A material's picture is read through the cursor of its entry, which may be this one's.
    FXPackageData record = *data;
    record.ReadString(&name);
    const int count = record.ReadCount();
    if (!materials.Realloc(materials.count + std::min(count, FXPackageData::kSureCount)))
        return true;
    for (int i = 0; i < count; ++i) {
        FXMaterial* material = AppendOwned();
        if (material == nullptr)
            break;
        material->LoadC(pkg, &record);
    }
    return true;
}

bool FXMatlib::Load(const char* path) {
    const FXFile file = fxOpenFile(path, "rb");
    std::int32_t count = 0;
    if (!file || !name.Load(file.get()) || std::fread(&count, sizeof count, 1, file.get()) != 1)
        return false;
    for (; count > 0; --count) {
        const int next = std::fgetc(file.get());
        FXMaterial* material = next != EOF ? AppendOwned() : nullptr;
        if (material == nullptr)
            return false;
        std::ungetc(next, file.get());
        material->Load(file.get());
    }
    return true;
}

bool FXMatlib::Save(const char* path) const {
    FXFile file = fxOpenFile(path, "wb");
    return file && Save(file.get()) && fxCloseWritten(std::move(file));
}

bool FXMatlib::Save(std::FILE* file) const {
    const std::int32_t count = materials.count;
    return name.Save(file) && fxWrite(&count, sizeof count, 1, file) &&
           std::all_of(materials.begin(), materials.end(),
                       [&](const FXMaterial* material) { return material->Save(file); });
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
    for (FXMaterial* material : materials)
        if (material != nullptr && material->ownedByLibrary)
            delete material;
    materials.DestroyBuf();
}
