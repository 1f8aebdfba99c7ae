// The installer, without questions, in a Wine of the test's own: what it leaves, and that nothing stays.
#include "integration/saver_process.h"
#include "windows/under_wine.h"

#include <iomanip>
#include <set>

namespace fs = std::filesystem;

namespace {

constexpr const char* kDesktop = "Control Panel\\Desktop";
constexpr const char* kSaver = "Software\\OrinLab\\Screensavers\\Tamblor";
constexpr const char* kUninstall = "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Tamblor";
constexpr const char* kOtherSaver = "C:\\windows\\system32\\other.scr";

class Installer : public ShowFixture {
protected:
    Installer() : prefix_(folder_.File("prefix")), drive_(prefix_ / "drive_c") {
        fs::copy(WindowsBuild("wine-prefix"), prefix_,
                 fs::copy_options::recursive | fs::copy_options::copy_symlinks);
        for (const fs::directory_entry& user : fs::directory_iterator(drive_ / "users"))
            if (user.path().filename() != "Public")
                local_ = user.path() / "AppData/Local";
        usual_ = local_ / "Programs/Tamblor";
        Run({"reg", "delete", "HKCU\\Software\\OrinLab", "/f"}); // other tests', if any
        SetValue(kDesktop, "SCRNSAVE.EXE", kOtherSaver);
    }
    ~Installer() { EndWine(prefix_); }

    WineProgram Start(const std::vector<std::string>& words) const {
        // Menu entries stay in the prefix, and names are in all characters.
        return {display.Name(),
                "/",
                words,
                {{"WINEPREFIX", prefix_},
                 {"WINEDLLOVERRIDES", "winmm=n,b;mscoree,mshtml,winemenubuilder.exe="},
                 {"LC_ALL", "C.UTF-8"}}};
    }
    int Run(const std::vector<std::string>& words) const { return Start(words).WaitForExit(); }
    int Setup(std::vector<std::string> switches) const {
        switches.insert(switches.begin(),
                        {fs::directory_iterator(WindowsBuild("tests/installer"))->path(), "/S"});
        return Run(switches);
    }
    int Uninstall() const {
        std::string program = Value(kUninstall, "UninstallString");
        std::erase(program, '"');
        const int status = Run({program, "/S"});
        WaitForWine(prefix_); // it goes on as a program of its own
        return status;
    }

    // The user's registry as the system writes it out.
    std::string Registry() const {
        Run({"regedit", "/E", SaverName(folder_.File("registry")), "HKEY_CURRENT_USER"});
        const std::string bytes = folder_.Read("registry"); // UTF-16
        std::u16string wide(bytes.size() / 2, u'\0');
        bytes.copy(reinterpret_cast<char*>(wide.data()), 2 * wide.size());
        std::string text = fs::path(wide).string();
        std::erase(text, '\r');
        return text;
    }
    // A text or a number as it stands there; empty when there is none.
    std::string Value(const std::string& key, const std::string& name) const {
        std::string text = Registry();
        std::size_t at = text.find("[HKEY_CURRENT_USER\\" + key + "]\n");
        text = at == std::string::npos ? "" : text.substr(at, text.find("\n[", at) - at);
        const std::string start = "\n\"" + name + "\"=";
        std::string value;
        if ((at = text.find(start)) != std::string::npos)
            std::istringstream(text.substr(at + start.size())) >> std::quoted(value);
        return value;
    }
    void SetValue(const std::string& key, const std::string& name, const std::string& value) const {
        Run({"reg", "add", "HKCU\\" + key, "/v", name, "/d", value, "/f"});
    }

    // All files and folders, and the lines of the registry. What lies in folders for temporary files does not
    // count: it is there that the uninstaller's own copy waits for the next start of Windows.
    std::set<std::string> Everything() const {
        std::set<std::string> all;
        for (auto each = fs::recursive_directory_iterator(drive_); each != fs::recursive_directory_iterator();
             ++each) {
            if (each->path().filename() == "Temp" || each->path().filename() == "temp")
                each.disable_recursion_pending();
            all.insert(each->path().string());
        }
        std::istringstream registry(Registry());
        std::string key;
        for (std::string line; std::getline(registry, line);) {
            if (line.starts_with('['))
                key = line;
            if (key.find("\\Software\\Wine\\Temporary ") == std::string::npos) // until Wine ends
                all.insert(key + line);
        }
        return all;
    }
    // What has come or gone since then.
    std::vector<std::string> ChangesSince(const std::set<std::string>& before) const {
        std::vector<std::string> changes;
        std::ranges::set_symmetric_difference(before, Everything(), std::back_inserter(changes));
        return changes;
    }

