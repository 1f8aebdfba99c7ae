// For the tests under Wine: DevIL's modules, as Windows programs call them, handing every call to the Linux
// library. Built twice by Wine's compiler, once for each list of exports beside this one.
#include <dlfcn.h>
#include <windef.h>

#include <cstddef>

#ifdef BRIDGE_ilu
#define LIBRARY "libILU.so.1"
#define FUNCTIONS(USE) USE(iluScale) USE(iluImageParameter)
#else
#define LIBRARY "libIL.so.1"
// clang-format off
#define FUNCTIONS(USE)                                                                                       \
    USE(ilInit) USE(ilShutDown) USE(ilEnable) USE(ilDisable) USE(ilSetInteger) USE(ilGenImages)              \
    USE(ilDeleteImages) USE(ilBindImage) USE(ilGetInteger) USE(ilLoadImage) USE(ilLoadL) USE(ilSaveImage)    \
    USE(ilCloneCurImage) USE(ilConvertImage) USE(ilCopyPixels) USE(ilSetPixels) USE(ilGetData) USE(ilTexImage)
// clang-format on
#endif

namespace {

// The parameters are whole numbers and addresses, nine at the most. On the 64-bit system, for which alone
// this is built, one signature passes them all: what a function does not take, it does not look at.
using Word = std::size_t;
using Function = Word (*)(Word, Word, Word, Word, Word, Word, Word, Word, Word);

Function Entry(const char* name) {
    void* module = dlopen(LIBRARY, RTLD_NOW | RTLD_LOCAL);
    return reinterpret_cast<Function>(module != nullptr ? dlsym(module, name) : nullptr);
}

} // namespace

// Without the library every call answers 0, and the saver sees pictures that do not load.
#define BRIDGE(name)                                                                                         \
    extern "C" Word WINAPI Bridge_##name(Word a, Word b, Word c, Word d, Word e, Word f, Word g, Word h,     \
                                         Word i) {                                                           \
        static const Function target = Entry(#name);                                                         \
        return target != nullptr ? target(a, b, c, d, e, f, g, h, i) : 0;                                    \
    }
FUNCTIONS(BRIDGE)
