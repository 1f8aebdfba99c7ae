// Models and libraries as Wavefront OBJ and MTL files. OBJ files are read by geometry/obj_file.h.
#pragma once

#include "geometry/model.h"
#include "image/material_library.h"

#include <functional>
#include <string>

// The working meshes as an OBJ file's text, that names `mtlFile` (empty: none). Vertex colours are not in it.
std::string ObjText(const FXModel& model, const std::string& mtlFile);

// An MTL file holds the names, colours, shininess, pictures and the diffuse colour's alpha (d) of a library;
// the other alphas are 0.

// Appends the file's materials; texRef is the picture's file as the MTL file names it. What the file leaves
// out is black and opaque, and its shininess 1; but a material with a picture and no Kd has a diffuse colour
// of 0.6, so that the picture shows. False with FILE:LINE in error.
bool ReadMtl(const std::string& file, FXMatlib* library, std::string* error);
// The file's text; `pictureOf` gives the file for a material's texRef, which is not empty.
std::string MtlText(const FXMatlib& library, const std::function<std::string(const char*)>& pictureOf);
