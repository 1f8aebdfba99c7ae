// The host over a scripted platform: modes, the window's life, what every message leads to, and the password
// protocol.
#include "fakes/fake_win32.h"
#include "host/configuration.h"
#include "host/default_procedure.h"
#include "host/message_routing.h"
#include "host/saver_entry.h"
#include "host/saver_mode.h"
#include "host/saver_password.h"
#include "host/saver_window.h"
#include "platform/clock.h"
#include "scene/scene.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Calls = std::vector<std::string>;

std::uint32_t ticks = 0;

const HWND kOther = reinterpret_cast<HWND>(static_cast<UINT_PTR>(1234));

} // namespace

void InitScene(HWND, bool preview) {
    NoteFakeCall("InitScene(%s, %s)", preview ? "preview" : "full", orinPath);
    ticks += 3000; // it takes its time
}
void ResizeScene(int width, int height) {
    NoteFakeCall("ResizeScene(%d, %d)", width, height);
}
void DestroyScene() {
    NoteFakeCall("DestroyScene()");
}

namespace {

class Host : public testing::Test {
protected:
    void SetUp() override {
        ResetFakeWin32();
        fakeWin32.windows = {kOther};
        fakeWin32.registry[std::string(scrRegName) + "\\path"] = std::string("/show", 6);
        fxSetTickSource([] { return ticks; });
        ticks = 50000;
        fChildPreview = checking_pwd = closing = w95 = 0;
        escapeHit = started = false;
        hMainWindow = nullptr;
        hPwdLib = nullptr;
        VerifyScreenSavePwd = nullptr;
        orinPath[0] = '\0';
        pt_orig = fakeWin32.pointer;
    }
    void TearDown() override { fxSetTickSource(nullptr); }

