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
    std::ptrdiff_t DepthClears() const { return std::ranges::count(calls_, "glClear(GL_DEPTH_BUFFER_BIT)"); }

    TempFolder folder_;
    RecordedDevice<SceneDevice> device_;
    FXPackage package_;
    std::vector<std::string> calls_;
};

using Placement = Gadget;

TEST_F(Placement, PutsAPictureOnItsPixels) {
    const struct {
        float screenW, screenH, picW, picH, x, y;
        std::array<float, 4> expected; // scale and move
    } kCases[] = {{1024, 768, 300, 100, 10, 10, {0.29296875f, 0.13020833f, -0.6875f, 0.84375f}},
                  {640, 480, 640, 480, 0, 0, {1, 1, 0, 0}},
                  {800, 600, 200, 300, 600, 300, {0.25f, 0.5f, 0.75f, -0.5f}},
                  {0, 600, 200, 300, 5, 5, {1, 1, 0, 0}},
                  {800, 0, 200, 300, 5, 5, {1, 1, 0, 0}},
                  {800, 600, 0, 300, 5, 5, {1, 1, 0, 0}},
                  {800, 600, 200, -1, 5, 5, {1, 1, 0, 0}},
                  {800, 600, 200, std::nanf(""), 5, 5, {1, 1, 0, 0}}};
    for (const auto& c : kCases) {
        FXScrPos01 placement;
        placement.screenW = c.screenW;
        placement.screenH = c.screenH;
        placement.picW = c.picW;
        placement.picH = c.picH;
        placement.SetPos(c.x - c.screenW / 2, c.y - c.screenH / 4);
        placement.ShiftPos(0.5f, 0.25f);
        const FXMatrix before = Scale(0.5f, 0.5f, 1);
        const FXMatrix move = Move(c.expected[2], c.expected[3], 0);
        const FXMatrix scale = Scale(c.expected[0], c.expected[1], 1);
        for (const bool relative : {true, false}) {
            device_.gl.ApplyMatrix(&before);
            placement.relative = relative;
            placement.OnRender(&device_.gl, 0);
            ExpectMatrix(device_.gl.matrix, {relative ? before : FXMatrix(), move, scale});
        }
    }
}

TEST_F(Placement, SizesAndNarrowsWhatItPlaces) {
    const struct {
        const char* what;
        void (*change)(FXScrPos01& p);
        float sx, sy, x, y;
    } kCases[] = {
        {"placed", [](FXScrPos01&) {}, 0.25f, 0.5f, -0.5f, 0.25f},
        {"size alone", [](FXScrPos01& p) { p.UpdateSize(); }, 0.25f, 0.5f, 0, 0},
        {"no size", [](FXScrPos01& p) { p.picW = 0, p.UpdateSize(); }, 1, 1, 0, 0},
        {"centred", [](FXScrPos01& p) { p.UpdateAspectH1(0, 800, 300); }, 0.125f, 0.5f, -0.5f, 0.25f},
        {"right", [](FXScrPos01& p) { p.UpdateAspectH1(1, 800, 300); }, 0.125f, 0.5f, -0.375f, 0.25f},
        {"left", [](FXScrPos01& p) { p.UpdateAspectH1(7, 800, 300); }, 0.125f, 0.5f, -0.625f, 0.25f},
        {"as wide", [](FXScrPos01& p) { p.UpdateAspectH1(1, 400, 300); }, 0.25f, 0.5f, -0.5f, 0.25f},
        {"less wide", [](FXScrPos01& p) { p.UpdateAspectH1(1, 300, 300); }, 0.25f, 0.5f, -0.5f, 0.25f},
        {"no height", [](FXScrPos01& p) { p.UpdateAspectH1(1, 300, 0); }, 0.25f, 0.5f, -0.5f, 0.25f},
        {"no width", [](FXScrPos01& p) { p.UpdateAspectH1(1, 0, 0); }, 0.25f, 0.5f, -0.5f, 0.25f},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.what);
        FXScrPos01 placement;
        placement.screenW = 800;
        placement.screenH = 600;
        placement.picW = 200;
        placement.picH = 300;
        placement.SetPos(100, 75);
        c.change(placement);
        ExpectMatrix(placement.placeMatrix, {Move(c.x, c.y, 0), Scale(c.sx, c.sy, 1)});
    }
}

TEST_F(Placement, TellsItsPixelsOnAnotherScreen) {
    const struct {
        float screenW, screenH, posX, posY;
        int w, h;
        std::array<int, 4> expected; // a picture of 200.5 x 300
    } kCases[] = {{800, 600, 100, 75, 800, 600, {100, 75, 300, 375}},
                  {800, 600, 100.75f, 75, 3200, 300, {403, 37, 1204, 187}}, // of the whole pixels 301 and 375
                  {800, 600, -101, -75, 400, 1200, {-50, -150, 49, 450}},
                  {0, 600, 100, 75, 400, 300, {}},
                  {800, -1, 100, 75, 400, 300, {}},
                  {800, 600, 1e30f, std::nanf(""), 400, 300, {}}};
    for (const auto& c : kCases) {
        FXScrPos01 placement;
        placement.screenW = c.screenW;
        placement.screenH = c.screenH;
        placement.picW = 200.5f;
        placement.picH = 300;
        placement.SetPos(c.posX, c.posY);
        FXRect rc = {9, 9, 9, 9};
        placement.GetPixelRC(&rc, c.w, c.h);
        EXPECT_EQ((std::array{rc.left, rc.top, rc.right, rc.bottom}), c.expected) << c.posX;
    }
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

    error.visible = true;
    ExpectMatrix(Draw(&error, 0).at(0).matrix,
                 {Move(-0.6875f, 0.84375f, 0), Scale(0.29296875f, 0.13020833f, 1)});
    const auto& drawn = Draw(&logo, 5);
    ASSERT_EQ(drawn.size(), 2u);
    EXPECT_TRUE(drawn[0].mesh->vertices[0].color[3] == 0.4f && drawn[0].mesh->colorMode == 1);
    EXPECT_TRUE(logo.labelMat.GetWidth() == 3 && logo.spin.start == 5 && logo.spin.duration == 8);
    EXPECT_TRUE(cube.envMat.GetWidth() == 3 && cube.skinMat.GetWidth() == 1);
    EXPECT_TRUE(cube.envMat.keptColors[1][0] == 0.5f && cube.skinMat.keptColors[1][0] == 1);
    EXPECT_TRUE(cube.path.GetCnt() == 20 && cube.skins[5].mesh.material == &cube.skinMat);
}

