// The models of the show, the morph and the material libraries they name: each maker writes one file and
// gives an empty text when well, else what went wrong. On that screen, what is round looks round.
#pragma once

#include "drawn_sizes.h"

#include <string>

// Libraries. A library's name is the number of its entry, so that all models that name it share one.
std::string WriteSunLibrary(const std::string& file, const Screen& screen);
std::string WriteMedallionLibrary(const std::string& file, const Screen& screen);
std::string WriteMorphLibrary(const std::string& file, const Screen& screen);

// The sun, seen from outside along +z: its core and three shells of plasma over it.
std::string WriteSunCore(const std::string& file, const Screen& screen);
std::string WriteSunShell1(const std::string& file, const Screen& screen);
std::string WriteSunShell2(const std::string& file, const Screen& screen);
std::string WriteSunShell3(const std::string& file, const Screen& screen);

// A disc across -1..1, its face towards -z, where the viewer of the medallion is.
std::string WriteMedallion(const std::string& file, const Screen& screen);

// The desktop's return: embers, shards, a bird, a sheet. The viewer is at +z.
std::string WriteMorph(const std::string& file, const Screen& screen);
