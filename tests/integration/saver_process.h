// The real executable, started with a command line, an environment of its own and a clock that the test
// turns.
#pragma once

#include "integration/virtual_display.h"
#include "unit/temp_folder.h"

class SaverProcess : public Program {
public:
    // The data folder holds the built package unless the test puts something else there before Start.
    SaverProcess();
    ~SaverProcess();

    const TempFolder& Data() const { return data_; }
    std::string Trace() const { return Text("tamb.log"); }
    std::string Errors() const { return Text("stderr"); } // everything that it wrote to that stream
    Environment environment;
    std::string folder = "/"; // in which it starts

    void Start(const VirtualDisplay* display, const std::vector<std::string>& arguments);
    // The time on the saver's clock, in ms: it stands still until the test moves it.
    void SetClock(std::uint32_t ms) const;
    // Waits until the saver's window is on the display and drawn. False when that does not come.
    bool WaitUntilShown(const VirtualDisplay& display) const;
    // Lets the clock run from kStartMs until the desktop at that place, else at the screen's centre, begins
    // to fade: frames are drawn, and their first stage lasts a second more at least. False when that does not
    // happen.
    bool SeeFrames(const VirtualDisplay& display, int x = -1, int y = -1) const;

    static constexpr std::uint32_t kStartMs = 1000000;

private:
    std::string Text(const char* file) const; // without the carriage returns of programs for Windows

    TempFolder data_;
    struct Clock {
        std::uint32_t tick;
        std::uint32_t reads; // counted by a saver that can
    };
    Clock* clock_ = nullptr;
};
