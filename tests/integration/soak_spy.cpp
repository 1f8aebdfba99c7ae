// Loaded into the saver before the libraries whose functions these are: counts what it keeps, and holds back
// every frame until the clock has gone on, so that there is one for each time of the clock and the processors
// are not busy with more.
#include "integration/soak_spy.h"

#include <GL/glx.h>

#include <EGL/egl.h>
#include <wayland-client.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

void* Mapped(const char* variable, std::size_t size) {
    const int file = open(std::getenv(variable), O_RDWR | O_CLOEXEC);
    return mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
}

SoakSpy& Spy() {
    static auto* const spy = static_cast<SoakSpy*>(Mapped("TAMBLOR_SOAK", sizeof(SoakSpy)));
    return *spy;
}

std::uint32_t Tick() {
    static auto* const clock = static_cast<std::uint32_t*>(Mapped("TAMBLOR_CLOCK", sizeof(std::uint32_t)));
    return std::atomic_ref(*clock);
}

template <class Function> Function* Real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

void Add(std::uint32_t* count, int number) {
    std::atomic_ref(*count) += static_cast<std::uint32_t>(number);
}

// The next frame is drawn for the time at which this ends.
void OnShown() {
    constexpr int kMost = 200; // a saver that is to end does not wait for the clock
    constexpr useconds_t kStep = 500;
    constexpr std::uint32_t kFramesPerLook = 64;
    static std::uint32_t begun = 0;
    if (std::atomic_ref(Spy().frames)++ % kFramesPerLook == 0) {
        const struct mallinfo2 heap = mallinfo2();
        std::atomic_ref(Spy().heap) = heap.uordblks + heap.hblkhd;
    }
    std::atomic_ref(Spy().tick) = begun;
    for (int i = 0; i < kMost && Tick() == begun; ++i)
        usleep(kStep);
    begun = Tick();
}

} // namespace

extern "C" {

void glXSwapBuffers(Display* display, GLXDrawable drawable) {
    Real<decltype(glXSwapBuffers)>("glXSwapBuffers")(display, drawable);
    OnShown();
}

EGLBoolean eglSwapBuffers(EGLDisplay display, EGLSurface surface) {
    const EGLBoolean done = Real<decltype(eglSwapBuffers)>("eglSwapBuffers")(display, surface);
    OnShown();
    return done;
}

void glGenTextures(GLsizei count, GLuint* names) {
    Real<decltype(glGenTextures)>("glGenTextures")(count, names);
    Add(&Spy().textures, count);
}

void glDeleteTextures(GLsizei count, const GLuint* names) {
    Real<decltype(glDeleteTextures)>("glDeleteTextures")(count, names);
    Add(&Spy().textures, -count);
}

void glTexImage2D(GLenum target, GLint level, GLint components, GLsizei width, GLsizei height, GLint border,
                  GLenum format, GLenum type, const void* pixels) {
    Real<decltype(glTexImage2D)>("glTexImage2D")(target, level, components, width, height, border, format,
                                                 type, pixels);
    Add(&Spy().uploads, 1);
}

GLuint glGenLists(GLsizei count) {
    Add(&Spy().lists, count);
    return Real<decltype(glGenLists)>("glGenLists")(count);
}

constexpr std::uint32_t kFirstOfServer = 0xFF000000; // numbers that the compositor gives
int wl_proxy_add_listener(wl_proxy* proxy, void (**implementation)(), void* data) {
    std::atomic_ref greatest(Spy().proxy);
    if (const std::uint32_t id = wl_proxy_get_id(proxy); id < kFirstOfServer)
        greatest = std::max(greatest.load(), id);
    return Real<decltype(wl_proxy_add_listener)>("wl_proxy_add_listener")(proxy, implementation, data);
}
}
