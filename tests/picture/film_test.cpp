// What the film tool makes of its command line, and that a film can be made twice.
#include "film/film_options.h"
#include "film/video.h"
#include "picture/test_show.h"
#include "unit/temp_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

namespace {

// Splits at blanks.
bool Parse(const std::string& line, FilmOptions* options, std::string* error) {
    std::istringstream words(line);
    std::vector<std::string> arguments;
    for (std::string word; words >> word;)
        arguments.push_back(word);
    return ParseFilmOptions(arguments, options, error);
}

std::vector<Picture> ShortFilm(std::string* error) {
    ShowDriver driver;
    std::vector<Picture> film;
    if (driver.Open(TestShow(), error))
        for (const double seconds :
             {0.0, 1.5, 4.0, 18.0}) // with the burn and the cube, whose ways are random
            film.push_back(driver.FrameAt(seconds));
    return film;
}

} // namespace

TEST(Film, IsTheSameTwice) {
    std::string error;
    const std::vector<Picture> one = ShortFilm(&error);
    const std::vector<Picture> two = ShortFilm(&error);
    ASSERT_EQ(one.size(), 4u) << error;
    ASSERT_EQ(two.size(), one.size()) << error;
    for (std::size_t i = 0; i < one.size(); ++i)
        EXPECT_EQ(one[i].pixels, two[i].pixels) << i;
}

TEST(Film, TakesItsOptions) {
    FilmOptions options;
    std::string error;
    ASSERT_TRUE(
        Parse("--sheet s.png --frames f --at 0,2.5,8 --size 640x360 --columns 3 --preview --smooth --quiet",
              &options, &error))
        << error;
    EXPECT_EQ(options.sheet, "s.png");
    EXPECT_EQ(options.framesFolder, "f");
    EXPECT_EQ(options.times, (std::vector<double>{0, 2.5, 8}));
    EXPECT_EQ(options.width, 640);
    EXPECT_EQ(options.height, 360);
    EXPECT_EQ(options.columns, 3);
    EXPECT_TRUE(options.preview && options.smooth && options.quiet);
}

TEST(Film, NamesTheOptionItCannotTake) {
    const struct {
        const char* line;
        const char* named;
    } cases[] = {
        {"", "--frames"},
        {"--sheet", "--sheet"},
        {"--sheet s.png --fps 0", "--fps"},
        {"--sheet s.png --fps 2.5", "--fps"},
        {"--sheet s.png --size 640", "--size"},
        {"--sheet s.png --size 9000x10", "--size"},
        {"--sheet s.png --size 0x10", "--size"},
        {"--sheet s.png --smooth --size 5000x10", "--smooth"},
        {"--sheet s.png --at 3,1", "--at"},
        {"--sheet s.png --at 3,,4", "--at"},
        {"--sheet s.png --at nan", "--at"},
        {"--sheet s.png --from -1", "--from"},
        {"--sheet s.png --from 5 --to 4", "--to"},
        {"--sheet s.png --to 1e300", "--to"},
        {"--film s.mp4", "--film"},
        {"--video", "--video"},
        {"--video s.mp4 --at 1", "--at"},
    };
    for (const auto& c : cases) {
        FilmOptions options;
        std::string error;
        EXPECT_FALSE(Parse(c.line, &options, &error)) << c.line;
        EXPECT_NE(error.find(c.named), std::string::npos) << c.line << ": " << error;
    }
}

// What stands for ffmpeg on the machine, and what comes of a film of two frames.
TEST(Film, IsAVideoOrSaysWhyNot) {
    const Picture frame{400, 300, std::vector<std::uint32_t>(400 * 300, 0xFF102030u)};
    const struct {
        const char* ffmpeg; // a script; null: there is none
        const char* says;   // null: all is well
    } cases[] = {
        {"for file; do :; done; cat >\"${file#file:}\"", nullptr},
        {"for file; do :; done; cat >\"${file#file:}\"; exit 3", "exit status 3"},
        {"exit 4", "exit status 4"}, // the frames find nobody at the other end
        {"kill -9 $$", "exit status 137"},
        {nullptr, "there is no ffmpeg"},
    };
    const std::string path = std::getenv("PATH");
    for (const auto& c : cases) {
        const TempFolder folder;
        folder.Write("film.mp4", "the old one");
        if (c.ffmpeg != nullptr) {
            folder.Write("ffmpeg", std::string("#!/bin/sh\nPATH=") + path + "\n" + c.ffmpeg + "\n");
            std::filesystem::permissions(folder.File("ffmpeg"), std::filesystem::perms::owner_all);
        }
        setenv("PATH", folder.File("").c_str(), 1);
        std::string error;
        {
            Video video;
            const bool made = video.Open(folder.File("film.mp4"), 400, 300, 25, &error) &&
                              video.Add(frame, &error) && video.Add(frame, &error) && video.Finish(&error);
            EXPECT_EQ(made, c.says == nullptr) << error;
        }
        setenv("PATH", path.c_str(), 1);
        EXPECT_NE(error.find(c.says != nullptr ? c.says : ""), std::string::npos) << error;
        EXPECT_EQ(folder.Read("film.mp4").size(), c.says == nullptr ? 2 * 400 * 300 * 4 : 11)
            << "kept, or whole";
        EXPECT_FALSE(std::filesystem::exists(folder.File("film.unfinished.mp4")));
    }
}
