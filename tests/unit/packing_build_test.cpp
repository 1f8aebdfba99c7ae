// Packages from manifests, and back: nothing is lost, mistakes are named with their line, and a machine that
// fails leaves what was there.
#include "geometry/mesh.h"
#include "geometry/model.h"
#include "image/material.h"
#include "pack/description.h"
#include "pack/extraction.h"
#include "pack/kinds.h"
#include "pack/picture_codec.h"
#include "pack/plan.h"
#include "pack/wavefront.h"
#include "unit/packing_folder.h"

#include <cmath>
#include <map>
#include <tuple>

namespace fs = std::filesystem;

namespace {

void Extract(const PackingFolder& folder, const char* package, const std::string& to, bool asWavefront) {
    FXPackage loaded;
    ASSERT_TRUE(loaded.Load(folder.File(package).c_str()));
    const Extraction all = ExtractAll(&loaded, folder.Read(package)[0] == 6, asWavefront);
    EXPECT_TRUE(all.warnings.empty());
    fs::create_directories(folder.File(to));
    for (const ExtractedFile& file : all.files)
        folder.Write(to + "/" + file.name, file.bytes);
    folder.Write(to + "/m.toml", all.manifest);
}

TEST(Packing, BuildsTheSameBytesFromWhatItTookOut) {
    const PictureCodec codec;
    const PackingFolder folder;
    for (const char* scramble : {"", "scramble = true\n"}) {
        folder.Write("m.toml", std::string(scramble) + kManifest);
        ASSERT_EQ(folder.Build("m.toml", "p"), "");
        ASSERT_EQ(folder.Build("m.toml", "again"), "");
        EXPECT_EQ(folder.Read("p"), folder.Read("again"));
        Extract(folder, "p", "stored", false);
        ASSERT_EQ(folder.Build("stored/m.toml", "back"), "");
        EXPECT_EQ(folder.Read("back"), folder.Read("p"));
        Extract(folder, "p", "wavefront", true);
        ASSERT_EQ(folder.Build("wavefront/m.toml", "shaped"), "");
        EXPECT_EQ(folder.Read("shaped"), folder.Read("p"))
            << "what came from OBJ and MTL files needs no more";
    }
    EXPECT_EQ(folder.Read("p").substr(4, 6), "pck01s");
    EXPECT_NE(folder.Read("wavefront/m.toml").find("positions = [1, 5], values = [2, 7]"), std::string::npos);
    EXPECT_TRUE(folder.Read("wavefront/100.obj").starts_with("mtllib 101.mtl\no leaf\nv 0 0 0\nv 1.5 0 0\n"));
    EXPECT_EQ(folder.Read("wavefront/101.mtl"),
              "newmtl Leaf green\nKa 0.1 0.2 0.3\nKd 0.4 0.5 0.6\nKs 0.7 0.8 0.9\nKe 0.11 0.12 0.13\n"
              "Ns 17.5\nd 0.25\nmap_Kd 0.tga\n");
}

TEST(Packing, StoresShapesAsTheShowDrawsThem) {
    const PackingFolder folder;
    ASSERT_EQ(folder.Build("m.toml", "p"), "");
    FXPackage package;
    ASSERT_TRUE(package.Load(folder.File("p").c_str()));
    FXModel model;
    ASSERT_TRUE(model.LoadCN(&package, 100));
    ASSERT_EQ(model.loadedMeshes.count, 2);
    const FXMesh& leaf = *model.loadedMeshes[0];
    EXPECT_STREQ(model.matlibName.text, "101");
    EXPECT_EQ(std::vector<int>(leaf.indices, leaf.indices + leaf.indexCount),
              (std::vector<int>{0, 1, 2, 0, 2, 3}))
        << "a fan of two triangles";
    EXPECT_EQ(leaf.transparent, 1) << "its material's d is below 1";
    EXPECT_EQ(model.loadedMeshes[1]->transparent, 2);
    EXPECT_EQ(leaf.loadedU, 0.75f) << "3 pixels of a texture of 4";
    EXPECT_FLOAT_EQ(leaf.vertices[1].tex[0], 0.3f * 0.75f);
    EXPECT_FLOAT_EQ(leaf.vertices[1].tex[1], 0.9f) << "v runs downwards";
    EXPECT_EQ(package.GetDataType(5), 77);
    EXPECT_EQ(Entry(package, 7), Floats({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0.5f, 2, 3, 1}));
    EXPECT_EQ(Entry(package, 8).substr(4, 8), std::string("\0\0\0\0\0\0\x04@", 8)) << "2.5 seconds";
    Manifest manifest;
    Plan plan;
    std::string header, error;
    ASSERT_TRUE(ReadManifest(folder.File("m.toml"), "", &manifest, &error) &&
                MakePlan(manifest, &plan, &error));
    ASSERT_TRUE(NamesHeader(plan.names, &header, &error)) << error;
    EXPECT_EQ(header, "#define FXNAME_PACKED  100\n#define FXNAME_ART_MTL  101\n");
    plan.names.BuildId("other/art.mtl");
    EXPECT_FALSE(NamesHeader(plan.names, &header, &error));
    EXPECT_NE(error.find("FXNAME_ART_MTL"), std::string::npos) << error;
}

TEST(Packing, MakesNormalsWhereAFileHasNone) {
    const PackingFolder folder;
    const std::string roof = "v 0 0 0\nv 1 0 1\nv 0 1 0\nv -1 0 1\n";
    const std::pair<const char*, std::array<double, 3>> cases[] = {
        // the normal of the first corner
        {"f 1 2 3\nf 1 3 4\n", {-std::sqrt(0.5), 0, std::sqrt(0.5)}},
        {"s 1\nf 1 2 3\nf 1 3 4\n", {0, 0, 1}},
        {"s 1\nf 1 2 3\ns 2\nf 1 3 4\n", {-std::sqrt(0.5), 0, std::sqrt(0.5)}}};
    for (const auto& [faces, normal] : cases) {
        FXObjFile obj;
        std::string error;
        ASSERT_TRUE(fxReadObj(folder.Write("roof.obj", roof + faces), &obj, &error)) << error;
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(obj.meshes[0].corners[0].normal[i], normal[i], 1e-12) << faces;
    }
}

TEST(Packing, NamesTheLineOfAMistake) {
    const PictureCodec codec;
    const auto entry = [](const std::string& text) { return "[[entry]]\nid = 1\n" + text + "\n"; };
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"m.toml", entry("raw = "), "m.toml:3: "},
        {"m.toml", entry("modle = 'x'"), "m.toml:1: an entry is one of"},
        {"m.toml", entry("raw = 'm.toml'\ncolour = 1"), "m.toml:4: nothing is known of 'colour'"},
        {"m.toml", "[[entry]]\nraw = 'm.toml'\n", "m.toml:1: an entry has either an id"},
        {"m.toml", "[[entry]]\nid = -1\nraw = 'm.toml'\n", "m.toml:1: id must be 0 or more"},
        {"m.toml", entry("raw = 'm.toml'") + entry("raw = 'art/dot.tga'"), "m.toml:4: "},
        {"m.toml", entry("raw = 'gone'"), "gone: cannot be read: No such file"},
        {"m.toml", entry("picture = 'm.toml'"), "pictures are jpg, png"},
        {"m.toml", entry("model = 'art/leaf.obj'\nlibrary = 8"), "m.toml:1: there is no entry 8"},
        {"m.toml", entry("model = 'art/leaf.obj'\ndraw = 3"), "m.toml:4: draw must be"},
        {"m.toml", entry("animation = ['a.obj', 7]"), "m.toml:3: animation must be"},
        {"m.toml", entry("animation = ['art/leaf.obj']\ntimes = [1, 2]"), "m.toml:4: times has 2"},
        {"m.toml", entry("matrix = [1, 'x']"), "m.toml:3: matrix must be a list of numbers"},
        {"m.toml", "[entry]\nid = 1\n", "m.toml:1: entries begin with [[entry]]"},
        {"m.toml", "[[entry]]\nname = 'art/art.mtl'\nraw = 'm.toml'\n" + entry("model = 'art/leaf.obj'"),
         "m.toml:4: the name art/art.mtl is another entry's"},
        {"m.toml", entry("phaser = { durtion = 2 }"), "m.toml:3: nothing is known of 'durtion'"},
        {"art/up.obj", "v 0 0 0\nusemtl Leaf green\nf 1 1 1\nusemtl Material001\nf 1 1 1\n",
         "do not agree: 1 triangles"},
        {"art/leaf.obj", "v 0 0 0\nv 1 zero 0\n", "leaf.obj:2: v needs 3 numbers"},
        {"art/leaf.obj", "v 0 0 0\nf 1 1 2\n", "leaf.obj:2: a face names v 2, but there are 1"},
        {"art/leaf.obj", "v 0 0 0\nf 1 1 1/x\n", "leaf.obj:2: '1/x' is no corner"},
        {"art/art.mtl", "newmtl A\nKd 1 1\n", "art.mtl:2: Kd needs 3 numbers"},
        {"art/art.mtl", "Kd 1 1 1\n", "art.mtl:1: Kd stands before"},
        {"art/art.mtl", "newmtl A\nmap_Kd gone.png\n", "the picture of material A is not there"},
        {"art/dot.tga", "no picture", "entry 0, cannot be decoded"}};
    for (const auto& [file, bytes, says] : cases) {
        const PackingFolder folder;
        folder.Write(file, bytes);
        const std::string error = folder.Build("m.toml", "p");
        EXPECT_NE(error.find(says), std::string::npos) << bytes << ": " << error;
        EXPECT_FALSE(fs::exists(folder.File("p")));
    }
}

