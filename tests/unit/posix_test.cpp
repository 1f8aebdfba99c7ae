// The Linux layer below the windows: where the data folder comes from.
#include "unit/temp_folder.h"
#include "win32/posix/settings_file.h"
#include "win32/win32.h"

namespace {

namespace fs = std::filesystem;

class Settings : public testing::Test {
protected:
    Settings() {
        setenv("HOME", folder.File("home").c_str(), 1);
        setenv("XDG_CONFIG_HOME", folder.File("user").c_str(), 1);
        setenv("XDG_CONFIG_DIRS", (folder.File("site") + ":" + folder.File("system")).c_str(), 1);
        unsetenv("TAMBLOR_DATA");
    }

    std::string Write(const std::string& place, const std::string& text) const {
        return folder.Write(place + "/tamblor/tamblor.conf", text);
    }
    // The configured folder, and the status of reading it.
    std::string Read(DWORD size = 520) {
        char path[520] = "untouched";
        HKEY key = nullptr;
        EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\OrinLab\\Screensavers\\Tamblor", 0,
                                KEY_QUERY_VALUE, &key),
                  ERROR_SUCCESS);
        status = RegQueryValueExA(key, "path", nullptr, nullptr, reinterpret_cast<BYTE*>(path), &size);
        return path;
    }
    static std::string WordsOf(DWORD error) {
        char words[1024] = "";
        FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, error, 0, words, sizeof words, nullptr);
        return words;
    }

    const TempFolder folder;
    LSTATUS status = -1;
};

TEST_F(Settings, AFileIsReadOrRefusedAsAWhole) {
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"# a comment\r\n; another\n\n[tamblor]\n\tpath=\"/my show\" \r\n", "/my show", ""},
        {"path = ~/show\n", folder.File("home/show"), ""},
        {"path = /show\npath = shows\n", "", ":2: path must be"},
        {"path\n", "", ":1: expected"},
        {"\npaht = /show\n", "", ":2: unknown setting 'paht'"},
        {std::string("path = /a\0b\n", 12), "", ":1: a control character"},
        {std::string(70000, '#'), "", "too large"},
        {"path = /show\nsamples = 16\n mouse_threshold = 0 # none\n", "", ":3: mouse_threshold must be a"},
        {"path = /show\nsamples = 17\n", "", ":2: samples must be a whole number from 0 to 16"},
        {"max_fps = 30.5\n", "", "must be a whole number"},
    };
    for (const auto& [text, path, problem] : cases) {
        SettingsFile file;
        EXPECT_TRUE(ReadSettingsFile(Write("user", text), &file));
        EXPECT_EQ(file.values["path"], path) << text;
        EXPECT_EQ(file.problem.empty(), problem.empty()) << file.problem;
        EXPECT_NE(file.problem.find(problem), std::string::npos) << file.problem;
    }
    SettingsFile file;
    EXPECT_FALSE(ReadSettingsFile(folder.File(""), &file)) << "a folder";
}

TEST_F(Settings, TheNearestPlaceWinsAndABadFileIsPassedOverAndReported) {
    const std::string installed = Read(); // there is one where the project is built as a whole
    EXPECT_TRUE(status == ERROR_FILE_NOT_FOUND ? installed == "untouched"
                                               : fs::exists(installed + "/tamb.dat"));
    std::string places = "looked for in TAMBLOR_DATA, ";
    for (const char* place : {"user", "site", "system"})
        places += folder.File(place) + "/tamblor/tamblor.conf, ";
    const fs::path prefix = fs::read_symlink("/proc/self/exe").parent_path().parent_path();
    places += (prefix / "share/tamblor/tamb.dat, ").string() + TAMBLOR_INSTALLED_SHARE + "/tamblor/tamb.dat";
    EXPECT_EQ(WordsOf(ERROR_FILE_NOT_FOUND), places);
    for (const char* place : {"system", "site", "user"}) {
        Write(place, std::string("path = /of/") + place);
        EXPECT_EQ(Read(), std::string("/of/") + place);
    }
    EXPECT_EQ(Read(9), "/of/user");
    EXPECT_EQ(status, ERROR_SUCCESS);
    EXPECT_EQ(Read(8), "untouched") << "longer than the buffer";
    EXPECT_EQ(status, ERROR_MORE_DATA);

    Write("user", "path = /good\nwhat?\n");
    EXPECT_EQ(Read(), "/of/site");
    EXPECT_EQ(status, ERROR_BAD_CONFIGURATION);
    const std::string words = WordsOf(ERROR_BAD_CONFIGURATION);
    EXPECT_NE(words.find("user/tamblor/tamblor.conf:2: expected"), std::string::npos) << words;
    testing::internal::CaptureStderr();
    SettingNumber("samples", 3);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "who asked for the folder reports it";
    setenv("TAMBLOR_DATA", "/of/environment", 1);
    EXPECT_EQ(Read(), "/of/environment");
}

// The problem is reported once in a process: by whoever comes first.
TEST_F(Settings, NumbersComeFromTheNearestGoodFileThatNamesThem) {
    Write("system", "max_fps = 24\nmouse_threshold = 1000\nsamples = 0");
    Write("site", "mouse_threshold = 10\nmax_fps = fast\n");
    Write("user", "samples = \"8\"\n");
    testing::internal::CaptureStderr();
    EXPECT_EQ(SettingNumber("samples", 3), 8);
    EXPECT_EQ(SettingNumber("mouse_threshold", 3), 1000);
    EXPECT_EQ(SettingNumber("max_fps", 3), 24);
    EXPECT_EQ(SettingNumber("path", 3), 3);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "tamblor: configuration: " + folder.File("site/tamblor/tamblor.conf") +
                  ":2: max_fps must be a whole number from 0 to 1000\n");
}

} // namespace