    int Run(std::string line) {
        fakeWin32.commandLine = "tamb.scr " + line;
        pt_orig = {-1, -1}; // as if nobody had looked yet
        return WinMain(nullptr, nullptr, line.data(), SW_SHOWNORMAL);
    }
    static bool Called(const Calls& calls, const std::string& call) {
        return std::find(calls.begin(), calls.end(), call) != calls.end();
    }
};

TEST(SaverMode, TheFirstKnownLetterDecides) {
    struct Case {
        const char* line;
        SaverMode mode;
        bool hasWindow;
        std::uint32_t window;
    };
    const Case cases[] = {
        {"", SaverMode::Configure, false, 0},
        {"/q-7 1", SaverMode::Configure, false, 0},
        {"/c:1234", SaverMode::Configure, false, 0},
        {"/s", SaverMode::Saver, false, 0},
        {"-S 12", SaverMode::Saver, false, 0},
        {"s", SaverMode::Saver, false, 0},
        {"register_scrsaver", SaverMode::Saver, false, 0},
        {"/p 1234", SaverMode::Preview, true, 1234},
        {"/P\t 1234 99", SaverMode::Preview, true, 1234},
        {"/p1234", SaverMode::Preview, true, 1234},
        {"/p 12x4", SaverMode::Preview, true, 12},
        {"/p 4294967298", SaverMode::Preview, true, 2},
        {"/p", SaverMode::Preview, false, 0},
        {"/p  ", SaverMode::Preview, false, 0},
        {"/p x12", SaverMode::Preview, false, 0},
        {"/pa 5", SaverMode::Preview, false, 0},
        {"/a 77", SaverMode::ChangePassword, true, 77},
        {"/A", SaverMode::ChangePassword, false, 0},
    };
    for (const Case& c : cases) {
        const SaverCommand command = ParseSaverCommandLine(c.line);
        EXPECT_EQ(command.mode, c.mode) << c.line;
        EXPECT_EQ(command.hasWindow, c.hasWindow) << c.line;
        EXPECT_EQ(command.window, c.window) << c.line;
    }
}

TEST(CloseRule, GraceTimeKeysAndPreview) {
    constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(SaverMayClose(false, false, true, 103.9, 100.0));
    EXPECT_FALSE(SaverMayClose(false, false, true, 104.0, 100.0));
    EXPECT_TRUE(SaverMayClose(false, false, true, 104.001, 100.0));
    EXPECT_FALSE(SaverMayClose(false, false, true, kNoNumber, 100.0));
    EXPECT_FALSE(SaverMayClose(false, false, false, 500.0, 0.0)) << "before the scene is built";
    EXPECT_TRUE(SaverMayClose(false, true, false, 0.0, 0.0)) << "a key";
    EXPECT_TRUE(SaverMayClose(true, false, false, 0.0, 0.0)) << "a preview";
}

TEST_F(Host, ReadsTheDataFolderThatIsConfigured) {
    const std::string value = std::string(scrRegName) + "\\path";
    const std::string longest(519, 'x');
    const std::pair<std::string, std::string> cases[] = {
        {longest + '\0', longest}, {"unterminated", "unterminated"}, {longest + "x" + '\0', "before"}};
    for (const auto& [stored, folder] : cases) {
        std::snprintf(orinPath, sizeof orinPath, "before");
        fakeWin32.registry[value] = stored;
        Run("/s");
        EXPECT_EQ(orinPath, folder);
    }
    fakeWin32.registry.clear();
    std::snprintf(orinPath, sizeof orinPath, "before");
    Run("/s");
    EXPECT_STREQ(orinPath, "before");
    EXPECT_FALSE(configSearch.IsEmpty()) << "where it was looked for";
}

TEST_F(Host, GivesWhatTheLastMessageCarriedWhenTheQueueFails) {
    fakeWin32.steps = {[] { PostMessageA(kFakeWindow, WM_TIMER, 7, 0); }}; // and then an error
    EXPECT_EQ(Run("/s"), 7);
}

TEST_F(Host, FullScreenRunsFromTheFirstCallToTheLast) {
    const auto postMove = [] { PostMessageA(kFakeWindow, WM_MOUSEMOVE, 0, 0); };
    fakeWin32.steps = {
        postMove,                                          // the pointer stands where it stood: nothing
        [&] { ++fakeWin32.pointer.x, ticks += 4000; },     //
        postMove,                                          // moved, within the grace time: ignored
        [] { ++ticks; },                                   //
        postMove,                                          // and after it
        [] { FAIL() << "the loop must end with WM_QUIT"; } //
    };
    EXPECT_EQ(Run("/s"), 0);
    const Calls expected = {
        "RegisterClassA(WindowsScreenSaverClass, 0x883)",
        "CreateWindowExA(8, WindowsScreenSaverClass, SCREENSAVER, 0x90000000, 0, 0, 1280, 1024, 0x0)",
        "SetCursor(0)",
        "RegCloseKey()",
        "InitScene(full, /show)",
        "UpdateWindow()",
        "ShowWindow(5)",
        "PostMessageA(0x200)",
        "DefWindowProcA(0x200)",
        "PostMessageA(0x200)",
        "PostMessageA(0x10)",
        "DefWindowProcA(0x200)",
        "PostMessageA(0x200)",
        "PostMessageA(0x10)",
        "DefWindowProcA(0x200)",
        "DestroyWindow()",
        "PostQuitMessage(0)",
        "DestroyScene()",
        "FreeLibrary(null)",
    };
    EXPECT_EQ(TakeFakeCalls(), expected);
}

TEST_F(Host, APreviewLiesInItsParentAndIgnoresThePointer) {
    fakeWin32.steps = {
        [] {
            ticks += 60000;
            ++fakeWin32.pointer.y;
            PostMessageA(kFakeWindow, WM_MOUSEMOVE, 0, 0);
            PostMessageA(kFakeWindow, WM_LBUTTONDOWN, 0, 0);
        },
        [] {
            EXPECT_TRUE(IsWindow(kFakeWindow));
            ticks = 50001; // no grace time for who asks it to go
            PostMessageA(kFakeWindow, WM_CLOSE, 0, 0);
        },
    };
    EXPECT_EQ(Run("/p 1234"), 0);
    const Calls calls = TakeFakeCalls();
    EXPECT_TRUE(Called(
        calls,
        "CreateWindowExA(0, WindowsScreenSaverClass, SCREENSAVER, 0x40000000, 0, 0, 152, 112, 0x4d2)"));
    EXPECT_TRUE(Called(calls, "InitScene(preview, /show)"));
    EXPECT_FALSE(Called(calls, "SetCursor(0)"));
    EXPECT_TRUE(Called(calls, "DestroyScene()"));
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "PostMessageA(0x10)"), 1) << "the test's own";
}

