#include "pack/extraction.h"

#include "anim/morph_animation.h"
#include "geometry/mesh.h"
#include "image/material.h"
#include "image/material_library.h"
#include "pack/command.h"
#include "pack/entry_check.h"
#include "pack/kinds.h"
#include "pack/package_check.h"
#include "pack/text.h"
#include "pack/wavefront.h"
#include "progress.h"

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <map>
#include <string>

namespace fs = std::filesystem;

namespace {

std::string localBytesOf(const FXPackageData& data) {
    return {reinterpret_cast<const char*>(data.start), static_cast<std::size_t>(data.size)};
}

class Extractor {
public:
    Extractor(FXPackage* package, bool asWavefront, Extraction* result)
        : package_(package), kinds_(KindsOf(*package)), asWavefront_(asWavefront), result_(*result) {}

    void Run(bool isScrambled) {
        result_.manifest = "# Made by tamb-pack extract; tamb-pack build makes the package again.\n";
        if (isScrambled)
            result_.manifest += "scramble = true\n";
        for (int i = 0; i < package_->ids.count; ++i)
            Take(i);
    }

    // The number of the entry, and its kind; files of this name are what others refer to.
    std::string FileName(int id, EntryKind kind) const { return FileName(id, kind, asWavefront_); }
    std::string FileName(int id, EntryKind kind, bool asWavefront) const {
        const std::string stem = std::to_string(id);
        switch (kind) {
        case EntryKind::Picture:
            return stem + "." + FindPictureType(package_->GetDataType(id))->ending;
        case EntryKind::Model:
            return stem + (asWavefront ? ".obj" : ".om");
        case EntryKind::Animation:
            return stem + ".oa";
        case EntryKind::Library:
            return stem + (asWavefront ? ".mtl" : ".lib");
        case EntryKind::Matrix:
        case EntryKind::Phaser:
        case EntryKind::Raw:
            break;
        }
        return stem + ".bin";
    }

    std::string PictureFile(const char* reference) const {
        const int id = EntryNumber(reference);
        return id >= 0 && FindPictureType(package_->GetDataType(id)) != nullptr
                   ? FileName(id, EntryKind::Picture)
                   : reference;
    }

    std::string LibraryFile(const FXStr& name) const {
        const int id = EntryNumber(name.text);
        return id >= 0 && package_->ids.Findpos(id) >= 0 ? FileName(id, EntryKind::Library) : "";
    }

    void LoadModel(int id, FXModel* model) const {
        model->LoadCN(package_, id);
        model->UpdateMeshes();
    }

    std::string ModelText(const FXModel& model) const {
        return ObjText(model, LibraryFile(model.matlibName));
    }

    std::string LibraryText(int id) const {
        FXMatlib library;
        library.LoadC(package_, std::to_string(id).c_str());
        return MtlText(library, [this](const char* reference) { return PictureFile(reference); });
    }

private:
    void Take(int i) {
        const int id = package_->ids[i];
        if (id < 0 || package_->ids.Findpos(id) != i) {
            result_.warnings.push_back(
                Text("place %d of the package, number %d, is left out: %s", i, id,
                     id < 0 ? "a manifest has no numbers below 0" : "an entry before it has the number"));
            return;
        }
        result_.manifest += Text("\n[[entry]]\nid = %d\n", id);
        const FXPackageData data = *package_->GetDataPtr(id);
        const int type = package_->types[i];
        const EntryKind kind = kinds_[static_cast<std::size_t>(i)];
        if (kind == EntryKind::Picture || !asWavefront_ || type != kRaw || !TakeAsWavefront(id, kind, data))
            TakeAsStored(id, kind, data, type);
    }

    void Add(const std::string& name, const std::string& bytes) { result_.files.push_back({name, bytes}); }

    void TakeAsStored(int id, EntryKind kind, const FXPackageData& data, int type) {
        const std::string name = FileName(id, kind, false);
        Add(name, localBytesOf(data));
        result_.manifest +=
            std::string(kind == EntryKind::Picture ? "picture" : "raw") + " = " + Quoted(name) + "\n";
        if (kind != EntryKind::Picture && type != kRaw)
            result_.manifest += Text("type = %d\n", type);
    }

