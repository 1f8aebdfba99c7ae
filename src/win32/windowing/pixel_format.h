// Which of a window system's OpenGL configurations suits a pixel format.
#pragma once

#include "win32/window_system.h"

// The first with buffers of these depths; where there is none, with ever less of what was wanted, down to any
// depth buffer. The screen's own colours come before others, then the most samples up to those wanted. Null
// when there are no configurations.
const GlConfig* ChooseConfig(std::span<const GlConfig> configs, int depthBits, int stencilBits, int samples);
