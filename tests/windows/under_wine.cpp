#include "windows/under_wine.h"

#include "integration/saver_command.h"

namespace fs = std::filesystem;

namespace {

std::string buildFolder;
std::string wineProgram;
std::string serverProgram;

std::string Prefix() {
    return WindowsBuild("wine-prefix");
}

// With what else the tests' own environment has.
void StartUnderWine(Program* program, const std::vector<std::string>& words, Environment environment,
                    const std::string& folder) {
    AddWineSettings(&environment);
    for (char** setting = environ; *setting != nullptr; ++setting) {
        const std::string text = *setting;
        const std::size_t equals = text.find('=');
        if (equals != std::string::npos && text.substr(0, equals) != "DISPLAY")
            environment.emplace(text.substr(0, equals), text.substr(equals + 1));
    }
    program->Start(words, environment, folder, "/dev/null");
}

int Run(const std::vector<std::string>& words, const std::string& prefix) {
    Program program;
    // With the codec, a new prefix would get it into its system folder.
    StartUnderWine(&program, words, {{"WINEPREFIX", prefix}, {"WINEDLLPATH", ""}}, "/");
    return program.WaitForExit();
}

void LinkInto(const fs::path& folder, const char* built) {
    std::error_code ignored;
    const fs::path file = WindowsBuild(built);
    fs::create_symlink(file, folder / file.filename(), ignored);
}

} // namespace

std::string WindowsBuild(const std::string& name) {
    return buildFolder + "/" + name;
}

std::string WindowsPath(const std::string& file) {
    std::string path = "Z:" + file;
    for (char& c : path)
        if (c == '/')
            c = '\\';
    return path;
}

bool ChooseWine(const std::string& build, const std::string& wine, const std::string& wineserver) {
    buildFolder = build;
    wineProgram = wine;
    serverProgram = wineserver;
    return access(wine.c_str(), X_OK) == 0 && access(wineserver.c_str(), X_OK) == 0;
}

std::string PrepareWine() {
    if (fs::exists(Prefix()))
        return "";
    // Under another name until it is whole.
    const std::string coming = Prefix() + ".new";
    std::error_code problem;
    fs::remove_all(coming, problem);
    fs::create_directories(coming, problem);
    if (Run({wineProgram, "wineboot", "-i"}, coming) != 0 || Run({serverProgram, "-w"}, coming) != 0)
        return "wineboot does not make " + coming;
    fs::rename(coming, Prefix(), problem);
    return problem ? coming + ": " + problem.message() : "";
}

void EndWine() {
    Run({serverProgram, "-k"}, Prefix());
    Run({serverProgram, "-w"}, Prefix());
}

void AddWineSettings(Environment* environment) {
    environment->insert({
        {"WINEPREFIX", Prefix()},
        {"WINEDEBUG", "-all"},
        {"WINEDLLPATH", WindowsBuild("tests/codec")},
        // The clock of the tests comes before the system's; nothing asks for what Wine would download.
        {"WINEDLLOVERRIDES", "winmm=n,b;mscoree,mshtml="},
        {"LIBGL_ALWAYS_SOFTWARE", "1"},
    });
}

WineProgram::WineProgram(const std::string& display, const std::string& folder,
                         const std::vector<std::string>& words) {
    std::vector<std::string> command = {wineProgram};
    command.insert(command.end(), words.begin(), words.end());
    StartUnderWine(this, command, display.empty() ? Environment() : Environment{{"DISPLAY", display}},
                   folder);
}

// As it lies with a user, in a folder with what it needs, but for the clock that the test turns. The registry
// names the package's folder, which is another one.
std::vector<std::string> SaverCommand(const TempFolder& data, Environment* environment) {
    AddWineSettings(environment);
    const fs::path folder = data.Path() / "saver";
    std::error_code problem;
    fs::create_directories(folder, problem);
    fs::copy_file(WindowsBuild("bin/tamb.scr"), folder / "tamb.scr", fs::copy_options::skip_existing,
                  problem);
    for (const char* module : {"tests/clock/winmm.dll", "tests/codec/devil.dll", "tests/codec/ilu.dll"})
        LinkInto(folder, module);
    const std::string path = environment->count("TAMBLOR_DATA") != 0 ? environment->at("TAMBLOR_DATA") : "";
    WineProgram((*environment)["DISPLAY"], "/",
                {"reg", "add", "HKCU\\Software\\OrinLab\\Screensavers\\Tamblor", "/v", "path", "/d",
                 WindowsPath(path), "/f"})
        .WaitForExit();
    return {wineProgram, (folder / "tamb.scr").string()};
}

std::string SaverName(const std::string& file) {
    return WindowsPath(file);
}

// Each line of the trace reads it once, each frame too.
bool SaverDraws(std::uint32_t clockReads) {
    constexpr std::uint32_t kLines = 30;
    constexpr std::uint32_t kFrames = 10;
    return clockReads > kLines + kFrames;
}
