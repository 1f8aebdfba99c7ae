// An X server of the test's own (Xvfb), with a known picture on the desktop.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct _XDisplay;

// A picture of (a part of) the screen: rows from the top, 0x00RRGGBB per pixel.
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
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

    bool Ok() const { return display_ != nullptr; }
    std::string Name() const { return ":" + std::to_string(number_); }
    int Width() const { return width_; }
    int Height() const { return height_; }

    // What the desktop shows at a pixel: smooth ramps with a fine pattern, so that a shift by one pixel is
    // seen.
    std::uint32_t DesktopPixel(int x, int y) const;

    ScreenPicture Photograph() const;
    std::uint32_t PixelAt(int x, int y) const;
    // Of a window's own picture, also where it lies outside of the screen.
    std::uint32_t PixelIn(unsigned long window, int x, int y) const;
    // Polls until the screen's pixel comes within `tolerance` of (or, with `differ`, leaves) the colour.
    bool WaitForPixel(int x, int y, std::uint32_t colour, int tolerance, bool differ = false) const;

    // Windows on the screen: direct children of the root that are visible, and not just a pixel for messages.
    std::vector<unsigned long> VisibleWindows() const;
    unsigned long WaitForWindow() const;
    unsigned long CreateParent(int x, int y, int width, int height, unsigned long colour = 0);
    void DestroyParent(unsigned long window);
    std::vector<unsigned long> ChildrenOf(unsigned long window) const;
    // A visible window of that size on the screen or in a window there; 0 when there is none.
    unsigned long WindowOfSize(int width, int height) const;
    bool CursorIsHidden() const;
    bool WaitForHiddenCursor() const;

    void PressKey(unsigned long keysym);
    void MovePointer(int x, int y);
    void ClickButton(unsigned button);
    // The server goes away, as at a log-out.
    void Kill();

private:
    void PaintDesktop();

    _XDisplay* display_ = nullptr;
    int server_ = -1;
    int number_ = 0;
    int width_;
    int height_;
};
