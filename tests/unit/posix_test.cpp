// The Linux layer below the windows: where the data folder comes from, folders, threads and locks.
#include "win32/posix/settings_file.h"
#include "win32/win32.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>
#include <tuple>

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

    static std::string WordsOf(DWORD error, DWORD room = 1024) {
        char words[1024] = "";
        FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, error, 0, words, room, nullptr);
        return words;
    }

    fs::path folder;
    LSTATUS status = -1;
};

TEST_F(Settings, AFileIsReadOrRefusedAsAWhole) {
    const std::string home = folder.string();
    const std::tuple<std::string, std::string, std::string> cases[] = {
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
    for (const auto& [text, path, problem] : cases) {
        SettingsFile file;
        EXPECT_TRUE(ReadSettingsFile(Write("user", text), &file));
        EXPECT_EQ(file.values["path"], path) << text;
        EXPECT_EQ(file.problem.empty(), problem.empty()) << file.problem;
        EXPECT_NE(file.problem.find(problem), std::string::npos) << file.problem;
    }
    SettingsFile file;
    EXPECT_FALSE(ReadSettingsFile(folder.string(), &file)) << "a folder";
}

TEST_F(Settings, TheNearestPlaceWins) {
    const std::string installed = Read(&status); // there is one where the project is built as a whole
    EXPECT_TRUE(status == ERROR_FILE_NOT_FOUND ? installed == "untouched"
                                               : fs::exists(installed + "/tamb.dat"));
    std::string places = "looked for in TAMBLOR_DATA, ";
    for (const char* place : {"user", "site", "system"})
        places += (folder / place / "tamblor/tamblor.conf, ").string();
    const fs::path prefix = fs::read_symlink("/proc/self/exe").parent_path().parent_path();
    places += (prefix / "share/tamblor/tamb.dat, ").string() + TAMBLOR_INSTALLED_DATA + "/tamb.dat";
    EXPECT_EQ(WordsOf(ERROR_FILE_NOT_FOUND), places);
    for (const char* place : {"system", "site", "user"}) {
        Write(place, std::string("path = /of/") + place);
        EXPECT_EQ(Read(&status), std::string("/of/") + place);
    }
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
    const std::string words = WordsOf(ERROR_BAD_CONFIGURATION);
    EXPECT_NE(words.find("user/tamblor/tamblor.conf:2: expected"), std::string::npos) << words;
    EXPECT_EQ(WordsOf(ERROR_BAD_CONFIGURATION, 5), words.substr(0, 4)) << "cut to the buffer";
}

TEST_F(Settings, APathLongerThanTheBufferIsNotReadNorIsAnyOtherValue) {
    Write("user", "path = /12345678");
    EXPECT_EQ(Read(&status, 10), "/12345678");
    EXPECT_EQ(status, ERROR_SUCCESS);
    EXPECT_EQ(Read(&status, 9), "untouched");
    EXPECT_EQ(status, ERROR_MORE_DATA);
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyA(HKEY_CURRENT_USER, "Control Panel\\Desktop", &key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegQueryValueExA(key, "other", nullptr, nullptr, nullptr, nullptr), ERROR_FILE_NOT_FOUND);
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
    EXPECT_FALSE(SetCurrentDirectoryA("/no/such/folder"));
    fs::current_path(before);
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

TEST(Locks, MayBeTakenAgainByTheirHolderOnly) {
    CRITICAL_SECTION lock;
    InitializeCriticalSection(&lock);
    const auto anotherGetsIn = [&lock] {
        bool in = false;
        std::thread([&] {
            in = TryEnterCriticalSection(&lock) != FALSE;
            if (in)
                LeaveCriticalSection(&lock);
        }).join();
        return in;
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
