// The desktop on X11: what the root window and everything on it show on the primary monitor, through shared
// memory where the server offers it.
#include "image/desktop_source.h"
#include "platform/trace.h"
#include "win32/x11/monitors.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XShm.h>

#include <sys/ipc.h>
#include <sys/shm.h>

#include <algorithm>
#include <vector>

namespace {

Display* display = nullptr;
std::vector<unsigned char> copy; // blue, green, red, unused
int copyWidth = 0;
int copyHeight = 0;

bool sawError = false;

// X errors of this file's requests are noted; the process's own handler never ends the saver.
class ErrorTrap {
public:
    ErrorTrap()
        : previous_(XSetErrorHandler([](Display*, XErrorEvent*) {
              sawError = true;
              return 0;
          })) {
        sawError = false;
    }
    ~ErrorTrap() { XSetErrorHandler(previous_); }
    ErrorTrap(const ErrorTrap&) = delete;
    ErrorTrap& operator=(const ErrorTrap&) = delete;

private:
    XErrorHandler previous_;
};

// An image in memory that the server shares; null when that cannot be had (a remote server, no memory).
class SharedImage {
public:
    SharedImage(int w, int h) {
        if (XShmQueryExtension(display) == 0)
            return;
        const int screen = DefaultScreen(display);
        image_ = XShmCreateImage(display, DefaultVisual(display, screen),
                                 static_cast<unsigned>(DefaultDepth(display, screen)), ZPixmap, nullptr,
                                 &segment_, static_cast<unsigned>(w), static_cast<unsigned>(h));
        if (image_ == nullptr)
            return;
        const std::size_t size =
            static_cast<std::size_t>(image_->bytes_per_line) * static_cast<std::size_t>(h);
        segment_.shmid = shmget(IPC_PRIVATE, size, IPC_CREAT | 0600);
        void* address = segment_.shmid < 0 ? nullptr : shmat(segment_.shmid, nullptr, 0);
        if (address == nullptr || address == reinterpret_cast<void*>(-1))
            return;
        segment_.shmaddr = image_->data = static_cast<char*>(address);
        const ErrorTrap trap;
        XShmAttach(display, &segment_);
        XSync(display, False);
        attached_ = !sawError;
    }
    ~SharedImage() {
        if (attached_)
            XShmDetach(display, &segment_);
        if (image_ != nullptr) {
            image_->data = nullptr; // the segment's, not Xlib's to free
            XDestroyImage(image_);
        }
        if (segment_.shmaddr != nullptr)
            shmdt(segment_.shmaddr);
        if (segment_.shmid >= 0)
            shmctl(segment_.shmid, IPC_RMID, nullptr);
    }
    SharedImage(const SharedImage&) = delete;
    SharedImage& operator=(const SharedImage&) = delete;

    XImage* Photograph(int x, int y) {
        if (!attached_)
            return nullptr;
        const ErrorTrap trap;
        const Status taken = XShmGetImage(display, DefaultRootWindow(display), image_, x, y, AllPlanes);
        XSync(display, False);
        return taken != 0 && !sawError ? image_ : nullptr;
    }

private:
    XShmSegmentInfo segment_ = {0, -1, nullptr, False};
    XImage* image_ = nullptr;
    bool attached_ = false;
};

// Brings a colour channel of a visual to eight bits.
struct Channel {
    int shift = 0;
    unsigned long largest = 1;

    explicit Channel(unsigned long mask) {
        while (mask != 0 && (mask >> shift & 1u) == 0)
            ++shift;
        largest = std::max(mask >> shift, 1ul);
    }
    unsigned char Of(unsigned long pixel) const {
        return static_cast<unsigned char>((pixel >> shift & largest) * 255u / largest);
    }
};

void localCopyPixels(XImage* image) {
    const Visual* visual = DefaultVisual(display, DefaultScreen(display));
    const Channel red(visual->red_mask);
    const Channel green(visual->green_mask);
    const Channel blue(visual->blue_mask);
    const bool plain = image->bits_per_pixel == 32 && image->byte_order == LSBFirst &&
                       visual->red_mask == 0xFF0000u && visual->green_mask == 0xFF00u &&
                       visual->blue_mask == 0xFFu;
    unsigned char* to = copy.data();
    for (int y = 0; y < copyHeight; ++y) {
        const char* row = image->data + static_cast<std::ptrdiff_t>(y) * image->bytes_per_line;
        if (plain) {
            to = std::copy_n(reinterpret_cast<const unsigned char*>(row), copyWidth * 4, to);
            continue;
        }
        for (int x = 0; x < copyWidth; ++x) {
            const unsigned long pixel = XGetPixel(image, x, y);
            *to++ = blue.Of(pixel);
            *to++ = green.Of(pixel);
            *to++ = red.Of(pixel);
            *to++ = 0;
        }
    }
}

bool localPhotograph(int x, int y, int w, int h) {
    SharedImage shared(w, h);
    if (XImage* image = shared.Photograph(x, y)) {
        localCopyPixels(image);
        return true;
    }
    const ErrorTrap trap;
    XImage* image = XGetImage(display, DefaultRootWindow(display), x, y, static_cast<unsigned>(w),
                              static_cast<unsigned>(h), AllPlanes, ZPixmap);
    if (image == nullptr)
        return false;
    localCopyPixels(image);
    XDestroyImage(image);
    return true;
}

} // namespace

bool fxDesktopCopy(int w, int h) {
    if (display == nullptr)
        display = XOpenDisplay(nullptr);
    if (display == nullptr) {
        err("XOpenDisplay (desktop capture)\n");
        return false;
    }
    const Place primary = x11::ListMonitors(display).front();
    copyWidth = std::min(w, primary.width);
    copyHeight = std::min(h, primary.height);
    copy.assign(static_cast<std::size_t>(copyWidth) * static_cast<std::size_t>(copyHeight) * 4, 0);
    if (!localPhotograph(primary.x, primary.y, copyWidth, copyHeight)) {
        err("XGetImage (desktop capture)\n");
        fxDesktopUnlock();
        return false;
    }
    return true;
}

bool fxDesktopLock(FXDesktopPixels* pixels) {
    *pixels = {copy.data(), copyWidth * 4, copyWidth, copyHeight};
    return !copy.empty();
}

void fxDesktopUnlock() {
    std::vector<unsigned char>().swap(copy);
}

void fxDesktopRelease() {
    fxDesktopUnlock();
    if (display != nullptr)
        XCloseDisplay(display);
    display = nullptr;
}
