// The little window in the settings panel.
#include "integration/preview_input.h"

#include <sstream>

namespace {

TEST(Preview, DrawsTheStillInsideItsParentAndNothingElse) {
    VirtualDisplay display(400, 300);
    ASSERT_TRUE(display.Ok());
    const unsigned long parent = display.ShowWindow(100, 80, 152, 112);
    std::ostringstream number; // as X tools write it
    number << std::hex << std::showbase << parent;
    SaverProcess saver;
    saver.Start(&display, {"/p", number.str()});
    // The parent is black, the still is not: its sun stands at the lower left.
    EXPECT_TRUE(display.WaitForPixel(100 + 30, 80 + 90, 0x000000, 40, true));
    EXPECT_EQ(display.VisibleWindows().size(), 1u) << "the saver has no window of its own on the screen";
    const ScreenPicture picture = display.Photograph();
    for (const auto& [x, y] : {std::pair{99, 100}, {252, 100}, {150, 79}, {150, 192}})
        EXPECT_LE(ChannelDistance(picture.At(x, y), display.DesktopPixel(x, y)), 1) << x << "," << y;
    ExpectInputIsIgnored(saver, display);
    display.DestroyWindow(parent);
    EXPECT_EQ(saver.WaitForExit(), 0) << "it goes with its parent";
    EXPECT_EQ(saver.Errors(), "");

    SaverProcess late; // of the window that is gone
    late.Start(&display, {"/p", number.str()});
    EXPECT_EQ(late.WaitForExit(), 0);
    EXPECT_TRUE(display.VisibleWindows().empty());
}

} // namespace
