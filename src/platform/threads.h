// Threads, recursive mutexes, signals and priorities behind opaque handles. A null handle is accepted
// everywhere and then nothing happens, the lock operations excepted.
#pragma once

struct FXMutex;
struct FXThread;
struct FXSignal;

FXMutex* fxCreateMutex(); // null when there is no memory
void fxDestroyMutex(FXMutex* mutex);
bool fxTryLock(FXMutex* mutex); // true when entered
void fxLock(FXMutex* mutex);
void fxUnlock(FXMutex* mutex);

// Holds a mutex, which is not null, for as long as it lives.
class FXLocked {
public:
    explicit FXLocked(FXMutex* mutex) : mutex_(mutex) { fxLock(mutex_); }
    ~FXLocked() { fxUnlock(mutex_); }
    FXLocked(const FXLocked&) = delete;
    FXLocked& operator=(const FXLocked&) = delete;

private:
    FXMutex* mutex_;
};

// Raised by one thread, waited for by another. Raised twice before a wait, it ends one wait.
FXSignal* fxCreateSignal(); // null when there is no memory
void fxDestroySignal(FXSignal* signal);
void fxRaiseSignal(FXSignal* signal);
void fxAwaitSignal(FXSignal* signal); // without limit

// A running thread, or null. Its record is freed by fxDestroyThread.
FXThread* fxCreateThread(void (*proc)(void*), void* argument);
// False only when the time ran out. 100000 seconds or more wait without limit; the time is cut to whole
// milliseconds.
bool fxWaitThread(FXThread* thread, double seconds);
// Ends a thread that has not ended yet, and closes its handle. What it has locked stays locked: wait for it
// first.
void fxTerminateThread(FXThread* thread);
void fxDestroyThread(FXThread* thread);

// 0: normal; above: the highest, below: a low one.
void fxSetAppPriority(int priority);
void fxSetThreadPriority(FXThread* thread, int priority);
