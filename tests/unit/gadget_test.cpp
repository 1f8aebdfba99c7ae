// The three gadgets, and the sun.
#include "image/codec.h"
#include "scene/cube_gadget.h"
#include "scene/error_gadget.h"
#include "scene/logo_gadget.h"
#include "scene/planet.h"
#include "unit/scene_parts.h"

#include <cmath>
#include <set>

namespace {

// Entry 0 is a picture of 300 x 100 pixels, entry 4 a model of one triangle, entries 5 and 6 small pictures.
class Gadget : public testing::Test {
protected:
    Gadget() {
        fxLoadDevil();
        LoadTestPackage(package_, folder_,
                        {{0, kTga, Tga(300, 100, std::vector<std::uint32_t>(30000, 0xFF0000FFu))},
                         {4, kRaw, TriangleModel(folder_)},
                         {5, kTga, Tga(3, 2, {1, 2, 3, 4, 5, 6})},
                         {6, kTga, Tga(1, 1, {0xFFFFFFFFu})}});
        device_.gl.screenWidth = 1024;
        device_.gl.screenHeight = 768;
    }
    ~Gadget() override { fxUnloadDevil(); }

    const std::vector<SceneDevice::Drawn>& Draw(PRender* gadget, double time) {
        device_.gl.drawn.clear();
        GLRecorder::Take();
        gadget->OnRender(&device_.gl, time);
        calls_ = GLRecorder::Take();
        return device_.gl.drawn;
    }

