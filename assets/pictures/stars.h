// The stars over the background.
#pragma once

#include "raster.h"

// Adds stars to a sky: many faint ones, few bright ones. A pixel's alpha says how clear the sky is there, 0
// where dust hides everything behind it; it is left as it is.
void AddStars(Raster* sky);
