// DevIL and its utility library as one module, each of whose functions may fail.
#include "unit/failing_codec.h"
#include "image/codec.h"

#include <dlfcn.h>
#include <mutex>

extern "C" {
FailingCodecState failingCodec = {-1, 0, nullptr};
}

namespace {

// While the scene is built two threads call.
bool Fails(const char* function) {
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    FailingCodecState& state = failingCodec;
    if (state.callsLeft != 0) {
        state.callsLeft -= state.callsLeft > 0 ? 1 : 0;
        return false;
    }
    state.callsLeft = state.alsoAllLater != 0 ? 0 : -1;
    if (state.failed == nullptr)
        state.failed = function;
    return true;
}

void* Real(const char* name) {
    static void* const modules[] = {dlopen("libIL.so.1", RTLD_NOW), dlopen("libILU.so.1", RTLD_NOW)};
    return dlsym(modules[name[2] == 'u' ? 1 : 0], name);
}

} // namespace

#define FAILING(type, name, parameters, arguments, failure)                                                  \
    type name parameters {                                                                                   \
        static auto* const real = reinterpret_cast<type(*) parameters>(Real(#name));                         \
        return Fails(#name) ? failure : real arguments;                                                      \
    }

extern "C" {

FAILING(void, ilInit, (), (), void())
FAILING(void, ilShutDown, (), (), void())
FAILING(ILboolean, ilEnable, (ILenum mode), (mode), ILboolean())
FAILING(ILboolean, ilDisable, (ILenum mode), (mode), ILboolean())
FAILING(void, ilSetInteger, (ILenum mode, ILint value), (mode, value), void())
FAILING(void, ilGenImages, (std::size_t count, ILuint* images), (count, images), void())
FAILING(void, ilDeleteImages, (std::size_t count, const ILuint* images), (count, images), void())
FAILING(void, ilBindImage, (ILuint image), (image), void())
FAILING(ILint, ilGetInteger, (ILenum mode), (mode), ILint())
FAILING(ILboolean, ilLoadImage, (const char* file), (file), ILboolean())
FAILING(ILboolean, ilLoadL, (ILenum type, const void* bytes, ILuint size), (type, bytes, size), ILboolean())
FAILING(ILboolean, ilSaveImage, (const char* file), (file), ILboolean())
FAILING(ILuint, ilCloneCurImage, (), (), ILuint())
FAILING(ILboolean, ilConvertImage, (ILenum format, ILenum type), (format, type), ILboolean())
FAILING(ILuint, ilCopyPixels,
        (ILuint x, ILuint y, ILuint z, ILuint w, ILuint h, ILuint d, ILenum format, ILenum type,
         void* pixels),
        (x, y, z, w, h, d, format, type, pixels), ILuint())
FAILING(void, ilSetPixels,
        (ILint x, ILint y, ILint z, ILuint w, ILuint h, ILuint d, ILenum format, ILenum type, void* pixels),
        (x, y, z, w, h, d, format, type, pixels), void())
FAILING(unsigned char*, ilGetData, (), (), nullptr)
FAILING(ILboolean, ilTexImage,
        (ILuint w, ILuint h, ILuint d, unsigned char channels, ILenum format, ILenum type, void* pixels),
        (w, h, d, channels, format, type, pixels), ILboolean())
FAILING(ILboolean, iluScale, (ILuint w, ILuint h, ILuint d), (w, h, d), ILboolean())
FAILING(void, iluImageParameter, (ILenum name, ILenum value), (name, value), void())
}
