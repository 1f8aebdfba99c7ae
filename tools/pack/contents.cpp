#include "pack/contents.h"

#include "anim/morph_animation.h"
#include "base/whole_file.h"
#include "geometry/mesh.h"
#include "geometry/model_import.h"
#include "image/material.h"
#include "image/material_library.h"
#include "pack/picture_codec.h"
#include "pack/record_bytes.h"
#include "pack/text.h"
#include "render/matrix.h"
#include "scene/phaser.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

// A library as a model needs it: with the extents of its pictures.
using Libraries = std::map<int, std::shared_ptr<FXMatlib>>;

class Maker {
public:
    Maker(const Manifest& manifest, const Plan& plan, std::string* error)
        : manifest_(manifest), plan_(plan), error_(*error), bytes_(plan.entries.size()) {}

    bool Run(bool showProgress, MemoryPackage* package) {
        Progress progress("entry", plan_.entries.size(), showProgress);
        std::size_t done = 0;
        // Models need the libraries and pictures.
        for (const bool isSecond : {false, true})
            for (std::size_t i = 0; i < bytes_.size(); ++i)
                if (NeedsOthers(plan_.entries[i]) == isSecond) {
                    if (!Make(i))
                        return false;
                    progress.Done(++done);
                }
        for (std::size_t i = 0; i < bytes_.size(); ++i)
            if (!package->Add(plan_.entries[i].entry.id, TypeOf(plan_.entries[i].entry), bytes_[i]))
                return Fail(plan_.entries[i].entry, "the package would be beyond 2 GiB");
        return true;
    }

private:
    static int TypeOf(const ManifestEntry& entry) { return entry.type.value_or(kRaw); }

    static bool NeedsOthers(const PlannedEntry& planned) {
        return planned.entry.kind == EntryKind::Model || !planned.entry.animation.frameFiles.empty();
    }

    bool Fail(const ManifestEntry& entry, const std::string& text) {
        error_ = manifest_.Where(entry.line) + text;
        return false;
    }

    bool Make(std::size_t i) {
        const PlannedEntry& planned = plan_.entries[i];
        const ManifestEntry& entry = planned.entry;
        std::string problem;
        switch (entry.kind) {
        case EntryKind::Picture:
        case EntryKind::Raw:
            return fxReadWhole(entry.file, &bytes_[i], &problem) || Fail(entry, problem);
        case EntryKind::Library:
            return Record(i, [&](std::FILE* file) { return planned.library->Save(file); });
        case EntryKind::Model:
            return MakeModelEntry(i);
        case EntryKind::Animation:
            return MakeAnimationEntry(i);
        case EntryKind::Matrix: {
            FXMatrix matrix;
            std::ranges::copy(entry.matrix, matrix.m);
            return Record(i, [&](std::FILE* file) { return matrix.Save(file); });
        }
        case EntryKind::Phaser:
            return MakePhaserEntry(i);
        }
        return false;
    }

    bool Record(std::size_t i, const std::function<bool(std::FILE*)>& save) {
        return RecordBytes(save, &bytes_[i]) ||
               Fail(plan_.entries[i].entry, "there is no room for a temporary file in " +
                                                std::filesystem::temp_directory_path().string());
    }

    bool MakePhaserEntry(std::size_t i) {
        const PhaserSettings& settings = plan_.entries[i].entry.phaser;
        FXPhaser phaser;
        phaser.phase = settings.phase;
        phaser.duration = settings.duration;
        phaser.running = settings.running;
        phaser.reverse = settings.reverse;
        phaser.loop = settings.loop;
        phaser.pingPong = settings.pingPong;
        phaser.smooth = settings.smooth;
        phaser.smoothHalf = settings.smoothHalf;
        return Record(i, [&](std::FILE* file) { return phaser.Save(file); });
    }

    bool Looks(const PlannedEntry& planned, FXObjLooks* looks) {
        looks->draw = planned.entry.draw;
        if (planned.libraryId < 0)
            return true;
        looks->libraryName = std::to_string(planned.libraryId);
        std::shared_ptr<FXMatlib>& library = libraries_[planned.libraryId];
        if (library == nullptr && !LoadLibrary(planned, &library))
            return false;
        looks->library = library.get();
        return true;
    }

    // From the entries made so far, as the show will: whatever the library was made from.
    bool LoadLibrary(const PlannedEntry& user, std::shared_ptr<FXMatlib>* library) {
        MemoryPackage made;
        for (std::size_t i = 0; i < bytes_.size(); ++i)
            if (!NeedsOthers(plan_.entries[i]))
                made.Add(plan_.entries[i].entry.id, TypeOf(plan_.entries[i].entry), bytes_[i]);
        *library = std::make_shared<FXMatlib>();
        const PictureCodec codec;
        (*library)->LoadC(made.Package(), std::to_string(user.libraryId).c_str());
        for (FXMaterial* material : (*library)->materials) {
            if (material->texRef.IsEmpty())
                continue;
            const FXCanvas& picture = material->canvas;
            if (picture.pixels == nullptr)
                return Fail(user.entry, PictureCodec::Loaded()
                                            ? "the picture of material " + std::string(material->name.text) +
                                                  ", entry " + material->texRef.text + ", cannot be decoded"
                                            : kNoCodec);
            material->extentU = static_cast<float>(picture.usedWidth) / static_cast<float>(picture.width);
            material->extentV = static_cast<float>(picture.usedHeight) / static_cast<float>(picture.height);
            material->canvas.Destroy();
        }
        return true;
    }

