// Where the picture of the visible screen comes from. One source per platform, chosen when a program is
// linked; each writes its own failures to the trace.
#pragma once

struct FXDesktopPixels {
    const unsigned char* bytes; // top row first; blue, green, red, unused per pixel
    int pitch;                  // bytes from one row to the next, at least 4 * width
    int width;
    int height;
};

// Copies the visible screen, w x h pixels, aside.
bool fxDesktopCopy(int w, int h);
// Gives access to the copy until fxDesktopUnlock, which also gives the copy back.
bool fxDesktopLock(FXDesktopPixels* pixels);
void fxDesktopUnlock();
// Gives back a copy that could not be locked, and whatever the source keeps between captures.
void fxDesktopRelease();
