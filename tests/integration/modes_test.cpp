// Which command line does what: the saver's modes, from the outside.
#include "integration/saver_process.h"

#include <gtest/gtest.h>

namespace {

TEST(Modes, NoneOfTheseShowsAWindow) {
    VirtualDisplay display(320, 240);
    ASSERT_TRUE(display.Ok());
    const std::string noWindow = "tamblor: there is no window ";
    const std::string noNumber = "tamblor: the preview needs the number of a window, as in /p 1234\n";
    const std::pair<std::vector<std::string>, std::string> lines[] = {
        {{}, "tamblor: there is nothing to set up"}, // there is no settings dialog
        {{"/c"}, "tamblor: there is nothing to set up"},
        {{"/c:1234"}, "tamblor: there is nothing to set up"}, // as the settings panel asks
        {{"-q"}, "tamblor: there is nothing to set up"},      // no known letter
        {{"/p"}, noNumber},                                   // preview without a window
        {{"/p", "0"}, noWindow + "0\n"},                      //
        {{"/p", "x12"}, noNumber},                            //
        {{"/p", "99999999"}, noWindow + "99999999\n"},        //
        {{"/pa"}, noNumber},                                  // the first letter decides
        {{"/p", "0xFfffff"}, noWindow + "16777215\n"},        // as X tools write it
        {{"-P0Xffffff"}, noWindow + "16777215\n"},            //
        {{"p", "0xffffffff"}, noWindow + "4294967295\n"},     //
        {{"/p", "0x100000000"}, noWindow + "0\n"},            // beyond any window's: left as it is
        {{"/p", "0xfffffg"}, noWindow + "0\n"},               // not hexadecimal
        {{"/p", "0x"}, noWindow + "0\n"},                     //
        {{"/p", "12", "0xffffff"}, noWindow + "12\n"},        // not behind the switch
        {{"/a"}, ""},                                         // no password provider on this system
        {{"/a", "1"}, noWindow + "1\n"},                      //
        {{"-A", "0xffffff"}, noWindow + "16777215\n"},        //
        {{"register_scrsaver"}, "tamblor: the system has no way to install"},
    };
    for (const auto& [line, words] : lines) {
        SaverProcess saver;
        saver.Start(&display, line);
        const std::string shown = line.empty() ? "(nothing)" : line.back();
        EXPECT_EQ(saver.WaitForExit(), 0) << shown;
        EXPECT_TRUE(display.VisibleWindows().empty()) << shown;
        EXPECT_EQ(saver.Data().Read("tamb.log"), "") << shown;
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
