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
    float tall; // its height, if its width is 1
    int columns, rows;
};
constexpr Sphere kCore = {"sun core", "SunCore", 0, 1.0f, kSunTall, 120, 60};
constexpr Sphere kShells[] = {{"sun shell 1", "PlasmaA", kTwoPasses, 1.01f, 1.15f, 64, 32},
                              {"sun shell 2", "PlasmaB", kTwoPasses, 1.03f, 1.15f, 64, 32},
                              {"sun shell 3", "PlasmaC", kTwoPasses, 1.06f, 1.15f, 64, 32}};

// The last column of corners is the first again with u = 1: textures end at their edges. At a pole every
// column has a corner of its own, in the middle of the strip that it closes. On the side of -z, where the
// viewer is, columns run to the right.
std::string localWriteSphere(const std::string& file, const Sphere& sphere) {
    MeshBuilder mesh(sphere.material, sphere.transparency);
    for (int row = 0; row <= sphere.rows; ++row) {
        const bool isPole = row == 0 || row == sphere.rows;
        const float v = static_cast<float>(row) / static_cast<float>(sphere.rows);
        const float across = isPole ? 0 : std::sin(kPi * v);
        const float up = isPole ? (row == 0 ? 1.0f : -1.0f) : std::cos(kPi * v);
        for (int column = 0; column <= sphere.columns; ++column) {
            const auto place = static_cast<float>(column < sphere.columns ? column : 0);
            const float turn = 2 * kPi * place / static_cast<float>(sphere.columns);
            const Vec3 out = {across * std::cos(turn), up, across * std::sin(turn)};
            const float u =
                (static_cast<float>(column) + (isPole ? 0.5f : 0)) / static_cast<float>(sphere.columns);
            mesh.Add({Vec3{out.x, out.y * sphere.tall, out.z} * sphere.radius, out, u, v});
        }
    }
    mesh.JoinGrid(0, sphere.columns + 1, sphere.rows + 1);
    return WriteModel(file, sphere.name, kLibrary, {&mesh});
}

} // namespace

std::string WriteSunCore(const std::string& file) {
    return localWriteSphere(file, kCore);
}
std::string WriteSunShell1(const std::string& file) {
    return localWriteSphere(file, kShells[0]);
}
std::string WriteSunShell2(const std::string& file) {
    return localWriteSphere(file, kShells[1]);
}
std::string WriteSunShell3(const std::string& file) {
    return localWriteSphere(file, kShells[2]);
}
