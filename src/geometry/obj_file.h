// A Wavefront OBJ file: triangles by material.
#pragma once

#include <array>
#include <string>
#include <vector>

struct FXObjCorner {
    std::array<double, 3> position;
    std::array<double, 3> normal;
    std::array<double, 2> tex; // as in the file: v runs upwards
};

struct FXObjMesh {
    std::string material;             // empty: the file names none
    std::vector<FXObjCorner> corners; // three for each triangle
};

struct FXObjFile {
    std::string object;                 // the first object's name
    std::vector<std::string> libraries; // the MTL files named, as they are named
    std::vector<FXObjMesh> meshes;      // in the order in which their materials are first used
};

// Polygons are cut into fans around their first corner, so that key frames of one topology stay of one.
// Corners without a normal get their face's, or where the file smooths (s 1) the mean of the faces around.
// False with FILE:LINE in error.
bool fxReadObj(const std::string& file, FXObjFile* obj, std::string* error);
