// The saver's window systems are modules beside it, loaded when it starts: a machine that lacks the libraries
// of one runs it with another.
#pragma once

#include "win32/window_system.h"

// All of them, the preferred one first, to be offered. Loaded at the first call, and kept until the process
// ends. One that cannot be loaded is there with functions that fail, and say on stderr why where that ends
// the program.
std::span<const WindowSystem* const> WindowModules();
