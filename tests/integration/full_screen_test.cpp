// Which command line does what, and the show on a whole screen: what it covers and what ends it.
#include "integration/saver_process.h"

namespace {

class FullScreen : public ShowFixture {};

TEST_F(FullScreen, CoversTheScreenHidesThePointerAndEndsWithAnyKey) {
    for (const auto& [line, key] :
         {std::pair{"/s", XK_space}, {"-S", XK_Shift_L}, {"s", XK_F10}, {"/s", XK_Escape}}) {
        Start({line});
        EXPECT_TRUE(display.WaitForHiddenCursor());
        ExpectAKeyEndsIt(key);
    }
    EXPECT_FALSE(display.CursorIsHidden());
}

TEST_F(FullScreen, TheMouseDoesNothingForFourSecondsAndClosesAfter) {
    for (const bool byButton : {true, false}) {
        Start();
        ASSERT_TRUE(saver.SeeFrames(display));
        saver.SetClock(4000);
        display.MovePointer(20, 20);
        display.ClickButton(1);
        saver.ExpectItGoesOn();
        saver.SetClock(4001);
        byButton ? display.ClickButton(3) : display.MovePointer(50, 50);
        EXPECT_EQ(saver.WaitForExit(), 0);
    }
}

TEST_F(FullScreen, NothingIsSeenBetweenTheDesktopAndTheFirstFrameWhichIsTheSamePixelForPixel) {
    // The clock stands at the first frame, which is the desktop: so that is all that there may be to see.
    const ScreenPicture desktop = DesktopPicture(display.width, display.height);
    saver.Start({"/s"});
    constexpr int kLooks = 300, kMost = 100000; // after the first frame, and at all: one each ms
    int looks = 0, others = 0;
    for (int i = 0; i < kMost && looks < kLooks && saver.Running(); ++i) {
        others += Difference(desktop, display.Photograph()) != 0;
        looks += saver.Draws() && !display.VisibleWindows().empty();
        usleep(1000);
    }
    EXPECT_EQ(looks, kLooks) << "it ends by itself, or draws nothing";
    EXPECT_EQ(others, 0);
    // Before the saver draws, its window shows the desktop too: so frames are seen to fade it. Turned back to
    // the start, the clock makes every frame the first one.
    ASSERT_TRUE(saver.SeeFrames(display));
    saver.SetClock(0);
    EXPECT_TRUE(Eventually([&] { return Difference(desktop, display.Photograph(), 3) == 0; }));
}

class Modes : public ShowFixture {};

TEST_F(Modes, NoneOfTheseShowsAWindowAndEachSaysWhy) {
    const std::string noWindow = "tamblor: there is no window ",
                      nothing = "tamblor: there is nothing to set up";
    const std::string noNumber = "tamblor: the preview needs the number of a window, as in /p 1234\n";
    const std::pair<std::vector<std::string>, std::string> lines[] = {
        {{}, nothing},                                 // there is no settings dialog
        {{"/p"}, noNumber},                            // preview without a window
        {{"/p", "0xFfffff"}, noWindow + "16777215\n"}, // as X tools write it
        {{"p0Xffffffff"}, noWindow + "4294967295\n"},
        {{"/p", "0xfffffg"}, noWindow + "0\n"},        // not hexadecimal
        {{"/p", "12", "0xffffff"}, noWindow + "12\n"}, // not behind the switch
        {{"/a"}, ""},                                  // no password provider on this system
        {{"-A", "0xffffff"}, noWindow + "16777215\n"},
        {{"register_scrsaver"}, "tamblor: the system has no way to install"},
    };
    const bool says = SaverName("/") == "/"; // Windows has words of its own
    for (const auto& [line, words] : lines) {
        const std::string shown = line.empty() ? "(nothing)" : line.back();
        EXPECT_EQ(saver.Run(line), 0) << shown;
        EXPECT_TRUE(display.VisibleWindows().empty()) << shown;
        EXPECT_EQ(saver.Trace(), "") << shown;
        const bool whole = words.empty() || words.ends_with('\n');
        EXPECT_TRUE(!says || (whole ? saver.Errors() == words : saver.Errors().starts_with(words)))
            << shown << ": " << saver.Errors();
    }
}

} // namespace
