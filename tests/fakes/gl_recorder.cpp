#include "fakes/gl_recorder.h"

#include "win32/win32.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdio>
#include <mutex>
#include <sstream>
#include <string_view>
#include <utility>

namespace {

// The constants that the product uses, and how they are spelt. Below 0x100 the same number has many names;
// those are given where they are used.
#define CONSTANTS(...)                                                                                       \
    constexpr GLenum kValues[] = {__VA_ARGS__};                                                              \
    constexpr std::string_view kNames = #__VA_ARGS__ ",";
CONSTANTS(GL_LEQUAL, GL_GREATER, GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_FRONT, GL_BACK, GL_FRONT_AND_BACK,
          GL_CULL_FACE, GL_LIGHTING, GL_LIGHT_MODEL_AMBIENT, GL_COLOR_MATERIAL, GL_DEPTH_TEST, GL_NORMALIZE,
          GL_ALPHA_TEST, GL_BLEND, GL_PERSPECTIVE_CORRECTION_HINT, GL_TEXTURE_GEN_S, GL_TEXTURE_GEN_T,
          GL_UNPACK_ALIGNMENT, GL_TEXTURE_2D, GL_NICEST, GL_AMBIENT, GL_DIFFUSE, GL_SPECULAR, GL_POSITION,
          GL_SPOT_DIRECTION, GL_SPOT_EXPONENT, GL_SPOT_CUTOFF, GL_CONSTANT_ATTENUATION, GL_LINEAR_ATTENUATION,
          GL_QUADRATIC_ATTENUATION, GL_UNSIGNED_BYTE, GL_EMISSION, GL_SHININESS, GL_AMBIENT_AND_DIFFUSE,
          GL_MODELVIEW, GL_PROJECTION, GL_RGBA, GL_FILL, GL_SMOOTH, GL_S, GL_T, GL_MODULATE,
          GL_TEXTURE_ENV_MODE, GL_TEXTURE_ENV, GL_SPHERE_MAP, GL_TEXTURE_GEN_MODE, GL_LINEAR,
          GL_LINEAR_MIPMAP_LINEAR, GL_TEXTURE_MAG_FILTER, GL_TEXTURE_MIN_FILTER, GL_TEXTURE_WRAP_S,
          GL_TEXTURE_WRAP_T, GL_LIGHT0, GL_LIGHT1, GL_LIGHT2, GL_LIGHT3, GL_LIGHT4, GL_LIGHT5, GL_LIGHT6,
          GL_LIGHT7, GL_CLAMP_TO_EDGE, GL_LIGHT_MODEL_COLOR_CONTROL, GL_SINGLE_COLOR,
          GL_SEPARATE_SPECULAR_COLOR, GL_TEXTURE0, GL_TEXTURE1)
#undef CONSTANTS

std::recursive_mutex mutex; // of the three below
std::vector<std::string> calls;
int liveTextures = 0;
GLuint lastTexture = 0;

std::atomic<bool> nullMode = false;
GLRecorder::Driver driver;

// The forms that an argument takes in the list; a plain number writes itself.
std::string Name(GLenum wanted) {
    std::string_view names = kNames;
    for (const GLenum value : kValues) {
        if (value == wanted)
            return std::string(names.substr(0, names.find(',')));
        names.remove_prefix(std::min(names.find(',') + 2, names.size()));
    }
    char number[16];
    std::snprintf(number, sizeof number, "0x%X", wanted);
    return number;
}
std::string Mask(GLbitfield bits) {
    std::string text = (bits & GL_COLOR_BUFFER_BIT) != 0 ? "|GL_COLOR_BUFFER_BIT" : "";
    text += (bits & GL_DEPTH_BUFFER_BIT) != 0 ? "|GL_DEPTH_BUFFER_BIT" : "";
    text += (bits & GL_STENCIL_BUFFER_BIT) != 0 ? "|GL_STENCIL_BUFFER_BIT" : "";
    return text.empty() ? "0" : text.substr(1);
}
std::string Floats(const GLfloat* values, int count) {
    std::ostringstream text;
    for (int i = 0; i < count; ++i)
        text << (i > 0 ? "," : "") << values[i];
    return text.str();
}
std::string Pixels(const void* bytes, GLsizei width, GLsizei height) {
    const auto* first = static_cast<const unsigned char*>(bytes);
    const auto* last = first + 4 * (static_cast<std::ptrdiff_t>(width) * height - 1);
    char text[32];
    std::snprintf(text, sizeof text, "%02x%02x%02x%02x..%02x%02x%02x%02x", first[0], first[1], first[2],
                  first[3], last[0], last[1], last[2], last[3]);
    return text;
}

template <class... Arguments> void Note(const char* function, const Arguments&... arguments) {
    if (nullMode)
        return;
    std::ostringstream call;
    [[maybe_unused]] const char* between = "";
    call << function << "(";
    ((call << std::exchange(between, ",") << arguments), ...);
    const std::lock_guard lock(mutex);
    calls.push_back(call.str() + ")");
}

// The parameters of lights, materials and light models are colours, but for these.
int ParameterSize(GLenum parameter) {
    const bool single =
        (parameter >= GL_SPOT_EXPONENT && parameter <= GL_QUADRATIC_ATTENUATION) || parameter == GL_SHININESS;
    return single ? 1 : parameter == GL_SPOT_DIRECTION ? 3 : 4;
}

#define RECORD_AS(name, function, parameters, ...)                                                           \
    void APIENTRY function parameters {                                                                      \
        if (!nullMode.load(std::memory_order_relaxed))                                                       \
            Note(name __VA_OPT__(, ) __VA_ARGS__);                                                           \
    }
RECORD_AS("glActiveTexture", ActiveTexture, (GLenum unit), Name(unit))
RECORD_AS("glMultiTexCoord2f", MultiTexCoord2f, (GLenum unit, GLfloat s, GLfloat t), Name(unit), s, t)
RECORD_AS("glMultiTexCoord2fv", MultiTexCoord2fv, (GLenum unit, const GLfloat* v), Name(unit), Floats(v, 2))

} // namespace

