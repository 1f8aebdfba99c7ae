// ILU.dll: what it does is in our DevIL.dll, whose pictures they are. Beside another DevIL.dll it does
// nothing.
#include "image/codec.h"

#include <cstring>

namespace {

template <class Function> Function localFind(const char* name) {
    Function function = nullptr;
    const HMODULE devil = GetModuleHandleA("DevIL");
    const FARPROC address = devil != nullptr ? GetProcAddress(devil, name) : nullptr;
    std::memcpy(&function, &address, sizeof function);
    return function;
}

} // namespace

extern "C" ILboolean APIENTRY iluScale(ILuint w, ILuint h, ILuint d) {
    const auto scale = localFind<decltype(FXCodec::iluScale)>("iluScale");
    return scale != nullptr ? scale(w, h, d) : ILboolean{0};
}

extern "C" void APIENTRY iluImageParameter(ILenum parameter, ILenum value) {
    if (const auto set = localFind<decltype(FXCodec::iluImageParameter)>("iluImageParameter"))
        set(parameter, value);
}
