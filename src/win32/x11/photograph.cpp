// The desktop: what the root window and everything on it show on the primary monitor, through shared memory
// where the server offers it.
#include "win32/x11/x11.h"

#include <X11/Xutil.h>
#include <X11/extensions/XShm.h>

#include <sys/ipc.h>
#include <sys/shm.h>

#include <algorithm>

namespace x11 {

namespace {

// An image in memory that the server shares; null when that cannot be had (a remote server, no memory).
class SharedImage {
public:
    SharedImage(Display* display, int w, int h) : display_(display) {
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
        // It goes with the last that has it, however this process ends. Linux lets the server have it all the
        // same.
        if (segment_.shmid >= 0)
            shmctl(segment_.shmid, IPC_RMID, nullptr);
        if (address == nullptr || address == reinterpret_cast<void*>(-1))
            return;
        segment_.shmaddr = image_->data = static_cast<char*>(address);
        ErrorTrap trap(display);
        XShmAttach(display, &segment_);
        attached_ = trap.Clean();
    }
    ~SharedImage() {
        if (attached_)
            XShmDetach(display_, &segment_);
        if (image_ != nullptr) {
            image_->data = nullptr; // the segment's, not Xlib's to free
            XDestroyImage(image_);
        }
        if (segment_.shmaddr != nullptr)
            shmdt(segment_.shmaddr);
    }
    SharedImage(const SharedImage&) = delete;
    SharedImage& operator=(const SharedImage&) = delete;

    XImage* Read(int x, int y) {
        if (!attached_)
            return nullptr;
        ErrorTrap trap(display_);
        const Status taken = XShmGetImage(display_, DefaultRootWindow(display_), image_, x, y, AllPlanes);
        return trap.Clean() && taken != 0 ? image_ : nullptr;
    }

private:
    Display* display_;
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

} // namespace

void Convert(Display* display, XImage* image, Photograph* picture) {
    const Visual* visual = DefaultVisual(display, DefaultScreen(display));
    const Channel red(visual->red_mask);
    const Channel green(visual->green_mask);
    const Channel blue(visual->blue_mask);
    const bool plain = image->bits_per_pixel == 32 && image->byte_order == LSBFirst &&
                       visual->red_mask == 0xFF0000u && visual->green_mask == 0xFF00u &&
                       visual->blue_mask == 0xFFu;
    picture->pixels.resize(static_cast<std::size_t>(picture->width) * picture->height * 4);
    unsigned char* to = picture->pixels.data();
    for (int y = 0; y < picture->height; ++y) {
        const char* row = image->data + static_cast<std::ptrdiff_t>(y) * image->bytes_per_line;
        if (plain) {
            to = std::copy_n(reinterpret_cast<const unsigned char*>(row), picture->width * 4, to);
            continue;
        }
        for (int x = 0; x < picture->width; ++x) {
            const unsigned long pixel = XGetPixel(image, x, y);
            *to++ = blue.Of(pixel);
            *to++ = green.Of(pixel);
            *to++ = red.Of(pixel);
            *to++ = 0;
        }
    }
}

namespace {

bool Read(Display* display, int x, int y, Photograph* picture) {
    SharedImage shared(display, picture->width, picture->height);
    if (XImage* image = shared.Read(x, y)) {
        Convert(display, image, picture);
        return true;
    }
    XImage* image =
        XGetImage(display, DefaultRootWindow(display), x, y, static_cast<unsigned>(picture->width),
                  static_cast<unsigned>(picture->height), AllPlanes, ZPixmap);
    if (image == nullptr)
        return false;
    Convert(display, image, picture);
    XDestroyImage(image);
    return true;
}

} // namespace

bool PhotographDesktop(int width, int height, Photograph* picture, std::string* problem) {
    Display* display = Connection();
    if (display == nullptr) {
        *problem = "XOpenDisplay (desktop capture)";
        return false;
    }
    if (DaemonWindow() != None)
        return FindDaemonPicture(width, height, picture, problem);
    const std::vector<Place> monitors = ListOwnMonitors(display);
    const Place primary = monitors.empty() ? Monitors().front() : monitors.front();
    picture->width = std::min(width, primary.width);
    picture->height = std::min(height, primary.height);
    if (Read(display, primary.x, primary.y, picture))
        return true;
    *picture = {};
    *problem = "XGetImage (desktop capture)";
    return false;
}

} // namespace x11
