// The little window in the settings panel.
#include "integration/saver_process.h"

#include <sstream>

namespace {

class Preview : public ShowFixture {
protected:
    Preview() : ShowFixture(400, 300) {}
};

TEST_F(Preview, DrawsTheStillInsideItsParentAndNothingElse) {
    const Window parent = display.ShowWindow({100, 80, 152, 112});
    std::ostringstream number; // as X tools write it
    number << std::hex << std::showbase << parent;
    saver.Start(display, {"/p", number.str()});
    // The parent is black, the still is not: its sun stands at the lower left.
    EXPECT_TRUE(display.WaitForPixel(100 + 30, 80 + 90, 0x000000, 40, true));
    EXPECT_EQ(display.VisibleWindows().size(), 1u) << "the saver has no window of its own on the screen";
    for (const auto& [x, y] : {std::pair{99, 100}, {252, 100}, {150, 79}, {150, 192}})
        EXPECT_LE(ChannelDistance(display.PixelAt(x, y), display.DesktopPixel(x, y)), 1) << x << "," << y;
    ExpectAPreviewIgnoresInput();
    display.DestroyWindow(parent);
    EXPECT_EQ(saver.WaitForExit(), 0) << "it goes with its parent";
    EXPECT_EQ(saver.Errors(), "");
}

} // namespace
