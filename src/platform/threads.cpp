#include "platform/threads.h"

#include "base/memory.h"
#include "win32/win32.h"

#include <cstdlib>
#include <memory>

namespace {

constexpr double kNoLimit = 100000.0; // seconds from which a wait has no limit

struct ThreadRecord {
    void (*proc)(void*);
    void* argument;
    HANDLE handle;
    DWORD id;

    bool Alive() const { return handle != nullptr && id != 0; }
};

DWORD WINAPI localThreadProc(void* parameter) {
    const ThreadRecord* record = static_cast<ThreadRecord*>(parameter);
    if (record != nullptr && record->proc != nullptr)
        record->proc(record->argument);
    return 0;
}

CRITICAL_SECTION* localSection(void* mutex) {
    return static_cast<CRITICAL_SECTION*>(mutex);
}

} // namespace

void* fxCreateMutex() {
    void* mutex = fxMalloc(sizeof(CRITICAL_SECTION));
    if (mutex != nullptr)
        InitializeCriticalSection(localSection(mutex));
    return mutex;
}

void fxDestroyMutex(void* mutex) {
    if (mutex == nullptr)
        return;
    DeleteCriticalSection(localSection(mutex));
    std::free(mutex);
}

bool fxTryLock(void* mutex) {
    return TryEnterCriticalSection(localSection(mutex)) != FALSE;
}

void fxLock(void* mutex) {
    EnterCriticalSection(localSection(mutex));
}

void fxUnlock(void* mutex) {
    LeaveCriticalSection(localSection(mutex));
}

void* fxCreateThread(void (*proc)(void*), void* argument) {
    std::unique_ptr<ThreadRecord, FXFree> record(static_cast<ThreadRecord*>(fxMalloc(sizeof(ThreadRecord))));
    if (!record)
        return nullptr;
    record->proc = proc;
    record->argument = argument;
    record->handle = CreateThread(nullptr, 0, localThreadProc, record.get(), 0, &record->id);
    return record->handle != nullptr ? record.release() : nullptr;
}

bool fxWaitThread(void* thread, double seconds) {
    const ThreadRecord* record = static_cast<ThreadRecord*>(thread);
    if (record == nullptr || !record->Alive())
        return true;
    const DWORD wait =
        seconds >= kNoLimit ? INFINITE : static_cast<DWORD>(seconds > 0 ? seconds * 1000.0 : 0);
    return WaitForSingleObject(record->handle, wait) != WAIT_TIMEOUT;
}

void fxTerminateThread(void* thread) {
    ThreadRecord* record = static_cast<ThreadRecord*>(thread);
    if (record == nullptr || !record->Alive())
        return;
    if (!fxWaitThread(record, 0.0))
        TerminateThread(record->handle, 0);
    CloseHandle(record->handle);
    record->handle = nullptr;
    record->id = 0;
}

void fxDestroyThread(void* thread) {
    fxTerminateThread(thread);
    std::free(thread);
}

void fxSetAppPriority(int priority) {
    SetPriorityClass(GetCurrentProcess(), priority == 0  ? NORMAL_PRIORITY_CLASS
                                          : priority > 0 ? REALTIME_PRIORITY_CLASS
                                                         : BELOW_NORMAL_PRIORITY_CLASS);
}

void fxSetThreadPriority(void* thread, int priority) {
    const ThreadRecord* record = static_cast<ThreadRecord*>(thread);
    if (record != nullptr && record->handle != nullptr)
        SetThreadPriority(record->handle, priority == 0  ? THREAD_PRIORITY_NORMAL
                                          : priority > 0 ? THREAD_PRIORITY_TIME_CRITICAL
                                                         : THREAD_PRIORITY_LOWEST);
}
