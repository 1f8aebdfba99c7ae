// OpenGL on the window, by GLX. GLX wants a window whose visual suits the configuration, and a window's
// visual is fixed when it is made; so the picture lies in a window of its own, the surface, that fills the
// program's. It takes no input: keys and clicks fall through to the window below.
#include "win32/posix/last_error.h"
#include "win32/x11/x11.h"

#include <GL/glx.h>

#include <algorithm>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

namespace x11 {

namespace {

// Kept until the process ends, and the driver with it: unloading that gains nothing and is a risk.
Display* GlConnection() {
    static Display* const display = OpenConnection();
    return display;
}

struct FreeX {
    template <class T> void operator()(T* block) const { XFree(block); }
};

int Attribute(Display* display, GLXFBConfig config, int name) {
    int value = 0;
    glXGetFBConfigAttrib(display, config, name, &value);
    return value;
}

// Whether GLX has an extension: names may begin alike.
bool HasExtension(Display* display, int screen, std::string_view name) {
    const char* names = glXQueryExtensionsString(display, screen);
    std::istringstream words(names != nullptr ? names : "");
    return std::find(std::istream_iterator<std::string>(words), {}, name) !=
           std::istream_iterator<std::string>();
}

template <class Function> Function Find(const char* name) {
    return reinterpret_cast<Function>(glXGetProcAddress(reinterpret_cast<const GLubyte*>(name)));
}

// A function of an extension, where the driver has it as it says.
template <class Function, class... Arguments> void Call(const char* name, Arguments... arguments) {
    if (const auto function = Find<Function>(name))
        function(arguments...);
}

// One frame for each picture of the monitor, whatever the driver does by default. Without any of these it is
// left to that. A context is current.
void WaitForMonitor(Display* display, int screen, Window surface) {
    if (HasExtension(display, screen, "GLX_EXT_swap_control"))
        Call<PFNGLXSWAPINTERVALEXTPROC>("glXSwapIntervalEXT", display, surface, 1);
    else if (HasExtension(display, screen, "GLX_MESA_swap_control"))
        Call<PFNGLXSWAPINTERVALMESAPROC>("glXSwapIntervalMESA", 1);
    else if (HasExtension(display, screen, "GLX_SGI_swap_control"))
        Call<PFNGLXSWAPINTERVALSGIPROC>("glXSwapIntervalSGI", 1);
}

// Whether Mesa draws on the processor; of other drivers, what none of them does.
bool MesaDrawsInSoftware(Display* display, int screen) {
    if (!HasExtension(display, screen, "GLX_MESA_query_renderer"))
        return false;
    const auto query = Find<PFNGLXQUERYRENDERERINTEGERMESAPROC>("glXQueryRendererIntegerMESA");
    unsigned accelerated = 1;
    return query != nullptr && query(display, screen, 0, GLX_RENDERER_ACCELERATED_MESA, &accelerated) &&
           accelerated == 0;
}

// What the renderer calls itself, asked for without any window; "" when it cannot be.
std::string RendererName(Display* display, int screen) {
    const int wishes[] = {GLX_DRAWABLE_TYPE, GLX_PBUFFER_BIT, GLX_RENDER_TYPE, GLX_RGBA_BIT, None};
    const int size[] = {GLX_PBUFFER_WIDTH, 1, GLX_PBUFFER_HEIGHT, 1, None};
    int count = 0;
    ErrorTrap trap(display);
    const std::unique_ptr<GLXFBConfig, FreeX> found(glXChooseFBConfig(display, screen, wishes, &count));
    if (!found || count == 0)
        return "";
    const GLXPbuffer buffer = glXCreatePbuffer(display, *found, size);
    const GLXContext context = glXCreateNewContext(display, *found, GLX_RGBA_TYPE, nullptr, True);
    const auto getString = Find<const GLubyte* (*)(GLenum)>("glGetString");
    const char* name = nullptr;
    if (trap.Clean() && context != nullptr && getString != nullptr &&
        glXMakeCurrent(display, buffer, context) != False)
        name = reinterpret_cast<const char*>(getString(GL_RENDERER));
    std::string text = name != nullptr ? name : "";
    glXMakeCurrent(display, None, nullptr);
    if (context != nullptr)
        glXDestroyContext(display, context);
    glXDestroyPbuffer(display, buffer);
    trap.Clean();
    return text;
}

class GlxContext final : public GlContext {
public:
    GlxContext(Display* display, GLXContext context) : display_(display), context_(context) {}
    ~GlxContext() override {
        if (glXGetCurrentContext() == context_)
            glXMakeCurrent(display_, None, nullptr);
        glXDestroyContext(display_, context_);
    }
    GLXContext Get() const { return context_; }

private:
    Display* display_;
    GLXContext context_;
};

class GlxSurface final : public GlSurface {
public:
    GlxSurface(Display* display, const XWindowAttributes& target) : display_(display), target_(target) {
        theSurface = this;
    }
    ~GlxSurface() override;

