// A picture in memory and its way from and to PNG files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

using cairo_surface_t = struct _cairo_surface;

// Rows from the top, 0xAARRGGBB per pixel, alpha not multiplied in.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    bool Empty() const { return pixels.empty(); }
};

// False with a line in `error` that names the file and what is wrong with it.
bool ReadPng(const std::string& file, Picture* picture, std::string* error);
bool WritePng(const std::string& file, const Picture& picture, std::string* error);
bool WritePng(const std::string& file, cairo_surface_t* surface, std::string* error);

// Resampled with a good filter; a picture of no size stays empty.
Picture Scaled(const Picture& picture, int width, int height);
