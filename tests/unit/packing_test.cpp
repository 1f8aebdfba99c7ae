// tamb-pack: packages from manifests, and back; mistakes and faults are named, each where it is.
#include "geometry/mesh.h"
#include "geometry/model.h"
#include "pack/content_check.h"
#include "pack/contents.h"
#include "pack/description.h"
#include "pack/extraction.h"
#include "pack/kinds.h"
#include "pack/package_check.h"
#include "pack/picture_codec.h"
#include "pack/text.h"
#include "pack/wavefront.h"
#include "unit/test_package.h"

#include <cmath>
#include <map>
#include <tuple>

namespace fs = std::filesystem;

namespace {

constexpr const char* kLeafObj = "mtllib art.mtl\no leaf\nv 0 0 0\nv 1.5 0 0\nv 1 1 0.1\nv 0 1 -2e-3\n"
                                 "vt 0 0\nvt 0.3 0.1\nvt 0.7 1\nvn 0 0 1\nvn 0.6 0 0.8\nusemtl Leaf green\n"
                                 "f 1/1/1 2/2/1 3/3/2 4/1/2\nusemtl Material001\nf -4/1/1 -3/2/1 -2/3/1\n";
constexpr const char* kLeafMtl = "newmtl Leaf green\nKa 0.1 0.2 0.3\nKd 0.4 0.5 0.6\nKs 0.7 0.8 0.9\n"
                                 "Ke 0.11 0.12 0.13\nNs 17.5\nd 0.25\nmap_Kd dot.tga\n";
// Of the numbers that the show asks for, so that every entry is of the kind that it wants.
constexpr const char* kManifest =
    "[[entry]]\nid = 0\npicture = 'art/dot.tga'\n"
    "[[entry]]\nid = 9\nmodel = 'art/leaf.obj'\nversion = 2\n"
    "[[entry]]\nname = 'packed'\nmodel = 'art/leaf.obj'\ndraw = { Material001 = 2 }\n"
    "[[entry]]\nid = 72\nanimation = ['art/leaf.obj', 'art/up.obj']\n"
    "times = [1500, 0]\nloop = false\nparameter = 1.25\n"
    "graph = { positions = [1, 5], values = [2, 7] }\n"
    "[[entry]]\nid = 6\nanimation = [9, 9]\ntimes = 700\nping_pong = true\n"
    "[[entry]]\nid = 7\nmatrix = [1,0,0,0, 0,1,0,0, 0,0,1,0, 0.5,2,3,1]\n"
    "[[entry]]\nid = 8\nphaser = { duration = 2.5, loop = false }\n"
    "[[entry]]\nid = 75\nraw = 'art/dot.tga'\ntype = 77\n";

void ExpectSaid(const std::string& all, const std::string& says) {
    EXPECT_NE(all.find(says), std::string::npos) << says << ", but:\n" << all;
}

// A folder with what a small package is made of: a picture, two OBJ files of one topology, their MTL file,
// and that manifest, of an entry of every kind.
class Packing : public testing::Test, public TempFolder {
protected:
    Packing() {
        Write("art/dot.tga", Tga(3, 2, {0xFF0000FF, 0xFF00FF00, 0x80FF0000, 1, 2, 3})); // 0.75 of its texture
        Write("art/leaf.obj", kLeafObj);
        std::string up = kLeafObj;
        Write("art/up.obj", up.replace(up.find("v 1 1 0.1"), 9, "v 1 1 0.5"));
        Write("art/art.mtl", kLeafMtl);
        Write("m.toml", kManifest);
        EXPECT_EQ(Build("m.toml", "p"), "");
        good_ = Read("p");
        EXPECT_TRUE(package_.Load(File("p").c_str()));
    }

