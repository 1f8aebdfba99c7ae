// Textures, materials and meshes on the device, call by call.
#include "fakes/fake_win32.h"
#include "geometry/mesh.h"
#include "image/canvas.h"
#include "unit/recorded_device.h"

#include <gtest/gtest.h>

namespace {

using Calls = std::vector<std::string>;

void Add(Calls* calls, const Calls& more) {
    calls->insert(calls->end(), more.begin(), more.end());
}

Calls ColorsOfBlack() {
    return {"glMaterialfv(GL_FRONT_AND_BACK,GL_AMBIENT,0,0,0,0)",
            "glMaterialfv(GL_FRONT_AND_BACK,GL_DIFFUSE,0,0,0,0.5)",
            "glMaterialfv(GL_FRONT_AND_BACK,GL_SPECULAR,0,0,0,0)",
            "glMaterialfv(GL_FRONT_AND_BACK,GL_EMISSION,0,0,0,0)",
            "glMaterialf(GL_FRONT_AND_BACK,GL_SHININESS,0)"};
}

// Binding of a texture on the active unit; 0: none.
Calls Binding(int name) {
    return {name > 0 ? "glEnable(GL_TEXTURE_2D)" : "glDisable(GL_TEXTURE_2D)",
            "glBindTexture(GL_TEXTURE_2D," + std::to_string(name) + ")"};
}

Calls SecondBinding(int name) {
    Calls calls = {"glActiveTexture(GL_TEXTURE1)"};
    Add(&calls, Binding(name));
    calls.push_back("glActiveTexture(GL_TEXTURE0)");
    return calls;
}

class Drawing : public testing::Test {
protected:
    Drawing() {
        ResetFakeWin32();
        fakeWin32.glEntryPoints = GLRecorder::EntryPoints();
        device_.gl.CreateChild(kFakeWindow);
        GLRecorder::Take();
        // Three by two pixels, in a storage of four by two.
        canvas_.Realloc(3, 2);
        static_cast<FXPixmap&>(canvas_).Clear(0x44332211u);
        canvas_.pixels[7] = 0xDDCCBBAAu;
        material_.SetBlack(0.5f);
        textured_.SetBlack(0.5f);
    }

