#include "film/film_options.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>

const char* const kFilmHelp =
    R"(tamb-film: renders the show without a screen.

usage: tamb-film [options] (--frames FOLDER | --sheet FILE.png | --video FILE.mp4)...

what to write (one or more):
  --frames FOLDER     a PNG file for every frame: frame-00000.png, or at-012.500s.png with --at
  --sheet FILE.png    a contact sheet: the frames small, each with its time
  --video FILE.mp4    a video, made by the ffmpeg that the machine has; the ending says which kind
  --columns N         columns of the sheet (default: about as many as rows)

which frames:
  --at T[,T...]       single moments, in seconds after the first frame, rising
  --from T --to T     every frame between the two (default 0 to 64, about one cycle)
  --fps N             frames per second (default 25)

how:
  --size WxH          pixels of a frame (default 1920x1080, at most 8192x8192)
  --smooth            smooth edges: drawn twice as wide and high, and averaged; about 4 times the work
  --data FOLDER       the folder with the show's package, tamb.dat (default: the installed show)
  --desktop FILE.png  the desktop that burns (default: the generated desktop, if there is one)
  --preview           the still of the preview pane instead of the show
  --quiet             no progress
  --help              this text

examples:
  tamb-film --sheet cycle.png --at 0,4,8,12,16,20,45,50,55 --size 960x540
  tamb-film --frames film --fps 30 --to 70
  tamb-film --video cycle.mp4 --size 1280x720
  tamb-film --video mine.webm --data my-show --desktop photo.png --from 20 --to 60
)";

namespace {

bool localNumber(const std::string& text, double low, double high, double* value) {
    char* end = nullptr;
    const double read = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || !(read >= low && read <= high))
        return false;
    *value = read;
    return true;
}

bool localWhole(const std::string& text, int low, int high, int* value) {
    double read = 0;
    if (!localNumber(text, low, high, &read) || read != static_cast<int>(read))
        return false;
    *value = static_cast<int>(read);
    return true;
}

constexpr int kLargest = 8192; // width and height of a frame

bool localSize(const std::string& text, int* width, int* height) {
    const std::size_t x = text.find('x');
    return x != std::string::npos && localWhole(text.substr(0, x), 1, kLargest, width) &&
           localWhole(text.substr(x + 1), 1, kLargest, height);
}

constexpr double kLongest = 24 * 3600; // a day of show

bool localTimes(const std::string& text, std::vector<double>* times) {
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t comma = std::min(text.find(',', at), text.size());
        double time = 0;
        if (!localNumber(text.substr(at, comma - at), 0, kLongest, &time) ||
            (!times->empty() && time < times->back()))
            return false;
        times->push_back(time);
        at = comma + 1;
    }
    return true;
}

bool localText(const std::string& text, std::string* value) {
    *value = text;
    return !text.empty();
}

} // namespace

bool ParseFilmOptions(const std::vector<std::string>& arguments, FilmOptions* options, std::string* error) {
    FilmOptions& o = *options;
    struct Option {
        const char* takes;
        std::function<bool(const std::string&)> read;
    };
    const std::map<std::string, Option> valued = {
        {"--frames", {"a folder", [&](auto& v) { return localText(v, &o.framesFolder); }}},
        {"--sheet", {"a file", [&](auto& v) { return localText(v, &o.sheet); }}},
        {"--video", {"a file", [&](auto& v) { return localText(v, &o.video); }}},
        {"--columns", {"a number from 1 to 100", [&](auto& v) { return localWhole(v, 1, 100, &o.columns); }}},
        {"--at",
         {"rising seconds with commas, as in 0,2.5,8", [&](auto& v) { return localTimes(v, &o.times); }}},
        {"--from", {"seconds", [&](auto& v) { return localNumber(v, 0, kLongest, &o.from); }}},
        {"--to", {"seconds", [&](auto& v) { return localNumber(v, 0, kLongest, &o.to); }}},
        {"--fps",
         {"a number from 1 to 240", [&](auto& v) { return localWhole(v, 1, 240, &o.framesPerSecond); }}},
        {"--size",
         {"a size, as in 1920x1080, at most 8192x8192",
          [&](auto& v) { return localSize(v, &o.width, &o.height); }}},
        {"--data", {"a folder", [&](auto& v) { return localText(v, &o.dataFolder); }}},
        {"--desktop", {"a PNG file", [&](auto& v) { return localText(v, &o.desktop); }}},
    };
    const std::map<std::string, bool*> flags = {{"--preview", &o.preview},
                                                {"--smooth", &o.smooth},
                                                {"--quiet", &o.quiet},
                                                {"--help", &o.help},
                                                {"-h", &o.help}};

    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& name = arguments[i];
        if (const auto flag = flags.find(name); flag != flags.end()) {
            *flag->second = true;
            continue;
        }
        const auto option = valued.find(name);
        if (option == valued.end()) {
            *error = "unknown option '" + name + "'; tamb-film --help lists them";
            return false;
        }
        if (++i == arguments.size() || !option->second.read(arguments[i])) {
            *error = name + " takes " + option->second.takes +
                     (i < arguments.size() ? ", not '" + arguments[i] + "'" : std::string());
            return false;
        }
    }
    if (o.help)
        return true;
    if (o.framesFolder.empty() && o.sheet.empty() && o.video.empty())
        *error = "nothing to write: give --frames, --sheet or --video (see --help)";
    else if (!o.video.empty() && !o.times.empty())
        *error = "--video takes every frame --from a time --to another, so --at does not go with it";
    else if (o.to < o.from)
        *error = "--to must not be before --from";
    else if (o.smooth && std::max(o.width, o.height) > kLargest / 2)
        *error = "--smooth takes sizes up to 4096x4096: frames are drawn twice as large";
    else
        return true;
    return false;
}