    // Builds from that manifest; empty when well, else what is wrong. The names' header is in header_.
    std::string Build(const std::string& manifestFile, const std::string& package) {
        Manifest manifest;
        Plan plan;
        MemoryPackage made;
        std::string error;
        if (ReadManifest(File(manifestFile), "", &manifest, &error) && MakePlan(manifest, &plan, &error) &&
            MakeContents(manifest, plan, false, &made, &error) && NamesHeader(plan.names, &header_, &error))
            made.Save(File(package), manifest.scramble, &error);
        return error;
    }
    // Takes the package out into the folder, and builds it again from there.
    std::string Rebuilt(const std::string& to, bool asWavefront) {
        FXPackage loaded;
        EXPECT_TRUE(loaded.Load(File("p").c_str()));
        const Extraction all = ExtractAll(&loaded, Read("p")[0] == 6, asWavefront);
        EXPECT_TRUE(all.warnings.empty());
        for (const ExtractedFile& file : all.files)
            Write(to + "/" + file.name, file.bytes);
        Write(to + "/m.toml", all.manifest);
        EXPECT_EQ(Build(to + "/m.toml", "back"), "");
        return Read("back");
    }
    // What verify says of a package, a line each: "entry 9, byte 4: text"; warnings or faults.
    std::string Findings(const std::string& bytes, bool warnings = false) const {
        EntryFindings whole = {-1, EntryKind::Raw, {}};
        PackageFacts facts;
        FXPackage package;
        const std::string file = Write("looked-at", bytes);
        std::vector<EntryFindings> found;
        if (CheckPackage(file, &whole.faults, &facts) && package.Load(file.c_str()) &&
            !OverlapsTooMuch(package))
            found = CheckContents(&package, [] {});
        found.push_back(whole);
        std::string all;
        for (const EntryFindings& entry : found)
            for (const Fault& fault : entry.faults.all)
                if (fault.isWarning == warnings)
                    all += Text("entry %d, byte %d: ", entry.id, fault.offset) + fault.text + "\n";
        return all;
    }

