// Threads that can be waited for with a limit, and recursive locks.
#include "win32/win32.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// Shared by the handle and the running thread: whichever lets go last frees it.
struct Thread {
    LPTHREAD_START_ROUTINE start = nullptr;
    void* argument = nullptr;
    pthread_t thread = {};
    std::mutex mutex;
    std::condition_variable changed;
    bool ended = false;
    DWORD id = 0;
};

using Handle = std::shared_ptr<Thread>;

Thread& Of(HANDLE handle) {
    return **static_cast<Handle*>(handle);
}

void MarkEnded(void* record) {
    std::unique_ptr<Handle> handle(static_cast<Handle*>(record));
    const std::lock_guard lock((*handle)->mutex);
    (*handle)->ended = true;
    (*handle)->changed.notify_all();
}

void* Run(void* record) {
    Thread& self = **static_cast<Handle*>(record);
    pthread_cleanup_push(MarkEnded, record); // runs also when the thread is terminated
    {
        const std::lock_guard lock(self.mutex);
        self.id = GetCurrentThreadId();
        self.changed.notify_all();
    }
    self.start(self.argument);
    pthread_cleanup_pop(1);
    return nullptr;
}

std::recursive_mutex& Of(CRITICAL_SECTION* section) {
    return *static_cast<std::recursive_mutex*>(section->lock);
}

} // namespace

DWORD GetCurrentThreadId() {
    thread_local const DWORD id = static_cast<DWORD>(syscall(SYS_gettid));
    return id;
}

HANDLE CreateThread(void*, std::size_t, LPTHREAD_START_ROUTINE start, void* argument, DWORD, DWORD* id) {
    auto handle = std::make_unique<Handle>(std::make_shared<Thread>());
    Thread& thread = **handle;
    thread.start = start;
    thread.argument = argument;
    auto own = std::make_unique<Handle>(*handle);
    if (pthread_create(&thread.thread, nullptr, Run, own.get()) != 0)
        return nullptr;
    static_cast<void>(own.release()); // the thread's now
    std::unique_lock lock(thread.mutex);
    thread.changed.wait(lock, [&] { return thread.id != 0; });
    if (id != nullptr)
        *id = thread.id;
    return handle.release();
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    Thread& thread = Of(handle);
    std::unique_lock lock(thread.mutex);
    const auto ended = [&] { return thread.ended; };
    if (milliseconds == INFINITE)
        thread.changed.wait(lock, ended);
    else if (!thread.changed.wait_for(lock, std::chrono::milliseconds(milliseconds), ended))
        return WAIT_TIMEOUT;
    return WAIT_OBJECT_0;
}

// Ends the thread at its next sleep or waiting system call, and waits a second for that. A thread that makes
// none cannot be ended by force. Locks that it holds stay locked.
BOOL TerminateThread(HANDLE handle, DWORD) {
    constexpr DWORD kPatienceMs = 1000;
    if (pthread_cancel(Of(handle).thread) != 0)
        return FALSE;
    return WaitForSingleObject(handle, kPatienceMs) == WAIT_OBJECT_0 ? TRUE : FALSE;
}

BOOL CloseHandle(HANDLE handle) {
    std::unique_ptr<Handle> own(static_cast<Handle*>(handle));
    pthread_detach((*own)->thread);
    return TRUE;
}

void InitializeCriticalSection(CRITICAL_SECTION* section) {
    section->lock = new std::recursive_mutex;
}

void DeleteCriticalSection(CRITICAL_SECTION* section) {
    delete &Of(section);
    section->lock = nullptr;
}

void EnterCriticalSection(CRITICAL_SECTION* section) {
    Of(section).lock();
}

BOOL TryEnterCriticalSection(CRITICAL_SECTION* section) {
    return Of(section).try_lock() ? TRUE : FALSE;
}

void LeaveCriticalSection(CRITICAL_SECTION* section) {
    Of(section).unlock();
}
