// Whether two pictures look alike, and what to look at when they do not.
#pragma once

#include "film/picture.h"

#include <string>

// Empty when the two look alike; else what is wrong, with the names of the pictures that were written beside
// the test's executable.
std::string DiffersFrom(const Picture& expected, const std::string& name, const Picture& actual);
// The same with references/<name>.png.
std::string DiffersFromReference(const std::string& name, const Picture& actual);

// Of pictures of one size. A missing small thing hides in the mean of the whole picture, but not in that of
// the 16 x 16 pixels it lay on; another driver's rounding shows in neither.
bool Alike(const Picture& actual, const Picture& expected);

// The environment asks for new references: DiffersFromReference stores instead of comparing.
bool UpdatingReferences();