    const PictureCodec codec_;
    std::string good_, header_;
    FXPackage package_;
};

TEST_F(Packing, BuildsTheSameBytesFromWhatItTookOut) {
    for (const char* scramble : {"", "scramble = true\n"}) {
        Write("m.toml", std::string(scramble) + kManifest);
        ASSERT_EQ(Build("m.toml", "p"), "");
        EXPECT_EQ(Rebuilt("stored", false), Read("p"));
        EXPECT_EQ(Rebuilt("wavefront", true), Read("p")) << "what came from OBJ and MTL files needs no more";
    }
    EXPECT_EQ(Read("p").substr(4, 6), "pck01s");
    ExpectSaid(Read("wavefront/m.toml"), "positions = [1, 5], values = [2, 7]");
    EXPECT_TRUE(Read("wavefront/100.obj").starts_with("mtllib 101.mtl\no leaf\nv 0 0 0\nv 1.5 0 0\n"));
    std::string mtl = kLeafMtl;
    EXPECT_EQ(Read("wavefront/101.mtl"), mtl.replace(mtl.find("dot"), 3, "0"));
    const std::map<int, std::string> expected = {
        {0, "tga: 3 x 2, RGBA"},
        {9, "model: om02 \"leaf\", library 101, 2 meshes, 7 vertices, 3 triangles"},
        {100, "model: om03 \"leaf\", library 101, 2 meshes, 7 vertices, 3 triangles"},
        {72, "animation: oa03, 2 key frames, 2 s, library 101, 2 meshes, 9 corners"},
        {6, "animation: version 2, 2 key frames, 1.4 s, ping-pong, library 101, 2 meshes, 9 corners"},
        {7, "matrix: "},
        {8, "phaser: "},
        {75, "raw: "},
        {101, "library: \"101\": Leaf green=0"}};
    for (int i = 0; i < package_.ids.count; ++i) {
        const Description found = Describe(&package_, i, KindOf(package_, package_.ids[i]));
        EXPECT_EQ(found.kind + ": " + found.contents, expected.at(package_.ids[i]));
    }
}

TEST_F(Packing, StoresShapesAsTheShowDrawsThem) {
    FXModel model;
    ASSERT_TRUE(model.LoadCN(&package_, 100));
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
    EXPECT_EQ(package_.GetDataType(75), 77);
    EXPECT_EQ(header_, "#define FXNAME_PACKED  100\n#define FXNAME_ART_MTL  101\n");

    const std::string roof = "v 0 0 0\nv 1 0 1\nv 0 1 0\nv -1 0 1\n";
    const std::pair<const char*, std::array<double, 3>> cases[] = {
        // the normal of the first corner, where the file has none
        {"f 1 2 3\nf 1 3 4\n", {-std::sqrt(0.5), 0, std::sqrt(0.5)}},
        {"s 1\nf 1 2 3\nf 1 3 4\n", {0, 0, 1}},
        {"s 1\nf 1 2 3\ns 2\nf 1 3 4\n", {-std::sqrt(0.5), 0, std::sqrt(0.5)}}};
    for (const auto& [faces, normal] : cases) {
        FXObjFile obj;
        std::string error;
        ASSERT_TRUE(fxReadObj(Write("roof.obj", roof + faces), &obj, &error)) << error;
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(obj.meshes[0].corners[0].normal[i], normal[i], 1e-12) << faces;
    }
}

TEST_F(Packing, NamesTheLineOfAMistake) {
    const auto entry = [](const std::string& text) { return "[[entry]]\nid = 1\n" + text + "\n"; };
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"m.toml", entry("raw = "), "m.toml:3: "},
        {"m.toml", entry("raw = 'm.toml'\ncolour = 1"), "m.toml:4: nothing is known of 'colour'"},
        {"m.toml", entry("raw = 'm.toml'") + entry("raw = 'art/dot.tga'"), "m.toml:4: "},
        {"m.toml", entry("model = 'art/leaf.obj'\nlibrary = 8"), "m.toml:1: there is no entry 8"},
        {"m.toml", entry("animation = ['art/leaf.obj']\ntimes = [1, 2]"), "m.toml:4: times has 2"},
        {"m.toml", "[[entry]]\nname = 'a.b'\nraw = 'm.toml'\n[[entry]]\nname = 'a_b'\nraw = 'm.toml'\n",
         "FXNAME_A_B"},
        {"m.toml", "[[entry]]\nname = 'a\tb'\nraw = 'm.toml'\n", "'a\tb' makes no name that C takes"},
        {"art/up.obj", "v 0 0 0\nusemtl Leaf green\nf 1 1 1\nusemtl Material001\nf 1 1 1\n",
         "do not agree: 1 triangles"},
        {"art/leaf.obj", "v 0 0 0\nv 1 zero 0\n", "leaf.obj:2: v needs 3 numbers"},
        {"art/leaf.obj", "v 0 0 0\nf 1 1 2\n", "leaf.obj:2: a face names v 2, but there are 1"},
        {"art/art.mtl", "newmtl A\nKd 1 1\n", "art.mtl:2: Kd needs 3 numbers"},
        {"art/art.mtl", "newmtl A\nmap_Kd gone.png\n", "the picture of material A is not there"},
        {"art/dot.tga", "no picture", "entry 0, cannot be decoded"}};
    for (const auto& [file, bytes, says] : cases) {
        const std::string whole = Read(file);
        Write(file, bytes);
        ExpectSaid(Build("m.toml", "made"), says);
        EXPECT_FALSE(fs::exists(File("made"))) << says;
        Write(file, whole);
    }
}

TEST_F(Packing, TakesOutWhatItCanOfADamagedPackage) {
    const std::string model =
        Header("om02") + Header("broken") + Header("") + Ints({1, -1, 0, 0, 0, 0, 0, 0});
    LoadTestPackage(package_, *this,
                    {{4, kRaw, model}, {4, kRaw, "second"}, {-2, kRaw, "x"}, {6, 999, "odd"}});
    const Extraction all = ExtractAll(&package_, true, true);
    EXPECT_EQ(all.warnings.size(), 2u) << "the second of a number, and one below 0";
    ASSERT_EQ(all.files.size(), 2u);
    EXPECT_EQ(all.files[0].name, "4.om") << "as it is stored, for it is not whole";
    EXPECT_EQ(all.files[0].bytes, model);
    ExpectSaid(all.manifest, "scramble = true\n\n[[entry]]\nid = 4\nraw = \"4.om\"\n\n[[entry]]\nid = 6\n"
                             "raw = \"6.bin\"\ntype = 999\n");
    std::string bytes, error;
    EXPECT_FALSE(ExtractOne(&package_, 4, true, &bytes, &error));
    ExpectSaid(error, "entry 4 is damaged");
    EXPECT_TRUE(ExtractOne(&package_, 4, false, &bytes, &error));
    EXPECT_EQ(bytes, model);
}

