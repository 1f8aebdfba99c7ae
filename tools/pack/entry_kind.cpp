#include "pack/entry_kind.h"

#include "scene/show.h"

#include <algorithm>
#include <filesystem>

namespace {

template <class Test> const FXPictureEnding* localFind(Test test) {
    const auto* found = std::ranges::find_if(kPictureEndings, test);
    return found == std::end(kPictureEndings) ? nullptr : found;
}

constexpr ShowEntry kEntries[] = {
    {show::kErrorPicture, EntryKind::Picture, "the error picture"},
    {show::kPreviewPicture, EntryKind::Picture, "the picture of the preview pane"},
    {show::kMedallionModel, EntryKind::Model, "the medallion"},
    {show::kLabelPicture, EntryKind::Picture, "the medallion's label"},
    {show::kSunCore, EntryKind::Model, "the sun's core"},
    {show::kSunShell1, EntryKind::Model, "the sun's first shell"},
    {show::kSunShell2, EntryKind::Model, "the sun's second shell"},
    {show::kSunShell3, EntryKind::Model, "the sun's third shell"},
    {show::kSpace, EntryKind::Picture, "space"},
    {show::kHalo, EntryKind::Picture, "the sun's halo"},
    {show::kRays, EntryKind::Picture, "the sun's rays"},
    {show::kLens, EntryKind::Picture, "the lens flare"},
    {show::kMorph, EntryKind::Animation, "the animation that brings the desktop back"},
    {show::kCubeReflection, EntryKind::Picture, "the cube's reflection"},
    {show::kCubeSkin, EntryKind::Picture, "the cube's skin"},
};

} // namespace

const char* KindName(EntryKind kind) {
    constexpr const char* kNames[] = {"picture", "model", "animation", "library", "matrix", "phaser", "raw"};
    return kNames[static_cast<std::size_t>(kind)];
}

const FXPictureEnding* FindPictureType(int type) {
    return localFind([&](const FXPictureEnding& known) { return known.type == type; });
}

const FXPictureEnding* FindPictureEnding(const std::string& file) {
    const FXStr ending(std::filesystem::path(file).extension().string().c_str());
    if (ending.iCompare(".jpeg"))
        return FindPictureType(kJpeg);
    return localFind([&](const FXPictureEnding& known) {
        return ending.iCompare(("." + std::string(known.ending)).c_str());
    });
}

std::span<const ShowEntry> ShowEntries() {
    return kEntries;
}