TEST_F(Gadget, ErrorPictureStandsInTheCornerWhenVisible) {
    FXErrGadget gadget;
    gadget.CreateCN(&package_, 0);
    EXPECT_TRUE(Draw(&gadget, 0).empty() && calls_.empty()) << "touches nothing";
    gadget.visible = true;
    device_.gl.EnableLights(true);
    const SceneDevice::Drawn drawn = Draw(&gadget, 0).at(0);
    EXPECT_FALSE(drawn.lights || drawn.depthTest || drawn.depthWrite);
    EXPECT_TRUE(drawn.mesh->material->prepared);
    ExpectMatrix(drawn.matrix, {Move(-0.6875f, 0.84375f, 0), Scale(0.29296875f, 0.13020833f, 1)});
    gadget.CreateCN(&package_, 99); // no such picture: white, over the whole screen
    ExpectMatrix(Draw(&gadget, 0).at(0).matrix, {});
    gadget.Destroy();
    EXPECT_EQ(GLRecorder::LiveTextures(), 0);
}

TEST_F(Gadget, MedallionTurnsInTheLowerRightCorner) {
    const struct {
        int width, height;
        float sx, sy;
    } kScreens[] = {{1024, 768, 0.135f, 0.18f}, {768, 1024, 0.18f, 0.135f}, {500, 500, 0.18f, 0.18f}};
    FXOrinGadget gadget;
    gadget.CreateCN(&package_, 5, 4);
    for (const auto& [width, height, sx, sy] : kScreens) {
        const FXMatrix move = Move(0.9f - sx, sy - 0.85f, -1);
        device_.gl.width = width;
        device_.gl.height = height;
        gadget.needStart = true;
        for (const auto& [time, degrees] :
             {std::pair{7.0, 0.0f}, {9.0, 90.0f}, {14.0, 315.0f}, {15.0, 0.0f}}) {
            const auto& drawn = Draw(&gadget, time);
            ASSERT_EQ(drawn.size(), 2u);
            ExpectMatrix(drawn[0].matrix, {move, Scale(sx, sy, 1), TurnY(degrees)});
            EXPECT_TRUE(drawn[0].lights && drawn[0].depthTest && drawn[0].depthWrite);
            ExpectMatrix(drawn[1].matrix, {move, Move(0, -0.25f, 0), Scale(1.332f * sx, 0.333f * sy, 1)});
            EXPECT_FALSE(drawn[1].lights || drawn[1].depthTest || drawn[1].depthWrite);
            EXPECT_TRUE(drawn[1].mesh->vertices[2].color[3] == 0.4f && drawn[1].mesh->colorMode == 1);
            EXPECT_EQ(DepthClears(), 1);
        }
    }
    gadget.showModel = false;
    EXPECT_TRUE(Draw(&gadget, 20).size() == 1 && DepthClears() == 0);
    gadget.Destroy();
    EXPECT_EQ(GLRecorder::LiveTextures(), 0);
}

using Cube = Gadget;

TEST_F(Cube, WaitsThenFadesIn) {
    const struct {
        double time;
        std::size_t drawn;
        float alpha;                                                // of both materials
    } kFrames[] = {{100, 0, 1},    {114.9, 0, 1},    {115.5, 0, 1}, // late: the fade begins with this frame
                   {115.5, 12, 0}, {116, 12, 0.25f}, {117, 12, 0.75f}, {117.5, 12, 1}, {400, 12, 1}};
    FXDemoGadget gadget;
    gadget.CreateCN(&package_, 5, 6);
    for (const auto& frame : kFrames) {
        EXPECT_EQ(Draw(&gadget, frame.time).size(), frame.drawn) << frame.time;
        EXPECT_FLOAT_EQ(gadget.skinMat.diffuse[3], frame.alpha) << frame.time;
        EXPECT_FLOAT_EQ(gadget.envMat.diffuse[3], frame.alpha) << frame.time;
    }
    EXPECT_TRUE(gadget.skinMat.diffuse[0] == 1 && gadget.envMat.diffuse[0] == 0.5f);
    EXPECT_TRUE(gadget.envMat.GetWidth() == 3 && gadget.skinMat.GetWidth() == 1);
    gadget.CreateCN(&package_, 5, 6);
    EXPECT_TRUE(Draw(&gadget, 500).empty()) << "waits again";
    gadget.Destroy();
    EXPECT_EQ(GLRecorder::LiveTextures(), 0);
}

TEST_F(Cube, TravelsOnARandomClosedCurve) {
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

TEST_F(Cube, DrawsItsReflectionInsideItsSkin) {
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
