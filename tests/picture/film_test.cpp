// What the film tool makes of its command line and of ffmpeg.
#include "film/film_options.h"
#include "film/video.h"
#include "unit/temp_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iterator>
#include <sstream>

namespace {

// What stands between the blanks of a line.
bool Parse(const std::string& line, FilmOptions* options, std::string* error) {
    std::istringstream words(line);
    return ParseFilmOptions({std::istream_iterator<std::string>(words), {}}, options, error);
}

} // namespace

TEST(Film, TakesItsOptionsAndNamesTheOneItCannotTake) {
    FilmOptions options;
    std::string error;
    ASSERT_TRUE(Parse("--sheet s.png --frames f --at 0,2.5,8 --size 640x360 --columns 3 --preview --smooth",
                      &options, &error))
        << error;
    EXPECT_TRUE(options.sheet == "s.png" && options.framesFolder == "f" && options.columns == 3);
    EXPECT_EQ(options.times, (std::vector<double>{0, 2.5, 8}));
    EXPECT_TRUE(options.width == 640 && options.height == 360 && options.preview && options.smooth);
    for (const std::string line :
         {"--fps 0", "--fps 2.5", "--size 640", "--size 9000x10", "--size 0x10", "--smooth --size 5000x10",
          "--at 3,1", "--at 3,,4", "--at nan", "--from -1", "--to 1 --from 4", "--to 1e300", "--film s.mp4",
          "--video", "--at 1 --video s.mp4"}) {
        EXPECT_FALSE(Parse("--sheet s.png " + line, &options, &error)) << line;
        EXPECT_NE(error.find(line.substr(0, line.find(' '))), std::string::npos) << line << ": " << error;
        options = {};
    }
}

// What stands for ffmpeg on the machine, and what comes of a film of two frames.
TEST(Film, IsAVideoOrSaysWhyNot) {
    const Picture frame{400, 300, std::vector<std::uint32_t>(400 * 300, 0xFF102030u)};
    const std::pair<const char*, const char*> kCases[] = {
        // a script, and what is wrong
        {"for file; do :; done; cat >\"${file#file:}\"", ""},
        {"for file; do :; done; cat >\"${file#file:}\"; exit 3", "exit status 3"},
        {"exit 4", "exit status 4"}, // the frames find nobody at the other end
        {nullptr, "there is no ffmpeg"},
    };
    const std::string path = std::getenv("PATH");
    for (const auto& [script, wrong] : kCases) {
        const TempFolder folder;
        folder.Write("film.mp4", "the old one");
        if (script != nullptr) {
            folder.Write("ffmpeg", "#!/bin/sh\nPATH=" + path + "\n" + script + "\n");
            std::filesystem::permissions(folder.File("ffmpeg"), std::filesystem::perms::owner_all);
        }
        setenv("PATH", folder.File("").c_str(), 1);
        std::string error;
        {
            Video video;
            const bool made = video.Open(folder.File("film.mp4"), 400, 300, 25, &error) &&
                              video.Add(frame, &error) && video.Add(frame, &error) && video.Finish(&error);
            EXPECT_EQ(made, error.empty());
        }
        setenv("PATH", path.c_str(), 1);
        EXPECT_TRUE(error.empty() == (*wrong == '\0') && error.find(wrong) != std::string::npos) << error;
        EXPECT_EQ(folder.Read("film.mp4").size(), error.empty() ? 2 * 400 * 300 * 4 : 11) << "kept, or whole";
        EXPECT_FALSE(std::filesystem::exists(folder.File("film.unfinished.mp4")));
    }
}
