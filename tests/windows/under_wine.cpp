#include "windows/under_wine.h"

#include "integration/saver_command.h"
#include "integration/saver_process.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/wait.h>
#include <unistd.h>

#include <utility>

namespace fs = std::filesystem;

namespace {

std::string buildFolder;
std::string wineProgram;
std::string serverProgram;

std::string Prefix() {
    return WindowsBuild("wine-prefix");
}

// It gets no pipe of ours that it could keep open.
pid_t Start(const std::vector<std::string>& words, const Environment& environment,
            const std::string& folder) {
    const pid_t pid = fork();
    if (pid != 0)
        return pid;
    for (const auto& [name, value] : environment)
        setenv(name.c_str(), value.c_str(), 1);
    if (environment.count("DISPLAY") == 0)
        unsetenv("DISPLAY");
    const int nothing = open("/dev/null", O_RDWR);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(nothing, stream);
    std::vector<char*> argv;
    for (const std::string& word : words)
        argv.push_back(const_cast<char*>(word.c_str()));
    argv.push_back(nullptr);
    if (chdir(folder.c_str()) == 0)
        execv(argv[0], argv.data());
    _exit(127);
}

// The exit code; -1 when it has to be killed, and for what never started.
int Finish(pid_t pid, int patienceMs) {
    if (pid <= 0)
        return -1;
    int status = 0;
    for (int waited = 0; waited < patienceMs; waited += 10) {
        if (waitpid(pid, &status, WNOHANG) == pid)
            return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        usleep(10000);
    }
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
    return -1;
}

constexpr int kPatienceMs = 120000;

int Run(const std::vector<std::string>& words, const std::string& prefix) {
    // With the codec, a new prefix would get it into its system folder.
    Environment environment = {{"WINEPREFIX", prefix}, {"WINEDLLPATH", ""}};
    AddWineSettings(&environment);
    return Finish(Start(words, environment, "/"), kPatienceMs);
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
    Environment environment;
    AddWineSettings(&environment);
    if (!display.empty())
        environment["DISPLAY"] = display;
    pid_ = Start(command, environment, folder);
}

WineProgram::~WineProgram() {
    Finish(pid_, 0);
}

int WineProgram::WaitForExit() {
    return Finish(std::exchange(pid_, -1), kPatienceMs);
}

// As it lies with a user, in a folder with what it needs, but for the clock that the test turns. The registry
// names the package's folder, which is another one.
std::vector<std::string> SaverCommand(const ScratchFolder& data, Environment* environment) {
    AddWineSettings(environment);
    const fs::path folder = data / "saver";
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
