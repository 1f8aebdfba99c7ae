#include "win32/linux/shows.h"

#include "win32/linux/child_process.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kMost = 64;       // monitors
constexpr int kSignalled = 128; // and the signal's number: exit status, as shells have it

// With the same exit status, or by the same request.
[[noreturn]] void EndLike(int status) {
    const int number = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    if (number == 0)
        _exit(WEXITSTATUS(status));
    if (std::ranges::find(kEndSignals, number) != std::end(kEndSignals)) {
        sigset_t nothing;
        sigemptyset(&nothing);
        std::signal(number, SIG_DFL);
        sigprocmask(SIG_SETMASK, &nothing, nullptr);
        std::raise(number);
    }
    _exit(kSignalled + number);
}

[[noreturn]] void Supervise(std::vector<pid_t> shows, const sigset_t& awaited) {
    const auto endAll = [&] {
        for (const pid_t show : shows)
            kill(show, SIGTERM);
    };
    int first = -1; // the status of the first that ended; none has
    while (!shows.empty()) {
        const int number = sigwaitinfo(&awaited, nullptr);
        if (number > 0 && number != SIGCHLD)
            endAll();
        int status = 0;
        while (const pid_t ended = std::max(waitpid(-1, &status, WNOHANG), 0)) {
            std::erase(shows, ended);
            if (first < 0) {
                first = status;
                endAll();
            }
        }
    }
    EndLike(first);
}

} // namespace

int CountInAnotherProcess(int (*count)()) {
    std::signal(SIGCHLD, SIG_DFL); // ignored, it would hide how the processes end
    const pid_t child = fork();
    if (child == 0)
        _exit(std::clamp(count(), 1, kMost));
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status)
               ? std::max(WEXITSTATUS(status), 1)
               : 1;
}

// The signals are held back until there is somebody to hear them.
int ForkShows(int count) {
    const pid_t parent = getpid();
    const sigset_t awaited = AwaitedSignals();
    sigset_t before;
    sigprocmask(SIG_BLOCK, &awaited, &before);
    std::vector<pid_t> shows;
    for (int number = 0; number < count; ++number) {
        const pid_t show = fork();
        if (show == 0) {
            if (!EndWithParent(parent, before))
                _exit(0);
            return number;
        }
        if (show > 0)
            shows.push_back(show);
    }
    if (shows.empty())
        _exit(1);
    Supervise(shows, awaited);
}
