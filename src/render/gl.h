// OpenGL 1.1 and GLU, and the few newer names that are fetched or probed at run time.
#pragma once

#include "win32/win32.h" // before OpenGL's own headers, which need it on Windows

#include <GL/gl.h>
#include <GL/glu.h>

#ifndef GL_CLAMP_TO_EDGE
#define GL_CLAMP_TO_EDGE 0x812F
#endif
#ifndef GL_TEXTURE0
#define GL_TEXTURE0 0x84C0
#define GL_TEXTURE1 0x84C1
#endif
#ifndef GL_LIGHT_MODEL_COLOR_CONTROL
#define GL_LIGHT_MODEL_COLOR_CONTROL 0x81F8
#define GL_SINGLE_COLOR 0x81F9
#endif

// Entry points of ARB_multitexture, null where the driver has none. Written when a device is created.
struct FXMultitexture {
    void(APIENTRY* glActiveTexture)(GLenum unit);
    void(APIENTRY* glMultiTexCoord2f)(GLenum unit, GLfloat s, GLfloat t);
    void(APIENTRY* glMultiTexCoord2fv)(GLenum unit, const GLfloat* st);
};
extern FXMultitexture fxMultitexture;