TEST_F(Packing, VerifySaysWhereAnEntryIsWrong) {
    EXPECT_EQ(Findings(good_), "");
    const std::string warnings = Findings(good_, true);
    ExpectSaid(warnings, "entry 18, space, is missing: what shows it is plain white");
    ExpectSaid(warnings, "entry 11, the sun's core, is missing: the show goes on");
    EXPECT_EQ(warnings.find("entry 72"), std::string::npos);
    EXPECT_EQ(warnings.find("Material001"), std::string::npos) << "the desktop's, which the show has";
    const std::tuple<int, std::size_t, std::string, const char*> cases[] = {
        // entry, place, bytes, what is said
        {9, 4, "xm02", "entry 9, byte 4: it begins with 'xm02'"},
        {9, 20, "500", "the library, '500', is not in the package"},
        {9, 23, Ints({999}), "entry 9, byte 23: the number of meshes is 999"},
        {9, 61, Ints({0x7F800000}), "byte 61: number 0 of position of vertex 0 of mesh 0 is no finite"},
        {9, 369, Ints({4}), "entry 9, byte 369: corner 0 of mesh 0 is vertex 4, but there are 4"},
        {72, 8, Ints({99999}), "entry 72, byte 8: the number of key frames is 99999"},
        {101, 29, "9", "entry 101 takes it for the picture"},
        {0, 16, "\x07", "entry 0, byte 0: it cannot be decoded as tga"}};
    const std::size_t data = good_.size() - static_cast<std::size_t>(package_.dataSize);
    for (const auto& [id, at, bytes, says] : cases) {
        const auto entryAt = static_cast<std::size_t>(package_.offsets[package_.ids.Findpos(id)]);
        ExpectSaid(Findings(std::string(good_).replace(data + entryAt + at, bytes.size(), bytes)), says);
    }
}

TEST_F(Packing, VerifySaysWhereThePackageIsWrong) {
    const std::string head = Header("pck01"), one = head + Table({1}), raw = Table({kRaw, kRaw}) + "ab";
    const std::pair<std::string, const char*> cases[] = {
        {"not a package", "byte 0: it does not begin"},
        {head + Ints({5, 1}), "byte 9: the number of ids of the package is 5"},
        {one + Table({0}) + Table({}) + Table({kRaw}) + "a", "the tables differ: 1 ids, 1 offsets, 0"},
        {one + Table({9}) + Table({1}) + Table({kRaw}) + "a", "byte 21: entry 1 begins at 9"},
        {one + Table({0}) + Table({2}) + Table({kRaw}) + "a", "byte 29: entry 1 has 2 bytes from 0"},
        {head + Table({4, 4}) + Table({0, 1}) + Table({1, 1}) + raw,
         "entries 0 and 1 of the table have the same number, 4"},
        {head + Table({4, 5}) + Table({0, 1}) + Table({2, 1}) + raw,
         "entry 5 begins 1 bytes before entry 4 ends"},
        {good_.substr(0, good_.size() - 1), "entry 101 has"}};
    for (const auto& [file, says] : cases)
        ExpectSaid(Findings(file), says);
    EXPECT_FALSE(OverlapsTooMuch(package_));
    const std::vector<std::int32_t> five = {50, 50, 50, 50, 50};
    Write("p", head + Table({0, 1, 2, 3, 4}) + Table({0, 0, 0, 0, 0}) + Table(five) + Table(five) +
                   std::string(50, 'x'));
    ASSERT_TRUE(package_.Load(File("p").c_str()));
    EXPECT_TRUE(OverlapsTooMuch(package_)) << "more work than bytes";
}

std::string Animation(const std::string& name, const std::string& graph) {
    return Ints({2}) + Header(name) + Header(name) + Ints({2, 5, 5}) + graph + Floats({0.5f});
}

