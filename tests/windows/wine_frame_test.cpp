// The same moment of the show on Windows and on Linux.
#include "film/show_driver.h"
#include "integration/saver_process.h"
#include "picture/comparison.h"
#include "windows/under_wine.h"

namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 180;
constexpr double kStep = 0.1;

// Of the colours at x and y.
template <class Colours> Picture Opaque(const Colours& at) {
    Picture picture{kWidth, kHeight, {}};
    for (int i = 0; i < kWidth * kHeight; ++i)
        picture.pixels.push_back(0xFF000000u | at(i % kWidth, i / kWidth));
    return picture;
}

// With these modules for the pictures.
void ExpectFramesAsOnLinux(const std::vector<std::string>& codec) {
    const std::vector<std::pair<const char*, double>> moments = {
        {"fading", 1.0}, {"burning", 8.0}, {"pause", 30.0}, {"bird", 40.0}, {"unfolding", 46.0}};
    VirtualDisplay display(kWidth, kHeight);
    ASSERT_NE(display.connection, nullptr);
    ShowDriver linux_show;
    std::string error;
    const ShowDriver::Settings settings = {
        .width = kWidth,
        .height = kHeight,
        .dataFolder = TAMBLOR_DATA_DIR,
        .desktop = Opaque([&](int x, int y) { return display.DesktopPixel(x, y); }),
        .step = kStep};
    ASSERT_TRUE(linux_show.Open(settings, &error)) << error;

    const TempFolder folder;
    std::filesystem::copy(WindowsBuild("tests/frames.exe"), folder.Path());
    for (const std::string& module : codec)
        std::filesystem::copy(WindowsBuild(module), folder.Path());
    std::filesystem::copy(std::filesystem::path(TAMBLOR_DATA_DIR) / "tamb.dat", folder.Path());
    std::vector<std::string> words = {folder.File("frames.exe"), SaverName(folder.Path().string()),
                                      std::to_string(kStep)};
    for (const auto& moment : moments)
        words.push_back(std::to_string(moment.second));
    WineProgram windows_show(display.Name(), folder.Path().string(), words);
    for (std::size_t i = 0; i < moments.size(); ++i) {
        const std::string number = std::to_string(i + 1);
        const auto& [name, seconds] = moments[i];
        ASSERT_TRUE(Eventually([&] { return std::filesystem::exists(folder.File("shown-" + number)); }))
            << name;
        const Picture expected = linux_show.FrameAt(seconds);
        Picture shown;
        Eventually([&] { // it may still be painting
            const ScreenPicture screen = display.Photograph();
            shown = Opaque([&](int x, int y) { return screen.At(x, y); });
            return Alike(shown, expected);
        });
        EXPECT_EQ(DiffersFrom(expected, std::string("windows-") + name, shown), "");
        // 5 is usual: other rounding in the mathematics.
        EXPECT_EQ(Difference({kWidth, shown.pixels}, {kWidth, expected.pixels}, 12), 0u) << name;
        folder.Write("seen-" + number, "");
    }
    EXPECT_EQ(windows_show.WaitForExit(), 0);
}

TEST(Frames, LookOnWindowsAsTheyDoOnLinux) {
    ExpectFramesAsOnLinux({"bin/DevIL.dll", "bin/ILU.dll"});
}

TEST(Frames, LookTheSameWithDevilItself) {
    UseDevilItself();
    ExpectFramesAsOnLinux({"tests/codec/devil.dll", "tests/codec/ilu.dll"});
}

} // namespace
