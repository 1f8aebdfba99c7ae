// How far apart two pictures are, and what they look like side by side when that is too far.
#pragma once

#include "film/picture.h"

#include <string>

// Differences of a channel, 0 to 255. A missing small thing hides in the mean of the whole picture, but not
// in that of the 16 x 16 pixels it lay on; another driver's rounding shows in neither.
struct Difference {
    double mean;      // over all channels of all pixels
    double worstTile; // the mean of the tile where it is largest
    int tileX, tileY; // that tile's top left pixel
};

// Of pictures of one size.
Difference Compare(const Picture& actual, const Picture& expected);
bool Alike(const Difference& difference);

// The absolute differences, made eight times as bright.
Picture DifferencePicture(const Picture& actual, const Picture& expected);

// Empty when `actual` looks like references/<name>.png; else what is wrong, with the names of the pictures
// that were written beside the test's executable.
std::string DiffersFromReference(const std::string& name, const Picture& actual);
// Empty when the two look alike; else the same.
std::string DiffersFrom(const Picture& expected, const std::string& name, const Picture& actual);

// The environment asks for new references: DiffersFromReference stores instead of comparing.
bool UpdatingReferences();
