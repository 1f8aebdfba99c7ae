// What the command line of tamb-film asks for.
#pragma once

#include <string>
#include <vector>

struct FilmOptions {
    std::string dataFolder; // empty: the folder the build or the installation put the package into
    std::string desktop;    // a PNG; empty: the generated one beside the package, or a plain grey desktop
    int width = 1920;
    int height = 1080;
    int framesPerSecond = 25;
    double from = 0;
    double to = 64;            // about one cycle
    std::vector<double> times; // single moments; empty: every frame from..to
    std::string framesFolder;  // outputs; at least one is given
    std::string sheet;
    std::string video;
    int columns = 0;
    bool preview = false;
    bool smooth = false; // drawn twice as wide and high, then averaged
    bool quiet = false;
    bool help = false;
};

extern const char* const kFilmHelp;

// False with a line in `error` that names the option and what it takes.
bool ParseFilmOptions(const std::vector<std::string>& arguments, FilmOptions* options, std::string* error);
