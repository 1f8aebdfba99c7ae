#include "scene/show.h"

namespace show {

// Destroyed in reverse: the environment outlives all that draws through it.
FXPackage pck;
Scene sc;
FXGL gr;
FXLight light;
FXLight light1;
FXLight light2;
FXDesk preview;
FXMaterial preview_mat;
FXMaterial scr_mat;
FXFireDesk fire;
FXAnim reopen;
FXPhaser delay_phaser;
FXPlanet planet;
FXDesk desk0;
FXMaterial desk0_mat;
FXDesk desk1;
FXMaterial desk1_mat;
FXDesk desk2;
FXMaterial desk2_mat;
FXDesk desk_lens;
FXMaterial desk_lens_mat;
FXDesk scr_desk;
FXPhaser scr_phaser;
FXOrinGadget gad;
FXErrGadget err_gad;
FXPhaser phase_sun_rot;
FXDemoGadget demo;

bool isPreview = false;
bool hasError = false;
int stage = kDissolving;
bool first = true;
int fire_num = 1024;
const char* logsFile = "tamb.log";

} // namespace show
