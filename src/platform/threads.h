// Threads, recursive mutexes and priorities behind opaque handles. A null handle is accepted everywhere and
// then nothing happens, the lock operations excepted.
#pragma once

void* fxCreateMutex(); // null when there is no memory
void fxDestroyMutex(void* mutex);
bool fxTryLock(void* mutex); // true when entered
void fxLock(void* mutex);
void fxUnlock(void* mutex);

// A running thread, or null. Its record is freed by fxDestroyThread.
void* fxCreateThread(void (*proc)(void*), void* argument);
// False only when the time ran out. 100000 seconds or more wait without limit; the time is cut to whole
// milliseconds.
bool fxWaitThread(void* thread, double seconds);
// Ends a thread that has not ended yet, and closes its handle. What the thread held is lost: wait for it
// first.
void fxTerminateThread(void* thread);
void fxDestroyThread(void* thread);

// 0: normal, above: as eager as the system allows, below: modest.
void fxSetAppPriority(int priority);
void fxSetThreadPriority(void* thread, int priority);
