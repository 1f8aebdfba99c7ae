// The message queue of the main thread: what is posted, and what the window system and signals report.
#include "win32/windowing/windowing.h"

#include <cerrno>
#include <deque>
#include <fcntl.h>
#include <unistd.h>

namespace {

std::deque<MSG> posted; // for the program's window, which TakePosted fills in
bool quitPosted = false;
int quitCode = 0;

// Carries a signal out of its handler, into the wait for events.
class SignalPipe {
public:
    SignalPipe() {
        if (pipe2(ends_, O_CLOEXEC | O_NONBLOCK) != 0)
            ends_[0] = ends_[1] = -1;
    }
    int ReadEnd() const { return ends_[0]; }
    void Signal() const {
        const int interrupted = errno;
        const char byte = 0;
        [[maybe_unused]] const ssize_t written = write(ends_[1], &byte, 1); // a full pipe says it already
        errno = interrupted;
    }
    bool Signalled() const {
        char byte = 0;
        return read(ends_[0], &byte, 1) == 1;
    }

private:
    int ends_[2] = {-1, -1};
};

// Each process has its own: made at the first call, which comes before any signal is listened to.
const SignalPipe& ThePipe() {
    static const SignalPipe pipe;
    return pipe;
}

bool TakePosted(MSG* message) {
    if (posted.empty())
        return false;
    *message = posted.front();
    message->hwnd = programWindow.handle;
    posted.pop_front();
    return true;
}

bool TakeQuit(MSG* message) {
    if (!quitPosted)
        return false;
    quitPosted = false;
    *message = {};
    message->message = WM_QUIT;
    message->wParam = static_cast<WPARAM>(quitCode);
    return true;
}

// Reads what has come from the window system; waits when nothing has.
void Pump() {
    const WindowSystem& system = UsedWindowSystem();
    const int milliseconds = system.ReadEvents();
    system.WaitForEvents(ThePipe().ReadEnd(), posted.empty() ? milliseconds : 0);
    if (ThePipe().Signalled() && programWindow.handle != nullptr)
        DestroyWindow(programWindow.handle);
}

} // namespace

void PrepareForRequests() {
    ThePipe();
}

void RequestEnd() {
    ThePipe().Signal();
}

void PostToWindow(UINT message, WPARAM wParam, LPARAM lParam) {
    posted.push_back({nullptr, message, wParam, lParam, timeGetTime(), {}});
}

void DropMessages() {
    posted.clear();
}

BOOL PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!IsProgramWindow(window))
        return FALSE;
    PostToWindow(message, wParam, lParam);
    return TRUE;
}

void PostQuitMessage(int exitCode) {
    quitPosted = true;
    quitCode = exitCode;
}

// All windows, all messages. Posted messages come before the end, as they do where the saver comes from.
BOOL GetMessageA(MSG* message, HWND, UINT, UINT) {
    for (;;) {
        if (TakePosted(message))
            return TRUE;
        if (TakeQuit(message))
            return FALSE;
        if (programWindow.handle == nullptr)
            return -1; // nothing could ever come
        Pump();
    }
}

// No characters are made of keys.
BOOL TranslateMessage(const MSG*) {
    return FALSE;
}

LRESULT DispatchMessageA(const MSG* message) {
    return SendMessageA(message->hwnd, message->message, message->wParam, message->lParam);
}

LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return IsProgramWindow(window) ? programWindow.proc(window, message, wParam, lParam) : 0;
}

LRESULT DefWindowProcA(HWND window, UINT message, WPARAM, LPARAM) {
    if (message == WM_CLOSE)
        DestroyWindow(window);
    return 0;
}
