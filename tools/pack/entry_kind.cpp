#include "pack/entry_kind.h"

#include <algorithm>
#include <filesystem>

namespace {

constexpr PictureType kPictureTypes[] = {{"jpg", kJpeg}, {"png", kPng}, {"tga", kTga},
                                         {"bmp", kBmp},  {"gif", kGif}, {"jpeg", kJpeg}};

template <class Test> const PictureType* localFind(Test test) {
    const auto* found = std::ranges::find_if(kPictureTypes, test);
    return found == std::end(kPictureTypes) ? nullptr : found;
}

} // namespace

const char* KindName(EntryKind kind) {
    constexpr const char* kNames[] = {"picture", "model", "animation", "library", "matrix", "phaser", "raw"};
    return kNames[static_cast<std::size_t>(kind)];
}

const PictureType* FindPictureType(int type) {
    return localFind([&](const PictureType& t) { return t.type == type; });
}

const PictureType* FindPictureEnding(const std::string& file) {
    const FXStr ending(std::filesystem::path(file).extension().string().c_str());
    return localFind(
        [&](const PictureType& t) { return ending.iCompare(("." + std::string(t.ending)).c_str()); });
}
