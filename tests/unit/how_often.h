// How often a test does what takes long to do often: as the suite has it, or in the long form
// (scripts/stress).
#pragma once

#include <cstdlib>

inline int Times(int usually, int longForm) {
    return std::getenv("TAMBLOR_LONG") != nullptr ? longForm : usually;
}
