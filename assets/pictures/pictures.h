// Every picture of the show, one function each. All draw the same pixels at every call, those of a size of
// choice the same picture at any.
#pragma once

#include "drawn_sizes.h"
#include "raster.h"

#include <string>

Raster DrawErrorNotice();             // shown at its own pixel size when OpenGL lacks what the show needs
Raster DrawPreview(const Size& size); // a still of the show, legible at 152 x 112
Raster DrawLabel(const Size& size);   // the name under the medallion; drawn at 40 % opacity, so strong

// The background, for a screen of 16:9. The sun stands at the lower left, at (0.2, 0.8) of the picture.
Raster DrawSpace(const Size& size);
Raster DrawLens(const Size& size);

// Centred on the sun, which covers kSunShare of the half width. Nothing is left at the inscribed circle, so
// the rays may turn.
Raster DrawHalo(const Size& size);
Raster DrawRays(const Size& size);

// Wrapped round spheres: longitude to the right, from pole to pole downwards. The first and the last column
// are the same meridian, because the device does not wrap textures.
Raster DrawPlasmaA(const Size& size);
Raster DrawPlasmaB(const Size& size);
Raster DrawPlasmaC(const Size& size);
// Of the core, half way round: the other half is the same. One sees no more than half of a sphere at once.
Raster DrawSunCore(const Size& size);  // from the pole down to kSunLowest
Raster DrawWholeSun(const Size& size); // from pole to pole

Raster DrawGold(const Size& size);   // metal of the medallion
Raster DrawEmblem(const Size& size); // its face
Raster DrawEmber();

Raster DrawStudio(const Size& size); // what the cube reflects, laid out for sphere mapping
Raster DrawSkin(const Size& size);   // a face of the cube: metal frame round engraved glass

Raster DrawCalm(const Size& size); // burns in place of a desktop that cannot be photographed

Raster DrawDesktop(); // stands in for a real desktop in tests and pictures

Raster DrawIcon(int size);
// The Windows saver's icons, three sizes in one .ico file. Empty when well, else what went wrong.
std::string WriteIcons(const std::string& file, const Screen&);
// The picture on a page of the installer for Windows: a part of the still, as a bitmap file. The same result.
std::string WriteSetupPicture(const std::string& file, const Screen&);
