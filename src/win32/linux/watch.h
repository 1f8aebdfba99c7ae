// The watcher: starts the show as a process of its own whenever nobody has touched anything for so long.
#pragma once

#include <string>
#include <vector>

// Until the session ends (SIGTERM, SIGINT, SIGHUP, or the window system goes away), and the show with it.
// The show does not start while a program wants the screen to stay on (the window system's own way,
// org.freedesktop.ScreenSaver, the login manager), nor over a locked session or a program that holds the
// keyboard; what holds it back without saying when it ends is asked again after as long. It starts once in a
// time without input, however it ends. `lock`: the session is locked when it has ended. `showOptions`: more
// words for the show's command line.
//
// A second watcher in a session, and a window system that does not know idle time, are refused with a line
// on stderr. Gives the exit status.
int Watch(int milliseconds, bool lock, const std::vector<std::string>& showOptions);
