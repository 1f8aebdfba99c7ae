// The compositor's picture of an output becomes the photograph, whatever its format and the monitor's turn.
#include "win32/wayland/shared_picture.h"

#include <gtest/gtest.h>
#include <wayland-client.h>

#include <cstring>

namespace {

using wayland::SharedPicture;

// Pixels that are letters, rows between blanks, each followed by what is no part of the picture.
SharedPicture Letters(const std::string& rows, bool upsideDown, std::vector<unsigned char>* bytes) {
    constexpr int kGap = 8; // bytes
    SharedPicture picture;
    picture.width = static_cast<int>(rows.find(' '));
    picture.height = static_cast<int>(rows.size() + 1) / (picture.width + 1);
    picture.stride = picture.width * 4 + kGap;
    picture.format = WL_SHM_FORMAT_XRGB8888;
    picture.upsideDown = upsideDown;
    bytes->assign(static_cast<std::size_t>(picture.stride * picture.height), '!');
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            const int row = upsideDown ? picture.height - 1 - y : y;
            (*bytes)[static_cast<std::size_t>(row * picture.stride + x * 4)] =
                static_cast<unsigned char>(rows[static_cast<std::size_t>(y * (picture.width + 1) + x)]);
        }
    picture.bytes = bytes->data();
    return picture;
}

std::string Rows(const Photograph& photograph) {
    std::string rows;
    for (int y = 0; y < photograph.height; ++y) {
        rows += y > 0 ? " " : "";
        for (int x = 0; x < photograph.width; ++x)
            rows += static_cast<char>(
                photograph.pixels[static_cast<std::size_t>((y * photograph.width + x) * 4)]);
    }
    return rows;
}

// What the compositor draws for a monitor on which the user sees AB, CD and EF below each other.
TEST(SharedPicture, StandsUprightHoweverTheMonitorIsTurned) {
    const std::pair<int, const char*> cases[] = {
        {WL_OUTPUT_TRANSFORM_NORMAL, "AB CD EF"},      {WL_OUTPUT_TRANSFORM_90, "BDF ACE"},
        {WL_OUTPUT_TRANSFORM_180, "FE DC BA"},         {WL_OUTPUT_TRANSFORM_270, "ECA FDB"},
        {WL_OUTPUT_TRANSFORM_FLIPPED, "BA DC FE"},     {WL_OUTPUT_TRANSFORM_FLIPPED_90, "ACE BDF"},
        {WL_OUTPUT_TRANSFORM_FLIPPED_180, "EF CD AB"}, {WL_OUTPUT_TRANSFORM_FLIPPED_270, "FDB ECA"},
    };
    for (const auto& [transform, rows] : cases)
        for (const bool upsideDown : {false, true}) {
            std::vector<unsigned char> bytes;
            SharedPicture picture = Letters(rows, upsideDown, &bytes);
            picture.transform = transform;
            EXPECT_EQ(Rows(ToPhotograph(picture, 2, 3)), "AB CD EF") << transform << upsideDown;
            EXPECT_EQ(Rows(ToPhotograph(picture, 9, 2)), "AB CD") << transform << upsideDown;
        }
}

TEST(SharedPicture, HasTheColoursOfEachFormat) {
    const auto ten = [](unsigned eight) { return eight << 2 | eight >> 6; }; // as a compositor widens it
    const std::uint32_t red = 0x81, green = 0x02, blue = 0xFE;
    const std::pair<std::uint32_t, std::uint32_t> cases[] = {
        {WL_SHM_FORMAT_XRGB8888, 0x55000000 | red << 16 | green << 8 | blue},
        {WL_SHM_FORMAT_ABGR8888, 0xFF000000 | blue << 16 | green << 8 | red},
        {WL_SHM_FORMAT_RGBX8888, red << 24 | green << 16 | blue << 8 | 0x55},
        {WL_SHM_FORMAT_BGRA8888, blue << 24 | green << 16 | red << 8 | 0xFF},
        {WL_SHM_FORMAT_XRGB2101010, 1u << 30 | ten(red) << 20 | ten(green) << 10 | ten(blue)},
        {WL_SHM_FORMAT_ABGR2101010, 3u << 30 | ten(blue) << 20 | ten(green) << 10 | ten(red)},
    };
    for (const auto& [format, pixel] : cases) {
        ASSERT_TRUE(wayland::IsKnownFormat(format)) << format;
        unsigned char bytes[4] = {};
        std::memcpy(bytes, &pixel, sizeof bytes);
        SharedPicture picture;
        picture.bytes = bytes;
        picture.format = format;
        picture.width = picture.height = 1;
        picture.stride = 4;
        const Photograph photograph = ToPhotograph(picture, 1, 1);
        EXPECT_EQ(photograph.pixels, (std::vector<unsigned char>{0xFE, 0x02, 0x81, 0})) << std::hex << format;
    }
    EXPECT_FALSE(wayland::IsKnownFormat(WL_SHM_FORMAT_RGB565));
}

} // namespace
