// The real executable, started with a command line, an environment of its own and a clock that the test
// turns.
#pragma once

#include "integration/virtual_display.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

// A folder that goes with the test.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& Path() const { return path_; }
    std::filesystem::path operator/(const char* name) const { return path_ / name; }
    void Write(const char* name, const std::string& bytes) const;
    std::string Read(const char* name) const;

private:
    std::filesystem::path path_;
};

class SaverProcess {
public:
    // The data folder holds the built package unless the test puts something else there before Start.
    SaverProcess();
    ~SaverProcess();
    SaverProcess(const SaverProcess&) = delete;
    SaverProcess& operator=(const SaverProcess&) = delete;

    const ScratchFolder& Data() const { return data_; }
    // Everything that it wrote to its standard error stream.
    std::string Errors() const { return data_.Read("stderr"); }
    std::map<std::string, std::string> environment;
    std::filesystem::path folder; // in which it starts; the test's own when empty

    void Start(const VirtualDisplay* display, const std::vector<std::string>& arguments);
    // The time on the saver's clock, in ms: it stands still until the test moves it.
    void SetClock(std::uint32_t ms) const;
    // Waits until the saver's window is on the display and drawn. False when that does not come.
    bool WaitUntilShown(const VirtualDisplay& display) const;
    // The exit code, or -1 when the process is still there after a generous while, or -2 when a signal ended
    // it.
    int WaitForExit();
    bool Running();

    // Lets the clock run from kStartMs until the desktop at the show's centre, else the screen's, begins to
    // fade: frames are drawn, and their first stage lasts a second more at least. False when that does not
    // happen.
    bool SeeFrames(const VirtualDisplay& display) const;
    bool SeeFrames(const VirtualDisplay& display, int x, int y) const;

    static constexpr std::uint32_t kStartMs = 1000000;

private:
    ScratchFolder data_;
    struct Clock {
        std::uint32_t tick;
        std::uint32_t reads; // counted by a saver that can
    };

    Clock* clock_ = nullptr;
    int pid_ = -1;
    int status_ = 0;
    bool ended_ = false;
};
