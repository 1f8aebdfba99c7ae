#include "base/memory.h"
#include "scene/planet.h"
#include "unit/scene_parts.h"

namespace {

// Entry 1 is a model of one triangle.
class Planet : public testing::Test {
protected:
    Planet() { LoadTestPackage(package_, folder_, {{1, kRaw, TriangleModel(folder_)}}); }
    void Add(int count, int mode = 0) {
        while (count-- > 0) {
            planet_.AddLayerCN(&package_, 1);
            planet_.SetLayerRot(mode, 80, 90);
        }
    }
    std::size_t Draw(double time) {
        device_.gl.drawn.clear();
        planet_.OnRender(&device_.gl, time);
        return device_.gl.drawn.size();
    }

    TempFolder folder_;
    RecordedDevice<SceneDevice> device_;
    FXPackage package_;
    FXPlanet planet_;
};

TEST_F(Planet, LayersFadeInAndOut) {
    Add(1);
    planet_.SetLayerTransp(FXPlanet::kTransparencyPulse, 8);
    for (const auto& [time, alpha] : {std::pair{2.0, 0.5f}, {4.0, 1.0f}, {6.0, 0.5f}, {8.0, 0.0f}}) {
        Draw(time);
        EXPECT_EQ(planet_.models[0]->meshes[0]->vertices[0].color[3], alpha) << time;
    }
}

TEST_F(Planet, ALayerWithoutMemoryIsInNoList) {
    Add(1, 1);
    // Room in all lists before the refusing one.
    const auto refuse = [&](auto... roomy) {
        (roomy->Realloc(FXPlanet::kMaxLayers), ...);
        fxSetAllocLimit(1);
        Add(1, 3);
        planet_.SetLayerFluid(true);
        fxSetAllocLimit(0);
        EXPECT_TRUE(planet_.layerCount == 1 && planet_.curLayer == -1 && Draw(0) == 1);
        EXPECT_TRUE(planet_.models.count == 1 && planet_.rotModes.count == 1 &&
                    planet_.pulseModes.count == 1 && planet_.fluid.count == 1);
        EXPECT_TRUE(planet_.rotModes[0] == 1 && planet_.fluid[0] == 0) << "the layer before is left alone";
    };
    refuse();
    refuse(&planet_.rotModes);
    refuse(&planet_.pulseModes);
    refuse(&planet_.fluid);
    Add(1, 3);
    EXPECT_TRUE(planet_.layerCount == 2 && planet_.rotModes[1] == 3 && Draw(0) == 2);
}

} // namespace
