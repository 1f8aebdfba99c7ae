// Faults planted in a good package are found, each where it is.
#include "pack/content_check.h"
#include "pack/kinds.h"
#include "pack/package_check.h"
#include "pack/picture_codec.h"
#include "unit/packing_folder.h"

#include <tuple>

namespace {

// What verify says, a line each: "entry 9, byte 4: text"; warnings or faults.
std::string Findings(const std::string& file, bool warnings = false) {
    std::string all;
    const auto add = [&](int id, const Faults& faults) {
        for (const Fault& fault : faults.all)
            if (fault.isWarning == warnings)
                all += (id >= 0 ? "entry " + std::to_string(id) + ", " : "") + "byte " +
                       std::to_string(fault.offset) + ": " + fault.text + "\n";
    };
    Faults faults;
    PackageFacts facts;
    FXPackage package;
    const bool readable = CheckPackage(file, &faults, &facts) && package.Load(file.c_str());
    add(-1, faults);
    if (readable && !OverlapsTooMuch(package))
        for (const EntryFindings& entry : CheckContents(&package, [] {}))
            add(entry.id, entry.faults);
    return all;
}

void ExpectSaid(const std::string& findings, const std::string& says) {
    EXPECT_NE(findings.find(says), std::string::npos) << says << ", but:\n" << findings;
}

// Numbers that the show asks for, so that every entry is of the kind that it wants.
class Verify : public testing::Test {
protected:
    Verify() {
        std::string manifest = kManifest;
        for (const auto& [from, to] : {std::pair{"id = 3\n", "id = 72\n"}, {"id = 5\n", "id = 75\n"}})
            manifest.replace(manifest.find(from), std::string(from).size(), to);
        folder_.Write("m.toml", manifest);
        EXPECT_EQ(folder_.Build("m.toml", "p"), "");
        good_ = folder_.Read("p");
        EXPECT_TRUE(package_.Load(folder_.File("p").c_str()));
    }

    // Where the entry begins in the file.
    std::size_t EntryAt(int id) const {
        return good_.size() - static_cast<std::size_t>(package_.dataSize) +
               static_cast<std::size_t>(package_.offsets[package_.ids.Findpos(id)]);
    }
    std::string FindingsOf(const std::string& bytes) const { return Findings(folder_.Write("bad", bytes)); }

