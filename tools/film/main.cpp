// tamb-film: the show as pictures, a contact sheet or a video, without a screen.
#include "film/contact_sheet.h"
#include "film/film_options.h"
#include "film/show_driver.h"
#include "film/video.h"
#include "progress.h"
#include "show_folder.h"
#include "win32/product.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

int localFail(const std::string& message) {
    std::fprintf(stderr, "tamb-film: %s\n", message.c_str());
    return 1;
}

std::vector<double> localMomentsOf(const FilmOptions& options) {
    if (!options.times.empty())
        return options.times;
    std::vector<double> moments;
    const double step = 1.0 / options.framesPerSecond;
    for (int i = 0; options.from + i * step <= options.to + 1e-9; ++i)
        moments.push_back(options.from + i * step);
    return moments;
}

std::string localFrameName(const FilmOptions& options, std::size_t number, double seconds) {
    char name[64];
    if (options.times.empty())
        std::snprintf(name, sizeof name, "frame-%05zu.png", number);
    else
        std::snprintf(name, sizeof name, "at-%07.3fs.png", seconds);
    return (fs::path(options.framesFolder) / name).string();
}

// The scene makes the data folder current, so every name of the user's is resolved before it is built.
void localMakeAbsolute(std::string* name) {
    if (!name->empty())
        *name = fs::absolute(*name).string();
}

bool localOpenShow(const FilmOptions& options, ShowDriver* driver, std::string* error) {
    ShowDriver::Settings settings;
    const int finer = options.smooth ? 2 : 1;
    settings.width = options.width * finer;
    settings.height = options.height * finer;
    settings.preview = options.preview;
    settings.dataFolder = options.dataFolder;
    settings.step = std::min(settings.step, 1.0 / options.framesPerSecond);
    if (!options.desktop.empty() && !ReadPng(options.desktop, &settings.desktop, error))
        return false;
    return driver->Open(settings, error);
}

int localShoot(const FilmOptions& options) {
    std::string error;
    Video video; // before the show: without ffmpeg there is nothing to wait for
    if (!options.video.empty() &&
        !video.Open(options.video, options.width, options.height, options.framesPerSecond, &error))
        return localFail(error);
    ShowDriver driver;
    if (!localOpenShow(options, &driver, &error))
        return localFail(error);

    const std::vector<double> moments = localMomentsOf(options);
    // A sheet of a whole film shows a bearable number of its frames.
    const std::size_t sheetStep = options.times.empty() ? std::max<std::size_t>(1, moments.size() / 48) : 1;
    ContactSheet sheet;
    Progress progress("frame", moments.size(), !options.quiet);
    for (std::size_t i = 0; i < moments.size(); ++i) {
        Picture frame = driver.FrameAt(moments[i]);
        if (options.smooth)
            frame = Scaled(frame, options.width, options.height);
        if ((!options.framesFolder.empty() &&
             !WritePng(localFrameName(options, i, moments[i]), frame, &error)) ||
            (!options.video.empty() && !video.Add(frame, &error))) {
            progress.Clear();
            return localFail(error);
        }
        if (!options.sheet.empty() && i % sheetStep == 0)
            sheet.Add(frame, moments[i]);
        progress.Done(i + 1);
    }
    progress.Clear();
    if (!options.sheet.empty() && !sheet.Write(options.sheet, options.columns, &error))
        return localFail(error);
    return options.video.empty() || video.Finish(&error) ? 0 : localFail(error);
}

} // namespace

int main(int argc, char** argv) {
    FilmOptions options;
    std::string error;
    if (!ParseFilmOptions({argv + 1, argv + argc}, &options, &error)) {
        std::fprintf(stderr, "tamb-film: %s\n", error.c_str());
        return 2;
    }
    if (options.help) {
        std::fputs(kFilmHelp, stdout);
        return 0;
    }
    if (options.dataFolder.empty())
        options.dataFolder = ShowFolder();
    std::error_code failed;
    if (!fs::exists(fs::path(options.dataFolder) / kPackageFile, failed))
        return localFail(std::string("no ") + kPackageFile + " in '" + options.dataFolder +
                         "'; --data names the folder that holds the show's package");
    if (options.desktop.empty() && fs::exists(GeneratedDesktop(), failed))
        options.desktop = GeneratedDesktop();
    if (!options.framesFolder.empty() && !fs::is_directory(options.framesFolder, failed) &&
        !fs::create_directories(options.framesFolder, failed))
        return localFail(options.framesFolder + ": " + failed.message());
    for (std::string* name :
         {&options.dataFolder, &options.desktop, &options.framesFolder, &options.sheet, &options.video})
        localMakeAbsolute(name);
    const int status = localShoot(options);
    ReleaseFonts();
    return status;
}
