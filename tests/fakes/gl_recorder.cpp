#include "fakes/gl_recorder.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdio>
#include <mutex>
#include <set>
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

std::mutex mutex; // of the three below
std::vector<std::string> calls;
std::set<GLuint> textures;
GLuint lastTexture = 0;

std::atomic<bool> nullMode = false;
GLRecorder::Driver driver;

// The forms that an argument takes in the list; a plain number writes itself.
struct Name {
    GLenum value;
};
struct Mask {
    GLbitfield bits;
};
struct Floats {
    const GLfloat* values;
    int count;
};
struct Pixels {
    const void* bytes;
    GLsizei width, height;
};

std::string Text(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

std::string Text(const char* text) {
    return text;
}

std::string Text(Name name) {
    std::string_view names = kNames;
    for (const GLenum value : kValues) {
        if (value == name.value)
            return std::string(names.substr(0, names.find(',')));
        names.remove_prefix(std::min(names.find(',') + 2, names.size()));
    }
    char number[16];
    std::snprintf(number, sizeof number, "0x%X", name.value);
    return number;
}

std::string Text(Mask mask) {
    std::string text;
    const auto add = [&](GLbitfield bit, const char* name) {
        if ((mask.bits & bit) != 0)
            text.append(text.empty() ? "" : "|").append(name);
    };
    add(GL_COLOR_BUFFER_BIT, "GL_COLOR_BUFFER_BIT");
    add(GL_DEPTH_BUFFER_BIT, "GL_DEPTH_BUFFER_BIT");
    add(GL_STENCIL_BUFFER_BIT, "GL_STENCIL_BUFFER_BIT");
    return text.empty() ? "0" : text;
}

std::string Text(Floats floats) {
    std::string text;
    for (int i = 0; i < floats.count; ++i)
        text.append(i > 0 ? "," : "").append(Text(static_cast<double>(floats.values[i])));
    return text;
}

std::string Text(Pixels pixels) {
    const auto* first = static_cast<const unsigned char*>(pixels.bytes);
    const auto* last = first + 4 * (static_cast<std::ptrdiff_t>(pixels.width) * pixels.height - 1);
    char text[32];
    std::snprintf(text, sizeof text, "%02x%02x%02x%02x..%02x%02x%02x%02x", first[0], first[1], first[2],
                  first[3], last[0], last[1], last[2], last[3]);
    return text;
}

template <class... Arguments> void Write(const char* function, const Arguments&... arguments) {
    std::string call = std::string(function) + "(";
    ((call += Text(arguments), call += ','), ...);
    if (call.back() == ',')
        call.pop_back();
    call += ')';
    const std::lock_guard lock(mutex);
    calls.push_back(std::move(call));
}

// Inline, so that in null mode a call is one test.
template <class... Arguments> inline void Note(const char* function, const Arguments&... arguments) {
    if (!nullMode.load(std::memory_order_relaxed))
        Write(function, arguments...);
}

// The parameters of lights, materials and light models are colours, but for these.
int ParameterSize(GLenum parameter) {
    const bool single =
        (parameter >= GL_SPOT_EXPONENT && parameter <= GL_QUADRATIC_ATTENUATION) || parameter == GL_SHININESS;
    return single ? 1 : parameter == GL_SPOT_DIRECTION ? 3 : 4;
}

void APIENTRY RecordActiveTexture(GLenum unit) {
    Note("glActiveTexture", Name{unit});
}
void APIENTRY RecordMultiTexCoord2f(GLenum unit, GLfloat s, GLfloat t) {
    Note("glMultiTexCoord2f", Name{unit}, s, t);
}
void APIENTRY RecordMultiTexCoord2fv(GLenum unit, const GLfloat* v) {
    Note("glMultiTexCoord2fv", Name{unit}, Floats{v, 2});
}

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
    return static_cast<int>(textures.size());
}

void GLRecorder::Reset() {
    const std::lock_guard lock(mutex);
    calls.clear();
    textures.clear();
    lastTexture = 0;
    driver = {};
}

std::map<std::string, PROC> GLRecorder::EntryPoints() {
    return {{"glActiveTexture", std::bit_cast<PROC>(&RecordActiveTexture)},
            {"glMultiTexCoord2f", std::bit_cast<PROC>(&RecordMultiTexCoord2f)},
            {"glMultiTexCoord2fv", std::bit_cast<PROC>(&RecordMultiTexCoord2fv)}};
}

