#include "image/codec.h"

#include "platform/trace.h"

#include <cstring>

FXCodec fxCodec = {};

namespace {

HMODULE ilDLL = nullptr;
HMODULE iluDLL = nullptr;

struct EntryPoint {
    const char* name;
    HMODULE* module;
    void* target; // the pointer in fxCodec
};

// NOLINTBEGIN(bugprone-macro-parentheses): names, not values
#define ENTRY(module, function)                                                                              \
    { #function, &module, &fxCodec.function }
// NOLINTEND(bugprone-macro-parentheses)
const EntryPoint kEntryPoints[] = {
    ENTRY(ilDLL, ilInit),
    ENTRY(ilDLL, ilShutDown),
    ENTRY(ilDLL, ilEnable),
    ENTRY(ilDLL, ilDisable),
    ENTRY(ilDLL, ilSetInteger),
    ENTRY(ilDLL, ilGenImages),
    ENTRY(ilDLL, ilDeleteImages),
    ENTRY(ilDLL, ilBindImage),
    ENTRY(ilDLL, ilGetInteger),
    ENTRY(ilDLL, ilLoadImage),
    ENTRY(ilDLL, ilLoadL),
    ENTRY(ilDLL, ilSaveImage),
    ENTRY(ilDLL, ilCloneCurImage),
    ENTRY(ilDLL, ilConvertImage),
    ENTRY(ilDLL, ilCopyPixels),
    ENTRY(ilDLL, ilSetPixels),
    ENTRY(ilDLL, ilGetData),
    ENTRY(iluDLL, iluScale),
    ENTRY(iluDLL, iluImageParameter),
    ENTRY(ilDLL, ilTexImage),
};
#undef ENTRY

bool localLoadImports() {
    trc("loading devil\n");
    ilDLL = LoadLibraryA("DevIL");
    if (ilDLL == nullptr) {
        err("failed to load devil.dll\n");
        return false;
    }
    iluDLL = LoadLibraryA("ilu");
    if (iluDLL == nullptr) {
        err("failed to load ilu.dll\n");
        FreeLibrary(ilDLL);
        ilDLL = nullptr;
        return false;
    }
    for (const EntryPoint& entry : kEntryPoints) {
        const FARPROC address = GetProcAddress(*entry.module, entry.name);
        if (address == nullptr)
            return false;
        std::memcpy(entry.target, &address, sizeof address);
    }
    trc("loading ok\n");
    return true;
}

void localUnloadImports() {
    trc("unload devil\n");
    if (ilDLL != nullptr) {
        if (fxCodec.ilShutDown != nullptr)
            fxCodec.ilShutDown();
        FreeLibrary(ilDLL);
        ilDLL = nullptr;
    }
    if (iluDLL != nullptr) {
        FreeLibrary(iluDLL);
        iluDLL = nullptr;
    }
    fxCodec = {};
}

} // namespace

bool fxLoadDevil() {
    if (localLoadImports()) {
        fxCodec.ilInit();
        return true;
    }
    err("failed to load devil libraries\n");
    localUnloadImports();
    return false;
}

void fxUnloadDevil() {
    localUnloadImports();
}

bool fxDevilLoaded() {
    return iluDLL != nullptr && fxCodec.ilTexImage != nullptr;
}
