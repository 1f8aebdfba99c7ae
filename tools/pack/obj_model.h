// Models of ours as Wavefront files.
#pragma once

#include "geometry/model.h"

#include <string>

// The working meshes as an OBJ file's text, that names `mtlFile` (empty: none). Vertex colours are not in it.
std::string ObjText(const FXModel& model, const std::string& mtlFile);
