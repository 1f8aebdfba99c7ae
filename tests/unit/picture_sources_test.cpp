// Where pictures come from, scripted: the modules of the codec, and the desktop.
#include "fakes/fake_win32.h"
#include "image/canvas.h"
#include "image/codec.h"
#include "image/desktop_shot.h"
#include "unit/trace_lines.h"

#include <algorithm>

namespace {

TEST(ScriptedCodec, ThatIsNotAllThereIsTracedAndGivenBack) {
    using Lines = std::vector<std::string>;
    static int shutDowns = 0;
    ResetFakeWin32();
    fakeWin32.modules["ilu"] = {};
    // Some of the entry points; it bears to be shut down, ilInit is not called.
    for (const char* name : {"ilInit", "ilShutDown", "ilEnable", "ilDisable", "ilSetInteger"})
        fakeWin32.modules["DevIL"][name] = FakeEntry(+[] { ++shutDowns; });
    const TempFolder folder;
    const TraceLines trace(folder);
    EXPECT_FALSE(fxLoadDevil() || fxDevilLoaded());
    EXPECT_EQ(TakeFakeCalls(), (Lines{"LoadLibraryA(DevIL)", "LoadLibraryA(ilu)", "FreeLibrary(module)",
                                      "FreeLibrary(module)"}));
    EXPECT_EQ(trace.Lines(),
              (Lines{"loading devil", "#ERROR: failed to load devil libraries", "unload devil"}));
    EXPECT_EQ(shutDowns, 1);
    EXPECT_FALSE(FXCanvas().CreateFromPict(folder.Write("a", "picture").c_str()));
}

// A desktop of 200 x 150 pixels of which (x, y) is blue x, green y, red 0x30.
TEST(Desktop, IsPhotographedWhateverThePitchAndTheScreensSizeWithABlackMargin) {
    constexpr unsigned kWidth = 200, kHeight = 150;
    for (const auto& [padding, screen] : {std::pair{0u, 200u}, {12, 200}, {0, 100}, {0, 250}}) {
        const unsigned pitch = 4 * kWidth + padding;
        std::vector<unsigned char> bytes(pitch * (kHeight - 1) + 4 * kWidth); // the last row ends the block
        for (unsigned i = 0; i < kWidth * kHeight; ++i) {
            unsigned char* pixel = &bytes[i / kWidth * pitch + 4 * (i % kWidth)];
            pixel[0] = static_cast<unsigned char>(i % kWidth);
            pixel[1] = static_cast<unsigned char>(i / kWidth);
            pixel[2] = 0x30;
        }
        fakeDesktop = {};
        fakeDesktop.pixels = {bytes.data(), static_cast<int>(pitch), kWidth, kHeight};
        fakeWin32.screenWidth = static_cast<int>(screen);
        fakeWin32.screenHeight = kHeight;
        FXScrShot shot;
        ASSERT_TRUE(shot.Update() && shot.opaque);
        EXPECT_EQ(fakeDesktop.calls, "copy " + std::to_string(screen) + "x150, lock, unlock");
        for (unsigned i = 0; i < static_cast<unsigned>(shot.width) * kHeight; ++i) {
            const unsigned x = i % static_cast<unsigned>(shot.width),
                           y = i / static_cast<unsigned>(shot.width);
            const std::uint32_t shown = x < std::min(kWidth, screen) ? 0x30u | y << 8 | x << 16 : 0;
            ASSERT_EQ(shot.pixels[i], 0xFF000000u | shown) << x << "," << y;
        }
        fakeDesktop.lockFails = true;
        EXPECT_FALSE(shot.Update() || fakeDesktop.held) << "a copy that cannot be locked is given back";
    }
}

} // namespace
