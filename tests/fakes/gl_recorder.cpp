#include "fakes/gl_recorder.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdio>
#include <mutex>
#include <set>
#include <utility>

namespace {

struct Constant {
    GLenum value;
    const char* name;
};

#define NAMED(constant)                                                                                      \
    { constant, #constant }
// Below 0x100 the same number has many names; those are given where they are used.
constexpr Constant kConstants[] = {
    NAMED(GL_LEQUAL),
    NAMED(GL_GREATER),
    NAMED(GL_SRC_ALPHA),
    NAMED(GL_ONE_MINUS_SRC_ALPHA),
    NAMED(GL_FRONT),
    NAMED(GL_BACK),
    NAMED(GL_FRONT_AND_BACK),
    NAMED(GL_CULL_FACE),
    NAMED(GL_LIGHTING),
    NAMED(GL_LIGHT_MODEL_AMBIENT),
    NAMED(GL_COLOR_MATERIAL),
    NAMED(GL_DEPTH_TEST),
    NAMED(GL_NORMALIZE),
    NAMED(GL_ALPHA_TEST),
    NAMED(GL_BLEND),
    NAMED(GL_PERSPECTIVE_CORRECTION_HINT),
    NAMED(GL_TEXTURE_GEN_S),
    NAMED(GL_TEXTURE_GEN_T),
    NAMED(GL_UNPACK_ALIGNMENT),
    NAMED(GL_TEXTURE_2D),
    NAMED(GL_NICEST),
    NAMED(GL_AMBIENT),
    NAMED(GL_DIFFUSE),
    NAMED(GL_SPECULAR),
    NAMED(GL_POSITION),
    NAMED(GL_SPOT_DIRECTION),
    NAMED(GL_SPOT_EXPONENT),
    NAMED(GL_SPOT_CUTOFF),
    NAMED(GL_CONSTANT_ATTENUATION),
    NAMED(GL_LINEAR_ATTENUATION),
    NAMED(GL_QUADRATIC_ATTENUATION),
    NAMED(GL_UNSIGNED_BYTE),
    NAMED(GL_EMISSION),
    NAMED(GL_SHININESS),
    NAMED(GL_AMBIENT_AND_DIFFUSE),
    NAMED(GL_MODELVIEW),
    NAMED(GL_PROJECTION),
    NAMED(GL_RGBA),
    NAMED(GL_FILL),
    NAMED(GL_SMOOTH),
    NAMED(GL_S),
    NAMED(GL_T),
    NAMED(GL_MODULATE),
    NAMED(GL_TEXTURE_ENV_MODE),
    NAMED(GL_TEXTURE_ENV),
    NAMED(GL_SPHERE_MAP),
    NAMED(GL_TEXTURE_GEN_MODE),
    NAMED(GL_LINEAR),
    NAMED(GL_LINEAR_MIPMAP_LINEAR),
    NAMED(GL_TEXTURE_MAG_FILTER),
    NAMED(GL_TEXTURE_MIN_FILTER),
    NAMED(GL_TEXTURE_WRAP_S),
    NAMED(GL_TEXTURE_WRAP_T),
    NAMED(GL_LIGHT0),
    NAMED(GL_LIGHT1),
    NAMED(GL_LIGHT2),
    NAMED(GL_LIGHT3),
    NAMED(GL_LIGHT4),
    NAMED(GL_LIGHT5),
    NAMED(GL_LIGHT6),
    NAMED(GL_LIGHT7),
    NAMED(GL_CLAMP_TO_EDGE),
    NAMED(GL_LIGHT_MODEL_COLOR_CONTROL),
    NAMED(GL_SINGLE_COLOR),
    NAMED(GL_SEPARATE_SPECULAR_COLOR),
    NAMED(GL_TEXTURE0),
    NAMED(GL_TEXTURE1),
};
#undef NAMED

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
    const auto* at = std::ranges::find(kConstants, name.value, &Constant::value);
    if (at != std::end(kConstants))
        return at->name;
    char number[16];
    std::snprintf(number, sizeof number, "0x%X", name.value);
    return number;
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

std::string ClearMask(GLbitfield mask) {
    std::string text;
    for (const Constant& bit : {Constant{GL_COLOR_BUFFER_BIT, "GL_COLOR_BUFFER_BIT"},
                                {GL_DEPTH_BUFFER_BIT, "GL_DEPTH_BUFFER_BIT"},
                                {GL_STENCIL_BUFFER_BIT, "GL_STENCIL_BUFFER_BIT"}})
        if ((mask & bit.value) != 0) {
            if (!text.empty())
                text += '|';
            text += bit.name;
        }
    return text.empty() ? "0" : text;
}

// The parameters of lights, materials and light models are colours, but for these.
int ParameterSize(GLenum parameter) {
    switch (parameter) {
    case GL_SPOT_DIRECTION:
        return 3;
    case GL_SPOT_EXPONENT:
    case GL_SPOT_CUTOFF:
    case GL_CONSTANT_ATTENUATION:
    case GL_LINEAR_ATTENUATION:
    case GL_QUADRATIC_ATTENUATION:
    case GL_SHININESS:
        return 1;
    default:
        return 4;
    }
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

// The frame and the fixed state.
void GLAPIENTRY glClear(GLbitfield mask) {
    if (!nullMode)
        Write("glClear", ClearMask(mask).c_str());
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
void GLAPIENTRY glShadeModel(GLenum mode) {
    Note("glShadeModel", Name{mode});
}
void GLAPIENTRY glHint(GLenum target, GLenum mode) {
    Note("glHint", Name{target}, Name{mode});
}
void GLAPIENTRY glEnable(GLenum capability) {
    Note("glEnable", Name{capability});
}
void GLAPIENTRY glDisable(GLenum capability) {
    Note("glDisable", Name{capability});
}
void GLAPIENTRY glPolygonMode(GLenum face, GLenum mode) {
    Note("glPolygonMode", Name{face}, Name{mode});
}
void GLAPIENTRY glCullFace(GLenum face) {
    Note("glCullFace", Name{face});
}
void GLAPIENTRY glDepthFunc(GLenum function) {
    Note("glDepthFunc", Name{function});
}
void GLAPIENTRY glDepthMask(GLboolean on) {
    Note("glDepthMask", on != GL_FALSE ? "GL_TRUE" : "GL_FALSE");
}
void GLAPIENTRY glAlphaFunc(GLenum function, GLclampf reference) {
    Note("glAlphaFunc", Name{function}, reference);
}
void GLAPIENTRY glBlendFunc(GLenum source, GLenum destination) {
    Note("glBlendFunc", Name{source}, Name{destination});
}

// Matrices.
void GLAPIENTRY glMatrixMode(GLenum mode) {
    Note("glMatrixMode", Name{mode});
}
void GLAPIENTRY glLoadIdentity() {
    Note("glLoadIdentity");
}
void GLAPIENTRY glLoadMatrixf(const GLfloat* m) {
    Note("glLoadMatrixf", Floats{m, 16});
}
void GLAPIENTRY glOrtho(GLdouble left, GLdouble right, GLdouble bottom, GLdouble top, GLdouble near,
                        GLdouble far) {
    Note("glOrtho", left, right, bottom, top, near, far);
}

// Lights and materials.
void GLAPIENTRY glLightModelfv(GLenum parameter, const GLfloat* values) {
    Note("glLightModelfv", Name{parameter}, Floats{values, ParameterSize(parameter)});
}
void GLAPIENTRY glLightModeli(GLenum parameter, GLint value) {
    Note("glLightModeli", Name{parameter}, Name{static_cast<GLenum>(value)});
}
void GLAPIENTRY glLightfv(GLenum light, GLenum parameter, const GLfloat* values) {
    Note("glLightfv", Name{light}, Name{parameter}, Floats{values, ParameterSize(parameter)});
}
void GLAPIENTRY glLightf(GLenum light, GLenum parameter, GLfloat value) {
    Note("glLightf", Name{light}, Name{parameter}, value);
}
void GLAPIENTRY glMaterialfv(GLenum face, GLenum parameter, const GLfloat* values) {
    Note("glMaterialfv", Name{face}, Name{parameter}, Floats{values, ParameterSize(parameter)});
}
void GLAPIENTRY glMaterialf(GLenum face, GLenum parameter, GLfloat value) {
    Note("glMaterialf", Name{face}, Name{parameter}, value);
}
void GLAPIENTRY glColorMaterial(GLenum face, GLenum mode) {
    Note("glColorMaterial", Name{face}, Name{mode});
}

// Vertices.
void GLAPIENTRY glBegin(GLenum mode) {
    Note("glBegin", mode == GL_TRIANGLES ? "GL_TRIANGLES" : "something else");
}
void GLAPIENTRY glEnd() {
    Note("glEnd");
}
void GLAPIENTRY glColor4f(GLfloat r, GLfloat g, GLfloat b, GLfloat a) {
    Note("glColor4f", r, g, b, a);
}
void GLAPIENTRY glColor4fv(const GLfloat* v) {
    Note("glColor4fv", Floats{v, 4});
}
void GLAPIENTRY glNormal3fv(const GLfloat* v) {
    Note("glNormal3fv", Floats{v, 3});
}
void GLAPIENTRY glTexCoord2fv(const GLfloat* v) {
    Note("glTexCoord2fv", Floats{v, 2});
}
void GLAPIENTRY glVertex3fv(const GLfloat* v) {
    Note("glVertex3fv", Floats{v, 3});
}

// Textures.
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
void GLAPIENTRY glTexParameteri(GLenum target, GLenum parameter, GLint value) {
    Note("glTexParameteri", Name{target}, Name{parameter}, Name{static_cast<GLenum>(value)});
}
void GLAPIENTRY glTexEnvf(GLenum target, GLenum parameter, GLfloat value) {
    Note("glTexEnvf", Name{target}, Name{parameter}, Name{static_cast<GLenum>(value)});
}
void GLAPIENTRY glTexGeni(GLenum coordinate, GLenum parameter, GLint value) {
    Note("glTexGeni", Name{coordinate}, Name{parameter}, Name{static_cast<GLenum>(value)});
}
}
