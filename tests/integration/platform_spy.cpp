#include "integration/platform_spy.h"

#include "integration/shared_file.h"
#include "unit/failing_new.h"

#include <EGL/egl.h>
#include <GL/glx.h>
#include <X11/extensions/dpms.h>
#include <wayland-client.h>
#include <wayland-egl.h>

#include <algorithm>
#include <clocale>
#include <cstring>
#include <dlfcn.h>
#include <malloc.h>
#include <string_view>

namespace {

// The function that stands behind this library's own.
#define REAL(name) reinterpret_cast<decltype(&name)>(dlsym(RTLD_NEXT, #name))

PlatformSpy& Spy() {
    static PlatformSpy nobodys;
    static auto* const shared = MapShared<PlatformSpy>(std::getenv("TAMBLOR_SPY"));
    return shared != nullptr ? *shared : nobodys;
}

// Whether this call of the function is to fail.
bool Fails(const char* function) {
    static const char* const wish = std::getenv("TAMBLOR_FAILS");
    const std::size_t length = std::strlen(function);
    if (wish == nullptr || std::strncmp(wish, function, length) != 0 || wish[length] != ' ')
        return false;
    static std::atomic<int> calls = 0;
    return calls++ >= std::atoi(wish + length);
}

void HoldAt(PlatformSpy::Place place) {
    while (Spy().place == place) {
        Spy().isHeld = 1;
        usleep(1000);
    }
    Spy().isHeld = 0;
}

// Where frames wait for the clock, there is one for each of its times, and no processor is busy with more.
void OnShown() {
    constexpr std::uint32_t kFramesPerLook = 64;
    if (Spy().frames++ % kFramesPerLook == 0) {
        const struct mallinfo2 heap = mallinfo2();
        Spy().heap = heap.uordblks + heap.hblkhd;
    }
    if (Spy().waitsForClock == 0)
        return;
    constexpr int kMost = 200; // a saver that is to end does not wait for the clock
    constexpr useconds_t kStep = 500;
    static const auto* const clock = MapShared<PlatformSpy::Number>(std::getenv("TAMBLOR_CLOCK"));
    static std::uint32_t begun = 0;
    Spy().tick = begun;
    for (int i = 0; i < kMost && *clock == begun; ++i)
        usleep(kStep);
    begun = *clock;
}

int NoteInterval(const char* function, int interval) {
    std::strcpy(Spy().intervalBy, function);
    Spy().interval = interval;
    return 0;
}

struct RegistryListener {
    const wl_registry_listener* real;
    void* data;
};
constexpr wl_registry_listener kFiltered = {
    [](void* data, wl_registry* registry, std::uint32_t name, const char* interface, std::uint32_t version) {
        static const char* const lacks = std::getenv("TAMBLOR_LACKS");
        const auto& listener = *static_cast<RegistryListener*>(data);
        if (lacks == nullptr || std::strstr(lacks, interface) == nullptr)
            listener.real->global(listener.data, registry, name, interface, version);
    },
    [](void* data, wl_registry* registry, std::uint32_t name) {
        const auto& listener = *static_cast<RegistryListener*>(data);
        listener.real->global_remove(listener.data, registry, name);
    }};

[[gnu::constructor]] void TakeLanguage() {
    if (std::getenv("TAMBLOR_LANGUAGE") != nullptr)
        std::setlocale(LC_ALL, "");
}

} // namespace

void* AnswerToNew(std::size_t size, const void* caller) {
    static const char* const wish = std::getenv("TAMBLOR_NO_MEMORY");
    static std::atomic<int> left = wish != nullptr ? std::atoi(wish) : -1;
    Dl_info module;
    const auto isSavers = [&] {
        return dladdr(caller, &module) != 0 && std::strstr(module.dli_fname, "/tamblor") != nullptr;
    };
    const bool refused = wish != nullptr && left >= 0 && isSavers() && left-- == 0;
    return refused ? nullptr : std::malloc(size > 0 ? size : 1);
}

