// Connections to the X server, and what becomes of errors.
#include "win32/x11/x11.h"

#include <atomic>
#include <csignal>
#include <poll.h>
#include <unistd.h>

namespace x11 {

namespace {

thread_local bool errorSeen = false;

// Windows of other programs come and go under our requests; that is nothing to end a process for.
int NoteError(Display*, XErrorEvent*) {
    errorSeen = true;
    return 0;
}

std::atomic<int> files[2] = {-1, -1}; // of the connections, this thread's and OpenGL's
struct sigaction beforeFault = {};

bool ServerIsGone() {
    for (const int file : files) {
        pollfd source = {file, 0, 0};
        if (file >= 0 && poll(&source, 1, 0) == 1 && (source.revents & (POLLHUP | POLLERR)) != 0)
            return true;
    }
    return false;
}

// Mesa takes for granted, while it begins, that a server answers: one that has gone makes it crash. Any other
// fault is whose it was before: it comes again when this returns, but for one that a program has sent.
void OnFault(int number, siginfo_t* info, void*) {
    if (ServerIsGone())
        _exit(0);
    sigaction(number, &beforeFault, nullptr);
    if (info->si_code <= 0)
        raise(number);
}

void Remember(Display* display) {
    for (std::atomic<int>& file : files)
        if (int none = -1; file.compare_exchange_strong(none, ConnectionNumber(display)))
            return;
}

// The user logged out or the server died. There is nothing left to show, and no reply would ever come to a
// thread that tried to tidy up.
int EndQuietly(Display*) {
    _exit(0);
}

} // namespace

Display* OpenConnection() {
    static const bool prepared = [] {
        XInitThreads();
        XSetErrorHandler(NoteError);
        XSetIOErrorHandler(EndQuietly);
        struct sigaction action = {};
        action.sa_sigaction = OnFault;
        action.sa_flags = SA_SIGINFO;
        sigaction(SIGSEGV, &action, &beforeFault);
        return true;
    }();
    Display* const display = prepared ? XOpenDisplay(nullptr) : nullptr;
    if (display != nullptr)
        Remember(display);
    return display;
}

Display* Connection() {
    static Display* const display = OpenConnection();
    return display;
}

ErrorTrap::ErrorTrap(Display* display) : display_(display) {
    XSync(display_, False); // what came before is not ours to judge
    errorSeen = false;
}

bool ErrorTrap::Clean() {
    XSync(display_, False);
    return !errorSeen;
}

} // namespace x11
