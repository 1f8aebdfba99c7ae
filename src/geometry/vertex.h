// One vertex as drawn, and as written raw into model files.
#pragma once

#include <cstdint>

struct tagFXVertex {
    float pos[3];
    float normal[3];
    float tex[2];
    float color[4];
    float normalSum[3]; // of the faces around it; what Normalize starts from
    std::int32_t touched;
    std::int32_t objIndex[3]; // position, normal and texture coordinate of the imported corner
};

static_assert(sizeof(tagFXVertex) == 76, "the record in model files");
