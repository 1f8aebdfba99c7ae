// The three gadgets, and the placement by pixels that one of them uses.
#include "image/codec.h"
#include "scene/cube_gadget.h"
#include "scene/error_gadget.h"
#include "scene/logo_gadget.h"
#include "scene/screen_placement.h"
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

FXScrPos01 Placed(float screenW, float screenH, float picW, float picH, float x, float y) {
    FXScrPos01 placement;
    placement.screenW = screenW;
    placement.screenH = screenH;
    placement.picW = picW;
    placement.picH = picH;
    placement.SetPos(x, y);
    return placement;
}

TEST_F(Gadget, APlacementPutsAPictureOnItsPixels) {
    const FXMatrix before = Scale(0.5f, 0.5f, 1);
    const auto expect = [&](FXScrPos01 placement, float sx, float sy, float x, float y) {
        placement.ShiftPos(0.5f, 0.25f);
        for (const bool relative : {true, false}) {
            device_.gl.ApplyMatrix(&before);
            placement.relative = relative;
            placement.OnRender(&device_.gl, 0);
            ExpectMatrix(device_.gl.matrix,
                         {relative ? before : FXMatrix(), Move(x, y, 0), Scale(sx, sy, 1)});
        }
    };
    expect(Placed(1024, 768, 300, 100, -502, -182), 0.29296875f, 0.13020833f, -0.6875f, 0.84375f);
    expect(Placed(800, 600, 200, 300, 200, 150), 0.25f, 0.5f, 0.75f, -0.5f);
    for (const FXScrPos01& noSize :
         {Placed(0, 600, 200, 300, 5, 5), Placed(800, 0, 200, 300, 5, 5), Placed(800, 600, 0, 300, 5, 5),
          Placed(800, 600, 200, -1, 5, 5), Placed(800, 600, 200, std::nanf(""), 5, 5)})
        expect(noSize, 1, 1, 0, 0); // over the whole screen
}

TEST_F(Gadget, APlacementIsNarrowedForAnAreaThatIsWider) {
    const auto expect = [](auto change, float sx, float sy, float x, float y) {
        FXScrPos01 placement = Placed(800, 600, 200, 300, 100, 75);
        change(placement);
        ExpectMatrix(placement.placeMatrix, {Move(x, y, 0), Scale(sx, sy, 1)});
    };
    expect([](FXScrPos01& p) { p.UpdateSize(); }, 0.25f, 0.5f, 0, 0);
    expect([](FXScrPos01& p) { p.picW = 0, p.UpdateSize(); }, 1, 1, 0, 0);
    expect([](FXScrPos01& p) { p.UpdateAspectH1(0, 800, 300); }, 0.125f, 0.5f, -0.5f, 0.25f);   // centred
    expect([](FXScrPos01& p) { p.UpdateAspectH1(1, 800, 300); }, 0.125f, 0.5f, -0.375f, 0.25f); // right
    expect([](FXScrPos01& p) { p.UpdateAspectH1(7, 800, 300); }, 0.125f, 0.5f, -0.625f, 0.25f); // left
    for (const auto& [w, h] : {std::pair{300, 300}, {300, 0}, {0, 0}}) // narrower, and no area
        expect([=](FXScrPos01& p) { p.UpdateAspectH1(1, static_cast<float>(w), static_cast<float>(h)); },
               0.25f, 0.5f, -0.5f, 0.25f);
}

TEST_F(Gadget, APlacementCountsItsPixelsOnAnotherScreen) {
    const auto expect = [](const FXScrPos01& placement, int w, int h, const std::array<int, 4>& expected) {
        FXRect rc = {9, 9, 9, 9};
        placement.GetPixelRC(&rc, w, h);
        EXPECT_EQ((std::array{rc.left, rc.top, rc.right, rc.bottom}), expected) << placement.posX;
    };
    expect(Placed(800, 600, 200.5f, 300, 100.75f, 75), 3200, 300,
           {403, 37, 1204, 187}); // whole pixels at 301 and 375
    expect(Placed(800, 600, 200.5f, 300, -101, -75), 400, 1200, {-50, -150, 49, 450});
    expect(Placed(0, 600, 200.5f, 300, 100, 75), 400, 300, {});
    expect(Placed(800, -1, 200.5f, 300, 100, 75), 400, 300, {});
    expect(Placed(800, 600, 200.5f, 300, 1e30f, std::nanf("")), 400, 300, {});
}