    RecordedDevice<> device_;
    FXGL& gl_ = device_.gl;
    FXCanvas canvas_;
    FXMaterial material_, textured_;
};

TEST_F(Drawing, UploadsTheWholeStorage) {
    const Calls bind = {"glBindTexture(GL_TEXTURE_2D,1)", "glPixelStorei(GL_UNPACK_ALIGNMENT,1)"};
    const Calls clamp = {"glTexParameteri(GL_TEXTURE_2D,GL_TEXTURE_MAG_FILTER,GL_LINEAR)",
                         "glTexParameteri(GL_TEXTURE_2D,GL_TEXTURE_WRAP_S,GL_CLAMP_TO_EDGE)",
                         "glTexParameteri(GL_TEXTURE_2D,GL_TEXTURE_WRAP_T,GL_CLAMP_TO_EDGE)",
                         "glBindTexture(GL_TEXTURE_2D,0)"};
    const std::string pixels = "GL_RGBA,GL_UNSIGNED_BYTE,11223344..aabbccdd)";
    const Calls image = {"glTexImage2D(GL_TEXTURE_2D,0,4,4,2,0," + pixels,
                         "glTexParameteri(GL_TEXTURE_2D,GL_TEXTURE_MIN_FILTER,GL_LINEAR)"};

    Calls expected = {"glGenTextures(1,1)"};
    Add(&expected, bind);
    Add(&expected, {"gluBuild2DMipmaps(GL_TEXTURE_2D,4,4,2," + pixels,
                    "glTexParameteri(GL_TEXTURE_2D,GL_TEXTURE_MIN_FILTER,GL_LINEAR_MIPMAP_LINEAR)"});
    Add(&expected, clamp);
    EXPECT_TRUE(material_.SetTexture(&canvas_));
    EXPECT_EQ(GLRecorder::Take(), expected);

    expected = bind; // into the same object
    Add(&expected, image);
    Add(&expected, clamp);
    material_.mipmaps = false;
    EXPECT_TRUE(gl_.PrepareTexture(&material_));
    EXPECT_EQ(GLRecorder::Take(), expected);

    material_.mipmaps = true;
    material_.extentU = material_.extentV = 0;
    material_.prepared = false;
    EXPECT_TRUE(gl_.FastPrepareTexture(&material_, &canvas_));
    EXPECT_EQ(GLRecorder::Take(), expected);
    EXPECT_TRUE(material_.prepared && material_.extentU == 0.75f && material_.extentV == 1.0f);

    gl_.UnprepareTexture(&material_);
    gl_.UnprepareTexture(&material_);
    EXPECT_EQ(GLRecorder::Take(), Calls{"glDeleteTextures(1,1)"});
    EXPECT_TRUE(material_.prepared && material_.texName == 0);
}

TEST_F(Drawing, AppliesColoursAndTexture) {
    ASSERT_TRUE(textured_.SetTexture(&canvas_));
    FXMaterial unprepared;
    unprepared.SetBlack(0.5f);
    ASSERT_TRUE(unprepared.SetTexture(&canvas_));
    gl_.UnprepareTexture(&unprepared);
    FXMaterial named; // has a name but no picture
    named.SetBlack(0.5f);
    named.texName = 1;
    GLRecorder::Take();
    const struct {
        FXMaterial* material;
        int name;
    } cases[] = {{&textured_, 1}, {&unprepared, 0}, {&textured_, 1},
                 {&named, 0},     {&textured_, 1},  {&material_, 0}};
    for (const auto& c : cases) {
        Calls expected = ColorsOfBlack();
        Add(&expected, Binding(c.name));
        gl_.ApplyMaterial(c.material);
        EXPECT_EQ(GLRecorder::Take(), expected);
        EXPECT_EQ(gl_.textureUnit0Bound, c.name > 0);
        gl_.ApplyMaterial2(c.material);
        EXPECT_EQ(GLRecorder::Take(), SecondBinding(c.name));
        EXPECT_EQ(gl_.textureUnit1Bound, c.name > 0);
    }
    named.texName = 0;
    gl_.ApplyMaterial2(&textured_);
    gl_.ApplyMaterial2(nullptr);
    EXPECT_FALSE(gl_.textureUnit1Bound);
    GLRecorder::Take();

    for (const bool before : {false, true}) {
        gl_.textureUnit0Bound = gl_.textureUnit1Bound = before;
        gl_.EnableTestingMaterial(true);
        gl_.ApplyMaterial(before ? &material_ : &textured_);
        gl_.ApplyMaterial2(before ? nullptr : &textured_);
        gl_.EnableTestingMaterial(false);
        EXPECT_EQ(GLRecorder::Take(), Calls{});
        EXPECT_TRUE(gl_.textureUnit0Bound == before && gl_.textureUnit1Bound == before);
    }
}

class MeshDrawing : public Drawing {
protected:
    MeshDrawing() {
        for (FXMesh* mesh : {&mesh_, &second_}) {
            mesh->Realloc(3, 4);
            const int order[] = {2, 0, 1, 1}; // a rest that makes no triangle is sent as well
            std::copy_n(order, 4, mesh->indices);
            for (int i = 0; i < 3; ++i) {
                const auto f = static_cast<float>(i);
                mesh->vertices[i] = {{f, 1, 2}, {3, f, 4}, {5, mesh == &mesh_ ? f : 10 + f}, {6, 7, f, 8}, {},
                                     0,         {}};
            }
        }
    }
    ~MeshDrawing() override { mesh_.material = nullptr; }

    // C, N, T, M, V: colour, normal, texture coordinates, those of the second mesh, position of vertex i.
    static std::string VertexCall(char what, int i) {
        const std::string n = std::to_string(i);
        switch (what) {
        case 'C':
            return "glColor4fv(6,7," + n + ",8)";
        case 'N':
            return "glNormal3fv(3," + n + ",4)";
        case 'T':
            return "glTexCoord2fv(5," + n + ")";
        case 'M':
            return "glMultiTexCoord2fv(GL_TEXTURE1,5,1" + n + ")";
        default:
            return "glVertex3fv(" + n + ",1,2)";
        }
    }

