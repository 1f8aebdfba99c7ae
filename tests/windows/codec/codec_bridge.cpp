// For the tests under Wine: DevIL's modules, as Windows programs call them, handing every call to the Linux
// library. Built twice by Wine's compiler, once for each list of exports beside this one.
#include <dlfcn.h>
#include <windef.h>

#include <cstddef>

namespace {

void* Entry(const char* library, const char* name) {
    void* module = dlopen(library, RTLD_NOW | RTLD_LOCAL);
    return module != nullptr ? dlsym(module, name) : nullptr;
}

} // namespace

// Without the library every call answers 0, and the saver sees pictures that do not load.
#define BRIDGE(library, result, name, parameters, arguments)                                                 \
    extern "C" result WINAPI Bridge_##name parameters {                                                      \
        static const auto target = reinterpret_cast<result(*) parameters>(Entry(library, #name));            \
        return target != nullptr ? target arguments : static_cast<result>(0);                                \
    }

#ifdef BRIDGE_ilu

BRIDGE("libILU.so.1", unsigned char, iluScale, (unsigned w, unsigned h, unsigned d), (w, h, d))
BRIDGE("libILU.so.1", void, iluImageParameter, (unsigned name, unsigned value), (name, value))

#else

#define IL "libIL.so.1"
BRIDGE(IL, void, ilInit, (), ())
BRIDGE(IL, void, ilShutDown, (), ())
BRIDGE(IL, unsigned char, ilEnable, (unsigned mode), (mode))
BRIDGE(IL, unsigned char, ilDisable, (unsigned mode), (mode))
BRIDGE(IL, void, ilSetInteger, (unsigned mode, int value), (mode, value))
BRIDGE(IL, void, ilGenImages, (std::size_t count, unsigned* images), (count, images))
BRIDGE(IL, void, ilDeleteImages, (std::size_t count, const unsigned* images), (count, images))
BRIDGE(IL, void, ilBindImage, (unsigned image), (image))
BRIDGE(IL, int, ilGetInteger, (unsigned mode), (mode))
BRIDGE(IL, unsigned char, ilLoadImage, (const char* file), (file))
BRIDGE(IL, unsigned char, ilLoadL, (unsigned type, const void* lump, unsigned size), (type, lump, size))
BRIDGE(IL, unsigned char, ilSaveImage, (const char* file), (file))
BRIDGE(IL, unsigned, ilCloneCurImage, (), ())
BRIDGE(IL, unsigned char, ilConvertImage, (unsigned format, unsigned type), (format, type))
BRIDGE(IL, unsigned, ilCopyPixels,
       (unsigned x, unsigned y, unsigned z, unsigned w, unsigned h, unsigned d, unsigned f, unsigned t,
        void* to),
       (x, y, z, w, h, d, f, t, to))
BRIDGE(IL, void, ilSetPixels,
       (int x, int y, int z, unsigned w, unsigned h, unsigned d, unsigned f, unsigned t, void* from),
       (x, y, z, w, h, d, f, t, from))
BRIDGE(IL, unsigned char*, ilGetData, (), ())
BRIDGE(IL, unsigned char, ilTexImage,
       (unsigned w, unsigned h, unsigned d, unsigned char n, unsigned f, unsigned t, void* from),
       (w, h, d, n, f, t, from))

#endif
