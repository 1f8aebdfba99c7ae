// Priorities are wishes here: the saver may be a little more eager than other programs, never so that they
// starve.
#include "win32/win32.h"

#include <sys/resource.h>

HANDLE GetCurrentProcess() {
    return reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-1));
}

BOOL SetPriorityClass(HANDLE, DWORD priorityClass) {
    constexpr int kEager = -5;
    constexpr int kModest = 5;
    const int nice = priorityClass == REALTIME_PRIORITY_CLASS       ? kEager
                     : priorityClass == BELOW_NORMAL_PRIORITY_CLASS ? kModest
                                                                    : 0;
    setpriority(PRIO_PROCESS, 0, nice); // an ordinary user may not be eager; then the show runs as it is
    return TRUE;
}

BOOL SetThreadPriority(HANDLE, int) {
    return TRUE;
}
