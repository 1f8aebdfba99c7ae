// Making packages: what FXPackage::Save writes, and what it never loses.
#include "unit/package_bytes.h"

namespace fs = std::filesystem;

namespace {

TEST(PackageBuild, AppendsAndWritesTheFormatToTheByte) {
    const TempFolder folder;
    FXPackage first;
    first.AddDataFile(7, folder.Write("raw", "abc").c_str());
    ASSERT_TRUE(first.Save(folder.File("p").c_str(), 0));
    EXPECT_EQ(folder.Read("p"), Header("pck01") + Table({7}) + Table({0}) + Table({3}) + Table({-1}) + "abc");
    EXPECT_FALSE(fs::exists(folder.File("p.new")));

    FXPackage more;
    ASSERT_TRUE(more.Load(folder.File("p").c_str()));
    more.AddDataFile(2, folder.Write("b.JPG", "second").c_str());
    more.AddDataFile(3, folder.Write("c", "").c_str());
    ASSERT_TRUE(more.Save(folder.File("p").c_str(), FXPackage::kScrambled));
    EXPECT_TRUE(more.pendingIds.IsEmpty() && more.pendingFiles.IsEmpty());
    FXPackage back;
    ASSERT_TRUE(back.Load(folder.File("p").c_str()));
    for (FXPackage* package : {&more, &back}) {
        EXPECT_EQ(Entry(*package, 7) + Entry(*package, 2) + Entry(*package, 3), "abcsecond");
        EXPECT_EQ(package->GetDataType(2), kJpeg);
    }
    ASSERT_TRUE(back.Save(folder.File("again").c_str(), FXPackage::kScrambled));
    EXPECT_EQ(folder.Read("again"), folder.Read("p"));
    EXPECT_EQ(folder.Read("again").substr(0, 10), Header("pck01s"));
}

TEST(PackageBuild, AFailedSaveLeavesEverythingAsItWas) {
    const TempFolder folder;
    const std::string target = folder.File("p");
    FXPackage package;
    package.AddDataFile(1, folder.Write("a", "kept").c_str());
    ASSERT_TRUE(package.Save(target.c_str(), 0));
    const std::string before = folder.Read("p");
    package.AddDataFile(2, folder.File("missing").c_str());
    EXPECT_FALSE(package.Save(target.c_str(), 0));
    package.pendingFiles.Change(0, folder.Write("b", "found").c_str());
    EXPECT_FALSE(package.Save(folder.File("no/such/folder").c_str(), FXPackage::kScrambled));
    if (fs::exists("/dev/full")) {
        fs::create_symlink("/dev/full", target + ".new");
        EXPECT_FALSE(package.Save(target.c_str(), 0)) << "full disk";
    }
    EXPECT_EQ(folder.Read("p"), before);
    EXPECT_EQ(Entry(package, 1) + Entry(package, 2), "keptnone");
    EXPECT_TRUE(package.Save(target.c_str(), 0)) << "and can be repeated";
    EXPECT_EQ(Entry(package, 2), "found");
}

TEST(PackageBuild, TypesComeFromTheEndOfTheName) {
    const std::pair<const char*, int> cases[] = {{"picture.JPG", kJpeg}, {"a.b.png", kPng}, {"x.tga", kTga},
                                                 {"m.bmp", kBmp},        {"m.gif", kGif},   {"m.jpeg", kRaw},
                                                 {"xxpng", kPng},        {"png", kRaw},     {".png", kRaw},
                                                 {"m.png.", kRaw},       {"", kRaw}};
    for (const auto& [name, expected] : cases) {
        int size = -1, type = 0;
        EXPECT_FALSE(FXPackage::CheckFile(name, &size, &type)) << "there is no such file";
        EXPECT_EQ(type, expected) << name;
        EXPECT_EQ(size, 0) << name;
    }
}

TEST(PackageBuild, NamesBecomeIdsOnceAndAHeader) {
    const TempFolder folder;
    const std::string file = folder.Write("sun (core)-1.png", "x");
    FXPackage package;
    package.firstId = 40;
    FXStr name(file.c_str()), again(file.c_str()), empty;
    EXPECT_EQ(package.BuildId("other"), 40);
    package.AddDataFile1(&name);
    package.AddDataFile1(&again);
    package.AddDataFile1(&empty);
    EXPECT_STREQ(name.text, "41");
    EXPECT_STREQ(again.text, "41");
    EXPECT_EQ(package.pendingIds.count, 1);
    EXPECT_TRUE(package.SaveNamesCpp(folder.File("names.h").c_str()));
    EXPECT_EQ(folder.Read("names.h"), "#define FXNAME_OTHER  40\n#define FXNAME_SUN__CORE__1_PNG  41\n");
    EXPECT_TRUE(package.SaveNames(folder.File("names").c_str()));
    FXPackage back;
    EXPECT_TRUE(back.LoadNames(folder.File("names").c_str()));
    EXPECT_EQ(back.FindId(file.c_str()), 1);
    back.firstId = INT_MAX;
    EXPECT_EQ(back.FindId(file.c_str()), -1) << "no id is left for it";
    package.AddTmpFile(file.c_str());
    package.DeleteTmpFiles();
    EXPECT_FALSE(fs::exists(file));
}

} // namespace
