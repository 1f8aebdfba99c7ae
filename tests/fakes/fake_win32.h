// A scripted stand-in for the platform: it answers what the test has set and writes down what it was asked to
// do. Threads, locks, the clock and the last error are real (the Linux layer's own).
#pragma once

#include "image/desktop_source.h"
#include "win32/win32.h"

#include <bit>
#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

// The handle of the window that the program creates; it lives from CreateWindowExA to DestroyWindow.
inline const HWND kFakeWindow = reinterpret_cast<HWND>(static_cast<UINT_PTR>(0x700));

struct FakeWin32 {
    std::string commandLine = "tamblor";
    DWORD platform = VER_PLATFORM_WIN32_NT;
    int screenWidth = 1280;
    int screenHeight = 1024;
    RECT clientArea = {0, 0, 152, 112}; // any window's
    POINT pointer = {400, 300};
    HWND foreground = nullptr;
    std::set<HWND> windows;                      // other programs'
    std::map<std::string, std::string> registry; // "key\value": the bytes; under the current user
    std::map<std::string, std::map<std::string, FARPROC>> modules;
    std::map<std::string, const char*> libraries; // real ones, by the name of the module that each stands for
    std::set<std::string> failing;                // functions that fail, by name

    // What GetMessageA does, one by one, while no message is posted. With no step left it reports an error.
    std::deque<std::function<void()>> steps;

    PIXELFORMATDESCRIPTOR pixelFormat = {}; // the last one asked for
    FXDesktopPixels desktop = {};           // what the lock of its copy shows
    bool isQuiet = false;                   // nothing is written down
};
extern FakeWin32 fakeWin32;

void ResetFakeWin32();
// The window exists, with the class's procedure, without having been created.
void AdoptFakeWindow(WNDPROC proc);

// A function of the test's as an entry of a module.
template <class Function> FARPROC FakeEntry(Function* function) {
    return std::bit_cast<FARPROC>(function);
}

// What was done since the last call, in order, e.g. "PostQuitMessage(0)"; questions are not written down.
std::vector<std::string> TakeFakeCalls();
// Adds to that list; for a test's own fakes.
void NoteFakeCall(const char* format, ...) __attribute__((format(printf, 1, 2)));

// A function that writes down what the format says, where there is one, and gives an answer.
#define FAKE(type, function, parameters, answer, ...)                                                        \
    type function parameters {                                                                               \
        __VA_OPT__(NoteFakeCall(__VA_ARGS__);)                                                               \
        return answer;                                                                                       \
    }
inline bool FakeFails(const char* function) {
    return !fakeWin32.failing.empty() && fakeWin32.failing.contains(function);
}
