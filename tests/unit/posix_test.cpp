// The Linux layer below the windows: where the data folder comes from, folders, modules, threads and locks.
#include "win32/posix/settings_file.h"
#include "win32/win32.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

constexpr const char* kKey = "Software\\OrinLab\\Screensavers\\Tamblor";

class Settings : public testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/tamblor-posix-XXXXXX";
        folder = mkdtemp(name);
        setenv("HOME", folder.c_str(), 1);
        setenv("XDG_CONFIG_HOME", (folder / "user").c_str(), 1);
        setenv("XDG_CONFIG_DIRS", ((folder / "site").string() + ":" + (folder / "system").string()).c_str(),
               1);
        unsetenv("TAMBLOR_DATA");
    }
    void TearDown() override { fs::remove_all(folder); }

    std::string Write(const char* place, const std::string& text) const {
        fs::create_directories(folder / place / "tamblor");
        const fs::path name = folder / place / "tamblor/tamblor.conf";
        std::ofstream(name) << text;
        return name.string();
    }
    // The configured folder, and the status of reading it.
    static std::string Read(LSTATUS* status, DWORD size = 520) {
        char path[520] = "untouched";
        HKEY key = nullptr;
        EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, kKey, 0, KEY_QUERY_VALUE, &key), ERROR_SUCCESS);
        *status = RegQueryValueExA(key, "path", nullptr, nullptr, reinterpret_cast<BYTE*>(path), &size);
        EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
        return path;
    }

    // Beside this program, and where it is installed to.
    static std::string InstalledPlaces() {
        const fs::path prefix = fs::read_symlink("/proc/self/exe").parent_path().parent_path();
        return (prefix / "share/tamblor/tamb.dat, ").string() + TAMBLOR_INSTALLED_DATA + "/tamb.dat";
    }

    fs::path folder;
    LSTATUS status = -1;
};

TEST_F(Settings, AFileIsReadOrRefusedAsAWhole) {
    const std::string home = folder.string();
    struct Case {
        std::string text;
        std::string path;
        std::string problem; // a part of it
    };
    const Case cases[] = {
        {"path = /show", "/show", ""},
        {"# a comment\r\n; another\n\n[tamblor]\n\tpath=\"/my show\" \r\n", "/my show", ""},
        {"path = ~/show\n", home + "/show", ""},
        {"path = ~\n", home, ""},
        {"", "", ""},
        {"path = /show\npath = shows\n", "", ":2: path must be"},
        {"path =\n", "", ":1: path must be"},
        {"path\n", "", ":1: expected"},
        {"\npaht = /show\n", "", ":2: unknown setting 'paht'"},
        {std::string("path = /a\0b\n", 12), "", ":1: a control character"},
        {std::string(70000, '#'), "", "too large"},
    };
    for (const Case& c : cases) {
        SettingsFile file;
        EXPECT_TRUE(ReadSettingsFile(Write("user", c.text), &file));
        EXPECT_EQ(file.values["path"], c.path) << c.text;
        EXPECT_EQ(file.problem.empty(), c.problem.empty()) << file.problem;
        EXPECT_NE(file.problem.find(c.problem), std::string::npos) << file.problem;
    }
    SettingsFile file;
    EXPECT_FALSE(ReadSettingsFile(folder.string(), &file)) << "a folder";
}

TEST_F(Settings, TheNearestPlaceWins) {
    const std::string installed = Read(&status); // there is one where the project is built as a whole
    EXPECT_TRUE(status == ERROR_FILE_NOT_FOUND ? installed == "untouched"
                                               : fs::exists(installed + "/tamb.dat"));
    char words[1024] = "";
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, ERROR_FILE_NOT_FOUND, 0, words, sizeof words,
                   nullptr);
    std::string places = "looked for in TAMBLOR_DATA, ";
    for (const char* place : {"user", "site", "system"})
        places += (folder / place / "tamblor/tamblor.conf, ").string();
    EXPECT_TRUE(std::string(words).starts_with(places)) << words;
    EXPECT_EQ(std::string(words).substr(places.size()), InstalledPlaces());
    Write("system", "path = /of/system");
    EXPECT_EQ(Read(&status), "/of/system");
    Write("site", "path = /of/site");
    EXPECT_EQ(Read(&status), "/of/site");
    Write("user", "path = /of/user");
    EXPECT_EQ(Read(&status), "/of/user");
    setenv("TAMBLOR_DATA", "/of/environment", 1);
    EXPECT_EQ(Read(&status), "/of/environment");
    EXPECT_EQ(status, ERROR_SUCCESS);
}

TEST_F(Settings, ABadFileIsPassedOverAndReported) {
    Write("user", "path = /good\nwhat?\n");
    EXPECT_NE(Read(&status), "/good");
    EXPECT_EQ(status, ERROR_BAD_CONFIGURATION);
    Write("system", "path = /of/system");
    EXPECT_EQ(Read(&status), "/of/system");
    EXPECT_EQ(status, ERROR_BAD_CONFIGURATION);
    char text[512] = "";
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, ERROR_BAD_CONFIGURATION, 0, text, sizeof text,
                   nullptr);
    EXPECT_NE(std::string(text).find("user/tamblor/tamblor.conf:2: expected"), std::string::npos) << text;
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, ERROR_BAD_CONFIGURATION, 0, text, 5, nullptr);
    EXPECT_EQ(std::string(text), folder.string().substr(0, 4)) << "cut to the buffer";
}

