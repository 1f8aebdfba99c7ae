#include "pack/show_entries.h"

#include "scene/show.h"

namespace {

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

std::span<const ShowEntry> ShowEntries() {
    return kEntries;
}
