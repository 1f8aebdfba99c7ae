// A named list of materials with another library to ask first.
#pragma once

#include "base/owner_array.h"
#include "base/str.h"
#include "image/material.h"

#include <cstdio>

class FXPackage;

// The name under which the scene registers the desktop picture: meshes that name it show the desktop.
inline constexpr char kDesktopMaterial[] = "Material001";

// Shared through the environment and counted: each holder calls Release once. Owns the materials that it
// loaded (ownedByLibrary); those added stay their giver's.
class FXMatlib {
public:
    FXMatlib() = default;
    ~FXMatlib() { Destroy(); }
    FXMatlib(const FXMatlib&) = delete;
    FXMatlib& operator=(const FXMatlib&) = delete;

    void AddMaterial(FXMaterial* m); // once
    void RemoveMaterial(FXMaterial* m);
    // By exact name, in the parent first: what the scene registers takes precedence. Null when there is none.
    FXMaterial* FindMaterial(const char* materialName);
    // The record. Parts: who reads, writes or checks it. Begin comes before the materials.
    template <class Parts, class V> static bool Fields(Parts& p, V& v) {
        return v.String("the name", p.name) && v.template Count<FXMaterial>("materials", p.count) &&
               p.Begin() && v.Each(p.count, [&](int i) { return p.Material(i); });
    }
    // From the package entry whose number stands in the text; false when there is none. Materials are
    // appended, as many as the count says (FXPackageData), default-coloured where the record has ended; one
    // whose picture failed stays, untextured.
    bool LoadC(FXPackage* pkg, const char* text);
    // The entries of the pictures that LoadC would load, those that are not listed yet added to the list.
    static void ListPictures(FXPackage* pkg, const char* text, FXArray<int>* entries);
    // The record in a file, pictures by file name. False, with the materials that are there, when it ends
    // first.
    bool Load(const char* path);
    bool Save(const char* path) const;
    bool Save(std::FILE* file) const;
    bool LoadFromMtl(const char* path); // a Wavefront MTL file; without memory false, and what there is stays
    // Adds every material's picture file to a package in the making, and names it by its number there. Once.
    void Compile(FXPackage* pkg);
    // Gives up one reference. The last one destroys the library, unless autoDelete is off.
    void Release();
    void Destroy();

    FXStr name;
    FXMatlib* parent = nullptr;
    FXOwnerArray<FXMaterial> materials; // entries may be null
    bool autoDelete = true;
    int refCount = 1;

private:
    struct Loader;
    FXMaterial* AppendOwned(); // a new one; null when there is no memory
};
