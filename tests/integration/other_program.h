// Another program on the saver's display: it shows a window, takes input, and changes the monitors.
#pragma once

#include "integration/virtual_display.h"

class OtherProgram {
public:
    explicit OtherProgram(const VirtualDisplay& display);
    ~OtherProgram();
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

    // A window above all others that no window manager touches, in one colour, 0x00RRGGBB.
    void ShowWindow(int x, int y, int width, int height, unsigned long colour);
    void TakeFocus();
    // Keyboard and pointer. False when somebody else has one of them.
    bool GrabInput();
    void ReleaseInput();
    // Polls until somebody else has both.
    bool WaitUntilInputIsGrabbed();
    // With no time in between for anybody to react.
    bool UnmapAndGrabInput(unsigned long window);
    void ResizeWindow(unsigned long window, int width, int height);
    bool ReceivedAKey();

    // How often windows on the screen change, in that time.
    int CountChangesOfWindows(int milliseconds);

    struct Monitor {
        const char* name;
        int x, y, width, height;
        bool primary;
    };
    // Anew, where there is one of that name. The first one takes the place of the screen's own.
    void SetMonitor(const Monitor& monitor);
    void DeleteMonitor(const char* name);
    // Not beyond what it was when the server started.
    void SetScreenSize(int width, int height);

private:
    _XDisplay* display_;
    unsigned long window_ = 0;
};
