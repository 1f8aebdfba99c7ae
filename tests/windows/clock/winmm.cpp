// For the tests under Wine: lies beside the saver in place of the system's module of that name, and lets the
// test turn the saver's clock, as the layer for Linux does: TAMBLOR_CLOCK names a file of four bytes that
// holds the tick.
#define WIN32_LEAN_AND_MEAN // or the system would declare what is defined here
#include <windows.h>

#include <cstdlib>
#include <string>

namespace {

// The tick, and how often it was read; null without a file.
volatile LONG* MappedClock() {
    const char* name = std::getenv("TAMBLOR_CLOCK");
    if (name == nullptr)
        return nullptr;
    const HANDLE file = CreateFileA((std::string("Z:") + name).c_str(), GENERIC_READ | GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    const HANDLE mapping = CreateFileMappingA(file, nullptr, PAGE_READWRITE, 0, 8, nullptr);
    return static_cast<LONG*>(mapping != nullptr ? MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 8) : nullptr);
}

} // namespace

extern "C" __declspec(dllexport) DWORD WINAPI timeGetTime() {
    static volatile LONG* const clock = MappedClock();
    if (clock == nullptr)
        return GetTickCount();
    InterlockedIncrement(&clock[1]);
    return static_cast<DWORD>(clock[0]);
}