    // False when it has no such form, or is not whole.
    bool TakeAsWavefront(int id, EntryKind kind, const FXPackageData& data) {
        Faults faults;
        EntryFacts facts;
        CheckEntry(kind, data, &faults, &facts);
        const bool hasLibrary =
            facts.library.empty() || package_->ids.Findpos(EntryNumber(facts.library)) >= 0;
        if (!faults.Good() || !hasLibrary)
            return false;
        if (kind == EntryKind::Model && !facts.meshes.empty()) {
            TakeModel(id, facts);
            return true;
        }
        if (kind == EntryKind::Animation && facts.version == 3 && !facts.meshes.empty() &&
            !facts.frames.empty()) {
            TakeAnimation(id);
            return true;
        }
        if (kind == EntryKind::Library && !facts.materials.empty()) {
            Add(FileName(id, kind), LibraryText(id));
            result_.manifest += "library = " + Quoted(FileName(id, kind)) + "\n";
            return true;
        }
        return false;
    }

    void TakeModel(int id, const EntryFacts& facts) {
        FXModel model;
        LoadModel(id, &model);
        Add(FileName(id, EntryKind::Model), ModelText(model));
        result_.manifest += "model = " + Quoted(FileName(id, EntryKind::Model)) + "\n";
        if (facts.version != 3)
            result_.manifest += Text("version = %d\n", facts.version);
        AddLooks(model);
    }

    void AddLooks(const FXModel& model) {
        if (const int library = EntryNumber(model.matlibName.text); library >= 0)
            result_.manifest += Text("library = %d\n", library);
        std::string draw;
        std::map<std::string, int> seen;
        for (const FXMesh* mesh : model.meshes)
            if (seen.emplace(mesh->materialName.text, mesh->transparent).second)
                draw += (draw.empty() ? "" : ", ") + Quoted(mesh->materialName.text) + " = " +
                        std::to_string(mesh->transparent);
        result_.manifest += "draw = { " + draw + " }\n";
    }

    static std::string List(int count, const std::function<std::string(int)>& element) {
        std::string list;
        for (int i = 0; i < count; ++i)
            list += (i > 0 ? ", " : "") + element(i);
        return "[" + list + "]";
    }

    void TakeAnimation(int id) {
        FXAnim animation;
        animation.LoadCN(package_, id);
        const auto frameFile = [&](int f) { return Text("%d-%02d.obj", id, f); };
        for (int f = 0; f < animation.models.count; ++f)
            Add(frameFile(f), ModelText(*animation.models[f]));
        const auto flag = [](bool value) { return value ? "true" : "false"; };
        const FXBezierGraph& graph = animation.graph;
        result_.manifest +=
            "animation = " + List(animation.models.count, [&](int f) { return Quoted(frameFile(f)); }) +
            "\nframe_names = " +
            List(animation.frameNames.count, [&](int f) { return Quoted(animation.frameNames.Get(f)); }) +
            "\ntimes = " +
            List(animation.frameTimes.count, [&](int f) { return std::to_string(animation.frameTimes[f]); }) +
            Text("\nplaying = %s\nbackwards = %s\nloop = %s\nping_pong = %s\nparameter = %s\n",
                 flag(animation.playing), flag(animation.backwards), flag(animation.loop),
                 flag(animation.pingPong), NumberText(animation.storedParam).c_str()) +
            Text("graph = { resolution = %d, scale = %d, ", graph.resolution, graph.valueScale) +
            "positions = " +
            List(graph.positions.count, [&](int i) { return std::to_string(graph.positions[i]); }) +
            ", values = " + List(graph.values.count, [&](int i) { return std::to_string(graph.values[i]); }) +
            Text(", flag_a = %s, flag_b = %s, tension = %s, samples = %d }\n", flag(graph.flags[0]),
                 flag(graph.flags[1]), NumberText(graph.tension).c_str(), graph.samplesPerSegment);
        AddLooks(*animation.models[0]);
    }

    FXPackage* package_;
    std::vector<EntryKind> kinds_;
    bool asWavefront_;
    Extraction& result_;
};

constexpr const char* kManifestName = "manifest.toml";

constexpr OptionRule kOptions[] = {{"--obj", nullptr}, {"--force", nullptr}, {"--quiet", nullptr}};

constexpr const char* kHelp =
    R"(usage: tamb-pack extract PACKAGE FOLDER [options]
       tamb-pack extract PACKAGE ID FILE [options]

With a FOLDER, which is made when it is missing: every entry into a file of its own, named by its
number, and a manifest.toml that builds the package again, to the same bytes.
With an ID: that entry alone into FILE.

