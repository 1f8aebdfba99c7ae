// Which command line does what: the saver's modes, from the outside.
#include "integration/saver_process.h"

#include <gtest/gtest.h>

namespace {

const std::string kNoWindow = "tamblor: there is no window ";
const std::string kNoNumber = "tamblor: the preview needs the number of a window, as in /p 1234\n";
const std::pair<std::vector<std::string>, std::string> kLines[] = {
    {{}, "tamblor: there is nothing to set up"}, // there is no settings dialog
    {{"/c"}, "tamblor: there is nothing to set up"},
    {{"/c:1234"}, "tamblor: there is nothing to set up"}, // as the settings panel asks
    {{"-q"}, "tamblor: there is nothing to set up"},      // no known letter
    {{"/p"}, kNoNumber},                                  // preview without a window
    {{"/p", "0"}, kNoWindow + "0\n"},                     //
    {{"/p", "x12"}, kNoNumber},                           //
    {{"/p", "99999999"}, kNoWindow + "99999999\n"},       //
    {{"/pa"}, kNoNumber},                                 // the first letter decides
    {{"/p", "0xFfffff"}, kNoWindow + "16777215\n"},       // as X tools write it
    {{"-P0Xffffff"}, kNoWindow + "16777215\n"},           //
    {{"p", "0xffffffff"}, kNoWindow + "4294967295\n"},    //
    {{"/p", "0x100000000"}, kNoWindow + "0\n"},           // beyond any window's: left as it is
    {{"/p", "0xfffffg"}, kNoWindow + "0\n"},              // not hexadecimal
    {{"/p", "0x"}, kNoWindow + "0\n"},                    //
    {{"/p", "12", "0xffffff"}, kNoWindow + "12\n"},       // not behind the switch
    {{"/a"}, ""},                                         // no password provider on this system
    {{"/a", "1"}, kNoWindow + "1\n"},                     //
    {{"-A", "0xffffff"}, kNoWindow + "16777215\n"},       //
    {{"register_scrsaver"}, "tamblor: the system has no way to install"},
};

TEST(Modes, NoneOfTheseShowsAWindow) {
    VirtualDisplay display(320, 240);
    ASSERT_TRUE(display.Ok());
    for (const auto& [line, words] : kLines) {
        SaverProcess saver;
        saver.Start(&display, line);
        const std::string shown = line.empty() ? "(nothing)" : line.back();
        EXPECT_EQ(saver.WaitForExit(), 0) << shown;
        EXPECT_TRUE(display.VisibleWindows().empty()) << shown;
        EXPECT_EQ(saver.Data().Read("tamb.log"), "") << shown;
    }
}

TEST(Modes, EachOfTheseSaysWhy) {
    VirtualDisplay display(320, 240);
    ASSERT_TRUE(display.Ok());
    for (const auto& [line, words] : kLines) {
        SaverProcess saver;
        saver.Start(&display, line);
        EXPECT_EQ(saver.WaitForExit(), 0);
        const std::string errors = saver.Errors();
        EXPECT_EQ(words.ends_with('\n') || words.empty() ? errors : errors.substr(0, words.size()), words);
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
