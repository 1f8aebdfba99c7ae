// Processes of this program, and the signals that they and their parent hear.
#pragma once

#include <csignal>
#include <sys/types.h>

// The signals that ask for an end.
inline constexpr int kEndSignals[] = {SIGINT, SIGTERM, SIGHUP};

// What the parent chose to ignore (nohup) stays ignored.
bool IsIgnored(int signal);
// Those signals, but for the ignored ones, and SIGCHLD: to be blocked and waited for.
sigset_t AwaitedSignals();

// For a process just forked by `parent`, which has blocked signals: it is asked to end when that one ends,
// and the signals are as they were before. False: the parent has ended already.
bool EndWithParent(pid_t parent, const sigset_t& before);