    FXMesh mesh_, second_;
};

TEST_F(MeshDrawing, SendsWhatColourModeLightsAndTextureAskFor) {
    const struct {
        int colorMode;
        bool lights, texture;
        const char* perVertex;
        const char* withSecond;
    } kRows[] = {
        {0, false, false, "V", "V"},    {0, false, true, "TV", "TMV"},    {0, true, false, "NV", "NV"},
        {0, true, true, "NTV", "NTMV"}, {1, false, false, "CV", "CV"},    {1, false, true, "CTV", "CTMV"},
        {1, true, false, "CNV", "CNV"}, {1, true, true, "CNTV", "CNTMV"}, {2, true, true, "", ""},
        {-1, false, false, "", ""},
    };
    ASSERT_TRUE(textured_.SetTexture(&canvas_));
    FXCanvas other;
    ASSERT_TRUE(other.Copy(&canvas_));
    FXMaterial secondMaterial;
    ASSERT_TRUE(secondMaterial.SetTexture(&other));
    for (const auto& row : kRows)
        for (const bool layered : {false, true}) {
            mesh_.colorMode = row.colorMode;
            mesh_.material = row.texture ? &textured_ : &material_;
            mesh_.secondMesh = layered ? &second_ : nullptr;
            second_.material = &secondMaterial;
            gl_.EnableLights(row.lights);
            GLRecorder::Take();
            gl_.RenderMesh(&mesh_);

            Calls expected;
            if (row.colorMode == 0)
                expected = {"glColor4f(1,1,1,1)", "glDisable(GL_COLOR_MATERIAL)"};
            else if (row.colorMode == 1)
                expected = {"glEnable(GL_COLOR_MATERIAL)",
                            "glColorMaterial(GL_FRONT_AND_BACK,GL_AMBIENT_AND_DIFFUSE)",
                            "glColor4f(1,1,1,1)"};
            Add(&expected, ColorsOfBlack());
            Add(&expected, Binding(row.texture ? 1 : 0));
            Add(&expected, SecondBinding(layered ? 2 : 0));
            expected.push_back("glBegin(GL_TRIANGLES)");
            for (const int i : {2, 0, 1, 1})
                for (const char what : std::string(layered ? row.withSecond : row.perVertex))
                    expected.push_back(VertexCall(what, i));
            expected.push_back("glEnd()");
            EXPECT_EQ(GLRecorder::Take(), expected)
                << row.colorMode << row.lights << row.texture << (layered ? " two layers" : "");
        }
    second_.material = nullptr;
}

TEST_F(MeshDrawing, OfNothingTouchesNothing) {
    for (int reason = 0; reason < 3; ++reason) {
        mesh_.disabled = reason == 0;
        mesh_.vertexCount = reason == 1 ? 0 : 3;
        mesh_.indexCount = reason == 2 ? 0 : 4;
        gl_.RenderMesh(&mesh_);
        EXPECT_EQ(GLRecorder::Take(), Calls{}) << reason;
    }
}

TEST_F(MeshDrawing, WithoutMaterialUsesTheDefaultOne) {
    gl_.GetDefaultMaterial()->SetBlack(0.5f);
    gl_.RenderMesh(&mesh_);
    const Calls calls = GLRecorder::Take(), colors = ColorsOfBlack();
    ASSERT_GT(calls.size(), 7u);
    EXPECT_TRUE(std::equal(colors.begin(), colors.end(), calls.begin() + 2));
}

TEST_F(MeshDrawing, OfTwoLayersNeedsMultitexture) {
    mesh_.secondMesh = &second_;
    const struct {
        const char* extensions;
        const char* missing; // entry point
        bool draws;
    } kCases[] = {{"GL_ARB_multitexture", "", true},
                  {"", "", false},
                  {"GL_ARB_multitexture", "glMultiTexCoord2fv", false}};
    for (const auto& c : kCases) {
        GLRecorder::SetDriver({.extensions = c.extensions});
        fakeWin32.glEntryPoints = GLRecorder::EntryPoints();
        fakeWin32.glEntryPoints.erase(c.missing);
        gl_.CreateChild(kFakeWindow);
        GLRecorder::Take();
        gl_.RenderMesh(&mesh_);
        const Calls calls = GLRecorder::Take();
        EXPECT_EQ(std::ranges::count(calls, "glBegin(GL_TRIANGLES)"), c.draws) << c.extensions << c.missing;
    }
    mesh_.secondMesh = nullptr;
    GLRecorder::SetDriver({.extensions = ""});
    gl_.CreateChild(kFakeWindow);
    GLRecorder::Take();
    gl_.RenderMesh(&mesh_);
    const Calls calls = GLRecorder::Take();
    EXPECT_EQ(std::ranges::count(calls, "glActiveTexture(GL_TEXTURE1)"), 0) << "one layer needs none";
    EXPECT_EQ(std::ranges::count(calls, "glBegin(GL_TRIANGLES)"), 1);
}

} // namespace
