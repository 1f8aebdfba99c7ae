// The sun's core and the shells of plasma over it: spheres that their pictures wrap from pole to pole.
#include "models/mesh_builder.h"
#include "models/models.h"
#include "pictures/colour.h"
#include "sun_shape.h"

#include <cmath>
#include <string>

namespace {

constexpr const char* kLibrary = "40";
constexpr int kTwoPasses = 1; // far side first, so that the near one blends over it

struct Sphere {
    const char* name;
    const char* material;
    int transparency;
    float radius;
    float tall;        // its height, if its width is 1
    float lowest;      // what lies below this height, if the radius is 1, is left out
    int turns;         // how often its picture goes round it
    int columns, rows; // of the whole sphere
};
constexpr int kShellColumns = 48;
constexpr int kShellRows = 24;
constexpr Sphere kShells[] = {
    {"sun shell 1", "PlasmaA", kTwoPasses, 1.01f, 1.15f, -1, 1, kShellColumns, kShellRows},
    {"sun shell 2", "PlasmaB", kTwoPasses, 1.03f, 1.15f, -1, 1, kShellColumns, kShellRows},
    {"sun shell 3", "PlasmaC", kTwoPasses, 1.06f, 1.15f, -1, 1, kShellColumns, kShellRows}};

Sphere localCore(const Screen& screen) {
    const int columns = PiecesOfCircle(kSunAcross * static_cast<float>(screen.width) / 2);
    return {"sun core", "SunCore", 0, 1.0f, kSunTall, kSunLowest, 2, columns, columns / 2};
}

// The columns of corners at which a round of the picture ends stand twice, the second time with u = 0:
// textures end at their edges. At a pole every column has a corner of its own, in the middle of the strip
// that it closes. On the side of -z, where the viewer is, columns run to the right.
std::string localWriteSphere(const std::string& file, const Sphere& sphere) {
    MeshBuilder mesh(sphere.material, sphere.transparency);
    const int columns = sphere.columns / sphere.turns;
    const float reach = std::acos(sphere.lowest);
    const int rows = static_cast<int>(std::ceil(reach / kPi * static_cast<float>(sphere.rows)));
    for (int turn = 0; turn < sphere.turns; ++turn) {
        int first = -1;
        for (int row = 0; row <= rows; ++row) {
            const bool isPole = row % sphere.rows == 0;
            const float down = kPi * static_cast<float>(row) / static_cast<float>(sphere.rows);
            const float across = isPole ? 0 : std::sin(down);
            const float up = isPole ? (row == 0 ? 1.0f : -1.0f) : std::cos(down);
            for (int column = 0; column <= columns; ++column) {
                const auto place = static_cast<float>((turn * columns + column) % sphere.columns);
                const float angle = 2 * kPi * place / static_cast<float>(sphere.columns);
                const Vec3 out = {across * std::cos(angle), up, across * std::sin(angle)};
                const float u =
                    (static_cast<float>(column) + (isPole ? 0.5f : 0)) / static_cast<float>(columns);
                const int number =
                    mesh.Add({Vec3{out.x, out.y * sphere.tall, out.z} * sphere.radius, out, u, down / reach});
                first = first < 0 ? number : first;
            }
        }
        mesh.JoinGrid(first, columns + 1, rows + 1);
    }
    return WriteModel(file, sphere.name, kLibrary, {&mesh});
}

} // namespace

std::string WriteSunCore(const std::string& file, const Screen& screen) {
    return localWriteSphere(file, localCore(screen));
}
std::string WriteSunShell1(const std::string& file, const Screen&) {
    return localWriteSphere(file, kShells[0]);
}
std::string WriteSunShell2(const std::string& file, const Screen&) {
    return localWriteSphere(file, kShells[1]);
}
std::string WriteSunShell3(const std::string& file, const Screen&) {
    return localWriteSphere(file, kShells[2]);
}
