// The same moment of the show on Windows and on Linux.
#include "film/show_driver.h"
#include "integration/saver_process.h"
#include "picture/comparison.h"
#include "windows/under_wine.h"

namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 180;
constexpr double kStep = 0.1;

Picture Shown(const VirtualDisplay& display) {
    const ScreenPicture screen = display.Photograph();
    Picture picture{screen.width, screen.height, screen.pixels};
    for (std::uint32_t& pixel : picture.pixels)
        pixel |= 0xFF000000u;
    return picture;
}

Picture Desktop(const VirtualDisplay& display) {
    Picture picture{kWidth, kHeight, {}};
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            picture.pixels.push_back(0xFF000000u | display.DesktopPixel(x, y));
    return picture;
}

int WorstPixel(const Picture& a, const Picture& b) {
    int worst = 0;
    for (std::size_t i = 0; i < a.pixels.size(); ++i)
        worst = std::max(worst, ChannelDistance(a.pixels[i], b.pixels[i]));
    return worst;
}

TEST(Frames, LookOnWindowsAsTheyDoOnLinux) {
    const std::vector<std::pair<const char*, double>> moments = {
        {"fading", 1.0}, {"burning", 8.0}, {"pause", 30.0}, {"bird", 40.0}, {"unfolding", 46.0}};
    VirtualDisplay display(kWidth, kHeight);
    ASSERT_TRUE(display.Ok());
    ShowDriver linux_show;
    std::string error;
    ShowDriver::Settings settings;
    settings.width = kWidth;
    settings.height = kHeight;
    settings.step = kStep;
    settings.dataFolder = TAMBLOR_DATA_DIR;
    settings.desktop = Desktop(display);
    ASSERT_TRUE(linux_show.Open(settings, &error)) << error;

    const TempFolder folder;
    for (const char* file : {"tests/frames.exe", "tests/codec/devil.dll", "tests/codec/ilu.dll"})
        std::filesystem::copy(WindowsBuild(file), folder.Path());
    std::filesystem::copy(std::filesystem::path(TAMBLOR_DATA_DIR) / "tamb.dat", folder.Path());
    std::vector<std::string> words = {folder.File("frames.exe"), WindowsPath(folder.Path().string()),
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
        Eventually([&] { return Alike(shown = Shown(display), expected); }); // it may still be painting
        EXPECT_EQ(DiffersFrom(expected, std::string("windows-") + name, shown), "");
        EXPECT_LE(WorstPixel(shown, expected), 12) << name; // 5 is usual: other rounding in the mathematics
        folder.Write("seen-" + number, "");
    }
    EXPECT_EQ(windows_show.WaitForExit(), 0);
}

} // namespace
