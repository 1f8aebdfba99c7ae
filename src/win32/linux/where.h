// --where: what the show would use on this machine, and why.
#pragma once

#include "win32/window_system.h"

struct WhereReport {
    std::string text;   // for the user; ends with a newline
    bool whole = false; // no line says PROBLEM: nothing is missing or wrong
};

// Looks for everything as the show does. Nothing is shown, and nothing written. The systems are those on
// offer (OfferWindowSystems).
WhereReport FindOutWhere(std::span<const WindowSystem* const> systems);
