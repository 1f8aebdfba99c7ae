// Everything the show consists of: one set of objects per process, built and emptied by scene.h.
#pragma once

#include "anim/morph_animation.h"
#include "image/light.h"
#include "image/material.h"
#include "package/package.h"
#include "render/gl_device.h"
#include "scene/burning_desk.h"
#include "scene/cube_gadget.h"
#include "scene/desk_grid.h"
#include "scene/error_gadget.h"
#include "scene/logo_gadget.h"
#include "scene/phaser.h"
#include "scene/planet.h"
#include "scene/scene.h"

namespace show {

// Where each part of the show lies in the package.
enum Entry : int {
    kErrorPicture = 0,
    kPreviewPicture = 1,
    kMedallionModel = 4,
    kLabelPicture = 5,
    kSunCore = 11,
    kSunShell1 = 13,
    kSunShell2 = 15,
    kSunShell3 = 17,
    kSpace = 18,
    kHalo = 19,
    kRays = 20,
    kLens = 21,
    kMorph = 72,
    kCubeReflection = 73,
    kCubeSkin = 74,
    kCalmPicture = 90, // a package need not have it
};

// The cycle, in this order: the desktop dissolves over the burning desk, the desk burns out, nothing, the
// morph, the morph under the returning desktop.
enum Stage : int { kDissolving, kBurning, kPause, kRebuilding, kReturning };

extern FXPackage pck;
extern Scene sc;
extern FXGL gr;
extern FXLight light;  // from the sun's side, on the first frame's medallion
extern FXLight light1; // from the front: medallion, morph and cube
extern FXLight light2; // the morph's from behind
extern FXDesk preview;
extern FXMaterial preview_mat;
extern FXMaterial scr_mat; // the desktop picture
extern FXFireDesk fire;
extern FXAnim reopen;         // the morph that brings the desktop back
extern FXPhaser delay_phaser; // the pause after the burn
extern FXPlanet planet;       // the sun
extern FXDesk desk0;          // space
extern FXMaterial desk0_mat;
extern FXDesk desk1; // halo
extern FXMaterial desk1_mat;
extern FXDesk desk2; // rays
extern FXMaterial desk2_mat;
extern FXDesk desk_lens;
extern FXMaterial desk_lens_mat;
extern FXDesk scr_desk;     // the desktop picture as it fades out and in
extern FXPhaser scr_phaser; // its fading
extern FXOrinGadget gad;
extern FXErrGadget err_gad;
extern FXPhaser phase_sun_rot; // the turn of the rays, and twice that of the sun
extern FXDemoGadget demo;

extern bool isPreview;
extern bool hasError;        // the OpenGL test failed
extern int stage;            // a Stage
extern bool first;           // the next full-screen frame is the first one
extern int fire_num;         // directions of the burning desk
extern const char* logsFile; // the trace's name; empty: none

} // namespace show