  --obj     models as Wavefront OBJ files, animations as one for each key frame, libraries as MTL
            files. What these formats have no place for is lost: the colours of vertices, and every
            alpha of a material but its diffuse colour's. Meshes of one material become one
  --force   write over a manifest.toml that is there
  --quiet   no progress

examples:
  tamb-pack extract tamb.dat parts && tamb-pack build parts/manifest.toml again.dat
  tamb-pack extract tamb.dat 18 space.png
)";

int localOne(FXPackage* package, const Arguments& arguments) {
    const std::string& number = arguments.words[1];
    int id = -1;
    const auto end = number.data() + number.size();
    const auto [stop, failed] = std::from_chars(number.data(), end, id);
    if (failed != std::errc() || stop != end)
        return FailUsage("'" + number + "' is no entry's number", "extract");
    std::string bytes, error;
    if (!ExtractOne(package, id, arguments.Has("--obj"), &bytes, &error) ||
        !WriteWhole(arguments.words[2], bytes, &error))
        return Fail(error);
    return kExitGood;
}

int localAll(FXPackage* package, bool isScrambled, const Arguments& arguments) {
    const fs::path folder = arguments.words[1];
    std::error_code failed;
    fs::create_directories(folder, failed);
    if (failed)
        return Fail(folder.string() + ": cannot be made: " + failed.message());
    const fs::path manifest = folder / kManifestName;
    if (fs::exists(manifest, failed) && !arguments.Has("--force"))
        return Fail(manifest.string() + " is there already; --force writes over it");
    const Extraction all = ExtractAll(package, isScrambled, arguments.Has("--obj"));
    for (const std::string& warning : all.warnings)
        std::fprintf(stderr, "tamb-pack: %s\n", warning.c_str());
    Progress progress("file", all.files.size(), !arguments.Has("--quiet"));
    std::string error;
    for (std::size_t i = 0; i < all.files.size(); ++i) {
        if (!WriteWhole((folder / all.files[i].name).string(), all.files[i].bytes, &error)) {
            progress.Clear();
            return Fail(error);
        }
        progress.Done(i + 1);
    }
    // The manifest last: where it stands, everything does.
    if (!WriteWhole(manifest.string(), all.manifest, &error))
        return Fail(error);
    return all.warnings.empty() ? kExitGood : kExitFault;
}

int localRun(const Arguments& arguments) {
    const std::string& file = arguments.words[0];
    FXPackage package;
    std::string error;
    if (!LoadPackage(file, &package, &error))
        return Fail(error);
    if (arguments.words.size() == 3)
        return localOne(&package, arguments);
    if (OverlapsTooMuch(package))
        return Fail(file + ": its entries overlap (tamb-pack verify says where)");
    return localAll(&package, IsScrambled(file), arguments);
}

} // namespace

Extraction ExtractAll(FXPackage* package, bool isScrambled, bool asWavefront) {
    Extraction result;
    Extractor(package, asWavefront, &result).Run(isScrambled);
    return result;
}

bool ExtractOne(FXPackage* package, int id, bool asWavefront, std::string* bytes, std::string* error) {
    const FXPackageData* found = package->GetDataPtr(id);
    if (found == nullptr) {
        *error = "there is no entry " + std::to_string(id) + " (tamb-pack list shows which there are)";
        return false;
    }
    const FXPackageData data = *found;
    *bytes = localBytesOf(data);
    if (!asWavefront)
        return true;
    const EntryKind kind = KindOf(*package, id);
    Extraction unused;
    const Extractor extractor(package, true, &unused);
    Faults faults;
    EntryFacts facts;
    CheckEntry(kind, data, &faults, &facts);
    if (!faults.Good())
        *error = Text("entry %d is damaged (tamb-pack verify says how); without --obj it comes as it is", id);
    else if (kind == EntryKind::Model) {
        FXModel model;
        extractor.LoadModel(id, &model);
        *bytes = extractor.ModelText(model);
    } else if (kind == EntryKind::Library)
        *bytes = extractor.LibraryText(id);
    else
        *error = Text("entry %d is a %s: --obj takes models and libraries alone, and with a whole package "
                      "animations too",
                      id, KindName(kind));
    return error->empty();
}

const Command kExtractCommand = {
    "extract", "takes entries out, and writes the manifest that puts them back", kHelp, kOptions, 2, 3,
    localRun};
