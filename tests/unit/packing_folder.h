// A folder with what a small package is made of: a picture, two OBJ files of one topology, their MTL file,
// and a manifest of an entry of every kind.
#pragma once

#include "pack/contents.h"
#include "unit/test_package.h"

constexpr const char* kLeafObj = "mtllib art.mtl\n"
                                 "o leaf\n"
                                 "v 0 0 0\nv 1.5 0 0\nv 1 1 0.1\nv 0 1 -2e-3\n"
                                 "vt 0 0\nvt 0.3 0.1\nvt 0.7 1\n"
                                 "vn 0 0 1\nvn 0.6 0 0.8\n"
                                 "usemtl Leaf green\n"
                                 "f 1/1/1 2/2/1 3/3/2 4/1/2\n"
                                 "usemtl Material001\n"
                                 "f -4/1/1 -3/2/1 -2/3/1\n";
constexpr const char* kLeafMtl =
    "newmtl Leaf green\n"
    "Ka 0.1 0.2 0.3\nKd 0.4 0.5 0.6\nKs 0.7 0.8 0.9\nKe 0.11 0.12 0.13\nNs 17.5\n"
    "d 0.25\nmap_Kd dot.tga\n";
constexpr const char* kManifest =
    "[[entry]]\nid = 0\npicture = 'art/dot.tga'\n"
    "[[entry]]\nid = 9\nmodel = 'art/leaf.obj'\nversion = 2\n"
    "[[entry]]\nname = 'packed'\nmodel = 'art/leaf.obj'\ndraw = { Material001 = 2 }\n"
    "[[entry]]\nid = 3\nanimation = ['art/leaf.obj', 'art/up.obj']\n"
    "times = [1500, 0]\nloop = false\nparameter = 1.25\n"
    "graph = { positions = [1, 5], values = [2, 7] }\n"
    "[[entry]]\nid = 6\nanimation = [9, 9]\ntimes = 700\nping_pong = true\n"
    "[[entry]]\nid = 7\nmatrix = [1,0,0,0, 0,1,0,0, 0,0,1,0, 0.5,2,3,1]\n"
    "[[entry]]\nid = 8\nphaser = { duration = 2.5, loop = false }\n"
    "[[entry]]\nid = 5\nraw = 'art/dot.tga'\ntype = 77\n";

class PackingFolder : public TempFolder {
public:
    PackingFolder() {
        std::filesystem::create_directories(File("art"));
        Write("art/dot.tga",
              Tga(3, 2, {0xFF0000FF, 0xFF00FF00, 0x80FF0000, 1, 2, 3})); // fills 0.75 of its texture
        Write("art/leaf.obj", kLeafObj);
        std::string up = kLeafObj;
        Write("art/up.obj", up.replace(up.find("v 1 1 0.1"), 9, "v 1 1 0.5"));
        Write("art/art.mtl", kLeafMtl);
        Write("m.toml", kManifest);
    }

    // Builds from that manifest; empty when well, else what is wrong.
    std::string Build(const std::string& manifestFile, const std::string& package) const {
        Manifest manifest;
        Plan plan;
        MemoryPackage made;
        std::string error;
        if (ReadManifest(File(manifestFile), "", &manifest, &error) && MakePlan(manifest, &plan, &error) &&
            MakeContents(manifest, plan, false, &made, &error))
            made.Save(File(package), manifest.scramble, &error);
        return error;
    }
};
