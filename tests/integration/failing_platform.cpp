#include "integration/failing_platform.h"

#include <EGL/egl.h>
#include <GL/glx.h>
#include <wayland-egl.h>

#include <atomic>
#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <new>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

template <class Function> Function* Real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
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

Hold* TheHold() {
    static Hold* const hold = []() -> Hold* {
        const char* name = std::getenv("TAMBLOR_HOLD");
        if (name == nullptr)
            return nullptr;
        const int file = open(name, O_RDWR | O_CLOEXEC);
        return static_cast<Hold*>(mmap(nullptr, sizeof(Hold), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
    }();
    return hold;
}

void HoldAt(Hold::Place place) {
    Hold* hold = TheHold();
    if (hold == nullptr)
        return;
    while (std::atomic_ref(hold->place) == place) {
        std::atomic_ref(hold->isHeld) = 1;
        usleep(1000);
    }
    std::atomic_ref(hold->isHeld) = 0;
}

void CountFrame() {
    if (Hold* hold = TheHold())
        ++std::atomic_ref(hold->frames);
}

bool IsHidden(const char* path) {
    static const bool isOn = std::getenv("TAMBLOR_NO_PROC") != nullptr;
    const std::string_view name = path;
    if (!isOn || !(name.starts_with("/proc") || name.starts_with("/sys")))
        return false;
    errno = ENOENT;
    return true;
}

[[gnu::constructor]] void TakeLanguage() {
    if (std::getenv("TAMBLOR_LANGUAGE") != nullptr)
        std::setlocale(LC_ALL, "");
}

bool IsSavers(const void* caller) {
    Dl_info module;
    return dladdr(caller, &module) != 0 && std::strstr(module.dli_fname, "/tamblor") != nullptr;
}

void* Allocated(std::size_t size, const void* caller) {
    static const char* const wish = std::getenv("TAMBLOR_NO_MEMORY");
    static std::atomic<int> left = wish != nullptr ? std::atoi(wish) : -1;
    const bool refused = wish != nullptr && left >= 0 && IsSavers(caller) && left-- == 0;
    return refused ? nullptr : std::malloc(size > 0 ? size : 1);
}

} // namespace

#define FAILING(type, name, parameters, arguments, failure)                                                  \
    type name parameters {                                                                                   \
        static auto* const real = Real<type parameters>(#name);                                              \
        return Fails(#name) ? failure : real arguments;                                                      \
    }
#define HIDING(type, name, parameters, arguments)                                                            \
    type name parameters noexcept {                                                                          \
        static auto* const real = Real<type parameters>(#name);                                              \
        return IsHidden(path) ? type(-1) : real arguments;                                                   \
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
FAILING(GLXContext, glXCreateNewContext,
        (Display * display, GLXFBConfig config, int type, GLXContext shared, Bool direct),
        (display, config, type, shared, direct), nullptr)
FAILING(const char*, glXQueryExtensionsString, (Display * display, int screen), (display, screen), nullptr)
FAILING(__GLXextFuncPtr, glXGetProcAddress, (const GLubyte* name), (name), nullptr)
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

// Letting a context go always works.
Bool glXMakeCurrent(Display* display, GLXDrawable drawable, GLXContext context) {
    static auto* const real = Real<decltype(glXMakeCurrent)>("glXMakeCurrent");
    return context != nullptr && Fails("glXMakeCurrent") ? False : real(display, drawable, context);
}

EGLBoolean eglMakeCurrent(EGLDisplay display, EGLSurface drawn, EGLSurface read, EGLContext context) {
    static auto* const real = Real<decltype(eglMakeCurrent)>("eglMakeCurrent");
    return context != EGL_NO_CONTEXT && Fails("eglMakeCurrent") ? EGL_FALSE
                                                                : real(display, drawn, read, context);
}

void glClear(GLbitfield buffers) {
    static auto* const real = Real<decltype(glClear)>("glClear");
    HoldAt(Hold::BeforeClearing);
    real(buffers);
}

void glXSwapBuffers(Display* display, GLXDrawable drawable) {
    static auto* const real = Real<decltype(glXSwapBuffers)>("glXSwapBuffers");
    HoldAt(Hold::BeforeShowing);
    real(display, drawable);
    CountFrame();
}

EGLBoolean eglSwapBuffers(EGLDisplay display, EGLSurface surface) {
    static auto* const real = Real<decltype(eglSwapBuffers)>("eglSwapBuffers");
    HoldAt(Hold::BeforeShowing);
    const EGLBoolean shown = Fails("eglSwapBuffers") ? EGL_FALSE : real(display, surface);
    CountFrame();
    return shown;
}

HIDING(ssize_t, readlink, (const char* path, char* buffer, std::size_t size), (path, buffer, size))
HIDING(int, access, (const char* path, int mode), (path, mode))
HIDING(int, stat, (const char* path, struct stat* facts), (path, facts))
HIDING(int, lstat, (const char* path, struct stat* facts), (path, facts))

int open(const char* path, int flags, ...) {
    static auto* const real = Real<int(const char*, int, ...)>("open");
    mode_t mode = 0;
    if ((flags & (O_CREAT | O_TMPFILE)) != 0) {
        __builtin_va_list more;
        __builtin_va_start(more, flags);
        mode = __builtin_va_arg(more, mode_t);
        __builtin_va_end(more);
    }
    return IsHidden(path) ? -1 : real(path, flags, mode);
}

int open64(const char* path, int flags, ...) __attribute__((alias("open")));

FILE* fopen(const char* path, const char* mode) {
    static auto* const real = Real<FILE*(const char*, const char*)>("fopen");
    return IsHidden(path) ? nullptr : real(path, mode);
}

FILE* fopen64(const char* path, const char* mode) __attribute__((alias("fopen")));

int execv(const char* path, char* const* words) noexcept {
    static auto* const real = Real<int(const char*, char* const*)>("execv");
    return IsHidden(path) ? -1 : real(path, words);
}
}

// The kinds that the saver's code calls; those for arrays are the library's, or a sanitizer's.
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (void* block = Allocated(size, __builtin_return_address(0)))
        return block;
    throw std::bad_alloc();
}
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Allocated(size, __builtin_return_address(0));
}
[[gnu::noinline]] void operator delete(void* block) noexcept {
    std::free(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
