// A whole show of pixels and triangles, with a morph of a second that carries the desktop.
#pragma once

#include "unit/scene_parts.h"

inline std::string SmallMorph(const TempFolder& folder) {
    FXAnim anim;
    for (int i = 0; i < 3; ++i) {
        anim.models.Push(NewModel({TriangleAt(static_cast<float>(i * i))}, "Material001"));
        anim.frameNames.Push("");
        anim.frameTimes.Push(500);
    }
    EXPECT_TRUE(anim.Save(folder.File("morph").c_str()));
    return folder.Read("morph");
}

inline std::vector<TestEntry> SmallShow(const TempFolder& folder) {
    std::vector<TestEntry> entries;
    for (const int id : {0, 1, 5, 18, 19, 20, 21, 73, 74})
        entries.push_back({id, kTga, Tga(1, 1, {0xFFFFFFFFu})});
    for (const int id : {4, 11, 13, 15, 17})
        entries.push_back({id, kRaw, TriangleModel(folder)});
    entries.push_back({72, kRaw, SmallMorph(folder)});
    return entries;
}