    const PictureCodec codec_;
    const PackingFolder folder_;
    std::string good_;
    FXPackage package_;
};

TEST_F(Verify, FindsNothingInAGoodPackage) {
    EXPECT_EQ(Findings(folder_.File("p")), "");
}

TEST_F(Verify, SaysWhereAnEntryIsWrong) {
    const std::tuple<int, std::size_t, std::string, const char*> cases[] = {
        // entry, place, bytes, what is said
        {9, 4, "xm02", "entry 9, byte 4: it begins with 'xm02'"},
        {9, 8, Ints({-1}), "entry 9, byte 8: the length of the name is -1"},
        {9, 20, "500", "the library, '500', is not in the package"},
        {9, 23, Ints({999}), "entry 9, byte 23: the number of meshes is 999"},
        {9, 49, Ints({7}), "entry 9, byte 49: mesh 0 is to be drawn in way 7"},
        {9, 61, Ints({0x7F800000}), "byte 61: number 0 of position of vertex 0 of mesh 0 is no finite"},
        {9, 369, Ints({4}), "entry 9, byte 369: corner 0 of mesh 0 is vertex 4, but there are 4"},
        {72, 0, Ints({4}) + "oa04", "entry 72"},
        {72, 8, Ints({99999}), "entry 72, byte 8: the number of key frames is 99999"},
        {6, 8, "5", "key frame 0, '5', is not in the package"},
        {101, 0, Ints({300}), "entry 101, byte 4: the name takes 300 bytes"},
        {101, 29, "9", "entry 101 takes it for the picture"},
        {0, 16, "\x07", "entry 0, byte 0: it cannot be decoded as tga"}};
    for (const auto& [id, at, bytes, says] : cases) {
        std::string bad = good_;
        ExpectSaid(FindingsOf(bad.replace(EntryAt(id) + at, bytes.size(), bytes)), says);
    }
}

TEST_F(Verify, SaysWhereThePackageIsWrong) {
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
        ExpectSaid(FindingsOf(file), says);
}

TEST_F(Verify, TellsOfEveryByteOnItsWayOnce) {
    for (const int id : {9, 100, 72, 6, 7, 8, 101}) {
        const FXPackageData data = *package_.GetDataPtr(id);
        int end = 0;
        Faults faults;
        faults.onField = [&](const Field& field) {
            EXPECT_EQ(field.offset, end) << "entry " << id << ": " << field.what;
            EXPECT_EQ(field.bytes, data.start + field.offset);
            end = field.offset + field.size;
        };
        EntryFacts facts;
        CheckEntry(KindOf(package_, id), data, &faults, &facts);
        EXPECT_EQ(end, data.size) << "entry " << id;
    }
}

TEST_F(Verify, RefusesPackagesThatAreMoreWorkThanBytes) {
    const std::vector<std::int32_t> ids = {0, 1, 2, 3, 4};
    FindingsOf(Header("pck01") + Table(ids) + Table({0, 0, 0, 0, 0}) + Table({50, 50, 50, 50, 50}) +
               Table({kRaw, kRaw, kRaw, kRaw, kRaw}) + std::string(50, 'x'));
    FXPackage package;
    ASSERT_TRUE(package.Load(folder_.File("bad").c_str()));
    EXPECT_TRUE(OverlapsTooMuch(package));
    EXPECT_FALSE(OverlapsTooMuch(package_));
}

TEST_F(Verify, WarnsOfWhatTheShowCanLiveWith) {
    const std::string warnings = Findings(folder_.File("p"), true);
    ExpectSaid(warnings, "entry 18, space, is missing: what shows it is plain white");
    ExpectSaid(warnings, "entry 11, the sun's core, is missing: the show goes on");
    EXPECT_EQ(warnings.find("entry 72"), std::string::npos);
    EXPECT_EQ(warnings.find("Material001"), std::string::npos) << "the desktop's, which the show has";
}

std::string MeshHead(int vertices, int corners) {
    return Header("") + Floats({0, 0}) + Ints({0, 0, vertices, corners});
}
std::string Packed(const std::string& map, const std::string& meshes, int count = 1) {
    return Header("om03") + Header("m") + Header("") + Ints({count}) + map + meshes;
}
std::string Animation(int frames, const std::string& name, const std::string& graph) {
    std::string names = Ints({frames}), times = Ints({frames});
    for (int i = 0; i < frames; ++i) {
        names += Header(name);
        times += Ints({5});
    }
    return names + times + graph + Floats({0.5f});
}

// What verify says of a package of the entry, 4 when it is a model, else the animation 72, and of a model
// 100.
std::string TextsOf(const std::string& entry, const std::string& model, bool warnings) {
    const TempFolder folder;
    FXPackage package;
    const int id = entry.starts_with(Header("om03")) ? 4 : 72;
    LoadTestPackage(package, folder, {{id, kRaw, entry}, {100, kRaw, model}});
    std::string texts;
    for (const EntryFindings& found : CheckContents(&package, [] {}))
        for (const Fault& fault : found.faults.all)
            texts += found.id == id && fault.isWarning == warnings ? fault.text + "\n" : "";
    return texts;
}

// What the show reads well has a warning that says what it makes of it, and no fault: its own loaders find as
// many corners as are expected of it.
TEST(VerifyWarns, OfWhatTheShowReadsOtherwiseThanItLooks) {
    const std::string rest = Ints({3}) + Floats({0, 0, 1}) + Ints({2}) + Floats({0, 0});
    const std::string map = Ints({9}) + Floats(std::vector<float>(9, 0)) + rest;
    const std::string pool("\0\x14\0\0\x14\0\0", 7), fourth("\x15\0\0\0", 4);
    const std::string graph = Ints({0, 0, 0, 0}) + std::string(2, '\0') + Floats({0}) + Ints({4});
    const std::string flags(4, '\1'), model = Packed(map, MeshHead(3, 3) + Ints({7}) + pool);
    const std::pair<std::string, std::string> cases[] = {
        {Animation(2, "100", graph) + flags, ""},
        {Animation(2, " 100", graph) + flags, "' 100', is no plain number: the show takes it for 100"},
        {Animation(1, "100x", graph) + flags, "key frame 0, '100x', is no plain number"},
        {Animation(1, "100", Ints({0, 0, 1, 7, 0}) + graph.substr(16)) + flags,
         "the graph has 1 positions, but 0 values: the show uses neither"},
        {Animation(1, "100", graph) + "\2\1\1\1",
         "playing is 2, neither 0 nor 1: the show takes it for false"},
        {Animation(1, "100", graph) + flags + "xy",
         "2 bytes are left over at the end: the show does not read that far"},
        {Packed(Ints({10}) + Floats(std::vector<float>(10, 0)) + rest, MeshHead(3, 3) + Ints({7}) + pool),
         "are 10 numbers, no multiple of 3: the show does without the last 1"},
        {Packed(map, MeshHead(3, 3) + Ints({9}) + pool + "xy"), "has 2 bytes more than its corners take"},
        {Packed(map, MeshHead(0, 0) + Ints({7}) + pool), "has 7 bytes more than its corners take"},
        {Packed(map, MeshHead(0, 3) + Ints({7}) + pool),
         "3 corners, but no vertices: the show leaves it empty"},
        {Packed(map, MeshHead(3, 4) + Ints({11}) + pool + fourth),
         "no whole triangles: the last 1 make none"},
        {model + "x", "1 byte is left over at the end"},
        {std::string(model).replace(8, 5, Ints({1}) + std::string(1, '\0')),
         "the name has a zero byte in it"}};
    for (const auto& [entry, says] : cases) {
        const std::string warnings = TextsOf(entry, model, true);
        EXPECT_EQ(TextsOf(entry, model, false), "") << says;
        EXPECT_EQ(warnings.empty(), says.empty());
        ExpectSaid(warnings, says);
    }
}

TEST(VerifyFinds, WhatTheShowHasNoMemoryFor) {
    std::string manyMeshes;
    for (int i = 0; i < 70000; ++i)
        manyMeshes += MeshHead(0, 0) + Ints({0});
    ExpectSaid(TextsOf(Packed(Ints({0, 0, 0}), manyMeshes, 70000), "", false),
               "mesh 68971 and what follows out: it takes 161 MiB at the least");
}

// Entries without a magic word: what they are named for, then what the show asks for, then their shape.
TEST(Kinds, FollowWhoRefersToAnEntry) {
    const TempFolder folder;
    FXPackage package;
    const std::string matrix = Floats({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    const std::string graph = Ints({0, 1000, 0, 0}) + std::string(2, '\0') + Floats({0.3f}) + Ints({16});
    const std::string morph = Animation(2, "104", graph) + std::string("\1\0\1\1", 4);
    ASSERT_EQ(morph.size(), matrix.size());
    const std::string model = Header("om02") + Header("") + Header("102") + Ints({0});
    const std::tuple<TestEntry, EntryKind> kEntries[] = {
        {{72, kRaw, matrix}, EntryKind::Animation}, {{11, kRaw, matrix}, EntryKind::Model},
        {{18, kRaw, matrix}, EntryKind::Matrix},    {{19, kTga, morph}, EntryKind::Picture},
        {{100, kRaw, model}, EntryKind::Model},     {{101, kRaw, matrix}, EntryKind::Matrix},
        {{102, kRaw, matrix}, EntryKind::Library},  {{103, kRaw, morph}, EntryKind::Animation},
        {{104, kRaw, matrix}, EntryKind::Model},    {{4, kRaw, Header("x") + Ints({0})}, EntryKind::Model},
        {{105, kRaw, "odd"}, EntryKind::Raw}};
    std::vector<TestEntry> entries;
    std::vector<EntryKind> expected;
    for (const auto& [entry, kind] : kEntries) {
        entries.push_back(entry);
        expected.push_back(kind);
    }
    LoadTestPackage(package, folder, entries);
    EXPECT_EQ(KindsOf(package), expected);
}

} // namespace