    bool MakeModelEntry(std::size_t i) {
        const PlannedEntry& planned = plan_.entries[i];
        FXObjLooks looks;
        if (!Looks(planned, &looks))
            return false;
        FXModel model;
        model.ImportObj(planned.obj, looks);
        model.UpdateMeshes();
        return Record(i, [&](std::FILE* file) {
            return planned.entry.version == 2 ? model.Save_v02(file) : model.Save_v03(file);
        });
    }

    bool MakeAnimationEntry(std::size_t i) {
        const PlannedEntry& planned = plan_.entries[i];
        const AnimationSettings& settings = planned.entry.animation;
        FXAnim animation;
        ApplySettings(settings, &animation);
        for (const EntryReference& frame : settings.frameEntries)
            animation.frameNames.Push(std::to_string(frame.id).c_str());
        if (!settings.frameEntries.empty())
            return Record(i, [&](std::FILE* file) { return animation.Save_v02(file); });
        FXObjLooks looks;
        looks.shareCorners = false;
        if (!Looks(planned, &looks))
            return false;
        for (std::size_t f = 0; f < planned.frames.size(); ++f) {
            if (!SameShape(planned, f))
                return false;
            animation.models.Push(new FXModel);
            animation.models.Last()->ImportObj(planned.frames[f], looks);
            animation.models.Last()->UpdateMeshes();
            animation.frameNames.Push(
                settings.frameNames.empty()
                    ? std::filesystem::path(settings.frameFiles[f]).stem().string().c_str()
                    : settings.frameNames[f].c_str());
        }
        return Record(i, [&](std::FILE* file) { return animation.Save_v03(file); });
    }

    // Key frames move the same corners.
    bool SameShape(const PlannedEntry& planned, std::size_t frame) {
        const std::vector<FXObjMesh>& first = planned.frames[0].meshes;
        const std::vector<FXObjMesh>& other = planned.frames[frame].meshes;
        const auto& files = planned.entry.animation.frameFiles;
        const std::string pair = files[frame] + " and the first key frame, " + files[0] + ", do not agree: ";
        if (first.size() != other.size())
            return Fail(planned.entry,
                        pair + Text("%zu materials are used, %zu there", other.size(), first.size()));
        for (std::size_t m = 0; m < first.size(); ++m)
            if (first[m].material != other[m].material || first[m].corners.size() != other[m].corners.size())
                return Fail(planned.entry,
                            pair + Text("%zu triangles of material '%s', %zu of '%s' there",
                                        other[m].corners.size() / 3, other[m].material.c_str(),
                                        first[m].corners.size() / 3, first[m].material.c_str()));
        return true;
    }

    static void ApplySettings(const AnimationSettings& settings, FXAnim* animation) {
        for (const int time : settings.times)
            animation->frameTimes.Push(time);
        animation->playing = settings.playing;
        animation->backwards = settings.backwards;
        animation->loop = settings.loop;
        animation->pingPong = settings.pingPong;
        animation->storedParam = settings.parameter;
        FXBezierGraph& graph = animation->graph;
        graph.resolution = settings.graphResolution;
        graph.valueScale = settings.graphScale;
        for (const int position : settings.graphPositions)
            graph.positions.Push(position);
        for (const int value : settings.graphValues)
            graph.values.Push(value);
        std::ranges::copy(settings.graphFlags, graph.flags);
        graph.tension = settings.graphTension;
        graph.samplesPerSegment = settings.graphSamples;
    }

    const Manifest& manifest_;
    const Plan& plan_;
    std::string& error_;
    std::vector<std::string> bytes_;
    Libraries libraries_;
};

} // namespace

bool MakeContents(const Manifest& manifest, const Plan& plan, bool showProgress, MemoryPackage* package,
                  std::string* error) {
    error->clear();
    return Maker(manifest, plan, error).Run(showProgress, package);
}

bool MemoryPackage::Add(int id, int type, std::string_view bytes) {
    constexpr std::size_t kTables = 16 + 16;
    const auto rows = static_cast<std::size_t>(package_.ids.count);
    if (data_.size() + bytes.size() + kTables + 16 * rows > INT_MAX)
        return false;
    package_.ids.Push(id);
    package_.types.Push(type);
    package_.offsets.Push(static_cast<int>(data_.size()));
    package_.sizes.Push(static_cast<int>(bytes.size()));
    data_ += bytes;
    return true;
}

FXPackage* MemoryPackage::Package() {
    package_.dataBlock = reinterpret_cast<unsigned char*>(data_.data());
    package_.dataSize = static_cast<int>(data_.size());
    for (FXPackageData* cursor : package_.cursors)
        delete cursor;
    package_.cursors.RemoveAll();
    for (int i = 0; i < package_.ids.count; ++i) {
        package_.cursors.Push(new FXPackageData);
        package_.cursors[i]->InitData(package_.dataBlock + package_.offsets[i], package_.sizes[i]);
    }
    return &package_;
}

bool MemoryPackage::Save(const std::string& file, bool scramble, std::string* error) {
    errno = 0;
    if (Package()->Save(file.c_str(), scramble ? FXPackage::kScrambled : 0))
        return true;
    *error =
        file + ": cannot be written: " + (errno != 0 ? std::strerror(errno) : "there is no memory for it");
    return false;
}