std::vector<std::string> GLRecorder::Take() {
    const std::lock_guard lock(mutex);
    return std::exchange(calls, {});
}

std::string GLRecorder::TakeText() {
    std::string text;
    for (const std::string& call : Take())
        text.append(text.empty() ? "" : " ").append(call);
    return text;
}

void GLRecorder::SetNullMode(bool on) {
    nullMode = on;
}

void GLRecorder::SetDriver(const Driver& newDriver) {
    driver = newDriver;
}

int GLRecorder::LiveTextures() {
    const std::lock_guard lock(mutex);
    return liveTextures;
}

void GLRecorder::Reset() {
    const std::lock_guard lock(mutex);
    calls.clear();
    liveTextures = 0;
    lastTexture = 0;
    nullMode = false;
    driver = {};
}

PROC wglGetProcAddress(const char* name) {
    const std::pair<std::string_view, PROC> known[] = {
        {"glActiveTexture", std::bit_cast<PROC>(&ActiveTexture)},
        {"glMultiTexCoord2f", std::bit_cast<PROC>(&MultiTexCoord2f)},
        {"glMultiTexCoord2fv", std::bit_cast<PROC>(&MultiTexCoord2fv)}};
    const auto* found = std::ranges::find(known, name, &std::pair<std::string_view, PROC>::first);
    return found == std::end(known) || found->first == driver.missing ? nullptr : found->second;
}