TEST_F(Settings, APathLongerThanTheBufferIsNotRead) {
    Write("user", "path = /12345678");
    EXPECT_EQ(Read(&status, 10), "/12345678");
    EXPECT_EQ(status, ERROR_SUCCESS);
    EXPECT_EQ(Read(&status, 9), "untouched");
    EXPECT_EQ(status, ERROR_MORE_DATA);
}

TEST_F(Settings, NoOtherKeyOrValueExists) {
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyA(HKEY_CURRENT_USER, "Control Panel\\Desktop", &key), ERROR_FILE_NOT_FOUND);
    ASSERT_EQ(RegOpenKeyA(HKEY_CURRENT_USER, kKey, &key), ERROR_SUCCESS);
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExA(key, "other", nullptr, nullptr, nullptr, &size), ERROR_FILE_NOT_FOUND);
}

TEST_F(Settings, TheCurrentFolderTakesEitherSeparator) {
    const std::string before = fs::current_path().string();
    char now[MAX_PATH] = "";
    for (const char* end : {"", "/", "\\"}) {
        ASSERT_TRUE(SetCurrentDirectoryA((folder.string() + end).c_str())) << end;
        EXPECT_EQ(GetCurrentDirectoryA(sizeof now, now), folder.string().size());
        EXPECT_EQ(now, folder.string());
    }
    EXPECT_EQ(GetCurrentDirectoryA(4, now), 0u);
    ASSERT_TRUE(SetCurrentDirectoryA("\\"));
    GetCurrentDirectoryA(sizeof now, now);
    EXPECT_STREQ(now, "/");
    EXPECT_FALSE(SetCurrentDirectoryA("/no/such/folder"));
    fs::current_path(before);
}

TEST(Modules, TheCodecIsFoundUnderItsNames) {
    const HMODULE codec = LoadLibraryA("DevIL");
    const HMODULE helper = LoadLibraryA("ilu");
    ASSERT_NE(codec, nullptr);
    ASSERT_NE(helper, nullptr);
    EXPECT_NE(GetProcAddress(codec, "ilLoadL"), nullptr);
    EXPECT_NE(GetProcAddress(helper, "iluScale"), nullptr);
    EXPECT_EQ(GetProcAddress(codec, "noSuchEntry"), nullptr);
    EXPECT_TRUE(FreeLibrary(helper));
    EXPECT_TRUE(FreeLibrary(codec));
    EXPECT_EQ(LoadLibraryA("PASSWORD.CPL"), nullptr);
    EXPECT_FALSE(FreeLibrary(nullptr));
}

#ifdef __SANITIZE_THREAD__ // which loses sight of a thread that is cancelled
constexpr bool kThreadSanitizer = true;
#else
constexpr bool kThreadSanitizer = false;
#endif

std::atomic<bool> goOn;

DWORD WINAPI WaitToGoOn(void* ids) {
    *static_cast<std::atomic<DWORD>*>(ids) = GetCurrentThreadId();
    while (!goOn)
        Sleep(1);
    return 0;
}

TEST(Threads, AreWaitedForAndEndedByForce) {
    std::atomic<DWORD> seenId = 0;
    for (const bool byForce : {false, !kThreadSanitizer}) {
        goOn = false;
        DWORD id = 0;
        const HANDLE thread = CreateThread(nullptr, 0, WaitToGoOn, &seenId, 0, &id);
        ASSERT_NE(thread, nullptr);
        EXPECT_NE(id, GetCurrentThreadId());
        EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_TIMEOUT);
        EXPECT_EQ(WaitForSingleObject(thread, 5), WAIT_TIMEOUT);
        goOn = !byForce;
        EXPECT_TRUE(!byForce || TerminateThread(thread, 0));
        EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
        EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_OBJECT_0) << "an ended one, again";
        EXPECT_EQ(seenId, id);
        EXPECT_TRUE(CloseHandle(thread));
    }
}

DWORD WINAPI TryToEnter(void* section) {
    const auto lock = static_cast<CRITICAL_SECTION*>(section);
    goOn = TryEnterCriticalSection(lock) != FALSE;
    if (goOn)
        LeaveCriticalSection(lock);
    return 0;
}

TEST(Locks, MayBeTakenAgainByTheirHolderOnly) {
    CRITICAL_SECTION lock;
    InitializeCriticalSection(&lock);
    const auto anotherGetsIn = [&lock] {
        const HANDLE thread = CreateThread(nullptr, 0, TryToEnter, &lock, 0, nullptr);
        WaitForSingleObject(thread, INFINITE);
        CloseHandle(thread);
        return goOn.load();
    };
    EnterCriticalSection(&lock);
    EXPECT_TRUE(TryEnterCriticalSection(&lock));
    LeaveCriticalSection(&lock);
    EXPECT_FALSE(anotherGetsIn());
    LeaveCriticalSection(&lock);
    EXPECT_TRUE(anotherGetsIn());
    DeleteCriticalSection(&lock);
}

} // namespace
