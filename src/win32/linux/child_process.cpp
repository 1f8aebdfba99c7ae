#include "win32/linux/child_process.h"

#include <sys/prctl.h>
#include <unistd.h>

bool IsIgnored(int signal) {
    struct sigaction action = {};
    return sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN;
}

sigset_t AwaitedSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGCHLD);
    for (const int number : kEndSignals)
        if (!IsIgnored(number))
            sigaddset(&signals, number);
    return signals;
}

bool EndWithParent(pid_t parent, const sigset_t& before) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    sigprocmask(SIG_SETMASK, &before, nullptr);
    return getppid() == parent;
}
