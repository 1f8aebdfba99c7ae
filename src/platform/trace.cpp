#include "platform/trace.h"

#include "platform/clock.h"
#include "platform/threads.h"
#include "win32/win32.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>

namespace {

constexpr int kMessage = 4096;
constexpr char kDashes[] = "------------------------------------------------\n";

std::atomic<bool> trcOn = false;
std::FILE* trcFile = nullptr;
std::atomic<void*> trcMutex = nullptr;

// Shared by all callers under the mutex.
char trcTrcText[kMessage + 1];
char trcTimeStr[1024];
char trcThreadStr[1024];
char trcDynamicError[kMessage + 1];

void localPrefixes() {
    std::snprintf(trcThreadStr, sizeof trcThreadStr, "%08x: ", static_cast<unsigned>(GetCurrentThreadId()));
    const float seconds = static_cast<float>(fxGetTime());
    std::snprintf(trcTimeStr, sizeof trcTimeStr, "[%.3f] ", static_cast<double>(seconds));
}

enum class Prefix { None, Trace, Error };

void localWrite(Prefix prefix, char* text, const char* format, va_list arguments) {
    void* mutex = trcMutex;
    if (!trcOn || mutex == nullptr)
        return;
    fxLock(mutex);
    if (trcOn && trcFile != nullptr) {
        std::vsnprintf(text, kMessage + 1, format, arguments);
        if (prefix == Prefix::Error)
            std::fputs("#ERROR: ", trcFile);
        if (prefix != Prefix::None) {
            localPrefixes();
            std::fputs(trcThreadStr, trcFile);
            std::fputs(trcTimeStr, trcFile);
        }
        std::fputs(text, trcFile);
        std::fflush(trcFile);
    }
    fxUnlock(mutex);
}

} // namespace

bool fxOpenTraces(const char* name) {
    if (trcOn) {
        fxLock(trcMutex);
        std::fprintf(trcFile, "%sfxOpenTraces - attempt to open another traces\n               (filename:%s)\n%s\n",
                     kDashes, name, kDashes);
        std::fflush(trcFile);
        fxUnlock(trcMutex);
        return false;
    }
    trcFile = std::fopen(name, "wt");
    if (trcFile == nullptr)
        return false;
    std::fprintf(trcFile, "%s fxOpenTraces (filename:%s)\n%s\n", kDashes, name, kDashes);
    std::fflush(trcFile);
    trcMutex = fxCreateMutex();
    trcOn = true;
    return true;
}

bool fxTracesOpened() { return trcOn; }

void fxCloseTraces() {
    if (trcOn) {
        void* mutex = trcMutex;
        fxLock(mutex);
        trcOn = false;
        fxUnlock(mutex);
        trcMutex = nullptr;
        fxDestroyMutex(mutex);
    }
    fxCloseTracesFile();
}

void fxCloseTracesFile() {
    if (trcFile == nullptr)
        return;
    std::fprintf(trcFile, "\n%s end of traces\n%s\n", kDashes, kDashes);
    std::fclose(trcFile);
    trcFile = nullptr;
}

void trc(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    localWrite(Prefix::Trace, trcTrcText, format, arguments);
    va_end(arguments);
}

void err(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    localWrite(Prefix::Error, trcTrcText, format, arguments);
    va_end(arguments);
}

void trc1(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    localWrite(Prefix::None, trcTrcText, format, arguments);
    va_end(arguments);
}

int errmsg(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    va_list again;
    va_copy(again, arguments);
    localWrite(Prefix::Error, trcDynamicError, format, arguments);
    va_end(arguments);
    char text[kMessage + 1]; // the box stays open for as long as the user likes; the shared buffer must not
    std::vsnprintf(text, sizeof text, format, again);
    va_end(again);
    return MessageBoxA(nullptr, text, "Error", MB_ICONHAND);
}
