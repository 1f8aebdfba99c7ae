// Connections to the X server, and what becomes of errors.
#include "win32/x11/x11.h"

#include <unistd.h>

namespace x11 {

namespace {

thread_local bool errorSeen = false;

// Windows of other programs come and go under our requests; that is nothing to end a process for.
int NoteError(Display*, XErrorEvent*) {
    errorSeen = true;
    return 0;
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
        return true;
    }();
    return prepared ? XOpenDisplay(nullptr) : nullptr;
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
