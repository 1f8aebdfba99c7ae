#include "platform/threads.h"

#include "base/memory.h"
#include "win32/win32.h"

#include <cstdlib>

struct FXMutex {
    CRITICAL_SECTION section;
};

struct FXSignal {
    HANDLE event;
};

struct FXThread {
    void (*proc)(void*);
    void* argument;
    HANDLE handle;
    DWORD id;

    bool Alive() const { return handle != nullptr && id != 0; }
};

namespace {

constexpr double kNoLimit = 100000.0; // seconds from which a wait has no limit

DWORD WINAPI localThreadProc(void* parameter) {
    const FXThread* thread = static_cast<FXThread*>(parameter);
    if (thread != nullptr && thread->proc != nullptr)
        thread->proc(thread->argument);
    return 0;
}

} // namespace

FXMutex* fxCreateMutex() {
    auto* mutex = static_cast<FXMutex*>(fxMalloc(sizeof(FXMutex)));
    if (mutex != nullptr)
        InitializeCriticalSection(&mutex->section);
    return mutex;
}

void fxDestroyMutex(FXMutex* mutex) {
    if (mutex == nullptr)
        return;
    DeleteCriticalSection(&mutex->section);
    std::free(mutex);
}

bool fxTryLock(FXMutex* mutex) {
    return TryEnterCriticalSection(&mutex->section) != FALSE;
}

void fxLock(FXMutex* mutex) {
    EnterCriticalSection(&mutex->section);
}

void fxUnlock(FXMutex* mutex) {
    LeaveCriticalSection(&mutex->section);
}

FXSignal* fxCreateSignal() {
    FXOwner<FXSignal, FXFree> signal(static_cast<FXSignal*>(fxMalloc(sizeof(FXSignal))));
    if (!signal)
        return nullptr;
    signal->event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    return signal->event != nullptr ? signal.release() : nullptr;
}

void fxDestroySignal(FXSignal* signal) {
    if (signal == nullptr)
        return;
    CloseHandle(signal->event);
    std::free(signal);
}

void fxRaiseSignal(FXSignal* signal) {
    if (signal != nullptr)
        SetEvent(signal->event);
}

void fxAwaitSignal(FXSignal* signal) {
    if (signal != nullptr)
        WaitForSingleObject(signal->event, INFINITE);
}

FXThread* fxCreateThread(void (*proc)(void*), void* argument) {
    FXOwner<FXThread, FXFree> thread(static_cast<FXThread*>(fxMalloc(sizeof(FXThread))));
    if (!thread)
        return nullptr;
    thread->proc = proc;
    thread->argument = argument;
    thread->handle = CreateThread(nullptr, 0, localThreadProc, thread.get(), 0, &thread->id);
    return thread->handle != nullptr ? thread.release() : nullptr;
}

bool fxWaitThread(FXThread* thread, double seconds) {
    if (thread == nullptr || !thread->Alive())
        return true;
    const DWORD wait =
        seconds >= kNoLimit ? INFINITE : static_cast<DWORD>(seconds > 0 ? seconds * 1000.0 : 0);
    return WaitForSingleObject(thread->handle, wait) != WAIT_TIMEOUT;
}

void fxTerminateThread(FXThread* thread) {
    if (thread == nullptr || !thread->Alive())
        return;
    if (!fxWaitThread(thread, 0.0))
        TerminateThread(thread->handle, 0);
    CloseHandle(thread->handle);
    thread->handle = nullptr;
    thread->id = 0;
}

void fxDestroyThread(FXThread* thread) {
    fxTerminateThread(thread);
    std::free(thread);
}

void fxSetAppPriority(int priority) {
    SetPriorityClass(GetCurrentProcess(), priority == 0  ? NORMAL_PRIORITY_CLASS
                                          : priority > 0 ? REALTIME_PRIORITY_CLASS
                                                         : BELOW_NORMAL_PRIORITY_CLASS);
}

void fxSetThreadPriority(FXThread* thread, int priority) {
    if (thread != nullptr && thread->handle != nullptr)
        SetThreadPriority(thread->handle, priority == 0  ? THREAD_PRIORITY_NORMAL
                                          : priority > 0 ? THREAD_PRIORITY_TIME_CRITICAL
                                                         : THREAD_PRIORITY_LOWEST);
}
