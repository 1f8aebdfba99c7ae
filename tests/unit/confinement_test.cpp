// What a process can still do once it has given up the rest, on a thread from before and on one from after.
#include "win32/linux/confinement.h"

#include "unit/temp_folder.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <iostream>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace {

template <class Result> int ErrorOf(Result result) {
    return static_cast<long>(result) == -1 ? errno : 0;
}

int StartProgram() {
    char name[] = "true";
    char* words[] = {name, nullptr};
    return ErrorOf(execve("/bin/true", words, environ)); // it writes no more where this works
}

int StartThread() {
    int error = EAGAIN;
    std::thread([&error] { error = 0; }).join();
    return error;
}

struct Attempt {
    const char* what;
    int (*make)();
    int error; // 0: it works
};
constexpr Attempt kAttempts[] = {
    {"to look into another process", [] { return ErrorOf(ptrace(PTRACE_ATTACH, getppid(), 0, 0)); }, EPERM},
    {"to read another's memory",
     [] { return ErrorOf(syscall(SYS_process_vm_readv, getppid(), 0, 0, 0, 0, 0)); }, EPERM},
    {"a namespace", [] { return ErrorOf(unshare(CLONE_NEWUSER)); }, EPERM},
    {"a process with one",
     [] { return ErrorOf(syscall(SYS_clone, CLONE_NEWUSER | SIGCHLD, nullptr, nullptr, nullptr, 0)); },
     EPERM},
    {"the kernel's keys", [] { return ErrorOf(syscall(SYS_keyctl, 0, -3, 0, 0, 0)); }, EPERM},
    {"programs for the kernel", [] { return ErrorOf(syscall(SYS_bpf, 0, nullptr, 0)); }, EPERM},
    {"rings of calls", [] { return ErrorOf(syscall(SYS_io_uring_setup, 0, nullptr)); }, EPERM},
    {"a network", [] { return ErrorOf(socket(AF_INET, SOCK_STREAM, 0)); }, EAFNOSUPPORT},
    {"a newer one", [] { return ErrorOf(socket(AF_INET6, SOCK_DGRAM, 0)); }, EAFNOSUPPORT},
    {"packets", [] { return ErrorOf(socket(AF_PACKET, SOCK_RAW, 0)); }, EAFNOSUPPORT},
    {"a socket of this machine", [] { return ErrorOf(socket(AF_UNIX, SOCK_STREAM, 0)); }, 0},
    {"the news about devices", [] { return ErrorOf(socket(AF_NETLINK, SOCK_RAW, 0)); }, 0},
    {"a device", [] { return ErrorOf(open("/dev/null", O_RDWR | O_CREAT, 0600)); }, 0},
    {"a thread", StartThread, 0},
    {"a program", StartProgram, EPERM},
};

std::string AllAttempts() {
    std::string wrong;
    for (const Attempt& attempt : kAttempts)
        if (const int error = attempt.make(); error != attempt.error)
            wrong += std::string(attempt.what) + ": " + std::to_string(error) + "\n";
    return wrong + "tried all\n";
}

void TryConfined() {
    std::atomic<bool> confined = false;
    std::string seen;
    std::thread older([&] {
        while (!confined)
            std::this_thread::yield();
        seen = AllAttempts();
    });
    GiveUpNewPrivileges();
    const bool holdsAlready = prctl(PR_GET_NO_NEW_PRIVS, 0, 0, 0, 0) == 1; // for the watcher's children
    confined = Confine();
    if (!holdsAlready || !confined)
        _exit(1);
    older.join();
    std::cerr << seen + AllAttempts();
    _exit(0);
}

TEST(Confinement, HoldsForAllThreadsAndLeavesWhatDriversNeed) {
    EXPECT_EXIT(TryConfined(), testing::ExitedWithCode(0), "^tried all\ntried all\n$");
}

} // namespace