// The parent and the provider of the last change of the password.
DWORD WINAPI FakeChangePassword(const char* provider, HWND parent, DWORD, void*) {
    NoteFakeCall("change %s for 0x%x", provider, static_cast<unsigned>(reinterpret_cast<UINT_PTR>(parent)));
    return 0;
}

TEST_F(Host, TheOtherModesOpenNoWindow) {
    const Calls change = {"LoadLibraryA(MPR.DLL)", "change SCRSAVE for 0x4d2", "FreeLibrary(module)"};
    const Calls changeInFront = {"LoadLibraryA(MPR.DLL)", "change SCRSAVE for 0x9", "FreeLibrary(module)"};
    const Calls dialog = {"DialogBoxParamA(2003, 0x9)"};
    struct Case {
        const char* line;
        Calls calls;
    };
    const Case cases[] = {
        {"", dialog},          {"/c:1234", dialog},    {"/p", {}},          {"/p 0", {}},
        {"/p 4321", {}},       {"/p x12", {}},         {"/a 1234", change}, {"/a 4321", changeInFront},
        {"/a", changeInFront}, {"/a0", changeInFront},
    };
    fakeWin32.foreground = reinterpret_cast<HWND>(static_cast<UINT_PTR>(9));
    fakeWin32.modules["MPR.DLL"]["PwdChangePasswordA"] = FakeEntry(FakeChangePassword);
    for (const Case& c : cases) {
        EXPECT_EQ(Run(c.line), 0) << c.line;
        EXPECT_EQ(TakeFakeCalls(), c.calls) << c.line;
    }
    fakeWin32.modules["MPR.DLL"].clear();
    EXPECT_EQ(Run("/a"), 0);
    EXPECT_EQ(TakeFakeCalls(), (Calls{"LoadLibraryA(MPR.DLL)", "FreeLibrary(module)"}));
    fakeWin32.modules.clear();
    EXPECT_EQ(Run("/a"), 0);
    EXPECT_EQ(TakeFakeCalls(), (Calls{"LoadLibraryA(MPR.DLL)"}));
}

TEST_F(Host, WhatCannotStartEndsQuietly) {
    fakeWin32.failing = {"RegisterClassA"};
    EXPECT_EQ(Run("/s"), 0);
    EXPECT_TRUE(Called(TakeFakeCalls(), "MessageBoxA(RegisterClasses() failed, no title, 0x10)"));
    fakeWin32.failing = {"CreateWindowExA"};
    EXPECT_EQ(Run("/s"), 0);
    EXPECT_EQ(TakeFakeCalls().back(), "FreeLibrary(null)");
    fakeWin32.failing.clear(); // an error of the message loop, before any message
    EXPECT_EQ(Run("/s"), 0);
}

TEST_F(Host, ARequestToRegisterGoesToTheShellAndShowsNothing) {
    EXPECT_EQ(Run("register_scrsaver"), 0);
    const Calls calls = TakeFakeCalls();
    EXPECT_TRUE(Called(calls, "ShellExecuteA(install, C:\\Folder41\\tamb.scr, 1)"));
    EXPECT_FALSE(Called(calls, "InitScene(full, /show)"));
    EXPECT_FALSE(Called(calls, "ShowWindow(5)"));
}

TEST_F(Host, WithoutAConfiguredFolderTheSceneIsBuiltAllTheSame) {
    fakeWin32.registry.clear();
    Run("/s");
    EXPECT_TRUE(Called(TakeFakeCalls(), "InitScene(full, )"));
}

enum State { Full, Moved, Preview, Closing, CheckingPassword };

