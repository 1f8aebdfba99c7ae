// The little window in the settings panel.
#include "integration/preview_input.h"

#include <gtest/gtest.h>

#include <X11/keysym.h>

#include <sstream>

namespace {

TEST(Preview, DrawsTheStillInsideItsParentAndNothingElse) {
    VirtualDisplay display(400, 300);
    ASSERT_TRUE(display.Ok());
    const unsigned long parent = display.CreateParent(100, 80, 152, 112);
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
    display.DestroyParent(parent);
    EXPECT_EQ(saver.WaitForExit(), 0) << "it goes with its parent";
    EXPECT_EQ(saver.Errors(), "");
}

TEST(Preview, AWindowThatIsGoneEndsItQuietly) {
    VirtualDisplay display(320, 240);
    ASSERT_TRUE(display.Ok());
    const unsigned long parent = display.CreateParent(0, 0, 100, 100);
    display.DestroyParent(parent);
    SaverProcess saver;
    saver.Start(&display, {"/p", std::to_string(parent)});
    EXPECT_EQ(saver.WaitForExit(), 0);
    EXPECT_TRUE(display.VisibleWindows().empty());
}

} // namespace
