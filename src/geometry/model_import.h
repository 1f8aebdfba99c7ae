// How FXModel::ImportObj makes meshes of a Wavefront file that was read.
#pragma once

#include "geometry/obj_file.h"

#include <map>
#include <string>

class FXMatlib;

struct FXObjLooks {
    FXMatlib* library =
        nullptr;             // gives each mesh its material, and so the extents of its picture; may be null
    std::string libraryName; // as the model stores it
    std::map<std::string, int> draw; // class by material; "": all others; else 1 for what is not solid
    bool shareCorners = true;        // alike corners become one vertex; not for key frames, which must agree
};
