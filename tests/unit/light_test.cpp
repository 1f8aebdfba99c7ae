#include "image/light.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

namespace {

struct Grey {
    float rgb, a;
};

void ExpectGrey(const float* color, Grey grey, const char* what) {
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(color[i], i < 3 ? grey.rgb : grey.a) << what << " " << i;
}

TEST(Light, PresetsSetAllButPlaceAndDirection) {
    const struct {
        const char* what;
        void (*set)(FXLight& l);
        float w;
        Grey ambient, diffuse, specular;
        float exponent, constant, linear;
    } kCases[] = {
        {"fresh", [](FXLight& l) { l = FXLight(); }, 0, {0.2f, 1}, {1, 1}, {0, 0}, 0, 0, 0},
        {"diffuse", [](FXLight& l) { l.SetDefDiffuse(0.5f); }, 0, {0.2f, 0.5f}, {1, 0.5f}, {0, 0}, 0, 0, 0},
        {"default", [](FXLight& l) { l.SetDefault(0.5f); }, 0, {0.2f, 0.5f}, {1, 0.5f}, {0, 0}, 0, 0, 0},
        {"ambient", [](FXLight& l) { l.SetDefAmbient(0.5f); }, 0, {1, 0.5f}, {0, 0}, {0, 0}, 0, 0, 0},
        {"specular",
         [](FXLight& l) { l.SetDefSpecular(0.5f); },
         1,
         {0, 0.5f},
         {1, 0.5f},
         {1, 0.5f},
         12,
         0.4f,
         0.4f},
        {"dark",
         [](FXLight& l) { l.SetDiffuseDark(0.3f, 0.5f); },
         0,
         {0, 0.5f},
         {0.3f, 0.5f},
         {0, 0},
         0,
         0,
         0},
    };
    for (const auto& c : kCases) {
        FXLight light;
        std::fill_n(&light.ambient[0], 4, 9.0f);
        std::fill_n(&light.diffuse[0], 4, 9.0f);
        std::fill_n(&light.specular[0], 4, 9.0f);
        light.position[3] = light.spotExponent = light.spotCutoff = light.quadraticAttenuation = 9;
        light.constantAttenuation = light.linearAttenuation = 9;
        c.set(light);
        const float position[4] = {0, 0, -1, c.w}, direction[4] = {0, 0, 1, 0};
        EXPECT_TRUE(std::equal(position, position + 4, light.position)) << c.what;
        EXPECT_TRUE(std::equal(direction, direction + 4, light.spotDirection)) << c.what;
        ExpectGrey(light.ambient, c.ambient, c.what);
        ExpectGrey(light.diffuse, c.diffuse, c.what);
        ExpectGrey(light.specular, c.specular, c.what);
        EXPECT_EQ(light.spotExponent, c.exponent) << c.what;
        EXPECT_EQ(light.spotCutoff, 180.0f) << c.what;
        EXPECT_EQ(light.constantAttenuation, c.constant) << c.what;
        EXPECT_EQ(light.linearAttenuation, c.linear) << c.what;
        EXPECT_EQ(light.quadraticAttenuation, 0.0f) << c.what;
        EXPECT_FALSE(light.disabled);
    }
}

TEST(Light, IsTintedAlphaIncluded) {
    FXLight light;
    light.SetDefSpecular(1);
    light.ambient[1] = 4;
    light.MultiColorF(0.5f, 0.25f, 2, 0.125f);
    const float ambient[4] = {0, 1, 0, 0.125f}, diffuse[4] = {0.5f, 0.25f, 2, 0.125f};
    EXPECT_TRUE(std::equal(ambient, ambient + 4, light.ambient));
    EXPECT_TRUE(std::equal(diffuse, diffuse + 4, light.diffuse));
    EXPECT_TRUE(std::equal(diffuse, diffuse + 4, light.specular));
}

} // namespace
