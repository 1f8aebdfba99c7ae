// Textures, materials and meshes on the device, call by call.
#include "fakes/fake_win32.h"
#include "image/canvas.h"
#include "unit/recorded_device.h"
#include "unit/test_mesh.h"

namespace {

const std::string kBlack = "glMaterialfv(GL_FRONT_AND_BACK,GL_AMBIENT,0,0,0,0) "
                           "glMaterialfv(GL_FRONT_AND_BACK,GL_DIFFUSE,0,0,0,0.5) "
                           "glMaterialfv(GL_FRONT_AND_BACK,GL_SPECULAR,0,0,0,0) "
                           "glMaterialfv(GL_FRONT_AND_BACK,GL_EMISSION,0,0,0,0) "
                           "glMaterialf(GL_FRONT_AND_BACK,GL_SHININESS,0) ";

// Binding of a texture on the active unit; 0: none.
std::string Binding(int name) {
    const std::string bind = "glBindTexture(GL_TEXTURE_2D," + std::to_string(name) + ")";
    return (name > 0 ? "glEnable(GL_TEXTURE_2D) " : "glDisable(GL_TEXTURE_2D) ") + bind;
}
std::string SecondBinding(int name) {
    return "glActiveTexture(GL_TEXTURE1) " + Binding(name) + " glActiveTexture(GL_TEXTURE0)";
}

class Drawing : public testing::Test {
protected:
    Drawing() {
        ResetFakeWin32();
        // Three by two pixels, in a storage of four by two.
        canvas_.Realloc(3, 2);
        static_cast<FXPixmap&>(canvas_).Clear(0x44332211u);
        canvas_.pixels[7] = 0xDDCCBBAAu;
        for (FXMaterial* m : {&plain_, &textured_, &second_})
            m->SetBlack(0.5f);
    }

    RecordedDevice<> device_;
    FXGL& gl_ = device_.gl;
    FXCanvas canvas_;
    FXMaterial plain_, textured_, second_;
};

TEST_F(Drawing, UploadsTheWholeStorage) {
    const std::string bind = "glBindTexture(GL_TEXTURE_2D,1) glPixelStorei(GL_UNPACK_ALIGNMENT,1) ";
    const std::string pixels = "GL_RGBA,GL_UNSIGNED_BYTE,11223344..aabbccdd) ";
    const std::string rest = "glTexParameteri(GL_TEXTURE_2D,GL_TEXTURE_MAG_FILTER,GL_LINEAR) "
                             "glTexParameteri(GL_TEXTURE_2D,GL_TEXTURE_WRAP_S,GL_CLAMP_TO_EDGE) "
                             "glTexParameteri(GL_TEXTURE_2D,GL_TEXTURE_WRAP_T,GL_CLAMP_TO_EDGE) "
                             "glBindTexture(GL_TEXTURE_2D,0)";
    EXPECT_TRUE(textured_.SetTexture(&canvas_));
    EXPECT_EQ(GLRecorder::TakeText(),
              "glGenTextures(1,1) " + bind + "gluBuild2DMipmaps(GL_TEXTURE_2D,4,4,2," + pixels +
                  "glTexParameteri(GL_TEXTURE_2D,GL_TEXTURE_MIN_FILTER,GL_LINEAR_MIPMAP_LINEAR) " + rest);
    const std::string again = bind + "glTexImage2D(GL_TEXTURE_2D,0,4,4,2,0," + pixels + // the same object
                              "glTexParameteri(GL_TEXTURE_2D,GL_TEXTURE_MIN_FILTER,GL_LINEAR) " + rest;
    textured_.mipmaps = false;
    EXPECT_TRUE(gl_.PrepareTexture(&textured_));
    EXPECT_EQ(GLRecorder::TakeText(), again);
    textured_.mipmaps = true;
    textured_.extentU = textured_.extentV = 0;
    textured_.prepared = false;
    EXPECT_TRUE(gl_.FastPrepareTexture(&textured_, &canvas_));
    EXPECT_EQ(GLRecorder::TakeText(), again);
    EXPECT_TRUE(textured_.prepared && textured_.extentU == 0.75f && textured_.extentV == 1.0f);
    gl_.UnprepareTexture(&textured_);
    gl_.UnprepareTexture(&textured_);
    EXPECT_EQ(GLRecorder::TakeText(), "glDeleteTextures(1,1)");
    EXPECT_TRUE(textured_.prepared && textured_.texName == 0);
}

class MeshDrawing : public Drawing {
protected:
    MeshDrawing() {
        std::vector<TestVertex> vertices, layer;
        for (const float i : {0.0f, 1.0f, 2.0f}) {
            vertices.push_back({{i, 1, 2}, {3, i, 4}, {5, i}});
            layer.push_back({{}, {}, {5, 10 + i}});
        }
        MakeMesh(&mesh_, vertices, {2, 0, 1, 1}); // a rest that makes no triangle is sent as well
        MakeMesh(&layer_, layer, {});
        for (int i = 0; i < 3; ++i)
            mesh_.vertices[i].color[2] = static_cast<float>(i);
    }