// One message to the running saver, 4 seconds not yet over: the calls it leads to, and the answer.
TEST_F(Host, EveryMessageHasItsWay) {
    const std::string ends = "DestroyWindow() PostQuitMessage(0) DestroyScene() ";
    struct Case {
        UINT message;
        WPARAM wParam;
        State state;
        std::string reaction;
    };
    const Case cases[] = {
        {WM_KEYDOWN, 0, Full, ends + "PostMessageA(0x10) DefWindowProcA(0x100) = 0"},
        {WM_SYSKEYDOWN, 0, Full, ends + "PostMessageA(0x10) DefWindowProcA(0x104) = 0"},
        {WM_KEYUP, 0, Full, ends + "DefWindowProcA(0x101) = 0"},
        {WM_CHAR, 0, Full, ends + "DefWindowProcA(0x102) = 0"},
        {WM_SYSKEYUP, 0, Full, ends + "DefWindowProcA(0x105) = 0"},
        {WM_SYSCHAR, 0, Full, ends + "DefWindowProcA(0x106) = 0"},
        {WM_KEYDOWN, 0, Preview, ends + "DefWindowProcA(0x100) = 0"},
        {WM_KEYDOWN, 0, Closing, "DefWindowProcA(0x100) = 0"},
        {0x0103, 0, Full, "DefWindowProcA(0x103) = 0"}, // a dead character is no key
        {WM_LBUTTONDOWN, 0, Full, "PostMessageA(0x10) DefWindowProcA(0x201) = 0"},
        {WM_RBUTTONDOWN, 0, Full, "PostMessageA(0x10) DefWindowProcA(0x204) = 0"},
        {WM_MBUTTONDOWN, 0, Full, "PostMessageA(0x10) DefWindowProcA(0x207) = 0"},
        {WM_LBUTTONDOWN, 0, Preview, "DefWindowProcA(0x201) = 0"},
        {WM_LBUTTONDOWN, 0, CheckingPassword, "DefWindowProcA(0x201) = 0"},
        {WM_MOUSEMOVE, 0, Full, "DefWindowProcA(0x200) = 0"},
        {WM_MOUSEMOVE, 0, Moved, "PostMessageA(0x10) DefWindowProcA(0x200) = 0"},
        {WM_ACTIVATE, 0, Full, "DefWindowProcA(0x6) = 0"},
        {WM_ACTIVATE, 0, Moved, "PostMessageA(0x10) DefWindowProcA(0x6) = 0"},
        {WM_ACTIVATE, 1, Moved, "DefWindowProcA(0x6) = 0"},
        {WM_ACTIVATEAPP, 0, Moved, "PostMessageA(0x10) DefWindowProcA(0x1c) = 0"},
        {WM_NCACTIVATE, 0, Moved, "PostMessageA(0x10) DefWindowProcA(0x86) = 0"},
        {WM_SETCURSOR, 0, Full, "SetCursor(0) = 1"},
        {WM_SETCURSOR, 0, Preview, "DefWindowProcA(0x20) = 0"},
        {WM_SETCURSOR, 0, CheckingPassword, "DefWindowProcA(0x20) = 0"},
        {WM_ERASEBKGND, 0, Full, "= 1"},
        {WM_PAINT, 0, Full, "ValidateRect() = 0"},
        {WM_PAINT, 0, Closing, "DefWindowProcA(0xf) = 0"},
        {WM_TIMER, 0, Full, "DefWindowProcA(0x113) = 0"},
        {WM_TIMER, 0, Closing, "= 0"},
        {WM_SYSCOMMAND, SC_NEXTWINDOW, Full, "= 0"},
        {WM_SYSCOMMAND, SC_PREVWINDOW, Full, "= 0"},
        {WM_SYSCOMMAND, SC_CLOSE, Full, "= 0"},
        {WM_SYSCOMMAND, SC_SCREENSAVE, Full, "= 0"},
        {WM_SYSCOMMAND, 0xF170, Full, "DefWindowProcA(0x112) = 0"}, // the monitor's power
        {WM_SYSCOMMAND, SC_CLOSE, Preview, "DefWindowProcA(0x112) = 0"},
        {WM_CLOSE, 0, Full, "= 0"},
        {WM_CLOSE, 0, Preview, ends + "= 0"},
        {SCRM_VERIFYPW, 0, Full, "= 1"},
        {WM_SIZE, 0, Full, "ResizeScene(800, 600) DefWindowProcA(0x5) = 0"},
        {WM_SIZE, 0, Preview, "ResizeScene(800, 600) DefWindowProcA(0x5) = 0"},
    };
    constexpr LPARAM kSize = 600 << 16 | 800; // for the one message that reads it
    for (const Case& c : cases) {
        SetUp();
        AdoptFakeWindow(SysScreenSaverProc);
        started = true;
        startTime = fxGetTime();
        fakeWin32.pointer.y += c.state == Moved ? 1 : 0;
        fChildPreview = c.state == Preview;
        closing = c.state == Closing;
        checking_pwd = c.state == CheckingPassword;
        const LRESULT answer = SendMessageA(kFakeWindow, c.message, c.wParam, kSize);
        std::string reaction;
        for (const std::string& call : TakeFakeCalls())
            reaction += call + " ";
        EXPECT_EQ(reaction + "= " + std::to_string(answer), c.reaction)
            << std::hex << c.message << " " << c.wParam << " state " << c.state;
    }
}

