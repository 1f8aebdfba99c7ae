// The host over a scripted platform: modes, the window's life, what every message leads to, the password.
#include "fakes/fake_win32.h"
#include "host/configuration.h"
#include "host/default_procedure.h"
#include "host/message_routing.h"
#include "host/saver_entry.h"
#include "host/saver_password.h"
#include "host/saver_window.h"
#include "platform/clock.h"
#include "scene/scene.h"

#include <gtest/gtest.h>

namespace {

std::uint32_t ticks = 0;
const HWND kOther = reinterpret_cast<HWND>(static_cast<UINT_PTR>(1234));

} // namespace

void InitScene(HWND, bool preview) {
    NoteFakeCall("InitScene(%s, %s)", preview ? "preview" : "full", orinPath);
    ticks += 3000; // it takes its time
}
FAKE(void, ResizeScene, (int width, int height), void(), "ResizeScene(%d, %d)", width, height)
FAKE(void, DestroyScene, (), void(), "DestroyScene()")

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
    static std::string TakeCalls() {
        std::string text;
        for (const std::string& call : TakeFakeCalls())
            text += call + " ";
        return text;
    }
};

TEST_F(Host, ReadsTheDataFolderThatIsConfigured) {
    const std::string longest(519, 'x');
    for (const auto& [stored, folder] : {std::pair<std::string, std::string>{longest + '\0', longest},
                                         {"unterminated", "unterminated"},
                                         {longest + "x" + '\0', "before"},
                                         {"none", "before"}}) {
        std::snprintf(orinPath, sizeof orinPath, "before");
        fakeWin32.registry.clear();
        if (stored != "none")
            fakeWin32.registry[std::string(scrRegName) + "\\path"] = stored;
        Run("/s");
        EXPECT_EQ(orinPath, folder);
        EXPECT_EQ(configSearch.IsEmpty(), stored != "none") << "where it was looked for";
        EXPECT_NE(TakeCalls().find("InitScene(full, "), std::string::npos);
    }
}

TEST_F(Host, FullScreenRunsFromTheFirstCallToTheLast) {
    const auto postMove = [] { PostMessageA(kFakeWindow, WM_MOUSEMOVE, 0, 0); };
    const auto movePointer = [] { ++fakeWin32.pointer.x, ticks += 4000; };
    for (const std::uint32_t start : {50000u, 0xFFFFF000u}) { // the clock starts anew in the grace time
        SetUp();
        ticks = start;
        // Where it stood, and within the grace time, it does nothing.
        fakeWin32.steps = {postMove,        movePointer, postMove,
                           [] { ++ticks; }, postMove,    [] { FAIL() << "the loop must end with WM_QUIT"; }};
        EXPECT_EQ(Run("/s"), 0);
        EXPECT_EQ(
            TakeCalls(),
            "RegisterClassA(WindowsScreenSaverClass, 0x883) "
            "CreateWindowExA(8, WindowsScreenSaverClass, SCREENSAVER, 0x90000000, 0, 0, 1280, 1024, 0x0) "
            "SetCursor(0) RegCloseKey() InitScene(full, /show) UpdateWindow() ShowWindow(5) "
            "PostMessageA(0x200) DefWindowProcA(0x200) "
            "PostMessageA(0x200) PostMessageA(0x10) DefWindowProcA(0x200) "
            "PostMessageA(0x200) PostMessageA(0x10) DefWindowProcA(0x200) "
            "DestroyWindow() PostQuitMessage(0) DestroyScene() FreeLibrary(null) ");
    }
    SetUp();
    fakeWin32.steps = {[] { PostMessageA(kFakeWindow, WM_TIMER, 7, 0); }}; // and then an error of the queue
    EXPECT_EQ(Run("/s"), 7) << "what the last message carried";
}

TEST_F(Host, APreviewLiesInItsParentAndIgnoresThePointer) {
    fakeWin32.steps = {[] {
                           ticks += 60000;
                           ++fakeWin32.pointer.y;
                           PostMessageA(kFakeWindow, WM_MOUSEMOVE, 0, 0);
                           PostMessageA(kFakeWindow, WM_LBUTTONDOWN, 0, 0);
                       },
                       [] { PostMessageA(kFakeWindow, WM_CLOSE, 0, 0); }};
    EXPECT_EQ(Run("/p 1234"), 0);
    EXPECT_EQ(TakeCalls(),
              "RegisterClassA(WindowsScreenSaverClass, 0x883) "
              "CreateWindowExA(0, WindowsScreenSaverClass, SCREENSAVER, 0x40000000, 0, 0, 152, 112, 0x4d2) "
              "RegCloseKey() InitScene(preview, /show) UpdateWindow() ShowWindow(5) "
              "PostMessageA(0x200) PostMessageA(0x201) DefWindowProcA(0x200) DefWindowProcA(0x201) "
              "PostMessageA(0x10) DestroyWindow() PostQuitMessage(0) DestroyScene() FreeLibrary(null) ");
}