TEST_F(Gadget, AreMadeFromFilesAlike) {
    const std::filesystem::path start = std::filesystem::current_path();
    std::filesystem::current_path(folder_.File(""));
    folder_.Write("orin_medallion.om", TriangleModel(folder_));
    FXCanvas canvas;
    for (const auto& [entry, name] : {std::pair{0, "error_message.png"}, {5, "label.png"}, {6, "skin.png"}})
        EXPECT_TRUE(canvas.CreateFromPictCN(&package_, entry) && canvas.SaveToPict(name));
    FXErrGadget error;
    FXOrinGadget logo;
    FXDemoGadget cube;
    error.Create();
    logo.Create();
    cube.Create("label.png", "skin.png");
    std::filesystem::current_path(start);
    EXPECT_TRUE(error.errMat.GetWidth() == 300 && error.placement.picW == 300 &&
                logo.labelMat.GetWidth() == 3 && cube.envMat.GetWidth() == 3 && cube.skinMat.GetWidth() == 1);
    EXPECT_EQ(Draw(&logo, 5).at(0).mesh->vertices[0].color[3], 0.4f) << "as faint as the label";
}

TEST_F(Gadget, ErrorPictureStandsInTheCornerWhenVisible) {
    FXErrGadget gadget;
    gadget.CreateCN(&package_, 0);
    EXPECT_TRUE(Draw(&gadget, 0).empty() && calls_.empty()) << "touches nothing";
    gadget.visible = true;
    device_.gl.EnableLights(true);
    const SceneDevice::Drawn drawn = Draw(&gadget, 0).at(0);
    EXPECT_FALSE(drawn.lights || drawn.depthTest || drawn.depthWrite);
    ExpectMatrix(drawn.matrix, {Move(-0.6875f, 0.84375f, 0), Scale(0.29296875f, 0.13020833f, 1)});
    gadget.CreateCN(&package_, 99); // no such picture: white, over the whole screen
    ExpectMatrix(Draw(&gadget, 0).at(0).matrix, {});
    gadget.Destroy();
    EXPECT_EQ(GLRecorder::LiveTextures(), 0);
}

TEST_F(Gadget, MedallionIsRoundOnAnyScreen) {
    FXOrinGadget gadget;
    gadget.CreateCN(&package_, 5, 4);
    device_.gl.height = 1024;
    for (const auto& [width, sx, sy] : {std::tuple{768, 0.18f, 0.135f}, {2048, 0.09f, 0.18f}}) {
        const FXMatrix move = Move(0.9f - sx, sy - 0.85f, -1);
        device_.gl.width = width;
        gadget.needStart = true;
        for (const auto& [time, degrees] : {std::pair{7.0, 0.0f}, {9.0, 90.0f}, {15.0, 0.0f}}) {
            const auto& drawn = Draw(&gadget, time);
            ASSERT_EQ(drawn.size(), 2u);
            ExpectMatrix(drawn[0].matrix, {move, Scale(sx, sy, 1), TurnY(degrees)});
            ExpectMatrix(drawn[1].matrix, {move, Move(0, -0.25f, 0), Scale(1.332f * sx, 0.333f * sy, 1)});
            EXPECT_TRUE(drawn[1].mesh->vertices[2].color[3] == 0.4f && drawn[1].mesh->colorMode == 1);
        }
    }
    gadget.showModel = false;
    EXPECT_EQ(Draw(&gadget, 20).size(), 1u);
    EXPECT_EQ(std::ranges::count(calls_, "glClear(GL_DEPTH_BUFFER_BIT)"), 0);
    gadget.Destroy();
    EXPECT_EQ(GLRecorder::LiveTextures(), 0);
}

TEST_F(Gadget, CubeWaitsThenFadesIn) {
    FXDemoGadget gadget;
    gadget.CreateCN(&package_, 5, 6);
    const auto expect = [&](double time, std::size_t drawn, float alpha) { // of both materials
        EXPECT_EQ(Draw(&gadget, time).size(), drawn) << time;
        EXPECT_FLOAT_EQ(gadget.skinMat.diffuse[3], alpha) << time;
        EXPECT_FLOAT_EQ(gadget.envMat.diffuse[3], alpha) << time;
    };
    expect(100, 0, 1);
    expect(114.9, 0, 1);
    expect(115.5, 0, 1); // late: the fade begins with this frame
    expect(115.5, 12, 0);
    expect(116, 12, 0.25f);
    expect(117, 12, 0.75f);
    expect(400, 12, 1);
    EXPECT_TRUE(gadget.skinMat.diffuse[0] == 1 && gadget.envMat.diffuse[0] == 0.5f);
    EXPECT_TRUE(gadget.envMat.GetWidth() == 3 && gadget.skinMat.GetWidth() == 1);
    gadget.CreateCN(&package_, 5, 6);
    EXPECT_TRUE(Draw(&gadget, 500).empty()) << "waits again";
    gadget.Destroy();
    EXPECT_EQ(GLRecorder::LiveTextures(), 0);
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
