// Threads and events that can be waited for with a limit, and recursive locks. Without memory there are none:
// no exception goes through the functions of win32.h, whose callers know none.
#include "win32/win32.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <new>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// A thread, signalled once it has ended, or an event. A thread's is shared by the handle and the running
// thread: whichever lets go last frees it.
struct Waitable {
    LPTHREAD_START_ROUTINE start = nullptr;
    void* argument = nullptr;
    pthread_t thread = {};
    std::mutex mutex;
    std::condition_variable changed;
    bool signalled = false;
    bool wakesOne = false; // a wait that ends takes the signal away
    DWORD id = 0;

    void Signal() {
        const std::lock_guard lock(mutex);
        signalled = true;
        changed.notify_all();
    }
};

using Handle = std::shared_ptr<Waitable>;

Waitable& Of(HANDLE handle) {
    return **static_cast<Handle*>(handle);
}

// Null without memory.
std::unique_ptr<Handle> NewHandle() {
    try {
        return std::make_unique<Handle>(std::make_shared<Waitable>());
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void MarkEnded(void* record) {
    std::unique_ptr<Handle> handle(static_cast<Handle*>(record));
    (*handle)->Signal();
}

void* Run(void* record) {
    Waitable& self = **static_cast<Handle*>(record);
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

static_assert(sizeof(std::recursive_mutex) <= sizeof(CRITICAL_SECTION));
static_assert(alignof(std::recursive_mutex) <= alignof(CRITICAL_SECTION));

std::recursive_mutex& Of(CRITICAL_SECTION* section) {
    return *std::launder(reinterpret_cast<std::recursive_mutex*>(section->lock));
}

} // namespace

DWORD GetCurrentThreadId() {
    thread_local const DWORD id = static_cast<DWORD>(syscall(SYS_gettid));
    return id;
}

HANDLE CreateThread(void*, std::size_t, LPTHREAD_START_ROUTINE start, void* argument, DWORD, DWORD* id) {
    std::unique_ptr<Handle> handle = NewHandle();
    std::unique_ptr<Handle> own(handle ? new (std::nothrow) Handle(*handle) : nullptr);
    if (!own)
        return nullptr;
    Waitable& thread = **handle;
    thread.start = start;
    thread.argument = argument;
    if (pthread_create(&thread.thread, nullptr, Run, own.get()) != 0)
        return nullptr;
    static_cast<void>(own.release()); // the thread's now
    std::unique_lock lock(thread.mutex);
    thread.changed.wait(lock, [&] { return thread.id != 0; });
    if (id != nullptr)
        *id = thread.id;
    return handle.release();
}

// Without a name, and not signalled at first.
HANDLE CreateEventA(void*, BOOL manualReset, BOOL, const char*) {
    std::unique_ptr<Handle> handle = NewHandle();
    if (handle)
        (*handle)->wakesOne = manualReset == FALSE;
    return handle.release();
}

BOOL SetEvent(HANDLE event) {
    Of(event).Signal();
    return TRUE;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    Waitable& object = Of(handle);
    std::unique_lock lock(object.mutex);
    const auto signalled = [&] { return object.signalled; };
    if (milliseconds == INFINITE)
        object.changed.wait(lock, signalled);
    else if (!object.changed.wait_for(lock, std::chrono::milliseconds(milliseconds), signalled))
        return WAIT_TIMEOUT;
    if (object.wakesOne)
        object.signalled = false;
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
    if ((*own)->start != nullptr)
        pthread_detach((*own)->thread);
    return TRUE;
}

void InitializeCriticalSection(CRITICAL_SECTION* section) {
    new (section->lock) std::recursive_mutex;
}

void DeleteCriticalSection(CRITICAL_SECTION* section) {
    std::destroy_at(&Of(section));
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
