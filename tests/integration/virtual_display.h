// An X server of the test's own (Xvfb) with a known picture on the desktop, and a client that looks at the
// screen, plays the user, changes the monitors, and is the other program that the saver meets.
#pragma once

#include "integration/program.h"

#include <cstdint>

struct _XDisplay;

// A picture of the screen: rows from the top, 0x00RRGGBB per pixel.
struct ScreenPicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    std::uint32_t At(int x, int y) const { return pixels[static_cast<std::size_t>(y) * width + x]; }
    int CountLit(int left, int top, int w, int h) const; // the pixels of that area that are not black
};

// The largest difference of any colour channel between two pixels, 0..255.
int ChannelDistance(std::uint32_t a, std::uint32_t b);

class VirtualDisplay {
public:
    // `lacks` names an extension that the server is to be without.
    VirtualDisplay(int width, int height, const char* lacks = nullptr);
    ~VirtualDisplay() { Kill(); }
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;
    void Kill(); // the server goes away, as at a log-out

    bool Ok() const { return display_ != nullptr; }
    const std::string& Name() const { return name_; }
    int Width() const { return width_; }
    int Height() const { return height_; }

    // What the desktop shows at a pixel: smooth ramps with a fine pattern, so that a shift by one pixel is
    // seen.
    std::uint32_t DesktopPixel(int x, int y) const;
    ScreenPicture Photograph() const;
    std::uint32_t PixelAt(int x, int y) const;
    // Of a window's own picture, also where it lies outside of the screen.
    std::uint32_t PixelIn(unsigned long window, int x, int y) const;
    // Until the screen's pixel comes within `tolerance` of (or, with `differ`, leaves) the colour.
    bool WaitForPixel(int x, int y, std::uint32_t colour, int tolerance, bool differ = false) const;
    bool CursorIsHidden() const;
    bool WaitForHiddenCursor() const;

    // Visible windows within another one, the lowest first, and those on the screen that are not just a pixel
    // for messages.
    std::vector<unsigned long> ChildrenOf(unsigned long window) const;
    std::vector<unsigned long> VisibleWindows() const;
    unsigned long WaitForWindow() const;
    // A visible window of that size on the screen or in a window there; 0 when there is none.
    unsigned long WindowOfSize(int width, int height) const;
    bool HasFocus(unsigned long window) const;

    void PressKey(unsigned long keysym) { HoldKey(keysym), ReleaseKey(keysym); }
    void HoldKey(unsigned long keysym);
    void ReleaseKey(unsigned long keysym);
    void MovePointer(int x, int y);
    void ClickButton(unsigned button);

    // Above all others, in one colour, 0x00RRGGBB.
    unsigned long ShowWindow(int x, int y, int width, int height, unsigned long colour = 0);
    void ResizeWindow(unsigned long window, int width, int height);
    void DestroyWindow(unsigned long window);
    void TakeFocus(unsigned long window);
    bool ReceivedAKey(); // one of the windows shown here
    // Keyboard and pointer. False when somebody else has one of them.
    bool GrabInput();
    void ReleaseInput();
    bool WaitUntilInputIsGrabbed(); // both, by somebody else
    // With no time in between for anybody to react.
    bool UnmapAndGrabInput(unsigned long window);
    // How often windows on the screen change, in that time.
    int CountChangesOfWindows(int milliseconds);

    // Anew, where there is one of that name. The first one takes the place of the screen's own.
    void SetMonitor(const char* name, int x, int y, int width, int height, bool primary);
    void DeleteMonitor(const char* name);
    // Not beyond what it was when the server started.
    void SetScreenSize(int width, int height);

private:
    void PaintDesktop();
    unsigned long Root() const;

    _XDisplay* display_ = nullptr;
    Program server_;
    std::string name_;
    int width_;
    int height_;
};
