// The desktop on Windows: DirectDraw 7 copies the visible screen into a surface in system memory.
#include "image/desktop_source.h"
#include "platform/trace.h"
#include "win32/win32.h"

#include <ddraw.h>

#include <cstddef>

namespace {

IDirectDraw7* localDD7 = nullptr;
IDirectDrawSurface7* localPrim = nullptr;
IDirectDrawSurface7* copySurface = nullptr;
int copyWidth = 0;
int copyHeight = 0;

template <class T> void localReleaseAndClear(T*& object) {
    if (object != nullptr)
        object->Release();
    object = nullptr;
}

DDSURFACEDESC2 localDescription(DWORD flags, DWORD caps) {
    DDSURFACEDESC2 description = {};
    description.dwSize = sizeof description;
    description.dwFlags = flags;
    description.ddsCaps.dwCaps = caps;
    return description;
}

// The conversion reads four bytes per pixel; other depths have fewer.
bool localIs32Bit(IDirectDrawSurface7* surface) {
    DDPIXELFORMAT format = {};
    format.dwSize = sizeof format;
    return SUCCEEDED(surface->GetPixelFormat(&format)) && format.dwRGBBitCount == 32;
}

// A compositor may keep the screen from DirectDraw, which then copies black and reports no failure.
bool localIsBlack(const FXDesktopPixels& pixels) {
    for (int y = 0; y < pixels.height; ++y) {
        const unsigned char* s = pixels.bytes + static_cast<std::ptrdiff_t>(y) * pixels.pitch;
        for (int x = 0; x < pixels.width; ++x, s += 4)
            if ((s[0] | s[1] | s[2]) != 0)
                return false;
    }
    return true;
}

bool localFailed(const char* step) {
    err("%s\n", step);
    return false;
}

} // namespace

bool fxDesktopCopy(int w, int h) {
    if (localDD7 == nullptr) {
        void* object = nullptr;
        if (FAILED(DirectDrawCreateEx(nullptr, &object, IID_IDirectDraw7, nullptr)))
            return localFailed("DirectDrawCreateEx");
        localDD7 = static_cast<IDirectDraw7*>(object);
    }
    if (FAILED(localDD7->SetCooperativeLevel(nullptr, DDSCL_NORMAL)))
        return localFailed("SetCooperativeLevel (dd7)");
    localReleaseAndClear(localPrim); // of an earlier photograph
    DDSURFACEDESC2 primary = localDescription(DDSD_CAPS, DDSCAPS_PRIMARYSURFACE);
    if (FAILED(localDD7->CreateSurface(&primary, &localPrim, nullptr)))
        return localFailed("CreateSurface (dd7 primary surface)");
    DDSURFACEDESC2 back = localDescription(DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT, DDSCAPS_SYSTEMMEMORY);
    back.dwWidth = static_cast<DWORD>(w);
    back.dwHeight = static_cast<DWORD>(h);
    if (FAILED(localDD7->CreateSurface(&back, &copySurface, nullptr)))
        return localFailed("CreateSurface (dd7 back surface)");
    if (FAILED(copySurface->Blt(nullptr, localPrim, nullptr, DDBLT_WAIT, nullptr))) {
        localReleaseAndClear(copySurface);
        return localFailed("Blt (dd7 - from primary to back)");
    }
    copyWidth = w;
    copyHeight = h;
    return true;
}

bool fxDesktopLock(FXDesktopPixels* pixels) {
    DDSURFACEDESC2 locked = {};
    locked.dwSize = sizeof locked;
    if (!localIs32Bit(copySurface) ||
        FAILED(copySurface->Lock(nullptr, &locked, DDLOCK_WAIT | DDLOCK_READONLY, nullptr)))
        return localFailed("Lock (dd7 - back)");
    *pixels = {static_cast<const unsigned char*>(locked.lpSurface), static_cast<int>(locked.lPitch),
               copyWidth, copyHeight};
    if (!localIsBlack(*pixels))
        return true;
    fxDesktopUnlock();
    return localFailed("the desktop is black, or a compositor keeps it from DirectDraw");
}

void fxDesktopUnlock() {
    copySurface->Unlock(nullptr);
    localReleaseAndClear(copySurface);
}

void fxDesktopRelease() {
    localReleaseAndClear(copySurface);
    localReleaseAndClear(localPrim);
    localReleaseAndClear(localDD7);
}
