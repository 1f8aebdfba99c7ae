#include "integration/saver_process.h"

#include "integration/saver_command.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

ScratchFolder::ScratchFolder() {
    std::string pattern = (fs::temp_directory_path() / "tamblor-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) != nullptr)
        path_ = pattern;
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    if (!path_.empty())
        fs::remove_all(path_, ignored);
}

void ScratchFolder::Write(const char* name, const std::string& bytes) const {
    std::ofstream(path_ / name, std::ios::binary) << bytes;
}

std::string ScratchFolder::Read(const char* name) const {
    std::ostringstream text;
    text << std::ifstream(path_ / name, std::ios::binary).rdbuf();
    std::string read = text.str();
    std::erase(read, '\r'); // of programs for Windows
    return read;
}

SaverProcess::SaverProcess() {
    std::error_code ignored;
    fs::create_symlink(fs::path(TAMBLOR_DATA_DIR) / "tamb.dat", data_ / "tamb.dat", ignored);
    environment["TAMBLOR_DATA"] = data_.Path().string();
    environment["XDG_CONFIG_HOME"] = (data_ / "config").string();
    environment["LIBGL_ALWAYS_SOFTWARE"] = "1";
    // The driver and the toolkit libraries keep memory until the process ends; our own leaks are the unit
    // tests' business.
    environment["ASAN_OPTIONS"] = "detect_leaks=0";

    // The saver reads its clock from this file instead of the system.
    const std::string clock = (data_ / "clock").string();
    const int fd = open(clock.c_str(), O_RDWR | O_CREAT, 0600);
    if (fd >= 0 && ftruncate(fd, sizeof(Clock)) == 0) {
        void* page = mmap(nullptr, sizeof(Clock), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
        clock_ = page == MAP_FAILED ? nullptr : static_cast<Clock*>(page);
    }
    close(fd);
    environment["TAMBLOR_CLOCK"] = clock;
    SetClock(kStartMs);
}

SaverProcess::~SaverProcess() {
    if (Running()) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    if (clock_ != nullptr)
        munmap(clock_, sizeof(Clock));
}

void SaverProcess::SetClock(std::uint32_t ms) const {
    std::atomic_ref<std::uint32_t>(clock_->tick).store(ms);
}

bool SaverProcess::WaitUntilShown(const VirtualDisplay& display) const {
    constexpr int kPatienceMs = 40000;
    if (display.WaitForWindow() == 0)
        return false;
    for (int waited = 0; waited < kPatienceMs; waited += 10) {
        if (SaverDraws(std::atomic_ref<std::uint32_t>(clock_->reads).load()))
            return true;
        usleep(10000);
    }
    return false;
}

bool SaverProcess::SeeFrames(const VirtualDisplay& display) const {
    return SeeFrames(display, display.Width() / 2, display.Height() / 2);
}

bool SaverProcess::SeeFrames(const VirtualDisplay& display, int x, int y) const {
    constexpr std::uint32_t kStep = 40; // a slow machine may take longer for a frame, and miss some
    constexpr std::uint32_t kMost = 20000;
    for (std::uint32_t ms = 0; ms < kMost; ms += kStep) {
        SetClock(kStartMs + ms);
        usleep(kStep * 1000);
        if (ChannelDistance(display.PixelAt(x, y), display.DesktopPixel(x, y)) > 12)
            return true;
    }
    return false;
}

void SaverProcess::Start(const VirtualDisplay* display, const std::vector<std::string>& arguments) {
    environment.erase("DISPLAY");
    if (display != nullptr)
        environment["DISPLAY"] = display->Name();
    std::vector<std::string> words = SaverCommand(data_, &environment);
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> settings = {"HOME=" + data_.Path().string(), "PATH=/usr/bin:/bin"};
    for (const auto& [name, value] : environment)
        settings.push_back(name + "=" + value);

    std::vector<char*> argv;
    std::vector<char*> envp;
    for (std::string& word : words)
        argv.push_back(word.data());
    for (std::string& setting : settings)
        envp.push_back(setting.data());
    argv.push_back(nullptr);
    envp.push_back(nullptr);

    const std::string errors = (data_ / "stderr").string();
    pid_ = fork();
    if (pid_ == 0) {
        const int fd = open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(fd, STDERR_FILENO);
        if (!folder.empty() && chdir(folder.c_str()) != 0)
            _exit(126);
        execve(argv[0], argv.data(), envp.data());
        _exit(127);
    }
}

bool SaverProcess::Running() {
    if (pid_ < 0 || ended_)
        return false;
    ended_ = waitpid(pid_, &status_, WNOHANG) == pid_;
    return !ended_;
}

int SaverProcess::WaitForExit() {
    constexpr int kPatienceMs = 40000;
    for (int waited = 0; waited < kPatienceMs && Running(); waited += 5)
        usleep(5000);
    if (!ended_)
        return -1;
    return WIFEXITED(status_) ? WEXITSTATUS(status_) : -2;
}