extern "C" {

const GLubyte* GLAPIENTRY glGetString(GLenum name) {
    const char* text = name == GL_VENDOR       ? driver.vendor
                       : name == GL_RENDERER   ? driver.renderer
                       : name == GL_VERSION    ? driver.version
                       : name == GL_EXTENSIONS ? driver.extensions
                                               : nullptr;
    return reinterpret_cast<const GLubyte*>(text);
}

#define ONE_ENUM(function)                                                                                   \
    void GLAPIENTRY function(GLenum a) {                                                                     \
        Note(#function, Name{a});                                                                            \
    }
#define TWO_ENUMS(function)                                                                                  \
    void GLAPIENTRY function(GLenum a, GLenum b) {                                                           \
        Note(#function, Name{a}, Name{b});                                                                   \
    }
#define TWO_ENUMS_AND_A_VALUE(function, type)                                                                \
    void GLAPIENTRY function(GLenum a, GLenum b, type value) {                                               \
        Note(#function, Name{a}, Name{b}, value);                                                            \
    }
#define TWO_ENUMS_AND_A_NAME(function, type)                                                                 \
    void GLAPIENTRY function(GLenum a, GLenum b, type value) {                                               \
        Note(#function, Name{a}, Name{b}, Name{static_cast<GLenum>(value)});                                 \
    }
#define PARAMETERS(function)                                                                                 \
    void GLAPIENTRY function(GLenum a, GLenum parameter, const GLfloat* values) {                            \
        Note(#function, Name{a}, Name{parameter}, Floats{values, ParameterSize(parameter)});                 \
    }
#define VECTOR(function, size)                                                                               \
    void GLAPIENTRY function(const GLfloat* v) {                                                             \
        Note(#function, Floats{v, size});                                                                    \
    }

ONE_ENUM(glShadeModel)
ONE_ENUM(glEnable)
ONE_ENUM(glDisable)
ONE_ENUM(glCullFace)
ONE_ENUM(glDepthFunc)
ONE_ENUM(glMatrixMode)
TWO_ENUMS(glHint)
TWO_ENUMS(glPolygonMode)
TWO_ENUMS(glBlendFunc)
TWO_ENUMS(glColorMaterial)
TWO_ENUMS_AND_A_VALUE(glLightf, GLfloat)
TWO_ENUMS_AND_A_VALUE(glMaterialf, GLfloat)
TWO_ENUMS_AND_A_NAME(glTexParameteri, GLint)
TWO_ENUMS_AND_A_NAME(glTexEnvf, GLfloat)
TWO_ENUMS_AND_A_NAME(glTexGeni, GLint)
PARAMETERS(glLightfv)
PARAMETERS(glMaterialfv)
VECTOR(glColor4fv, 4)
VECTOR(glNormal3fv, 3)
VECTOR(glTexCoord2fv, 2)
VECTOR(glVertex3fv, 3)
VECTOR(glLoadMatrixf, 16)

void GLAPIENTRY glClear(GLbitfield mask) {
    Note("glClear", Mask{mask});
}
void GLAPIENTRY glClearColor(GLclampf r, GLclampf g, GLclampf b, GLclampf a) {
    Note("glClearColor", r, g, b, a);
}
void GLAPIENTRY glClearDepth(GLclampd depth) {
    Note("glClearDepth", depth);
}
void GLAPIENTRY glClearStencil(GLint s) {
    Note("glClearStencil", s);
}
void GLAPIENTRY glViewport(GLint x, GLint y, GLsizei width, GLsizei height) {
    Note("glViewport", x, y, width, height);
}
void GLAPIENTRY glDepthMask(GLboolean on) {
    Note("glDepthMask", on != GL_FALSE ? "GL_TRUE" : "GL_FALSE");
}
void GLAPIENTRY glAlphaFunc(GLenum function, GLclampf reference) {
    Note("glAlphaFunc", Name{function}, reference);
}
void GLAPIENTRY glLoadIdentity() {
    Note("glLoadIdentity");
}
void GLAPIENTRY glOrtho(GLdouble left, GLdouble right, GLdouble bottom, GLdouble top, GLdouble near,
                        GLdouble far) {
    Note("glOrtho", left, right, bottom, top, near, far);
}
void GLAPIENTRY glLightModelfv(GLenum parameter, const GLfloat* values) {
    Note("glLightModelfv", Name{parameter}, Floats{values, ParameterSize(parameter)});
}
void GLAPIENTRY glLightModeli(GLenum parameter, GLint value) {
    Note("glLightModeli", Name{parameter}, Name{static_cast<GLenum>(value)});
}
void GLAPIENTRY glBegin(GLenum mode) {
    Note("glBegin", mode == GL_TRIANGLES ? "GL_TRIANGLES" : "something else");
}
void GLAPIENTRY glEnd() {
    Note("glEnd");
}
void GLAPIENTRY glColor4f(GLfloat r, GLfloat g, GLfloat b, GLfloat a) {
    Note("glColor4f", r, g, b, a);
}
void GLAPIENTRY glGenTextures(GLsizei count, GLuint* names) {
    for (GLsizei i = 0; i < count; ++i) {
        {
            const std::lock_guard lock(mutex);
            names[i] = ++lastTexture;
            textures.insert(lastTexture);
        }
        Note("glGenTextures", 1, names[i]);
    }
}
void GLAPIENTRY glDeleteTextures(GLsizei count, const GLuint* names) {
    for (GLsizei i = 0; i < count; ++i) {
        Note("glDeleteTextures", 1, names[i]);
        const std::lock_guard lock(mutex);
        textures.erase(names[i]);
    }
}
void GLAPIENTRY glBindTexture(GLenum target, GLuint name) {
    Note("glBindTexture", Name{target}, name);
}
void GLAPIENTRY glPixelStorei(GLenum parameter, GLint value) {
    Note("glPixelStorei", Name{parameter}, value);
}
void GLAPIENTRY glTexImage2D(GLenum target, GLint level, GLint components, GLsizei width, GLsizei height,
                             GLint border, GLenum format, GLenum type, const void* pixels) {
    Note("glTexImage2D", Name{target}, level, components, width, height, border, Name{format}, Name{type},
         Pixels{pixels, width, height});
}
GLint GLAPIENTRY gluBuild2DMipmaps(GLenum target, GLint components, GLsizei width, GLsizei height,
                                   GLenum format, GLenum type, const void* pixels) {
    Note("gluBuild2DMipmaps", Name{target}, components, width, height, Name{format}, Name{type},
         Pixels{pixels, width, height});
    return 0;
}
}