BOOL passwordAnswer = FALSE;
BOOL WINAPI FakeVerify(HWND) {
    EXPECT_EQ(checking_pwd, 1) << "no input may ask to close meanwhile";
    return passwordAnswer;
}

TEST_F(Host, OnTheWindows95FamilyTheSaverIsAnnouncedAndThePasswordModuleLoaded) {
    const std::string value = "Control Panel\\Desktop\\ScreenSaveUsePassword";
    const std::string set("\1\0\0\0", 4);
    fakeWin32.platform = VER_PLATFORM_WIN32_WINDOWS;
    fakeWin32.failing = {"CreateWindowExA"};
    fakeWin32.modules["PASSWORD.CPL"]["VerifyScreenSavePwd"] = FakeEntry(FakeVerify);
    fakeWin32.registry[value] = set;
    Run("/s");
    Calls calls = TakeFakeCalls();
    const auto load = std::find(calls.begin(), calls.end(), "LoadLibraryA(PASSWORD.CPL)");
    ASSERT_NE(load, calls.end());
    EXPECT_EQ(std::count(calls.begin(), load, "RegCloseKey()"), 0) << "the key is open until then";
    EXPECT_EQ(std::count(load, calls.end(), "RegCloseKey()"), 1);
    EXPECT_TRUE(Called(calls, "SystemParametersInfoA(97, 1)"));
    EXPECT_TRUE(Called(calls, "SystemParametersInfoA(97, 0)"));
    EXPECT_EQ(calls.back(), "FreeLibrary(module)");

    Run("/p 1234");
    EXPECT_FALSE(Called(TakeFakeCalls(), "SystemParametersInfoA(97, 1)")) << "a preview is no running saver";

    for (const std::string& bytes :
         {std::string(4, '\0'), std::string("\1\0\0\0\0", 5)}) { // not set; not a number
        fakeWin32.registry[value] = bytes;
        LoadSaverPassword();
        EXPECT_EQ(hPwdLib, nullptr);
    }
    fakeWin32.registry[value] = set;
    LoadSaverPassword();
    EXPECT_EQ(VerifyScreenSavePwd, FakeVerify);
    fakeWin32.platform = VER_PLATFORM_WIN32_NT;
    FreeSaverPassword();
    LoadSaverPassword();
    EXPECT_EQ(VerifyScreenSavePwd, nullptr);
}

TEST_F(Host, TheDefaultProcedureAsksForThePasswordBeforeItCloses) {
    AdoptFakeWindow(SysScreenSaverProc);
    VerifyScreenSavePwd = FakeVerify;
    fakeWin32.pointer = {7, 8};
    passwordAnswer = FALSE;
    EXPECT_EQ(DefScreenSaverProc(kFakeWindow, WM_CLOSE, 0, 0), 0);
    EXPECT_TRUE(IsWindow(kFakeWindow));
    EXPECT_EQ(closing, 0);
    EXPECT_EQ(checking_pwd, 0);
    EXPECT_EQ(pt_orig.x, 7) << "a refused password starts the watch over the pointer anew";
    EXPECT_EQ(pt_orig.y, 8);

    checking_pwd = 1;
    passwordAnswer = TRUE;
    EXPECT_EQ(DefScreenSaverProc(kFakeWindow, WM_CLOSE, 0, 0), 0);
    EXPECT_TRUE(IsWindow(kFakeWindow)) << "it is being asked for already";

    checking_pwd = 0;
    EXPECT_EQ(DefScreenSaverProc(kFakeWindow, WM_CLOSE, 0, 0), 0);
    EXPECT_FALSE(IsWindow(kFakeWindow));
    EXPECT_EQ(closing, 1);
}

TEST_F(Host, WithoutAPasswordTheDefaultProcedureClosesAtOnce) {
    AdoptFakeWindow(SysScreenSaverProc);
    EXPECT_EQ(DefScreenSaverProc(kFakeWindow, WM_CLOSE, 0, 0), 0);
    EXPECT_FALSE(IsWindow(kFakeWindow));
}

} // namespace
