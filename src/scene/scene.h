// The show: built when the saver's window is created, drawn by the render loop, taken down with the window.
#pragma once

#include "render/environment.h"
#include "win32/win32.h"

class FXAnim;
class FXPackage;

// One frame: the background, the sun, the stage of the cycle that is due, the cube and the error picture. Its
// state is the show's (show.h).
class Scene : public PRender {
public:
    void OnRender(PEnv* env, double time) override;
};

// Builds the show for a window, its still for the preview pane or all of it, and starts the render loop. What
// cannot be had (package, entries, codec, desktop picture, a sufficient OpenGL) is missing from the show, and
// the trace says so. These four belong to the window's thread.
void InitScene(HWND window, bool preview);
// The window's client area has a new size, in pixels: the next frame fills it.
void ResizeScene(int width, int height);
// Waits for the frame that is being drawn, then releases everything.
void DestroyScene();

// The morph of a package, fitted to the screen and ready to be started; its key frames are given up.
void LoadMorph(FXAnim* morph, FXPackage* package);

// InitScene without the loop, for programs that draw the frames themselves.
void BuildScene(HWND window, bool preview);