    // The saver that Windows would start shows the desktop, which fades, and ends with a key.
    void ExpectTheChosenSaverShows() {
        const std::string chosen = Value(kDesktop, "SCRNSAVE.EXE");
        EXPECT_TRUE(std::ranges::all_of(chosen, [](char c) { return c > ' ' && c < 127; })) << chosen;
        WineProgram show = Start({chosen, "/s"});
        EXPECT_TRUE(display.WaitForPixel(160, 120, display.DesktopPixel(160, 120), 12, true)) << chosen;
        display.PressKey(XK_space);
        EXPECT_EQ(show.WaitForExit(), 0);
    }

    TempFolder folder_;
    const fs::path prefix_, drive_;
    fs::path local_, usual_; // the user's folder for programs' data, and where Tamblor goes by itself
};

TEST_F(Installer, WhatItLaysDownRunsAndLeavesWithoutATrace) {
    SetValue(kDesktop, "ScreenSaveActive", "0");
    SetValue(kDesktop, "ScreenSaveTimeOut", "0");
    SetValue(kSaver, "path", "C:\\a show of my own");
    const std::set<std::string> before = Everything();
    ASSERT_EQ(Setup({"/SELECT"}), 0);
    EXPECT_EQ(folder_.Read(usual_ / "tamb.dat"), folder_.Read(TAMBLOR_DATA_DIR "/tamb.dat"));
    EXPECT_EQ(folder_.Read(usual_ / "tamb.scr"), folder_.Read(WindowsBuild("bin/tamb.scr")));
    EXPECT_EQ(Value(kDesktop, "ScreenSaveActive"), "1");
    EXPECT_EQ(Value(kDesktop, "ScreenSaveTimeOut"), "600") << "with 0 it would never start";
    ExpectTheChosenSaverShows();
    const std::string log = folder_.Read(usual_ / "tamb.log");
    EXPECT_NE(log.find("OpenGL info:"), std::string::npos) << log;
    EXPECT_EQ(Uninstall(), 0);
    EXPECT_EQ(ChangesSince(before), std::vector<std::string>());
}

TEST_F(Installer, ComesAnewInAnotherFolderAndLeavesWhatIsTheUsers) {
    ASSERT_EQ(Setup({"/SELECT"}), 0);
    std::ofstream(usual_ / "notes.txt") << "the user's";
    const fs::path other =
        drive_ / "my savers/\u041F\u043B\u0430\u043C\u044F"; // no name in the characters of English
    ASSERT_EQ(Setup({"/32", "/D=C:\\my", "savers\\\u041F\u043B\u0430\u043C\u044F"}), 0);
    EXPECT_FALSE(fs::exists(usual_ / "tamb.scr"));
    EXPECT_TRUE(fs::exists(usual_ / "notes.txt"));
    EXPECT_EQ(folder_.Read(other / "tamb.scr"), folder_.Read(WindowsBuild("../win32/bin/tamb.scr")));
    ASSERT_EQ(Setup({}), 0) << "of the machine's own size, in the same folder";
    ExpectTheChosenSaverShows();
    EXPECT_TRUE(fs::exists(other / "tamb.log")) << "the saver finds its folder";

    SetValue(kDesktop, "SCRNSAVE.EXE", "C:\\third.scr");
    EXPECT_EQ(Uninstall(), 0);
    EXPECT_EQ(Value(kDesktop, "SCRNSAVE.EXE"), "C:\\third.scr");
    EXPECT_FALSE(fs::exists(other));
    EXPECT_EQ(Value(kSaver, "path"), "");
    EXPECT_TRUE(fs::exists(usual_ / "notes.txt"));
}

TEST_F(Installer, GivesUpWholeOrNotAtAll) {
    fs::create_directories(drive_ / "full/tamb.dat"); // a folder in the file's place
    const std::set<std::string> without = Everything();
    EXPECT_EQ(Setup({"/SELECT", "/D=C:\\full"}), 2);
    EXPECT_EQ(ChangesSince(without), std::vector<std::string>());

    ASSERT_EQ(Setup({}), 0);
    EXPECT_EQ(Value(kDesktop, "SCRNSAVE.EXE"), kOtherSaver) << "nobody has chosen Tamblor";
    const std::set<std::string> installed = Everything();
    WineProgram show = Start({(usual_ / "tamb.scr").string(), "/s"});
    ASSERT_TRUE(display.WaitForPixel(160, 120, display.DesktopPixel(160, 120), 12, true));
    EXPECT_EQ(Setup({"/SELECT"}), 2) << "it runs";
    Run({(usual_ / "uninstall.exe").string(), "/S"});
    EXPECT_TRUE(show.Running());
    display.PressKey(XK_space);
    EXPECT_EQ(show.WaitForExit(), 0);
    WaitForWine(prefix_);
    EXPECT_TRUE(fs::remove(usual_ / "tamb.log"));
    EXPECT_EQ(ChangesSince(installed), std::vector<std::string>());
}

} // namespace
