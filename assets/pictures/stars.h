// The stars over the background.
#pragma once

#include "raster.h"

// Adds stars to a sky: many faint ones, few bright ones. A pixel's alpha says how clear the sky is there, 0
// where dust hides everything behind it; it is left as it is. `aspect` is the shape of the screen that the
// sky fills: stars are round there.
void AddStars(Raster* sky, float aspect);
