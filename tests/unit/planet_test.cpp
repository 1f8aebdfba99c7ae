#include "base/memory.h"
#include "image/material.h"
#include "scene/planet.h"
#include "unit/scene_parts.h"

namespace {

// Entry 1 is a model of one triangle with the material sun, of library 5.
class Planet : public testing::Test {
protected:
    static constexpr double kStart = 1000; // so late that all phasers begin with the first frame

    Planet() {
        LoadTestPackage(package_, folder_,
                        {{1, kRaw, TriangleModel(folder_, "sun", "5")},
                         {5, kRaw, Header("5") + Ints({1}) + MaterialRecord("sun", "")}});
    }
    void Add(int count, int mode = 0) {
        while (count-- > 0) {
            planet_.AddLayerCN(&package_, 1);
            planet_.SetLayerRot(mode, 80, 90);
        }
    }
    // Some seconds after a first frame.
    const std::vector<SceneDevice::Drawn>& Draw(double seconds) {
        for (const double time : {kStart, kStart + seconds}) {
            device_.gl.drawn.clear();
            device_.gl.ApplyMatrix(&base_);
            device_.gl.EnableDepthWrite(false);
            planet_.OnRender(&device_.gl, time);
        }
        return device_.gl.drawn;
    }
    float AlphaOf(int layer) const { return planet_.models[layer]->meshes[0]->vertices[0].color[3]; }

    TempFolder folder_;
    RecordedDevice<SceneDevice> device_;
    FXPackage package_;
    FXPlanet planet_;
    const FXMatrix base_ = Move(0.5f, -0.25f, 0);
};

TEST_F(Planet, LayersTurnEachTheirWay) {
    // Of four layers, after a quarter of the first turn and two ninths of the second one.
    const float x[] = {-90, 90, -90, 90}, y[] = {-80, -80, 80, 80};
    planet_.matFirst = 2;
    planet_.matLast = 2;
    planet_.layerMatrix = Scale(2, 3, 4);
    for (int mode = 0; mode < 5; ++mode) {
        planet_.Destroy();
        Add(4, mode);
        const auto& drawn = Draw(20);
        for (std::size_t i = 0; i < 4; ++i)
            ExpectMatrix(drawn.at(i).matrix, {base_, i == 2 ? planet_.layerMatrix : FXMatrix(),
                                              TurnX(mode == 1 || mode == 3 ? x[i] : 0),
                                              TurnY(mode == 2   ? x[i]
                                                    : mode == 3 ? y[i]
                                                                : 0)});
    }
}

TEST_F(Planet, LayersStretchAndFade) {
    const FXMatrix kAtAQuarter[] = {FXMatrix(), Scale(1.175f, 0.775f, 0.775f), Scale(0.775f, 1.175f, 0.775f),
                                    Scale(0.775f, 0.775f, 1.175f)};
    planet_.layerColor[3] = 0.5f;
    for (int axis = 0; axis < 4; ++axis) {
        Add(1);
        planet_.SetLayerScale(axis, 3);
        planet_.SetLayerTransp(axis != 3 ? FXPlanet::kTransparencyPulse : 0, 8); // seconds of both
    }
    planet_.SetLayerFluid(true);
    for (const auto& [time, alpha] : {std::pair{2.0, 0.25f}, {4.0, 0.5f}, {6.0, 0.25f}, {8.0, 0.0f}}) {
        const auto& drawn = Draw(time);
        for (int axis = 0; axis < 4; ++axis) {
            const auto& layer = drawn.at(static_cast<std::size_t>(axis));
            EXPECT_NEAR(AlphaOf(axis), axis != 3 ? alpha : 0.5f, 1e-6) << time;
            EXPECT_EQ(layer.depthWrite, axis != 3);
            if (time == 2)
                ExpectMatrix(layer.matrix, {base_, kAtAQuarter[axis]});
        }
    }
    EXPECT_EQ(planet_.models[1]->meshes[0]->colorMode, 1);
}

TEST_F(Planet, ColoursItsMaterialsInsteadOfItsVertices) {
    planet_.useColMat = true;
    planet_.layerColor[0] = 0.5f;
    Add(1);
    planet_.SetLayerTransp(FXPlanet::kTransparencyPulse, 8);
    Draw(2);
    const FXMesh& mesh = *planet_.models[0]->meshes[0];
    EXPECT_TRUE(mesh.material->diffuse[0] == 1.0f && mesh.colorMode == 0) << "half of 2";
    EXPECT_EQ(mesh.material->diffuse[3], 2.5f / 2) << "halfway up";
}

TEST_F(Planet, SettersNeedALayerAndTheEleventhIsRefused) {
    planet_.SetLayerRot(1, 2, 3);
    planet_.SetLayerScale(1, 2);
    planet_.SetLayerTransp(FXPlanet::kTransparencyPulse, 2);
    planet_.SetLayerFluid(true);
    planet_.AddLayerCN(&package_, 99); // no such model
    EXPECT_TRUE(planet_.layerCount == 1 && Draw(0).empty());
    planet_.AddLayer(folder_.Write("layer", TriangleModel(folder_, "sun")).c_str());
    EXPECT_TRUE(Draw(0).size() == 1 && AlphaOf(1) == 1 && planet_.rot1[0].duration == 10 &&
                planet_.rot2[0].duration == 12 && planet_.pulse[0].duration == 4);
    Add(11);
    EXPECT_TRUE(planet_.layerCount == 10 && planet_.curLayer == 9 && Draw(0).size() == 9);
    planet_.pulse[9].Restart(7);
    planet_.Destroy();
    EXPECT_TRUE(planet_.layerCount == 0 && planet_.curLayer == -1 && Draw(0).empty());
    EXPECT_EQ(planet_.pulse[9].start, 7) << "goes on from there";
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
        EXPECT_TRUE(planet_.layerCount == 1 && planet_.curLayer == -1 && Draw(0).size() == 1 &&
                    AlphaOf(0) == 1);
        EXPECT_TRUE(planet_.models.count == 1 && planet_.rotModes.count == 1 &&
                    planet_.pulseModes.count == 1 && planet_.fluid.count == 1);
        EXPECT_TRUE(planet_.rotModes[0] == 1 && planet_.fluid[0] == 0) << "the layer before is left alone";
    };
    refuse();
    refuse(&planet_.rotModes);
    refuse(&planet_.pulseModes);
    refuse(&planet_.fluid);
    Add(1, 3);
    EXPECT_TRUE(planet_.layerCount == 2 && planet_.rotModes[1] == 3 && Draw(0).size() == 2);
}

} // namespace