TEST(Packing, TakesOutWhatItCanOfADamagedPackage) {
    const PackingFolder folder;
    FXPackage package;
    const std::string model =
        Header("om02") + Header("broken") + Header("") + Ints({1, -1, 0, 0, 0, 0, 0, 0});
    LoadTestPackage(package, folder,
                    {{4, kRaw, model}, {4, kRaw, "second"}, {-2, kRaw, "x"}, {6, 999, "odd"}});
    const Extraction all = ExtractAll(&package, true, true);
    EXPECT_EQ(all.warnings.size(), 2u) << "the second of a number, and one below 0";
    ASSERT_EQ(all.files.size(), 2u);
    EXPECT_EQ(all.files[0].name, "4.om") << "as it is stored, for it is not whole";
    EXPECT_EQ(all.files[0].bytes, model);
    EXPECT_NE(all.manifest.find("scramble = true\n\n[[entry]]\nid = 4\nraw = \"4.om\"\n\n[[entry]]\nid = 6\n"
                                "raw = \"6.bin\"\ntype = 999\n"),
              std::string::npos)
        << all.manifest;
    std::string bytes, error;
    EXPECT_FALSE(ExtractOne(&package, 4, true, &bytes, &error));
    EXPECT_NE(error.find("entry 4 is damaged"), std::string::npos) << error;
    error.clear();
    EXPECT_TRUE(ExtractOne(&package, 4, false, &bytes, &error));
    EXPECT_EQ(bytes, model);
}

