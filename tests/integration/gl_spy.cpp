// Loaded into the saver before the libraries whose functions these are: counts what it shows, and answers for
// hardware and monitors that the test machine lacks.
#include "integration/gl_spy.h"

#include <GL/glx.h>

#include <X11/extensions/dpms.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>

namespace {

GlSpy& Spy() {
    static GlSpy* const spy = [] {
        const int file = open(std::getenv("TAMBLOR_SPY"), O_RDWR | O_CLOEXEC);
        return static_cast<GlSpy*>(mmap(nullptr, sizeof(GlSpy), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
    }();
    return *spy;
}

template <class Function> Function* Real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

int NoteInterval(const char* function, int interval) {
    std::strcpy(Spy().intervalBy, function);
    Spy().interval = interval;
    return 0;
}

void IntervalExt(Display*, GLXDrawable, int interval) {
    NoteInterval("EXT", interval);
}

int IntervalMesa(unsigned interval) {
    return NoteInterval("MESA", static_cast<int>(interval));
}

int IntervalSgi(int interval) {
    return NoteInterval("SGI", interval);
}

Bool QueryRenderer(Display*, int, int, int attribute, unsigned* value) {
    if (attribute == GLX_RENDERER_ACCELERATED_MESA)
        *value = static_cast<unsigned>(Spy().accelerated);
    return True;
}

const GLubyte* CardName(GLenum) {
    return reinterpret_cast<const GLubyte*>("A Card/PCIe/SSE2");
}

} // namespace

extern "C" {

void glXSwapBuffers(Display* display, GLXDrawable drawable) {
    Real<decltype(glXSwapBuffers)>("glXSwapBuffers")(display, drawable);
    ++std::atomic_ref(Spy().frames);
}

const char* glXQueryExtensionsString(Display* display, int screen) {
    return Spy().extensions[0] != '\0'
               ? Spy().extensions
               : Real<decltype(glXQueryExtensionsString)>("glXQueryExtensionsString")(display, screen);
}

__GLXextFuncPtr glXGetProcAddress(const GLubyte* name) {
    const char* text = reinterpret_cast<const char*>(name);
    const auto answer = [](auto* function) { return reinterpret_cast<__GLXextFuncPtr>(function); };
    if (std::strcmp(text, "glXSwapIntervalEXT") == 0)
        return answer(IntervalExt);
    if (std::strcmp(text, "glXSwapIntervalMESA") == 0)
        return answer(IntervalMesa);
    if (std::strcmp(text, "glXSwapIntervalSGI") == 0)
        return answer(IntervalSgi);
    if (std::strcmp(text, "glXQueryRendererIntegerMESA") == 0 && Spy().extensions[0] != '\0')
        return answer(QueryRenderer);
    if (std::strcmp(text, "glGetString") == 0 && Spy().accelerated != 0)
        return answer(CardName);
    return Real<decltype(glXGetProcAddress)>("glXGetProcAddress")(name);
}

GLXContext glXCreateNewContext(Display* display, GLXFBConfig config, int type, GLXContext shared,
                               Bool direct) {
    glXGetFBConfigAttrib(display, config, GLX_SAMPLES, &Spy().samples);
    return Real<decltype(glXCreateNewContext)>("glXCreateNewContext")(display, config, type, shared, direct);
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
}