    bool ListConfigs(std::vector<GlConfig>* configs) override;
    bool DrawsInSoftware() override;
    bool Create(const GlConfig& config) override;
    std::unique_ptr<GlContext> CreateContext() override;
    bool MakeCurrent(GlContext* context) override;
    bool Swap() override;

    Window Id() const { return id_; }

    static GlxSurface* theSurface; // null: there is none

private:
    class Hold;

    int Screen() const { return XScreenNumberOfScreen(target_.screen); }
    bool IsFragile() const;

    Display* display_;         // OpenGL's connection to the server
    XWindowAttributes target_; // the window that it fills
    GLXFBConfig config_ = nullptr;
    Window id_ = None;
    Colormap colormap_ = None;
    bool fragile_ = false;
    bool waits_ = false; // WaitForMonitor has been called
};

GlxSurface* GlxSurface::theSurface = nullptr;

// While the driver asks for the size of a fragile surface, and shows its frame, no other program's requests
// are answered, so that the panel cannot take it away.
class GlxSurface::Hold {
public:
    explicit Hold(const GlxSurface& surface) : surface_(surface) {
        if (surface_.fragile_)
            XGrabServer(surface_.display_);
    }
    ~Hold() {
        if (!surface_.fragile_)
            return;
        XUngrabServer(surface_.display_);
        XFlush(surface_.display_);
    }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

