// What the driver offers, and whether it suffices.
#include "platform/trace.h"
#include "render/gl.h"
#include "render/gl_device.h"

#include <bit>
#include <string_view>

FXMultitexture fxMultitexture = {};

namespace {

// Null where the driver has no answer.
const char* localGLString(GLenum name) {
    return reinterpret_cast<const char*>(glGetString(name));
}

// What printf writes for a null string where it allows one.
const char* localPrintable(const char* text) {
    return text != nullptr ? text : "(null)";
}

template <class Function> void localFetch(Function*& function, const char* name) {
    function = std::bit_cast<Function*>(wglGetProcAddress(name));
}

} // namespace

bool FXGL::TestExtensionString(const char* extensions, const char* name) {
    const std::string_view list(extensions ? extensions : "");
    const std::string_view wanted(name ? name : "");
    if (list.empty() || wanted.empty())
        return false;
    for (std::size_t at = list.find(wanted); at != std::string_view::npos; at = list.find(wanted, at + 1)) {
        const std::size_t end = at + wanted.size();
        if (end == list.size() || list[end] == ' ')
            return true;
    }
    return false;
}

bool FXGL::InitExtensions() {
    trc("OpenGL info:\n");
    trc("vendor: %s\n", localPrintable(localGLString(GL_VENDOR)));
    trc("renderer: %s\n", localPrintable(localGLString(GL_RENDERER)));
    trc("version: %s\n", localPrintable(localGLString(GL_VERSION)));

    const char* list = localGLString(GL_EXTENSIONS);
    const auto has = [list](const char* name) { return TestExtensionString(list, name); };
    hasBgra = has("EXT_bgra");
    hasSeparateSpecular = has("EXT_separate_specular_color");
    hasEdgeClamp = has("EXT_texture_edge_clamp") || has("SGIS_texture_edge_clamp");
    hasMultitexture = has("ARB_multitexture");
    hasCubeMap = has("ARB_texture_cube_map");
    npot = has("ARB_texture_non_power_of_two");

    fxMultitexture = {};
    if (hasMultitexture) {
        localFetch(fxMultitexture.glActiveTexture, "glActiveTexture");
        localFetch(fxMultitexture.glMultiTexCoord2f, "glMultiTexCoord2f");
        localFetch(fxMultitexture.glMultiTexCoord2fv, "glMultiTexCoord2fv");
    }

    const struct {
        bool found;
        const char* name;
    } offered[] = {{hasBgra, "EXT_bgra"},
                   {hasSeparateSpecular, "EXT_separate_specular_color"},
                   {hasEdgeClamp, "EXT_texture_edge_clamp"},
                   {hasMultitexture, "ARB_multitexture"},
                   {hasCubeMap, "ARB_texture_cube_map"},
                   {npot, "ARB_texture_non_power_of_two"}};
    for (const auto& extension : offered)
        if (extension.found)
            trc("%s\n", extension.name);
    return hasEdgeClamp;
}

bool FXGL::TestGL(bool showMessage) {
    if (!hasMultitexture && showMessage)
        MessageBoxA(nullptr,
                    "Your Graphics Capabilities seems to be insufficient. Either you have no Graphics Card, "
                    "or you have not installed the drivers for it.",
                    "OrinLab", MB_OK);
    return hasMultitexture;
}