    FXMesh mesh_, layer_;
};

TEST_F(MeshDrawing, SendsWhatColourModeLightsAndTextureAskFor) {
    const std::string kUncoloured = "glColor4f(1,1,1,1) glDisable(GL_COLOR_MATERIAL) ";
    const std::string kColoured =
        "glEnable(GL_COLOR_MATERIAL) "
        "glColorMaterial(GL_FRONT_AND_BACK,GL_AMBIENT_AND_DIFFUSE) glColor4f(1,1,1,1) ";
    ASSERT_TRUE(textured_.SetTexture(&canvas_));
    ASSERT_TRUE(second_.SetTexture(&canvas_));
    layer_.material = &second_;
    for (int bits = 0; bits < 16; ++bits) {
        const bool colored = (bits & 1) != 0, lit = (bits & 2) != 0, textured = (bits & 4) != 0,
                   layered = (bits & 8) != 0;
        mesh_.colorMode = colored;
        mesh_.material = textured ? &textured_ : &plain_;
        mesh_.secondMesh = layered ? &layer_ : nullptr;
        gl_.EnableLights(lit);
        GLRecorder::Take();
        gl_.RenderMesh(&mesh_);
        std::string expected = (colored ? kColoured : kUncoloured) + kBlack + Binding(textured ? 1 : 0) +
                               " " + SecondBinding(layered ? 2 : 0) + " glBegin(GL_TRIANGLES)";
        for (const std::string n : {"2", "0", "1", "1"}) {
            expected += colored ? " glColor4fv(0,0," + n + ",0)" : "";
            expected += lit ? " glNormal3fv(3," + n + ",4)" : "";
            expected += textured ? " glTexCoord2fv(5," + n + ")" : "";
            expected += textured && layered ? " glMultiTexCoord2fv(GL_TEXTURE1,5,1" + n + ")" : "";
            expected += " glVertex3fv(" + n + ",1,2)";
        }
        EXPECT_EQ(GLRecorder::TakeText(), expected + " glEnd()") << bits;
    }
    mesh_.colorMode = 2; // no such mode: no vertices
    gl_.RenderMesh(&mesh_);
    EXPECT_TRUE(GLRecorder::TakeText().ends_with("glBegin(GL_TRIANGLES) glEnd()"));
    mesh_.material = nullptr; // the default one
    gl_.GetDefaultMaterial()->SetBlack(0.5f);
    gl_.RenderMesh(&mesh_);
    EXPECT_TRUE(GLRecorder::TakeText().starts_with(kBlack));
    mesh_.material = &textured_;
    gl_.UnprepareTexture(&textured_);
    gl_.RenderMesh(&mesh_);
    EXPECT_NE(GLRecorder::TakeText().find(kBlack + Binding(0)), std::string::npos);
    gl_.EnableTestingMaterial(true);
    gl_.RenderMesh(&mesh_);
    const std::string text = GLRecorder::TakeText();
    EXPECT_TRUE(text.find("glMaterial") == std::string::npos && text.find("Texture") == std::string::npos);
}

TEST_F(MeshDrawing, OfNothingTouchesNothing) {
    for (const int reason : {0, 1, 2}) {
        mesh_.disabled = reason == 0;
        mesh_.vertexCount = reason == 1 ? 0 : 3;
        mesh_.indexCount = reason == 2 ? 0 : 4;
        gl_.RenderMesh(&mesh_);
        EXPECT_EQ(GLRecorder::TakeText(), "") << reason;
    }
}

TEST_F(MeshDrawing, OfTwoLayersNeedsRoomAndMultitexture) {
    mesh_.secondMesh = &layer_;
    layer_.vertexCount = layer_.indexCount = 0; // what it draws itself does not matter
    const auto expect = [&](int capacity, bool draws) {
        layer_.vertexCapacity = capacity;
        gl_.RenderMesh(&mesh_);
        EXPECT_EQ(std::ranges::count(GLRecorder::Take(), "glBegin(GL_TRIANGLES)"), draws) << capacity;
    };
    expect(3, true);
    expect(2, false);
    GLRecorder::SetDriver({.missing = "glMultiTexCoord2fv"});
    gl_.CreateChild(kFakeWindow);
    GLRecorder::Take();
    expect(3, false);
}

} // namespace