// The parent and the provider of the last change of the password.
DWORD WINAPI FakeChangePassword(const char* provider, HWND parent, DWORD, void*) {
    NoteFakeCall("change %s for 0x%x", provider, static_cast<unsigned>(reinterpret_cast<UINT_PTR>(parent)));
    return 0;
}

TEST_F(Host, TheFirstKnownLetterOfTheCommandLineDecides) {
    const std::string load = "LoadLibraryA(MPR.DLL) ", unload = "FreeLibrary(module) ";
    fakeWin32.foreground = reinterpret_cast<HWND>(static_cast<UINT_PTR>(9));
    for (const UINT_PTR number : {2, 12, 77})
        fakeWin32.windows.insert(reinterpret_cast<HWND>(number));
    fakeWin32.modules["MPR.DLL"]["PwdChangePasswordA"] = FakeEntry(FakeChangePassword);
    const auto expect = [&](const std::string& calls, std::initializer_list<const char*> lines) {
        for (const char* line : lines) {
            EXPECT_EQ(Run(line), 0) << line;
            const std::string made = TakeCalls();
            const std::size_t create = made.find("CreateWindow"), end = made.find(')', create);
            const bool window = create != std::string::npos;
            EXPECT_EQ(window ? made.substr(end - 5, 5) : made, calls) << line;
        }
    };
    expect("DialogBoxParamA(2003, 0x9) ", {"", "/q-7 1", "/c:1234"});
    expect(", 0x0", {"/s 12", "S", "register_scrsaver"});
    expect("0x4d2", {"/p 1234", "/P\t 1234 99"}); // a preview's parent
    expect(", 0xc", {"/p12x4"});
    expect(", 0x2", {"/p 4294967298"});
    expect("", {"/p  ", "/p 0", "/p 4321", "/p x12", "/pa 5"});
    expect(load + "change SCRSAVE for 0x4d " + unload, {"/a 77"});
    expect(load + "change SCRSAVE for 0x9 " + unload, {"/a 4321", "/A", "/a0"});
    fakeWin32.modules["MPR.DLL"].clear();
    expect(load + unload, {"/a"});
    fakeWin32.modules.clear();
    expect(load, {"/a"});
}

TEST_F(Host, ARequestToRegisterGoesToTheShellAndShowsNothing) {
    EXPECT_EQ(Run("register_scrsaver"), 0);
    const std::string calls = TakeCalls();
    EXPECT_NE(calls.find("ShellExecuteA(install, C:\\Folder41\\tamb.scr, 1)"), std::string::npos) << calls;
    EXPECT_EQ(calls.find("InitScene"), std::string::npos) << calls;
}

enum State { Full, Unbuilt, Escaped, Moved, Preview, Closing, CheckingPassword };

// One message to the running saver, 4 seconds not yet over: the calls it leads to, and the answer.
TEST_F(Host, EveryMessageHasItsWay) {
    const std::string ends = "DestroyWindow() PostQuitMessage(0) DestroyScene() ",
                      close = "PostMessageA(0x10) ";
    const std::string passes = "default = 0", resizes = "ResizeScene(800, 600) ";
    const struct {
        State state;
        std::string reaction;
        std::vector<UINT> messages;
        WPARAM wParam = 0;
    } kRows[] = {
        {Full, ends + close + passes, {WM_KEYDOWN, WM_SYSKEYDOWN}},
        {Full, ends + passes, {WM_KEYUP, WM_CHAR, WM_SYSKEYUP, WM_SYSCHAR}},
        {Preview, ends + passes, {WM_KEYDOWN}},
        {Closing, passes, {WM_KEYDOWN, WM_LBUTTONDOWN, WM_RBUTTONDOWN, WM_MBUTTONDOWN, WM_PAINT}},
        {Full, passes, {0x0103, WM_MOUSEMOVE, WM_ACTIVATE, WM_TIMER}}, // a dead character is no key
        {Full, close + passes, {WM_LBUTTONDOWN, WM_RBUTTONDOWN, WM_MBUTTONDOWN}},
        {Moved, close + passes, {WM_MOUSEMOVE, WM_ACTIVATE, WM_ACTIVATEAPP, WM_NCACTIVATE}},
        {Moved, passes, {WM_ACTIVATE, WM_ACTIVATEAPP, WM_NCACTIVATE}, 1},
        {Preview, passes, {WM_LBUTTONDOWN, WM_SETCURSOR}},
        {CheckingPassword, passes, {WM_LBUTTONDOWN, WM_SETCURSOR}},
        {Full, "SetCursor(0) = 1", {WM_SETCURSOR}},
        {Full, "= 1", {WM_ERASEBKGND, SCRM_VERIFYPW}},
        {Full, "ValidateRect() = 0", {WM_PAINT}},
        {Closing, "= 0", {WM_TIMER}},
        {Full, "= 0", {WM_SYSCOMMAND}, SC_NEXTWINDOW},
        {Full, "= 0", {WM_SYSCOMMAND}, SC_SCREENSAVE},
        {Full, passes, {WM_SYSCOMMAND}, 0xF170}, // the monitor's power
        {Preview, passes, {WM_SYSCOMMAND}, SC_CLOSE},
        {Full, "= 0", {WM_CLOSE}},
        {Unbuilt, "= 0", {WM_CLOSE}}, // however late
        {Preview, ends + "= 0", {WM_CLOSE}},
        {Escaped, ends + "= 0", {WM_CLOSE}},
        {Preview, resizes + passes, {WM_SIZE}},
    };
    constexpr LPARAM kSize = 600 << 16 | 800; // for the one message that reads it
    for (const auto& row : kRows)
        for (const UINT message : row.messages) {
            SetUp();
            AdoptFakeWindow(SysScreenSaverProc);
            started = row.state != Unbuilt;
            startTime = started ? fxGetTime() : 0;
            escapeHit = row.state == Escaped;
            fakeWin32.pointer.y += row.state == Moved ? 1 : 0;
            fChildPreview = row.state == Preview;
            closing = row.state == Closing;
            checking_pwd = row.state == CheckingPassword;
            const LRESULT answer = SendMessageA(kFakeWindow, message, row.wParam, kSize);
            std::string reaction = TakeCalls() + "= " + std::to_string(answer);
            if (const std::size_t at = reaction.find("DefWindowProcA"); at != std::string::npos)
                reaction.replace(at, reaction.find(')', at) + 1 - at, "default");
            EXPECT_EQ(reaction, row.reaction)
                << std::hex << message << " " << row.wParam << ", state " << row.state;
        }
}