#define FAILING(type, name, parameters, arguments, failure)                                                  \
    type name parameters {                                                                                   \
        return Fails(#name) ? failure : REAL(name) arguments;                                                \
    }
extern "C" {

FAILING(Bool, glXQueryExtension, (Display * display, int* errors, int* events), (display, errors, events),
        False)
FAILING(GLXFBConfig*, glXChooseFBConfig, (Display * display, int screen, const int* wishes, int* count),
        (display, screen, wishes, count), (*count = 0, nullptr))
FAILING(XVisualInfo*, glXGetVisualFromFBConfig, (Display * display, GLXFBConfig config), (display, config),
        nullptr)
FAILING(int, glXGetFBConfigAttrib, (Display * display, GLXFBConfig config, int name, int* value),
        (display, config, name, value), GLX_BAD_ATTRIBUTE)
FAILING(const GLubyte*, glGetString, (GLenum name), (name), nullptr)
FAILING(Colormap, XCreateColormap, (Display * display, Window window, Visual* visual, int wish),
        (display, window, visual, wish), None)

FAILING(EGLDisplay, eglGetPlatformDisplay, (EGLenum platform, void* native, const EGLAttrib* wishes),
        (platform, native, wishes), EGL_NO_DISPLAY)
FAILING(EGLBoolean, eglInitialize, (EGLDisplay display, EGLint* major, EGLint* minor),
        (display, major, minor), EGL_FALSE)
FAILING(EGLBoolean, eglBindAPI, (EGLenum api), (api), EGL_FALSE)
FAILING(EGLBoolean, eglChooseConfig,
        (EGLDisplay display, const EGLint* wishes, EGLConfig* configs, EGLint size, EGLint* count),
        (display, wishes, configs, size, count), EGL_FALSE)
FAILING(EGLSurface, eglCreatePlatformWindowSurface,
        (EGLDisplay display, EGLConfig config, void* native, const EGLAttrib* wishes),
        (display, config, native, wishes), EGL_NO_SURFACE)
FAILING(EGLContext, eglCreateContext,
        (EGLDisplay display, EGLConfig config, EGLContext shared, const EGLint* wishes),
        (display, config, shared, wishes), EGL_NO_CONTEXT)
FAILING(wl_egl_window*, wl_egl_window_create, (wl_surface * surface, int width, int height),
        (surface, width, height), nullptr)
FAILING(__eglMustCastToProperFunctionPointerType, eglGetProcAddress, (const char* name), (name), nullptr)

GLXContext glXCreateNewContext(Display* display, GLXFBConfig config, int type, GLXContext shared,
                               Bool direct) {
    glXGetFBConfigAttrib(display, config, GLX_SAMPLES, &Spy().samples);
    return Fails("glXCreateNewContext") ? nullptr
                                        : REAL(glXCreateNewContext)(display, config, type, shared, direct);
}

const char* glXQueryExtensionsString(Display* display, int screen) {
    if (Fails("glXQueryExtensionsString"))
        return nullptr;
    return Spy().extensions[0] != '\0' ? Spy().extensions : REAL(glXQueryExtensionsString)(display, screen);
}

__GLXextFuncPtr glXGetProcAddress(const GLubyte* name) {
    const std::string_view text = reinterpret_cast<const char*>(name);
    const auto answer = [](auto* function) { return reinterpret_cast<__GLXextFuncPtr>(function); };
    if (Fails("glXGetProcAddress"))
        return nullptr;
    if (text == "glXSwapIntervalEXT")
        return answer(+[](Display*, GLXDrawable, int interval) { NoteInterval("EXT", interval); });
    if (text == "glXSwapIntervalMESA")
        return answer(+[](unsigned interval) { return NoteInterval("MESA", static_cast<int>(interval)); });
    if (text == "glXSwapIntervalSGI")
        return answer(+[](int interval) { return NoteInterval("SGI", interval); });
    if (text == "glXQueryRendererIntegerMESA" && Spy().extensions[0] != '\0')
        return answer(+[](Display*, int, int, int attribute, unsigned* value) -> Bool {
            if (attribute == GLX_RENDERER_ACCELERATED_MESA)
                *value = static_cast<unsigned>(Spy().accelerated);
            return True;
        });
    if (text == "glGetString" && Spy().accelerated != 0)
        return answer(+[](GLenum) { return reinterpret_cast<const GLubyte*>("A Card/PCIe/SSE2"); });
    return REAL(glXGetProcAddress)(name);
}

// Letting a context go always works.
Bool glXMakeCurrent(Display* display, GLXDrawable drawable, GLXContext context) {
    return context != nullptr && Fails("glXMakeCurrent") ? False
                                                         : REAL(glXMakeCurrent)(display, drawable, context);
}

EGLBoolean eglMakeCurrent(EGLDisplay display, EGLSurface drawn, EGLSurface read, EGLContext context) {
    return context != EGL_NO_CONTEXT && Fails("eglMakeCurrent")
               ? EGL_FALSE
               : REAL(eglMakeCurrent)(display, drawn, read, context);
}

void glClear(GLbitfield buffers) {
    HoldAt(PlatformSpy::BeforeClearing);
    REAL(glClear)(buffers);
}

void glXSwapBuffers(Display* display, GLXDrawable drawable) {
    HoldAt(PlatformSpy::BeforeShowing);
    REAL(glXSwapBuffers)(display, drawable);
    OnShown();
}

EGLBoolean eglSwapBuffers(EGLDisplay display, EGLSurface surface) {
    HoldAt(PlatformSpy::BeforeShowing);
    const EGLBoolean shown = Fails("eglSwapBuffers") ? EGL_FALSE : REAL(eglSwapBuffers)(display, surface);
    OnShown();
    return shown;
}

void glGenTextures(GLsizei count, GLuint* names) {
    REAL(glGenTextures)(count, names);
    Spy().textures += static_cast<std::uint32_t>(count);
}

void glDeleteTextures(GLsizei count, const GLuint* names) {
    REAL(glDeleteTextures)(count, names);
    Spy().textures -= static_cast<std::uint32_t>(count);
}

void glTexImage2D(GLenum target, GLint level, GLint components, GLsizei width, GLsizei height, GLint border,
                  GLenum format, GLenum type, const void* pixels) {
    REAL(glTexImage2D)(target, level, components, width, height, border, format, type, pixels);
    ++Spy().uploads;
}

Bool DPMSQueryExtension(Display*, int*, int*) {
    return Spy().powerLevel >= 0;
}

Bool DPMSCapable(Display*) {
    return True;
}

Status DPMSInfo(Display*, CARD16* level, BOOL* enabled) {
    *level = static_cast<CARD16>(Spy().powerLevel);
    *enabled = True;
    return True;
}

constexpr std::uint32_t kFirstOfServer = 0xFF000000; // numbers that the compositor gives
int wl_proxy_add_listener(wl_proxy* proxy, void (**implementation)(), void* data) {
    if (const std::uint32_t id = wl_proxy_get_id(proxy); id < kFirstOfServer)
        Spy().proxy = std::max(Spy().proxy.load(), id);
    if (std::string_view(wl_proxy_get_class(proxy)) != "wl_registry")
        return REAL(wl_proxy_add_listener)(proxy, implementation, data);
    // Needed for as long as the proxy is: the process's few registries.
    auto* listener =
        new RegistryListener{reinterpret_cast<const wl_registry_listener*>(implementation), data};
    return REAL(wl_proxy_add_listener)(
        proxy, reinterpret_cast<void (**)()>(const_cast<wl_registry_listener*>(&kFiltered)), listener);
}
}