// What the show reads well has a warning that says what it makes of it, and no fault.
TEST_F(Packing, VerifyWarnsOfWhatTheShowReadsOtherwiseThanItLooks) {
    const std::string head = Header("om03") + Header("m") + Header(""), tables = Ints({0, 0, 0});
    const std::string graph = Ints({0, 0, 0, 0}) + std::string(2, '\0') + Floats({0}) + Ints({4});
    const std::string flags(4, '\1'), model = head + Ints({1}) + tables + MeshRecordHead(0, 0) + Ints({0});
    std::string manyMeshes;
    for (int i = 0; i < 70000; ++i)
        manyMeshes += MeshRecordHead(0, 0) + Ints({0});
    const std::tuple<std::string, const char*, const char*> cases[] = {
        // an animation, or a model; the warning, or the fault
        {Animation("100", graph) + flags, "", ""},
        {Animation("100x", graph) + flags,
         "key frame 0, '100x', is no plain number: the show takes it for 100", ""},
        {Animation("100", Ints({0, 0, 1, 7, 0}) + graph.substr(16)) + flags,
         "the graph has 1 positions, but 0 values: the show uses neither", ""},
        {Animation("100", graph) + "\2\1\1\1", "playing is 2, neither 0 nor 1: the show takes it for false",
         ""},
        {Animation("100", graph) + flags + "xy",
         "2 bytes are left over at the end: the show does not read that far", ""},
        {head + Ints({1, 2}) + Floats({0, 0}) + tables.substr(4) + MeshRecordHead(0, 0) + Ints({0}),
         "are 2 numbers, no multiple of 3: the show does without the last 2", ""},
        {std::string(model).replace(8, 5, Ints({1}) + std::string(1, '\0')), "the name has a zero byte in it",
         ""},
        {head + Ints({70000}) + tables + manyMeshes, "",
         "mesh 68971 and what follows out: it takes 161 MiB at the least"}};
    for (const auto& [entry, warning, fault] : cases) {
        const int id = entry.starts_with(Header("om03")) ? 4 : 72;
        LoadTestPackage(package_, *this, {{id, kRaw, entry}, {100, kRaw, model}});
        std::string warnings, faults;
        for (const EntryFindings& found : CheckContents(&package_, [] {}))
            for (const Fault& one : found.faults.all)
                (one.isWarning ? warnings : faults) += found.id == id ? one.text : "";
        EXPECT_EQ(std::pair(warnings.empty(), faults.empty()), std::pair(*warning == '\0', *fault == '\0'));
        ExpectSaid(warnings, warning);
        ExpectSaid(faults, fault);
    }
}

// Entries without a magic word: what they are named for, then what the show asks for, then their shape.
TEST_F(Packing, KindsFollowWhoRefersToAnEntry) {
    const std::string matrix = Floats({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    const std::string graph = Ints({0, 1000, 0, 0}) + std::string(2, '\0') + Floats({0.3f}) + Ints({16});
    const std::string morph = Animation("104", graph) + std::string("\1\0\1\1", 4);
    ASSERT_EQ(morph.size(), matrix.size());
    const std::string model = Header("om02") + Header("") + Header("102") + Ints({0});
    const std::pair<TestEntry, EntryKind> kEntries[] = {
        {{72, kRaw, matrix}, EntryKind::Animation}, {{18, kRaw, matrix}, EntryKind::Matrix},
        {{19, kTga, morph}, EntryKind::Picture},    {{100, kRaw, model}, EntryKind::Model},
        {{102, kRaw, matrix}, EntryKind::Library},  {{103, kRaw, morph}, EntryKind::Animation},
        {{104, kRaw, matrix}, EntryKind::Model},    {{105, kRaw, "odd"}, EntryKind::Raw}};
    std::vector<TestEntry> entries;
    for (const auto& [entry, kind] : kEntries)
        entries.push_back(entry);
    LoadTestPackage(package_, *this, entries);
    for (const auto& [entry, kind] : kEntries)
        EXPECT_EQ(KindOf(package_, entry.id), kind) << entry.id;
}

} // namespace
