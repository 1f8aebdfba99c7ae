// Runs the tests of the Windows saver; where there is no Wine it says so, and CTest counts them as skipped.
#include "windows/under_wine.h"

#include "integration/saver_process.h"

namespace fs = std::filesystem;

namespace {

constexpr int kSkipped = 77;
std::string buildFolder, wineProgram, serverProgram; // what the build for Windows is, and what runs it
std::string devilFolder; // where Wine looks for DevIL itself, before it looks beside the program

// What is there stays as it is.
void AddWineSettings(Environment* environment) {
    environment->insert({
        {"WINEPREFIX", WindowsBuild("wine-prefix")},
        {"WINEDEBUG", "-all"},
        {"WINEDLLPATH", devilFolder},
        // The clock of the tests comes before the system's; nothing asks for what Wine would download.
        {"WINEDLLOVERRIDES", "winmm=n,b;mscoree,mshtml="},
        {"LIBGL_ALWAYS_SOFTWARE", "1"},
        {"HOME", testing::TempDir()},
        {"PATH", "/usr/bin:/bin"},
    });
}

void StartUnderWine(Program* program, const std::vector<std::string>& words, Environment environment,
                    const std::string& folder) {
    AddWineSettings(&environment);
    program->Start(words, environment, folder, "/dev/null");
}

int Run(const std::vector<std::string>& words, const std::string& prefix) {
    Program program;
    // With DevIL, a new prefix would get it into its system folder.
    StartUnderWine(&program, words, {{"WINEPREFIX", prefix}, {"WINEDLLPATH", ""}}, "/");
    return program.WaitForExit();
}

// Makes the prefix when there is none yet, which takes some seconds.
bool PrepareWine() {
    const std::string prefix = WindowsBuild("wine-prefix"), coming = prefix + ".new"; // until it is whole
    if (fs::exists(prefix))
        return true;
    fs::remove_all(coming);
    fs::create_directories(coming);
    if (Run({wineProgram, "wineboot", "-i"}, coming) != 0 || Run({serverProgram, "-w"}, coming) != 0)
        return false;
    fs::rename(coming, prefix);
    return true;
}

// Ends what still runs in the prefix, the services too: the next test has another display.
class FreshWine : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo&) override {
        devilFolder = "";
        EndWine(WindowsBuild("wine-prefix"));
    }
};

} // namespace

std::string WindowsBuild(const std::string& name) {
    return buildFolder + "/" + name;
}

void UseDevilItself() {
    devilFolder = WindowsBuild("tests/codec");
}

std::string SaverName(const std::string& file) {
    std::string path = "Z:" + file;
    std::ranges::replace(path, '/', '\\');
    return path;
}

WineProgram::WineProgram(const std::string& display, const std::string& folder,
                         std::vector<std::string> words, const Environment& settings) {
    words.insert(words.begin(), wineProgram);
    Environment environment = settings;
    environment["DISPLAY"] = display;
    StartUnderWine(this, words, environment, folder);
}

void WaitForWine(const std::string& prefix) {
    Run({serverProgram, "-w"}, prefix);
}

void EndWine(const std::string& prefix) {
    Run({serverProgram, "-k"}, prefix);
    WaitForWine(prefix);
}

// As it lies with a user, in a folder with what it needs, but for the clock that the test turns. The registry
// names the package's folder, which is another one.
std::vector<std::string> SaverCommand(const TempFolder& data, Environment* environment) {
    AddWineSettings(environment);
    const fs::path folder = data.Path() / "saver";
    fs::create_directories(folder);
    fs::copy_file(WindowsBuild("bin/tamb.scr"), folder / "tamb.scr", fs::copy_options::skip_existing);
    for (const char* module : {"tests/clock/winmm.dll", "bin/DevIL.dll", "bin/ILU.dll"}) {
        std::error_code ignored; // it may lie there from before
        fs::create_symlink(WindowsBuild(module), folder / fs::path(module).filename(), ignored);
    }
    WineProgram((*environment)["DISPLAY"], "/",
                {"reg", "add", "HKCU\\Software\\OrinLab\\Screensavers\\Tamblor", "/v", "path", "/d",
                 SaverName((*environment)["TAMBLOR_DATA"]), "/f"})
        .WaitForExit();
    return {wineProgram, (folder / "tamb.scr").string()};
}

// Each line of the trace reads the clock once, each frame too.
const int kReadsBeforeFrames = 30 + 10;

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    if (argc != 4) {
        std::fputs("usage: wine_test [--gtest_...] BUILDFOLDER WINE WINESERVER\n", stderr);
        return 1;
    }
    buildFolder = argv[1];
    wineProgram = argv[2];
    serverProgram = argv[3];
    const std::string wanted = testing::GTEST_FLAG(filter); // CTest runs each case by itself
    const char* lacks = nullptr;
    if (access(argv[2], X_OK) != 0 || access(argv[3], X_OK) != 0)
        lacks = "no Wine here runs it (Debian: wine64 for the 64-bit one, wine32 for the 32-bit one)";
    else if (wanted.ends_with("WithDevilItself") && !fs::exists(WindowsBuild("tests/codec/devil.dll")))
        lacks = "no DevIL for it (Debian: wine64-tools and libwine-dev make the 64-bit one)";
    else if (wanted.starts_with("Installer.") && !fs::exists(WindowsBuild("tests/installer")))
        lacks = "no installer for it (scripts/windows makes it when it makes both builds)";
    if (lacks != nullptr) {
        std::printf("skipped: %s/bin/tamb.scr: %s\n", argv[1], lacks);
        return kSkipped;
    }
    if (!PrepareWine()) {
        std::fputs("wineboot makes no prefix\n", stderr);
        return 1;
    }
    testing::UnitTest::GetInstance()->listeners().Append(new FreshWine);
    return RUN_ALL_TESTS();
}
