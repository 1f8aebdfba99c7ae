// A compositor that does what a script says, in the place of the functions of libwayland-client: the tables
// of the protocols are the library's. It holds the saver's requests against what the protocols ask for:
// objects are there, numbers are in range, buffers lie in their memory.
//
// A byte below kFirstEvent in the script is for the one who plays the saver, and no event comes before it has
// been taken. Nothing waits: where no event is left, time runs on.
#pragma once

#include "script.h"

#include <cstddef>

constexpr unsigned kFirstEvent = 96;

// The script from now on. Time begins anew.
void PlayCompositor(Script* script);
// What the saver has of the compositor's.
std::size_t CountObjects();
// Outputs and the seat go.
void RemoveEverything();
