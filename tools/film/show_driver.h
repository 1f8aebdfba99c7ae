// Plays the real scene without a screen and without waiting: the same code as the saver, driven by chosen
// times.
#pragma once

#include "film/picture.h"
#include "win32/win32.h"

#include <string>

// One show at a time per process, as in the saver. The show is stateful (the burn integrates over its
// frames), so times must not go backwards; between two wanted frames the driver lets the show take steps of
// its own. Clock and random numbers are the driver's: the same calls give the same pixels.
class ShowDriver {
public:
    struct Settings {
        int width = 1920; // pixels, at least 1
        int height = 1080;
        std::string dataFolder; // holds tamb.dat
        Picture desktop;        // what the saver photographs; scaled to the size; empty: a plain grey one
        bool preview = false;
        // Seconds between two frames of the show, wanted or not; what a machine drawing 1/step frames would
        // show.
        double step = 1.0 / 25;
    };

    ShowDriver() = default;
    ~ShowDriver();
    ShowDriver(const ShowDriver&) = delete;
    ShowDriver& operator=(const ShowDriver&) = delete;

    // Builds the scene off screen, from its beginning. False with a line in `error` when there is no software
    // OpenGL, or it cannot draw pictures of that size.
    bool Open(const Settings& settings, std::string* error);
    void Close();

    // Lets the show run up to `seconds` after its first frame, draws that frame and gives it back.
    Picture FrameAt(double seconds);
    // The same without a picture: cheap, nothing is filled in.
    void RunTo(double seconds);
    // The stage of the cycle that the next frame draws, 0 to 4.
    int Stage() const;

private:
    void DrawAt(double seconds, bool visible);

    Settings settings_;
    HWND window_ = nullptr;
    double next_ = 0; // the time of the next step
    bool open_ = false;
};
