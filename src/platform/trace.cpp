#include "platform/trace.h"

#include "platform/clock.h"
#include "platform/threads.h"
#include "win32/win32.h"

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>

namespace {

constexpr int kMessage = 4096;
constexpr char kDashes[] = "------------------------------------------------\n";

std::atomic<bool> trcOn = false;
std::FILE* trcFile = nullptr;
FXMutex* trcMutex = nullptr; // made before the flag is first set, and kept

// The message and what stands in front of it, with their lengths. Shared by all callers under the mutex.
char trcTrcText[kMessage + 1];
int trcTrcTextSize = 0;
char trcTimeStr[1024];
int trcTimeStrSize = 0;
char trcThreadStr[1024];
int trcThreadStrSize = 0;

void localPrefixes() {
    trcThreadStrSize = std::snprintf(trcThreadStr, sizeof trcThreadStr,
                                     "%08x: ", static_cast<unsigned>(GetCurrentThreadId()));
    const float seconds = static_cast<float>(fxGetTime());
    trcTimeStrSize = std::snprintf(trcTimeStr, sizeof trcTimeStr, "[%.3f] ", static_cast<double>(seconds));
}

void localPut(const char* text, int size) {
    std::fwrite(text, 1, static_cast<std::size_t>(size), trcFile);
}

enum class Prefix { None, Trace, Error };

void localWrite(Prefix prefix, const char* format, va_list arguments) {
    if (!trcOn)
        return;
    const FXLocked locked(trcMutex);
    if (!trcOn || trcFile == nullptr)
        return;
    trcTrcTextSize =
        std::clamp(std::vsnprintf(trcTrcText, sizeof trcTrcText, format, arguments), 0, kMessage);
    if (prefix == Prefix::Error)
        std::fputs("#ERROR: ", trcFile);
    if (prefix != Prefix::None) {
        localPrefixes();
        localPut(trcThreadStr, trcThreadStrSize);
        localPut(trcTimeStr, trcTimeStrSize);
    }
    localPut(trcTrcText, trcTrcTextSize);
    std::fflush(trcFile);
}

} // namespace

bool fxOpenTraces(const char* name) {
    if (trcMutex == nullptr)
        trcMutex = fxCreateMutex();
    if (trcMutex == nullptr)
        return false;
    const FXLocked locked(trcMutex);
    if (trcOn) {
        if (trcFile != nullptr) {
            std::fprintf(
                trcFile,
                "%sfxOpenTraces - attempt to open another traces\n               (filename:%s)\n%s\n",
                kDashes, name, kDashes);
            std::fflush(trcFile);
        }
        return false;
    }
    trcFile = std::fopen(name, "wt");
    if (trcFile == nullptr)
        return false;
    std::fprintf(trcFile, "%s fxOpenTraces (filename:%s)\n%s\n", kDashes, name, kDashes);
    std::fflush(trcFile);
    trcOn = true;
    return true;
}

bool fxTracesOpened() {
    return trcOn;
}

void fxCloseTraces() {
    trcOn = false; // the mutex stays: another thread may be about to take it
    fxCloseTracesFile();
}

void fxCloseTracesFile() {
    if (trcMutex == nullptr)
        return;
    const FXLocked locked(trcMutex);
    if (trcFile == nullptr)
        return;
    std::fprintf(trcFile, "\n%s end of traces\n%s\n", kDashes, kDashes);
    std::fclose(trcFile);
    trcFile = nullptr;
}

void trc(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    localWrite(Prefix::Trace, format, arguments);
    va_end(arguments);
}

void err(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    localWrite(Prefix::Error, format, arguments);
    va_end(arguments);
}

void trc1(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    localWrite(Prefix::None, format, arguments);
    va_end(arguments);
}
