// OpenGL on a window: WGL's calls over GLX. GLX wants a window whose visual suits the pixel format, and a
// window's visual is fixed when it is made; so the picture lies in a window of its own, the surface, that
// fills the saver's. It takes no input: keys and clicks fall through to the window below.
#include "win32/x11/x11.h"

#include <GL/glx.h>

#include <cstring>
#include <memory>

// A device context: OpenGL's connection to the server, and the surface once there is a pixel format.
struct HDC__ {
    Display* display = nullptr;
    Window target = None;
    XWindowAttributes facts = {}; // the target's
    GLXFBConfig config = nullptr;
    Window surface = None;
    Colormap colormap = None;
    bool fragile = false; // see IsFragile
};

struct HGLRC__ {
    Display* display;
    GLXContext context;
    bool works = false; // it has been current
};

namespace {

constexpr int kTheFormat = 1; // the number of the chosen pixel format
HDC theDc = nullptr;

// Kept until the process ends, and the driver with it: unloading that gains nothing and is a risk.
Display* GlConnection() {
    static Display* const display = OpenConnection();
    return display;
}

struct FreeX {
    template <class T> void operator()(T* block) const { XFree(block); }
};

int VisualDepth(Display* display, GLXFBConfig config) {
    const std::unique_ptr<XVisualInfo, FreeX> visual(glXGetVisualFromFBConfig(display, config));
    return visual ? visual->depth : 0;
}

// The best configuration with these depths of the buffers. The screen's own depth is preferred: where windows
// are composed, one with alpha would let the desktop through.
GLXFBConfig FindConfig(const HDC__& dc, int depthBits, int stencilBits) {
    // clang-format off
    const int wishes[] = {
        GLX_X_RENDERABLE, True, GLX_DRAWABLE_TYPE, GLX_WINDOW_BIT, GLX_X_VISUAL_TYPE, GLX_TRUE_COLOR,
        GLX_RENDER_TYPE, GLX_RGBA_BIT, GLX_DOUBLEBUFFER, True,
        GLX_RED_SIZE, 8, GLX_GREEN_SIZE, 8, GLX_BLUE_SIZE, 8,
        GLX_DEPTH_SIZE, depthBits, GLX_STENCIL_SIZE, stencilBits, None};
    // clang-format on
    const int screen = XScreenNumberOfScreen(dc.facts.screen);
    int count = 0;
    const std::unique_ptr<GLXFBConfig, FreeX> found(glXChooseFBConfig(dc.display, screen, wishes, &count));
    GLXFBConfig any = nullptr;
    for (int i = 0; i < count; ++i) {
        const GLXFBConfig config = found.get()[i];
        const int depth = VisualDepth(dc.display, config);
        if (depth == DefaultDepth(dc.display, screen))
            return config;
        if (any == nullptr && depth != 0)
            any = config;
    }
    return any;
}

// Whether Mesa draws on the processor. Drivers that do not say are not Mesa's.
bool DrawsInSoftware(Display* display, int screen) {
    const char* names = glXQueryExtensionsString(display, screen);
    if (names == nullptr || std::strstr(names, "GLX_MESA_query_renderer") == nullptr)
        return false;
    const auto query = reinterpret_cast<PFNGLXQUERYRENDERERINTEGERMESAPROC>(
        glXGetProcAddress(reinterpret_cast<const GLubyte*>("glXQueryRendererIntegerMESA")));
    unsigned accelerated = 1;
    return query != nullptr && query(display, screen, 0, GLX_RENDERER_ACCELERATED_MESA, &accelerated) &&
           accelerated == 0;
}

// Whether the surface may go while it is drawn, and the driver dies of that: a preview's goes with the
// settings panel, and Mesa's software driver takes whatever is on its stack for the size of a window that is
// gone. The root window stays.
bool IsFragile(const HDC__& dc) {
    return !saverWindow.fullScreen && saverWindow.parent != DefaultRootWindow(dc.display) &&
           DrawsInSoftware(dc.display, XScreenNumberOfScreen(dc.facts.screen));
}

bool CreateSurface(HDC__& dc) {
    const std::unique_ptr<XVisualInfo, FreeX> visual(glXGetVisualFromFBConfig(dc.display, dc.config));
    if (!visual)
        return false;
    ErrorTrap trap(dc.display);
    dc.colormap = XCreateColormap(dc.display, dc.facts.root, visual->visual, AllocNone);
    XSetWindowAttributes wishes = {};
    wishes.background_pixmap = None;
    wishes.border_pixel = 0;
    wishes.colormap = dc.colormap;
    dc.surface = XCreateWindow(dc.display, dc.target, 0, 0, static_cast<unsigned>(dc.facts.width),
                               static_cast<unsigned>(dc.facts.height), 0, visual->depth, InputOutput,
                               visual->visual, CWBackPixmap | CWBorderPixel | CWColormap, &wishes);
    XMapWindow(dc.display, dc.surface);
    dc.fragile = IsFragile(dc);
    return trap.Clean();
}

// While the driver asks for the size of a fragile surface, and shows its frame, no other program's requests
// are answered, so that the panel cannot take it away.
class SurfaceHold {
public:
    explicit SurfaceHold(const HDC__& dc) : dc_(dc) {
        if (dc_.fragile)
            XGrabServer(dc_.display);
    }
    ~SurfaceHold() {
        if (!dc_.fragile)
            return;
        XUngrabServer(dc_.display);
        XFlush(dc_.display);
    }
    SurfaceHold(const SurfaceHold&) = delete;
    SurfaceHold& operator=(const SurfaceHold&) = delete;