TEST(Packing, DescribesEveryKindOfEntry) {
    const PackingFolder folder;
    ASSERT_EQ(folder.Build("m.toml", "p"), "");
    FXPackage package;
    ASSERT_TRUE(package.Load(folder.File("p").c_str()));
    const PictureCodec codec;
    const std::map<int, std::string> expected = {
        {0, "tga: 3 x 2, RGBA"},
        {9, "model: om02 \"leaf\", library 101, 2 meshes, 7 vertices, 3 triangles"},
        {100, "model: om03 \"leaf\", library 101, 2 meshes, 7 vertices, 3 triangles"},
        {3, "animation: oa03, 2 key frames, 2 s, library 101, 2 meshes, 9 corners"},
        {6, "animation: version 2, 2 key frames, 1.4 s, ping-pong, library 101, 2 meshes, 9 corners"},
        {7, "matrix: "},
        {8, "phaser: "},
        {5, "raw: "},
        {101, "library: \"101\": Leaf green=0"}};
    const std::vector<EntryKind> kinds = KindsOf(package);
    for (int i = 0; i < package.ids.count; ++i) {
        const Description found = Describe(&package, i, kinds[static_cast<std::size_t>(i)]);
        EXPECT_EQ(found.kind + ": " + found.contents, expected.at(package.ids[i]));
    }
}

TEST(Packing, LeavesWhatWasThereWhenTheMachineFails) {
    const PackingFolder folder;
    ASSERT_EQ(folder.Build("m.toml", "p"), "");
    const std::string before = folder.Read("p");
    folder.Write("art/extra", "x");
    folder.Write("m.toml", kManifest + std::string("[[entry]]\nname = 'extra'\nraw = 'art/extra'\n"));
    fs::create_symlink("/dev/full", folder.File("p.new"));
    EXPECT_NE(folder.Build("m.toml", "p").find("No space left"), std::string::npos);
    EXPECT_EQ(folder.Read("p"), before);
    fxSetDevilNames("no-such-library", "nor-this");
    EXPECT_NE(folder.Build("m.toml", "p").find(kNoCodec), std::string::npos)
        << "a model's picture has a size";
    fxSetDevilNames(nullptr, nullptr);
    EXPECT_EQ(folder.Read("p"), before);
    EXPECT_EQ(folder.Build("m.toml", "p"), "");
}

} // namespace