BOOL passwordAnswer = FALSE;
BOOL WINAPI FakeVerify(HWND) {
    EXPECT_EQ(checking_pwd, 1) << "no input may ask to close meanwhile";
    return passwordAnswer;
}

TEST_F(Host, OnTheWindows95FamilyTheSaverIsAnnouncedAndThePasswordModuleLoaded) {
    std::string& value = fakeWin32.registry["Control Panel\\Desktop\\ScreenSaveUsePassword"];
    const std::string set("\1\0\0\0", 4);
    fakeWin32.platform = VER_PLATFORM_WIN32_WINDOWS;
    fakeWin32.failing = {"RegisterClassA"};
    fakeWin32.modules["PASSWORD.CPL"]["VerifyScreenSavePwd"] = FakeEntry(FakeVerify);
    value = set;
    Run("/s");
    EXPECT_EQ(TakeCalls(), "LoadLibraryA(PASSWORD.CPL) RegCloseKey() SystemParametersInfoA(97, 1) "
                           "RegisterClassA(WindowsScreenSaverClass, 0x883) "
                           "MessageBoxA(RegisterClasses() failed, no title, 0x10) "
                           "SystemParametersInfoA(97, 0) FreeLibrary(module) ");
    for (const bool windows95 : {true, false})
        for (const std::string& bytes : {set, std::string(4, '\0'), set + '\0'}) { // set, not set, no number
            fakeWin32.platform = windows95 ? VER_PLATFORM_WIN32_WINDOWS : VER_PLATFORM_WIN32_NT;
            value = bytes;
            FreeSaverPassword();
            LoadSaverPassword();
            EXPECT_EQ(VerifyScreenSavePwd, windows95 && bytes == set ? FakeVerify : nullptr);
        }
}

TEST_F(Host, ThePasswordIsAskedForBeforeTheSaverCloses) {
    const auto close = [] {
        return DefScreenSaverProc(kFakeWindow, WM_CLOSE, 0, 0) == 0 && closing == 0 && IsWindow(kFakeWindow);
    };
    AdoptFakeWindow(SysScreenSaverProc);
    VerifyScreenSavePwd = FakeVerify;
    fakeWin32.pointer = {7, 8};
    passwordAnswer = FALSE;
    EXPECT_TRUE(close()) << "refused";
    EXPECT_TRUE(checking_pwd == 0 && pt_orig.x == 7 && pt_orig.y == 8)
        << "the watch over the pointer starts anew";
    checking_pwd = 1;
    passwordAnswer = TRUE;
    EXPECT_TRUE(close()) << "it is being asked for already";
    checking_pwd = 0;
    EXPECT_FALSE(close());
    EXPECT_TRUE(closing == 1 && !IsWindow(kFakeWindow));
    SetUp();
    AdoptFakeWindow(SysScreenSaverProc);
    EXPECT_FALSE(close()) << "without a password";
    EXPECT_FALSE(IsWindow(kFakeWindow));
}

} // namespace
