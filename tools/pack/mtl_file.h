// Wavefront MTL files, read and written. Of a library they hold names, colours, shininess, the diffuse
// colour's alpha (d) and pictures; the other alphas are 0.
#pragma once

#include "image/material_library.h"

#include <functional>
#include <string>

// Appends the file's materials; texRef is the picture's file as the MTL file names it. What the file leaves
// out is black, and opaque. False with FILE:LINE in error.
bool ReadMtl(const std::string& file, FXMatlib* library, std::string* error);
// The file's text; `pictureOf` gives the file for a material's texRef, which is not empty.
std::string MtlText(const FXMatlib& library, const std::function<std::string(const char*)>& pictureOf);
