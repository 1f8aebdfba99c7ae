// Which command line does what: the saver's modes, from the outside.
#include "integration/saver_command.h"

namespace {

const std::string kNoWindow = "tamblor: there is no window ";
const std::string kNoNumber = "tamblor: the preview needs the number of a window, as in /p 1234\n";
const std::string kNothing = "tamblor: there is nothing to set up";

TEST(Modes, NoneOfTheseShowsAWindowAndEachSaysWhy) {
    const std::pair<std::vector<std::string>, std::string> lines[] = {
        {{}, kNothing}, // there is no settings dialog
        {{"/c"}, kNothing},
        {{"/c:1234"}, kNothing}, // as the settings panel asks
        {{"-q"}, kNothing},      // no known letter
        {{"/p"}, kNoNumber},     // preview without a window
        {{"/p", "0"}, kNoWindow + "0\n"},
        {{"/p", "x12"}, kNoNumber},
        {{"/p", "99999999"}, kNoWindow + "99999999\n"},
        {{"/pa"}, kNoNumber},                           // the first letter decides
        {{"/p", "0xFfffff"}, kNoWindow + "16777215\n"}, // as X tools write it
        {{"-P0Xffffff"}, kNoWindow + "16777215\n"},
        {{"p", "0xffffffff"}, kNoWindow + "4294967295\n"},
        {{"/p", "0x100000000"}, kNoWindow + "0\n"},     // beyond any window's: left as it is
        {{"/p", "0xfffffg"}, kNoWindow + "0\n"},        // not hexadecimal
        {{"/p", "12", "0xffffff"}, kNoWindow + "12\n"}, // not behind the switch
        {{"/a"}, ""},                                   // no password provider on this system
        {{"-A", "0xffffff"}, kNoWindow + "16777215\n"},
        {{"register_scrsaver"}, "tamblor: the system has no way to install"},
    };
    const bool says = SaverName("/") == "/"; // Windows has words of its own
    VirtualDisplay display(320, 240);
    ASSERT_TRUE(display.Ok());
    for (const auto& [line, words] : lines) {
        SaverProcess saver;
        saver.Start(&display, line);
        const std::string shown = line.empty() ? "(nothing)" : line.back();
        EXPECT_EQ(saver.WaitForExit(), 0) << shown;
        EXPECT_TRUE(display.VisibleWindows().empty()) << shown;
        EXPECT_EQ(saver.Trace(), "") << shown;
        const bool whole = words.empty() || words.ends_with('\n');
        EXPECT_TRUE(!says || (whole ? saver.Errors() == words : saver.Errors().starts_with(words)))
            << shown << ": " << saver.Errors();
    }
}

TEST(Modes, EveryFormOfTheSwitchRunsFullScreen) {
    VirtualDisplay display(320, 240);
    ASSERT_TRUE(display.Ok());
    for (const char* line : {"-S", "s"}) {
        SaverProcess saver;
        saver.Start(&display, {line});
        EXPECT_TRUE(saver.WaitUntilShown(display)) << line;
        display.PressKey(' ');
        EXPECT_EQ(saver.WaitForExit(), 0) << line;
        EXPECT_TRUE(display.VisibleWindows().empty()) << line;
    }
}

} // namespace
