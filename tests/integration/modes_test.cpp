// Which command line does what: the saver's modes, from the outside.
#include "integration/saver_process.h"

namespace {

class Modes : public ShowFixture {
protected:
    Modes() : ShowFixture(320, 240) {}
};

TEST_F(Modes, NoneOfTheseShowsAWindowAndEachSaysWhy) {
    const std::string noWindow = "tamblor: there is no window ",
                      nothing = "tamblor: there is nothing to set up";
    const std::string noNumber = "tamblor: the preview needs the number of a window, as in /p 1234\n";
    const std::pair<std::vector<std::string>, std::string> lines[] = {
        {{}, nothing},          // there is no settings dialog
        {{"/c:1234"}, nothing}, // as the settings panel asks
        {{"-q"}, nothing},      // no known letter
        {{"/p"}, noNumber},     // preview without a window
        {{"/p", "x12"}, noNumber},
        {{"/p", "99999999"}, noWindow + "99999999\n"},
        {{"/p", "0xFfffff"}, noWindow + "16777215\n"}, // as X tools write it
        {{"-P0Xffffff"}, noWindow + "16777215\n"},
        {{"p", "0xffffffff"}, noWindow + "4294967295\n"},
        {{"/p", "0x100000000"}, noWindow + "0\n"},     // beyond any window's: left as it is
        {{"/p", "0xfffffg"}, noWindow + "0\n"},        // not hexadecimal
        {{"/p", "12", "0xffffff"}, noWindow + "12\n"}, // not behind the switch
        {{"/a"}, ""},                                  // no password provider on this system
        {{"-A", "0xffffff"}, noWindow + "16777215\n"},
        {{"register_scrsaver"}, "tamblor: the system has no way to install"},
    };
    const bool says = SaverName("/") == "/"; // Windows has words of its own
    for (const auto& [line, words] : lines) {
        saver.Start(display, line);
        const std::string shown = line.empty() ? "(nothing)" : line.back();
        EXPECT_EQ(saver.WaitForExit(), 0) << shown;
        EXPECT_TRUE(display.VisibleWindows().empty()) << shown;
        EXPECT_EQ(saver.Trace(), "") << shown;
        const bool whole = words.empty() || words.ends_with('\n');
        EXPECT_TRUE(!says || (whole ? saver.Errors() == words : saver.Errors().starts_with(words)))
            << shown << ": " << saver.Errors();
    }
    for (const char* line : {"-S", "s"}) {
        saver.Start(display, {line});
        EXPECT_TRUE(saver.WaitUntilShown(display)) << line;
        ExpectAKeyEndsIt();
    }
}

} // namespace