extern "C" {

const GLubyte* GLAPIENTRY glGetString(GLenum name) {
    const char* text = name == GL_VENDOR       ? "the vendor"
                       : name == GL_RENDERER   ? "the renderer"
                       : name == GL_VERSION    ? driver.version
                       : name == GL_EXTENSIONS ? driver.extensions
                                               : nullptr;
    return reinterpret_cast<const GLubyte*>(text);
}

#define RECORD(function, parameters, ...) RECORD_AS(#function, function, parameters, __VA_ARGS__)
#define PARAMETERS(function)                                                                                 \
    RECORD(function, (GLenum a, GLenum b, const GLfloat* values), Name(a), Name(b),                          \
           Floats(values, ParameterSize(b)))

RECORD(glShadeModel, (GLenum a), Name(a))
RECORD(glEnable, (GLenum a), Name(a))
RECORD(glDisable, (GLenum a), Name(a))
RECORD(glCullFace, (GLenum a), Name(a))
RECORD(glDepthFunc, (GLenum a), Name(a))
RECORD(glMatrixMode, (GLenum a), Name(a))
RECORD(glHint, (GLenum a, GLenum b), Name(a), Name(b))
RECORD(glPolygonMode, (GLenum a, GLenum b), Name(a), Name(b))
RECORD(glBlendFunc, (GLenum a, GLenum b), Name(a), Name(b))
RECORD(glColorMaterial, (GLenum a, GLenum b), Name(a), Name(b))
RECORD(glLightf, (GLenum a, GLenum b, GLfloat value), Name(a), Name(b), value)
RECORD(glMaterialf, (GLenum a, GLenum b, GLfloat value), Name(a), Name(b), value)
RECORD(glTexParameteri, (GLenum a, GLenum b, GLint c), Name(a), Name(b), Name(static_cast<GLenum>(c)))
RECORD(glTexEnvf, (GLenum a, GLenum b, GLfloat c), Name(a), Name(b), Name(static_cast<GLenum>(c)))
RECORD(glTexGeni, (GLenum a, GLenum b, GLint c), Name(a), Name(b), Name(static_cast<GLenum>(c)))
PARAMETERS(glLightfv)
PARAMETERS(glMaterialfv)
RECORD(glColor4fv, (const GLfloat* v), Floats(v, 4))
RECORD(glNormal3fv, (const GLfloat* v), Floats(v, 3))
RECORD(glTexCoord2fv, (const GLfloat* v), Floats(v, 2))
RECORD(glVertex3fv, (const GLfloat* v), Floats(v, 3))
RECORD(glLoadMatrixf, (const GLfloat* v), Floats(v, 16))
RECORD(glClear, (GLbitfield mask), Mask(mask))
RECORD(glClearColor, (GLclampf r, GLclampf g, GLclampf b, GLclampf a), r, g, b, a)
RECORD(glClearDepth, (GLclampd depth), depth)
RECORD(glClearStencil, (GLint s), s)
RECORD(glViewport, (GLint x, GLint y, GLsizei width, GLsizei height), x, y, width, height)
RECORD(glDepthMask, (GLboolean on), on != GL_FALSE ? "GL_TRUE" : "GL_FALSE")
RECORD(glAlphaFunc, (GLenum function, GLclampf reference), Name(function), reference)
RECORD(glLoadIdentity, ())
RECORD(glOrtho, (GLdouble l, GLdouble r, GLdouble b, GLdouble t, GLdouble n, GLdouble f), l, r, b, t, n, f)
RECORD(glLightModelfv, (GLenum a, const GLfloat* values), Name(a), Floats(values, ParameterSize(a)))
RECORD(glLightModeli, (GLenum a, GLint value), Name(a), Name(static_cast<GLenum>(value)))
RECORD(glBegin, (GLenum mode), mode == GL_TRIANGLES ? "GL_TRIANGLES" : "something else")
RECORD(glEnd, ())
RECORD(glColor4f, (GLfloat r, GLfloat g, GLfloat b, GLfloat a), r, g, b, a)
RECORD(glBindTexture, (GLenum target, GLuint name), Name(target), name)
RECORD(glPixelStorei, (GLenum parameter, GLint value), Name(parameter), value)

// The product makes and deletes one at a time.
void GLAPIENTRY glGenTextures(GLsizei, GLuint* name) {
    const std::lock_guard lock(mutex);
    *name = ++lastTexture;
    ++liveTextures;
    Note("glGenTextures", 1, *name);
}
void GLAPIENTRY glDeleteTextures(GLsizei, const GLuint* name) {
    const std::lock_guard lock(mutex);
    --liveTextures;
    Note("glDeleteTextures", 1, *name);
}
RECORD(glTexImage2D,
       (GLenum target, GLint level, GLint components, GLsizei width, GLsizei height, GLint border,
        GLenum format, GLenum type, const void* pixels),
       Name(target), level, components, width, height, border, Name(format), Name(type),
       Pixels(pixels, width, height))
GLint GLAPIENTRY gluBuild2DMipmaps(GLenum target, GLint components, GLsizei width, GLsizei height,
                                   GLenum format, GLenum type, const void* pixels) {
    if (!nullMode)
        Note("gluBuild2DMipmaps", Name(target), components, width, height, Name(format), Name(type),
             Pixels(pixels, width, height));
    return 0;
}
}