    TempFolder folder_;
    RecordedDevice<SceneDevice> device_;
    FXPackage package_;
    std::vector<std::string> calls_;
};

TEST_F(Gadget, ErrorPictureStandsInTheCornerWhenVisible) {
    FXErrGadget gadget;
    gadget.CreateCN(&package_, 0);
    EXPECT_TRUE(Draw(&gadget, 0).empty() && calls_.empty()) << "touches nothing";
    gadget.visible = true;
    device_.gl.EnableLights(true);
    const SceneDevice::Drawn drawn = Draw(&gadget, 0).at(0);
    EXPECT_FALSE(drawn.lights || drawn.depthTest || drawn.depthWrite);
    ExpectMatrix(drawn.matrix, {Move(-0.6875f, 0.84375f, 0), Scale(0.29296875f, 0.13020833f, 1)});
    for (float FXScrPos01::*size :
         {&FXScrPos01::screenW, &FXScrPos01::screenH, &FXScrPos01::picW, &FXScrPos01::picH}) {
        FXScrPos01 placement = gadget.placement;
        placement.*size = 0;
        placement.Update();
        ExpectMatrix(placement.placeMatrix, {}); // over the whole screen
    }
}

TEST_F(Gadget, MedallionIsRoundAndTurnsFromItsFirstFrameOn) {
    FXOrinGadget gadget;
    gadget.CreateCN(&package_, 5, 4);
    device_.gl.height = 1024;
    for (const auto& [time, width, sx, sy] : {std::tuple{7, 768, 0.18f, 0.135f}, {9, 2048, 0.09f, 0.18f}}) {
        device_.gl.width = width;
        const auto& drawn = Draw(&gadget, time);
        ExpectMatrix(drawn.at(0).matrix, {Move(0.9f - sx, sy - 0.85f, -1), Scale(sx, sy, 1),
                                          TurnY(45 * static_cast<float>(time - 7))});
        EXPECT_TRUE(drawn.at(1).mesh->vertices[2].color[3] == 0.4f && drawn[1].mesh->colorMode == 1);
    }
}

TEST_F(Gadget, LayersOfTheSunFadeInAndOut) {
    FXPlanet sun;
    sun.AddLayerCN(&package_, 4);
    sun.SetLayerTransp(FXPlanet::kTransparencyPulse, 8);
    for (const auto& [time, alpha] : {std::pair{2.0, 0.5f}, {4.0, 1.0f}, {6.0, 0.5f}, {8.0, 0.0f}})
        EXPECT_EQ(Draw(&sun, time).at(0).mesh->vertices[0].color[3], alpha) << time;
}

TEST_F(Gadget, CubeWaitsThenFadesIn) {
    FXDemoGadget gadget;
    gadget.CreateCN(&package_, 5, 6);
    const std::tuple<double, std::size_t, float> kFrames[] = {
        {100, 0, 1},    {114.9, 0, 1},    {115.5, 0, 1}, // late: the fade begins with this frame
        {115.5, 12, 0}, {116, 12, 0.25f}, {117, 12, 0.75f}, {400, 12, 1}};
    for (const auto& [time, drawn, alpha] : kFrames) {
        EXPECT_EQ(Draw(&gadget, time).size(), drawn) << time;
        EXPECT_TRUE(gadget.skinMat.diffuse[3] == alpha && gadget.envMat.diffuse[3] == alpha) << time;
    }
    EXPECT_TRUE(gadget.skinMat.diffuse[0] == 1 && gadget.envMat.diffuse[0] == 0.5f);
}

TEST_F(Gadget, CubeTravelsOnARandomClosedCurve) {
    FXDemoGadget gadget;
    std::set<float> places;
    for (int made = 0; made < 3; ++made) { // each replaces the last one
        gadget.CreateCN(&package_, 5, 6);
        ASSERT_TRUE(gadget.path.GetCnt() == 20 && gadget.path.closed);
        for (int i = 0; i < 60; ++i)
            EXPECT_LE(std::abs(gadget.path.points[i]), i % 3 < 2 ? 0.7f : 0.0f);
        places.insert(gadget.path.points.begin(), gadget.path.points.end());
        EXPECT_NEAR(gadget.travel.duration, 32 * gadget.path.length, 1e-3);
    }
    EXPECT_GT(places.size(), 100u) << "other ones every time";
    EXPECT_TRUE(*places.begin() < -0.5f && *places.rbegin() > 0.5f);
}

TEST_F(Gadget, CubeDrawsItsReflectionInsideItsSkin) {
    FXDemoGadget gadget;
    gadget.CreateCN(&package_, 5, 6);
    for (const double time : {10000, 10015, 10015}) // so late that all phasers begin with the first frame
        Draw(&gadget, time);
    const FXMatrix base = Scale(0.5f, 0.75f, 1);
    device_.gl.ApplyMatrix(&base);
    const auto& drawn = Draw(&gadget, 10024);
    ASSERT_EQ(drawn.size(), 12u);
    float at[3];
    gadget.path.GetAll(at, 9 / static_cast<float>(gadget.travel.duration));
    std::set<std::array<long, 3>> sides;
    for (std::size_t f = 0; f < 12; ++f) {
        const float larger = f < 6 ? 1 : 1.001f;
        const FXMatrix& face = gadget.faceMats[f % 6];
        ExpectMatrix(drawn[f].matrix,
                     {base, Move(at[0], at[1], at[2]), Scale(0.3f, 0.366f, 0.3f), TurnX(9 / 56.0f * 360),
                      TurnY(45), Scale(larger, larger, larger), face});
        EXPECT_EQ(drawn[f].mesh->material, f < 6 ? &gadget.envMat : &gadget.skinMat);
        sides.insert({std::lround(*face.M(3, 0)), std::lround(*face.M(3, 1)), std::lround(*face.M(3, 2))});
    }
    EXPECT_EQ(sides, (std::set<std::array<long, 3>>{
                         {1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}}));
    std::string order; // the reflection's texture coordinates are OpenGL's, the skin's are its own
    for (const std::string& call : calls_)
        if (call == "glBegin(GL_TRIANGLES)")
            order += 'd';
        else if (call.find("GL_TEXTURE_GEN") != std::string::npos)
            order += call.starts_with("glTexGeni") ? 't' : call.starts_with("glEnable") ? '+' : '-';
    EXPECT_EQ(order, "tt++dddddd--dddddd");
}

} // namespace
