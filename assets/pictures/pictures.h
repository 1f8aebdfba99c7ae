// Every picture of the show, one function each. All draw the same pixels at every call.
#pragma once

#include "raster.h"

#include <string>

Raster DrawErrorNotice(); // shown at its own pixel size when OpenGL lacks what the show needs
Raster DrawPreview();     // a still of the show, legible at 152 x 112
Raster DrawLabel();       // the name under the medallion; drawn at 40 % opacity, so strong

// The background, for a screen of 16:9. The sun stands at the lower left, at (0.2, 0.8) of the picture.
Raster DrawSpace();
Raster DrawSky(int width, int height); // the same at a size of choice
Raster DrawLens();

// Centred on the sun, which covers kSunShare of the half width. Nothing is left at the inscribed circle, so
// the rays may turn.
Raster DrawHalo();
Raster DrawRays();

// Wrapped round spheres: longitude to the right, from pole to pole downwards. The first and the last column
// are the same meridian, because the device does not wrap textures.
Raster DrawSunCore();
Raster DrawSunSurface(int width, int height); // the same at a size of choice, at least 2 x 2
Raster DrawPlasmaA();
Raster DrawPlasmaB();
Raster DrawPlasmaC();

Raster DrawGold();   // metal of the medallion
Raster DrawEmblem(); // its face
Raster DrawEmber();

Raster DrawStudio(); // what the cube reflects, laid out for sphere mapping
Raster DrawSkin();   // a face of the cube: metal frame round engraved glass

Raster DrawDesktop(); // stands in for a real desktop in tests and pictures

// The Windows saver's icons, three sizes in one .ico file. Empty when well, else what went wrong.
std::string WriteIcons(const std::string& file);
