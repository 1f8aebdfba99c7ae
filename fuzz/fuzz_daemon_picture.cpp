// What other clients of the X server leave for a show in a daemon's window, as a script has it: properties of
// any type and length on the windows around it, pictures of any size and depth. Xlib's answers are made up.
#include "script.h"
#include "work_file.h"

#include "win32/x11/x11.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/extensions/Xrandr.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <type_traits>

namespace {

Script* script = nullptr;
Visual visual = {};
Screen screen = {};
std::remove_pointer_t<_XPrivDisplay> connection = {};
Place window; // the daemon's, on the screen

constexpr Window kDaemonWindow = 77;
constexpr int kNeverSoLarge = 256; // pixels a side, of what is read: larger ones take time alone
constexpr int kDepths[] = {1, 8, 15, 16, 24, 30, 32};

int localSide() {
    return std::abs(script->Number() % kNeverSoLarge);
}

} // namespace

namespace x11 {

SaverWindow saverWindow;

Display* Connection() {
    return reinterpret_cast<Display*>(&connection);
}

ErrorTrap::ErrorTrap(Display* display) : display_(display) {}
bool ErrorTrap::Clean() {
    return display_ != nullptr;
}

std::span<const Place> Monitors() {
    static const Place monitors[] = {{0, 0, 1920, 1080}, {1920, 0, 800, 600}};
    return monitors;
}

std::vector<Place> ListOwnMonitors(Display*) {
    return {Monitors().begin(), Monitors().end()};
}

bool FindGeometry(Display*, Drawable drawable, Place* place, unsigned* depth) {
    if (drawable == IdOf(nullptr) || script->Choice(8) == 7)
        return false;
    *place = {0, 0, localSide(), localSide()};
    if (depth != nullptr)
        *depth = script->Byte() % 2 == 0 ? static_cast<unsigned>(screen.root_depth)
                                         : static_cast<unsigned>(kDepths[script->Choice(std::size(kDepths))]);
    return true;
}

} // namespace x11

// Xlib's.
extern "C" {

Atom XInternAtom(Display*, const char* name, Bool) {
    return 1000 + std::strlen(name);
}

// As Xlib hands it over: numbers of 32 bits are longs, and a zero is behind the last.
int XGetWindowProperty(Display*, Window, Atom, long, long length, Bool, Atom wanted, Atom* type, int* format,
                       unsigned long* count, unsigned long* left, unsigned char** data) {
    constexpr int kFormats[] = {0, 8, 16, 32};
    *type = script->Byte() % 4 != 0 ? wanted : static_cast<Atom>(script->Choice(3));
    *format = kFormats[script->Byte() % 2 != 0 ? 3 : script->Choice(4)];
    *left = script->Byte();
    *data = nullptr;
    *count = 0;
    if (*type != wanted || *format == 0)
        return script->Choice(8) == 7 ? BadWindow : Success;
    *count = std::min<unsigned long>(script->Choice(6), static_cast<unsigned long>(length) * 32 / *format);
    const std::size_t size = *count * (*format == 32 ? sizeof(long) : static_cast<std::size_t>(*format / 8));
    *data = static_cast<unsigned char*>(std::calloc(size + 1, 1));
    for (std::size_t i = 0; i < size; ++i)
        (*data)[i] = static_cast<unsigned char>(script->Byte());
    return Success;
}

Status XQueryTree(Display*, Window, Window* root, Window* parent, Window** children, unsigned* count) {
    if (script->IsAtEnd())
        return 0;
    *root = screen.root;
    *parent = script->Byte() % 2 == 0 ? None : script->Byte();
    *count = static_cast<unsigned>(script->Choice(3));
    *children = *count > 0 ? static_cast<Window*>(std::calloc(*count, sizeof(Window))) : nullptr;
    return 1;
}

Status XGetWindowAttributes(Display*, Window id, XWindowAttributes* facts) {
    facts->c_class = InputOutput;
    return id == kDaemonWindow || script->Choice(8) == 7 ? 1 : 0;
}

Bool XTranslateCoordinates(Display*, Window, Window, int x, int y, int* toX, int* toY, Window* child) {
    *toX = x + window.x;
    *toY = y + window.y;
    *child = None;
    return script->Choice(8) == 7 ? False : True;
}

XImage* XGetImage(Display*, Drawable, int, int, unsigned width, unsigned height, unsigned long, int) {
    if (width == 0 || height == 0 || script->Choice(8) == 7)
        return nullptr; // the server says that there is no such part
    auto* image = static_cast<XImage*>(std::calloc(1, sizeof(XImage)));
    const int depth = screen.root_depth;
    image->width = static_cast<int>(width);
    image->height = static_cast<int>(height);
    image->format = ZPixmap;
    image->byte_order = image->bitmap_bit_order = script->Byte() % 2 == 0 ? LSBFirst : MSBFirst;
    image->bitmap_unit = image->bitmap_pad = 32;
    image->depth = depth;
    image->bits_per_pixel = depth == 1    ? 1
                            : depth <= 8  ? 8
                            : depth <= 16 ? 16
                            : depth == 24 ? (script->Byte() % 2 == 0 ? 32 : 24)
                                          : 32;
    image->bytes_per_line = (image->width * image->bits_per_pixel + 31) / 32 * 4;
    image->data = static_cast<char*>(std::calloc(static_cast<std::size_t>(image->bytes_per_line), height));
    Expect(XInitImage(image) != 0);
    return image;
}

Pixmap XCreatePixmap(Display*, Drawable, unsigned width, unsigned height, unsigned) {
    Expect(width > 0 && height > 0);
    return 5;
}
GC XCreateGC(Display*, Drawable, unsigned long, XGCValues*) {
    return nullptr;
}
int XFillRectangle(Display*, Drawable, GC, int, int, unsigned, unsigned) {
    return 1;
}
int XSetWindowBackgroundPixmap(Display*, Window, Pixmap) {
    return 1;
}
int XMapWindow(Display*, Window) {
    return 1;
}
int XFreeGC(Display*, GC) {
    return 1;
}
int XFreePixmap(Display*, Pixmap) {
    return 1;
}
int XFlush(Display*) {
    return 1;
}

} // extern "C"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    Script played({bytes, size});
    script = &played;
    constexpr unsigned long kMasks[][3] = {
        {0xFF0000, 0xFF00, 0xFF}, {0xFF, 0xFF00, 0xFF0000}, {0xF800, 0x7E0, 0x1F}, {0, 0, 0}};
    const auto& masks = kMasks[script->Choice(std::size(kMasks))];
    visual.red_mask = masks[0];
    visual.green_mask = masks[1];
    visual.blue_mask = masks[2];
    screen.root = 1;
    screen.root_visual = &visual;
    screen.root_depth = kDepths[script->Choice(std::size(kDepths))];
    connection.screens = &screen;
    connection.nscreens = 1;
    const auto x = static_cast<std::int16_t>(script->Number()); // as wide as X's coordinates are
    window = {x, static_cast<std::int16_t>(script->Number()), 1 + localSide(), 1 + localSide()};
    if (x11::EnterWindow(x11::HandleOf(kDaemonWindow), script->Byte() % 4 != 0) == 0)
        return 0;
    Photograph picture;
    std::string problem;
    const bool found = x11::PhotographDesktop(window.width, window.height, &picture, &problem);
    Expect(found == problem.empty());
    Expect(picture.width == (found ? window.width : 0) && picture.height == (found ? window.height : 0));
    Expect(picture.pixels.size() == static_cast<std::size_t>(picture.width) * picture.height * 4);
    return 0;
}
