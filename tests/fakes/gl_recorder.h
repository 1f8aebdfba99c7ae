// OpenGL 1.1, GLU and multitexture as the product calls them, written down instead of drawn.
#pragma once

#include <string>
#include <vector>

// One list of calls for the whole process; any thread may call, and take. glGetString only answers and is not
// written down.
namespace GLRecorder {

// The calls since the last Take, in order: constants by name, numbers as %g writes them, arrays by their
// elements and pictures by their first and last pixel, e.g. "glEnable(GL_BLEND)", "glVertex3fv(1,0,0)",
// "glTexImage2D(GL_TEXTURE_2D,0,4,2,1,0,GL_RGBA,GL_UNSIGNED_BYTE,ff0000ff..00000000)".
std::vector<std::string> Take();
std::string TakeText(); // the same with a space between calls

// While on, calls are not written down and cost next to nothing.
void SetNullMode(bool on);

// What glGetString answers; null is a driver that gives none.
struct Driver {
    const char* version = "1.4";
    const char* extensions = "GL_ARB_multitexture GL_EXT_texture_edge_clamp";
    const char* missing = ""; // the one entry point of multitexture that it does not have
};
void SetDriver(const Driver& driver);

// Texture names that glGenTextures gave and glDeleteTextures has not taken back.
int LiveTextures();

// Forgets the calls and the textures (the next one is 1 again), writes down, and has the usual driver.
void Reset();

} // namespace GLRecorder
