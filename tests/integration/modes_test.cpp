// Which command line does what: the saver's modes, from the outside.
#include "integration/saver_process.h"

#include <gtest/gtest.h>

namespace {

TEST(Modes, NoneOfTheseShowsAWindow) {
    VirtualDisplay display(320, 240);
    ASSERT_TRUE(display.Ok());
    const std::vector<std::vector<std::string>> lines = {
        {},                 // configure: there is no settings dialog
        {"/c"},             //
        {"/c:1234"},        // as the settings panel asks
        {"-q"},             // no known letter
        {"/p"},             // preview without a window
        {"/p", "0"},        //
        {"/p", "x12"},      //
        {"/p", "99999999"}, // no such window
        {"/pa"},            // the first letter decides
        {"/a"},             // no password provider on this system
        {"/a", "1"},        //
        {"register_scrsaver"},
    };
    for (const auto& line : lines) {
        SaverProcess saver;
        saver.Start(&display, line);
        const std::string shown = line.empty() ? "(nothing)" : line.back();
        EXPECT_EQ(saver.WaitForExit(), 0) << shown;
        EXPECT_TRUE(display.VisibleWindows().empty()) << shown;
        EXPECT_EQ(saver.Data().Read("tamb.log"), "") << shown;
    }
}

TEST(Modes, EveryFormOfTheSwitchRunsFullScreen) {
    VirtualDisplay display(320, 240);
    ASSERT_TRUE(display.Ok());
    for (const char* line : {"/s", "-S", "s"}) {
        SaverProcess saver;
        saver.Start(&display, {line});
        EXPECT_TRUE(saver.WaitUntilShown(display)) << line;
        display.PressKey(' ');
        EXPECT_EQ(saver.WaitForExit(), 0) << line;
        EXPECT_TRUE(display.VisibleWindows().empty()) << line;
    }
}

} // namespace
