#include "win32/linux/watch.h"

#include "win32/linux/child_process.h"
#include "win32/linux/inhibitors.h"
#include "win32/linux/login.h"
#include "win32/posix/program_file.h"
#include "win32/windowing/windowing.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/epoll.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kPatience{5000}; // with a show that is asked to end
constexpr milliseconds kStep{10};

// A name that the system frees when the process ends, however it ends: of the user and the display, without
// the number of a screen. False when another process has it.
bool TakeSession() {
    const bool wayland = std::strcmp(UsedWindowSystem().name, "wayland") == 0;
    const char* display = std::getenv(wayland ? "WAYLAND_DISPLAY" : "DISPLAY");
    std::string name = display != nullptr ? display : "";
    if (const std::size_t colon = name.rfind(':'); colon != std::string::npos)
        name.resize(std::min(name.find('.', colon), name.size()));
    name = "tamblor-watch/" + std::to_string(getuid()) + "/" + name;
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    name.resize(std::min(name.size(), sizeof address.sun_path - 1));
    std::memcpy(address.sun_path + 1, name.data(), name.size()); // behind a zero: no file
    const socklen_t length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    const int socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    return bind(socket, reinterpret_cast<const sockaddr*>(&address), length) == 0 || errno != EADDRINUSE;
}

// The signals that end the watcher, and a child's end, as something to read.
class Signals {
public:
    Signals() {
        std::signal(SIGCHLD, SIG_DFL);
        std::signal(SIGPIPE, SIG_IGN);
        const sigset_t ours = AwaitedSignals();
        sigprocmask(SIG_BLOCK, &ours, &before_);
        descriptor_ = signalfd(-1, &ours, SFD_CLOEXEC | SFD_NONBLOCK);
    }
    int Descriptor() const { return descriptor_; }
    // Whether one has come that ends the watcher.
    bool EndIsAsked() const {
        bool asked = false;
        signalfd_siginfo info = {};
        while (read(descriptor_, &info, sizeof info) == sizeof info)
            asked = asked || info.ssi_signo != SIGCHLD;
        return asked;
    }
    const sigset_t& Before() const { return before_; }

private:
    sigset_t before_ = {};
    int descriptor_ = -1;
};

// The show, in a process that ends with this one.
class Show {
public:
    bool Runs() const { return process_ > 0; }
    void Start(const Signals& signals, std::vector<std::string> options) {
        const pid_t watcher = getpid();
        process_ = fork();
        if (process_ < 0)
            std::fprintf(stderr, "tamblor: the show cannot be started: %s\n", std::strerror(errno));
        if (process_ != 0)
            return;
        std::string program = "tamblor";
        std::string task = "/s";
        std::vector<char*> words = {program.data(), task.data()};
        for (std::string& option : options)
            words.push_back(option.data());
        words.push_back(nullptr);
        if (EndWithParent(watcher, signals.Before())) {
            execv("/proc/self/exe", words.data()); // also when another version has replaced it
            execv(ProgramFile().c_str(), words.data());
        }
        _exit(1);
    }
    bool HasEnded() {
        if (!Runs() || waitpid(process_, nullptr, WNOHANG) == 0)
            return false;
        process_ = -1;
        return true;
    }
    void End() {
        if (!Runs())
            return;
        kill(process_, SIGTERM);
        for (milliseconds waited{0}; waited < kPatience && !HasEnded(); waited += kStep)
            usleep(static_cast<useconds_t>(std::chrono::microseconds(kStep).count()));
        if (Runs())
            kill(process_, SIGKILL);
    }

private:
    pid_t process_ = -1;
};

class Watcher {
public:
    Watcher(milliseconds idle, bool lock, const std::vector<std::string>& options)
        : idle_(idle), lock_(lock), options_(options) {
        Add(signals_.Descriptor());
        Add(inhibitors_.Descriptor());
    }
    ~Watcher() {
        show_.End();
        close(sources_);
    }
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

    int Run() {
        const WindowSystem& system = UsedWindowSystem();
        if (!WatchIdle())
            return 1;
        while (!signals_.EndIsAsked()) {
            if (show_.HasEnded())
                OnShowEnded();
            if (inhibitors_.Process())
                notBefore_ = Clock::now() + idle_;
            const int due = system.ReadEvents();
            Decide();
            system.WaitForEvents(sources_, due == 0 ? 0 : Wait());
        }
        system.UnwatchIdle();
        return 0;
    }

private:
    void Add(int descriptor) const {
        epoll_event event = {};
        event.events = EPOLLIN;
        if (descriptor >= 0)
            epoll_ctl(sources_, EPOLL_CTL_ADD, descriptor, &event);
    }
    bool WatchIdle() const { return UsedWindowSystem().WatchIdle(static_cast<int>(idle_.count())); }
    void OnShowEnded() const {
        WatchIdle(); // what ended it may be input that has not been reported yet
        if (lock_)
            LockSession();
    }
    // It would start, were it not held back by what nobody reports the end of.
    bool IsTime() const { return userIsIdle && !shown_ && !show_.Runs() && !inhibitors_.Any(); }
    void Decide() {
        shown_ = userIsIdle && shown_;
        if (!IsTime() || Clock::now() < notBefore_)
            return;
        if (LoginBlocksIdle() || SessionIsLocked() || UsedWindowSystem().ShowIsUnwanted()) {
            notBefore_ = Clock::now() + idle_;
            return;
        }
        show_.Start(signals_, options_);
        shown_ = true;
    }
    // Milliseconds until the next decision; -1: not before something happens.
    int Wait() const {
        if (!IsTime())
            return -1;
        const auto left = std::chrono::ceil<milliseconds>(notBefore_ - Clock::now());
        return static_cast<int>(std::max(left, milliseconds{0}).count());
    }

    const milliseconds idle_;
    const bool lock_;
    const std::vector<std::string> options_; // of the show
    const int sources_ = epoll_create1(EPOLL_CLOEXEC);
    const Signals signals_;
    Inhibitors inhibitors_;
    Show show_;
    bool shown_ = false; // in this time without input
    Clock::time_point notBefore_{};
};

} // namespace

int Watch(int milliseconds, bool lock, const std::vector<std::string>& showOptions) {
    if (!TakeSession()) {
        std::fprintf(stderr, "tamblor: already watching this session\n");
        return 1;
    }
    return Watcher(std::chrono::milliseconds(milliseconds), lock, showOptions).Run();
}
