// Models of ours from Wavefront ones, and back.
#pragma once

#include "geometry/model.h"
#include "image/material_library.h"
#include "pack/obj_file.h"

#include <map>
#include <string>

struct ModelLooks {
    FXMatlib* library =
        nullptr;             // gives each mesh its material, and so the extents of its picture; may be null
    std::string libraryName; // as the model stores it
    std::map<std::string, int> draw; // class by material; "": all others; else by the material's alpha
    bool shareCorners = true;        // alike corners become one vertex; not for key frames, which must agree
};

// The working meshes, one for each of the file's. Texture coordinates are stored times the extents of their
// picture, which is what it fills of a texture whose sides are powers of two, and with v downwards.
void MakeModel(const ObjFile& obj, const ModelLooks& looks, FXModel* model);

// The working meshes as an OBJ file's text, that names `mtlFile` (empty: none). Vertex colours are not in it.
std::string ObjText(const FXModel& model, const std::string& mtlFile);