    bool IsThere() const {
        Place ignored;
        return !surface_.fragile_ || FindGeometry(surface_.display_, surface_.id_, &ignored);
    }

private:
    const GlxSurface& surface_;
};

GlxSurface::~GlxSurface() {
    theSurface = nullptr;
    if (id_ != None)
        XDestroyWindow(display_, id_);
    if (colormap_ != None)
        XFreeColormap(display_, colormap_);
    XSync(display_, False);
}

// Where windows are composed, one with a visual of another depth than the screen's has alpha.
bool GlxSurface::ListConfigs(std::vector<GlConfig>* configs) {
    if (glXQueryExtension(display_, nullptr, nullptr) == False) {
        SetErrorWords(ERROR_NOT_SUPPORTED,
                      "the X server has no GLX (Debian's X server has it: package xserver-xorg-core)");
        return false;
    }
    // clang-format off
    const int wishes[] = {
        GLX_X_RENDERABLE, True, GLX_DRAWABLE_TYPE, GLX_WINDOW_BIT, GLX_X_VISUAL_TYPE, GLX_TRUE_COLOR,
        GLX_RENDER_TYPE, GLX_RGBA_BIT, GLX_DOUBLEBUFFER, True,
        GLX_RED_SIZE, 8, GLX_GREEN_SIZE, 8, GLX_BLUE_SIZE, 8, GLX_DEPTH_SIZE, 1, None};
    // clang-format on
    int count = 0;
    const std::unique_ptr<GLXFBConfig, FreeX> found(glXChooseFBConfig(display_, Screen(), wishes, &count));
    for (int i = 0; i < count; ++i) {
        const GLXFBConfig config = found.get()[i];
        const std::unique_ptr<XVisualInfo, FreeX> visual(glXGetVisualFromFBConfig(display_, config));
        if (visual)
            configs->push_back({config, Attribute(display_, config, GLX_DEPTH_SIZE),
                                Attribute(display_, config, GLX_STENCIL_SIZE),
                                Attribute(display_, config, GLX_SAMPLES),
                                visual->depth == DefaultDepth(display_, Screen())});
    }
    return true;
}

// The server may draw for an old or a distant client, which has only the name to go by. A renderer that does
// not say what it is counts as software.
bool GlxSurface::DrawsInSoftware() {
    if (HasExtension(display_, Screen(), "GLX_MESA_query_renderer"))
        return MesaDrawsInSoftware(display_, Screen());
    const std::string name = RendererName(display_, Screen());
    constexpr std::string_view kSoftware[] = {"llvmpipe", "softpipe", "swrast", "Software Rasterizer"};
    return name.empty() || std::ranges::any_of(kSoftware, [&](std::string_view each) {
               return name.find(each) != std::string::npos;
           });
}

// Whether the surface may go while it is drawn, and the driver crashes then: a preview's goes with the
// settings panel, and Mesa's software driver takes whatever is on its stack for the size of a window that is
// gone. The root window stays.
bool GlxSurface::IsFragile() const {
    return !saverWindow.fullScreen && saverWindow.parent != DefaultRootWindow(display_) &&
           MesaDrawsInSoftware(display_, Screen());
}

bool GlxSurface::Create(const GlConfig& config) {
    config_ = static_cast<GLXFBConfig>(config.native);
    const std::unique_ptr<XVisualInfo, FreeX> visual(glXGetVisualFromFBConfig(display_, config_));
    if (!visual)
        return false;
    ErrorTrap trap(display_);
    colormap_ = XCreateColormap(display_, target_.root, visual->visual, AllocNone);
    XSetWindowAttributes wishes = {};
    wishes.background_pixmap = None;
    wishes.border_pixel = 0;
    wishes.colormap = colormap_;
    id_ = XCreateWindow(display_, saverWindow.id, 0, 0, static_cast<unsigned>(target_.width),
                        static_cast<unsigned>(target_.height), 0, visual->depth, InputOutput, visual->visual,
                        CWBackPixmap | CWBorderPixel | CWColormap, &wishes);
    XMapWindow(display_, id_);
    fragile_ = IsFragile();
    return trap.Clean();
}

std::unique_ptr<GlContext> GlxSurface::CreateContext() {
    ErrorTrap trap(display_);
    const GLXContext context = glXCreateNewContext(display_, config_, GLX_RGBA_TYPE, nullptr, True);
    if (!trap.Clean() || context == nullptr)
        return nullptr;
    return std::make_unique<GlxContext>(display_, context);
}

bool GlxSurface::MakeCurrent(GlContext* context) {
    if (context == nullptr)
        return glXMakeCurrent(display_, None, nullptr) != False;
    const Hold hold(*this);
    if (!hold.IsThere() || glXMakeCurrent(display_, id_, static_cast<GlxContext*>(context)->Get()) == False)
        return false;
    if (!std::exchange(waits_, true) &&
        !fragile_) // while a fragile surface is shown, no program may be served
        WaitForMonitor(display_, Screen(), id_);
    return true;
}

bool GlxSurface::Swap() {
    const Hold hold(*this);
    if (!hold.IsThere())
        return false;
    glXSwapBuffers(display_, id_);
    return true;
}

} // namespace

void FitSurface(int width, int height) {
    if (GlxSurface::theSurface == nullptr || GlxSurface::theSurface->Id() == None)
        return;
    // Not on OpenGL's connection: the loop's thread waits for replies there.
    XResizeWindow(Connection(), GlxSurface::theSurface->Id(), static_cast<unsigned>(width),
                  static_cast<unsigned>(height));
    XSync(Connection(), False);
}

std::unique_ptr<GlSurface> OpenGl() {
    Display* display = GlConnection();
    XWindowAttributes target = {};
    if (display == nullptr || XGetWindowAttributes(display, saverWindow.id, &target) == 0)
        return nullptr;
    return std::make_unique<GlxSurface>(display, target);
}

PROC FindGlFunction(const char* name) {
    return reinterpret_cast<PROC>(glXGetProcAddress(reinterpret_cast<const GLubyte*>(name)));
}

} // namespace x11
