#include "integration/saver_process.h"

#include "integration/saver_command.h"

#include <atomic>
#include <fcntl.h>
#include <sys/mman.h>

SaverProcess::SaverProcess() {
    std::filesystem::create_symlink(TAMBLOR_DATA_DIR "/tamb.dat", data_.File("tamb.dat"));
    environment["HOME"] = environment["TAMBLOR_DATA"] = data_.Path();
    environment["PATH"] = "/usr/bin:/bin";
    environment["XDG_CONFIG_HOME"] = data_.File("config");
    environment["LIBGL_ALWAYS_SOFTWARE"] = "1";
    // The driver and the toolkit libraries keep memory until the process ends; our own leaks are the unit
    // tests' business.
    environment["ASAN_OPTIONS"] = "detect_leaks=0";

    // The saver reads its clock from this file instead of the system.
    environment["TAMBLOR_CLOCK"] = data_.Write("clock", std::string(sizeof(Clock), '\0'));
    const int fd = open(environment["TAMBLOR_CLOCK"].c_str(), O_RDWR);
    clock_ = static_cast<Clock*>(mmap(nullptr, sizeof(Clock), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0));
    close(fd);
    SetClock(kStartMs);
}

SaverProcess::~SaverProcess() {
    Kill(); // before its folder goes
    munmap(clock_, sizeof(Clock));
}

std::string SaverProcess::Text(const char* file) const {
    std::string text = data_.Read(file);
    std::erase(text, '\r');
    return text;
}

void SaverProcess::Start(const VirtualDisplay* display, const std::vector<std::string>& arguments) {
    if (display != nullptr)
        environment["DISPLAY"] = display->Name();
    std::vector<std::string> words = SaverCommand(data_, &environment);
    words.insert(words.end(), arguments.begin(), arguments.end());
    Program::Start(words, environment, folder, data_.File("stderr"));
}

void SaverProcess::SetClock(std::uint32_t ms) const {
    std::atomic_ref<std::uint32_t>(clock_->tick).store(ms);
}

bool SaverProcess::WaitUntilShown(const VirtualDisplay& display) const {
    return display.WaitForWindow() != 0 &&
           Eventually([this] { return SaverDraws(std::atomic_ref<std::uint32_t>(clock_->reads).load()); });
}

bool SaverProcess::SeeFrames(const VirtualDisplay& display, int x, int y) const {
    constexpr std::uint32_t kStep = 40; // a slow machine may take longer for a frame, and miss some
    constexpr std::uint32_t kMost = 20000;
    x = x < 0 ? display.Width() / 2 : x;
    y = y < 0 ? display.Height() / 2 : y;
    for (std::uint32_t ms = 0; ms < kMost; ms += kStep) {
        SetClock(kStartMs + ms);
        usleep(kStep * 1000);
        if (ChannelDistance(display.PixelAt(x, y), display.DesktopPixel(x, y)) > 12)
            return true;
    }
    return false;
}
