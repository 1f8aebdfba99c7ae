// One vertex as drawn, and as written raw into model files.
#pragma once

#include <cstdint>

struct tagFXVertex {
    template <class Self, class V> static bool Fields(Self& self, V& v) {
        return v.Floats("position of", self.pos, 3) && v.Floats("normal of", self.normal, 3) &&
               v.Floats("texture coordinate of", self.tex, 2) && v.Floats("colour of", self.color, 4) &&
               v.Unused("not drawn", sizeof self.normalSum + sizeof self.touched + sizeof self.objIndex);
    }

    float pos[3];
    float normal[3];
    float tex[2];
    float color[4];
    float normalSum[3]; // of the faces around it; what Normalize starts from
    std::int32_t touched;
    std::int32_t objIndex[3]; // position, normal and texture coordinate of the imported corner
};

static_assert(sizeof(tagFXVertex) == 76, "the record in model files");