    bool IsThere() const {
        Place ignored;
        return !dc_.fragile || FindGeometry(dc_.display, dc_.surface, &ignored);
    }

private:
    const HDC__& dc_;
};

// Where there will be no picture, the window shows black instead of what lies below.
void ShowBlack(Display* display, Window window) {
    ErrorTrap trap(display);
    XSetWindowBackground(display, window, BlackPixel(display, DefaultScreen(display)));
    XClearWindow(display, window);
    trap.Clean();
}

// For the functions that end in a context.
BOOL Fail(HDC dc, DWORD error) {
    SetLastError(error);
    if (dc == nullptr)
        return FALSE;
    if (dc->surface != None) {
        ErrorTrap trap(dc->display);
        XDestroyWindow(dc->display, dc->surface);
        dc->surface = None;
        trap.Clean();
    }
    ShowBlack(dc->display, dc->target);
    return FALSE;
}

} // namespace

HDC GetDC(HWND window) {
    if (theDc != nullptr || window == nullptr)
        return nullptr;
    auto dc = std::make_unique<HDC__>();
    dc->display = GlConnection();
    dc->target = IdOf(window);
    if (dc->display == nullptr || XGetWindowAttributes(dc->display, dc->target, &dc->facts) == 0) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        ShowBlack(Connection(), dc->target);
        return nullptr;
    }
    theDc = dc.release();
    return theDc;
}

int ReleaseDC(HWND, HDC dc) {
    if (dc == nullptr || dc != theDc)
        return 0;
    theDc = nullptr;
    if (dc->surface != None)
        XDestroyWindow(dc->display, dc->surface);
    if (dc->colormap != None)
        XFreeColormap(dc->display, dc->colormap);
    XSync(dc->display, False);
    delete dc;
    return 1;
}

// Nearest to what is wanted: drivers have no 16 bits of stencil, some have none at all.
int ChoosePixelFormat(HDC dc, const PIXELFORMATDESCRIPTOR* wanted) {
    if (dc == nullptr || glXQueryExtension(dc->display, nullptr, nullptr) == False)
        return Fail(dc, ERROR_NOT_SUPPORTED);
    const int ladder[][2] = {
        {wanted->cDepthBits, wanted->cStencilBits}, {wanted->cDepthBits, 8}, {wanted->cDepthBits, 0}, {1, 0}};
    for (const auto& [depthBits, stencilBits] : ladder) {
        dc->config = FindConfig(*dc, depthBits, stencilBits);
        if (dc->config != nullptr)
            return kTheFormat;
    }
    return Fail(dc, ERROR_BAD_DRIVER);
}

BOOL SetPixelFormat(HDC dc, int format, const PIXELFORMATDESCRIPTOR*) {
    if (dc == nullptr || format != kTheFormat || dc->config == nullptr || dc->surface != None)
        return FALSE;
    return CreateSurface(*dc) ? TRUE : Fail(dc, ERROR_BAD_DRIVER);
}

void FitSurface(int width, int height) {
    if (theDc == nullptr || theDc->surface == None)
        return;
    // Not on OpenGL's connection: the loop's thread waits for replies there.
    XResizeWindow(Connection(), theDc->surface, static_cast<unsigned>(width), static_cast<unsigned>(height));
    XSync(Connection(), False);
}

HGLRC wglCreateContext(HDC dc) {
    if (dc == nullptr || dc->surface == None)
        return nullptr;
    ErrorTrap trap(dc->display);
    const GLXContext context = glXCreateNewContext(dc->display, dc->config, GLX_RGBA_TYPE, nullptr, True);
    if (!trap.Clean() || context == nullptr) {
        Fail(dc, ERROR_BAD_DRIVER);
        return nullptr;
    }
    return new HGLRC__{dc->display, context};
}

BOOL wglDeleteContext(HGLRC context) {
    if (context == nullptr)
        return FALSE;
    if (glXGetCurrentContext() == context->context)
        glXMakeCurrent(context->display, None, nullptr);
    glXDestroyContext(context->display, context->context);
    delete context;
    return TRUE;
}

BOOL wglMakeCurrent(HDC dc, HGLRC context) {
    if (dc != nullptr && context != nullptr) {
        const SurfaceHold hold(*dc);
        if (hold.IsThere() && glXMakeCurrent(dc->display, dc->surface, context->context)) {
            context->works = true;
            return TRUE;
        }
        return context->works ? FALSE : Fail(dc, ERROR_BAD_DRIVER);
    }
    return theDc == nullptr || glXMakeCurrent(theDc->display, None, nullptr) ? TRUE : FALSE;
}

PROC wglGetProcAddress(const char* name) {
    return reinterpret_cast<PROC>(glXGetProcAddress(reinterpret_cast<const GLubyte*>(name)));
}

BOOL SwapBuffers(HDC dc) {
    if (dc == nullptr || dc->surface == None)
        return FALSE;
    const SurfaceHold hold(*dc);
    if (!hold.IsThere())
        return FALSE;
    glXSwapBuffers(dc->display, dc->surface);
    return TRUE;
}
