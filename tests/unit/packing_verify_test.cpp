// Faults planted in a good package are found, each where it is.
#include "pack/content_check.h"
#include "pack/package_check.h"
#include "pack/picture_codec.h"
#include "unit/packing_folder.h"

namespace {

// What verify says, a line each: "entry 9, byte 4: text".
std::string Findings(const std::string& file) {
    std::string all;
    const auto add = [&](int id, const Faults& faults) {
        for (const Fault& fault : faults.all)
            if (!fault.isWarning)
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
    for (const int id : package_.ids) // 9 model, 100 packed, 72 animation, 6 of version 2, 101 library ...
        EXPECT_NE(package_.GetDataPtr(id)->size, 0);
}

TEST_F(Verify, SaysWhereAnEntryIsWrong) {
    const struct {
        int id;
        std::size_t at;
        std::string bytes;
        const char* says;
    } cases[] = {
        {9, 4, "xm02", "entry 9, byte 4: it begins with 'xm02'"},
        {9, 8, Ints({-1}), "entry 9, byte 8: the length of the name is -1"},
        {9, 20, "500", "the library, '500', is not in the package"},
        {9, 23, Ints({999}), "entry 9, byte 23: the number of meshes is 999"},
        {9, 49, Ints({7}), "entry 9, byte 49: mesh 0 is to be drawn in way 7"},
        {9, 61, Ints({0x7F800000}),
         "entry 9, byte 61: number 0 of position of vertex 0 of mesh 0 is no finite"},
        {9, 369, Ints({40}), "entry 9, byte 369: corner 0 of mesh 0 is vertex 40, but there are 4"},
        {100, 27, Ints({13}), "entry 100, byte 27: the positions of the vector map are 13 numbers"},
        {72, 0, Ints({4}) + "oa04", "entry 72"},
        {72, 8, Ints({99999}), "entry 72, byte 8: the number of key frames is 99999"},
        {6, 8, "5", "key frame 0, '5', is not in the package"},
        {101, 0, Ints({300}), "entry 101, byte 4: the name takes 300 bytes"},
        {101, 29, "9", "entry 101 takes it for the picture"},
        {0, 16, "\x07", "entry 0, byte 0: it cannot be decoded as tga"},
    };
    for (const auto& c : cases) {
        std::string bad = good_;
        bad.replace(EntryAt(c.id) + c.at, c.bytes.size(), c.bytes);
        const std::string findings = FindingsOf(bad);
        EXPECT_NE(findings.find(c.says), std::string::npos) << c.id << " at " << c.at << ": " << findings;
    }
}

TEST_F(Verify, SaysWhereThePackageIsWrong) {
    const std::string one = Table({1});
    const struct {
        std::string file;
        const char* says;
    } cases[] = {
        {"not a package", "byte 0: it does not begin"},
        {Header("pck01x") + Table({}) + Table({}) + Table({}) + Table({}), "byte 4: its header is 'pck01x'"},
        {Header("pck01") + Ints({5, 1}), "byte 9: the number of ids of the package is 5"},
        {Header("pck01") + one + Table({0}) + Table({}) + Table({-1}) + "a",
         "the tables differ: 1 ids, 1 offsets, 0"},
        {Header("pck01") + one + Table({9}) + Table({1}) + Table({-1}) + "a", "byte 21: entry 1 begins at 9"},
        {Header("pck01") + one + Table({0}) + Table({2}) + Table({-1}) + "a",
         "byte 29: entry 1 has 2 bytes from 0"},
        {Header("pck01") + Table({4, 4}) + Table({0, 1}) + Table({1, 1}) + Table({-1, -1}) + "ab",
         "entries 0 and 1 of the table have the same number, 4"},
        {Header("pck01") + Table({4, 5}) + Table({0, 1}) + Table({2, 1}) + Table({-1, -1}) + "ab",
         "entry 5 begins 1 bytes before entry 4 ends"},
    };
    for (const auto& c : cases) {
        const std::string findings = FindingsOf(c.file);
        EXPECT_NE(findings.find(c.says), std::string::npos) << c.says << ": " << findings;
    }
    EXPECT_NE(FindingsOf(good_.substr(0, good_.size() - 1)).find("entry 101 has"), std::string::npos);
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
        CheckEntry(KindOf(data, kRaw), data, &faults, &facts);
        EXPECT_EQ(end, data.size) << "entry " << id;
    }
}

TEST_F(Verify, RefusesPackagesThatAreMoreWorkThanBytes) {
    const std::vector<std::int32_t> zeros(100, 0), sizes(100, 50), types(100, kRaw);
    std::vector<std::int32_t> ids(100);
    for (int i = 0; i < 100; ++i)
        ids[static_cast<std::size_t>(i)] = i;
    const std::string findings = FindingsOf(Header("pck01") + Table(ids) + Table(zeros) + Table(sizes) +
                                            Table(types) + std::string(50, 'x'));
    EXPECT_NE(findings.find("entry 1 begins 50 bytes before entry 0 ends"), std::string::npos) << findings;
    FXPackage package;
    ASSERT_TRUE(package.Load(folder_.File("bad").c_str()));
    EXPECT_TRUE(OverlapsTooMuch(package));
    EXPECT_FALSE(OverlapsTooMuch(package_));
}

TEST_F(Verify, WarnsOfWhatTheShowCanLiveWith) {
    std::string warnings;
    for (const EntryFindings& entry : CheckContents(&package_, [] {}))
        for (const Fault& fault : entry.faults.all)
            warnings += fault.isWarning ? fault.text + "\n" : "";
    EXPECT_NE(warnings.find("entry 18, space, is missing: what shows it is plain white"), std::string::npos);
    EXPECT_NE(warnings.find("entry 11, the sun's core, is missing: the show goes on"), std::string::npos);
    EXPECT_EQ(warnings.find("entry 72"), std::string::npos);
    EXPECT_EQ(warnings.find("Material001"), std::string::npos) << "the desktop's, which the show has";
}

// Bytes changed and lengths cut all over: nothing crashes, and a whole package is never called damaged.
TEST_F(Verify, OutlivesAnyDamage) {
    int found = 0, tries = 0;
    for (std::size_t at = 0; at < good_.size(); at += 5) {
        std::string bad = good_;
        bad[at] = static_cast<char>(bad[at] ^ (at % 2 == 0 ? 0x80 : 0x7F));
        found += !FindingsOf(bad).empty();
        FindingsOf(good_.substr(0, at));
        ++tries;
    }
    EXPECT_GT(found, tries / 8);
}

} // namespace
