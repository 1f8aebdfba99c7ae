#include "pack/content_check.h"

#include "anim/morph_animation.h"
#include "geometry/mesh.h"
#include "image/canvas.h"
#include "image/codec.h"
#include "pack/text.h"
#include "scene/show.h"

#include <cstring>
#include <map>
#include <set>

namespace {

// What the scene asks the package for.
struct Wanted {
    int id;
    EntryKind kind;
    const char* what;
};
constexpr Wanted kWanted[] = {
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
constexpr const char* kDesktopMaterial = "Material001"; // the scene's own

struct Signature {
    int type;
    std::string_view bytes;
};
constexpr Signature kSignatures[] = {
    {kPng, "\x89PNG"}, {kJpeg, "\xFF\xD8\xFF"}, {kBmp, "BM"}, {kGif, "GIF8"}};

const char* EndingOf(int type) {
    const PictureType* known = FindPictureType(type);
    return known != nullptr ? known->ending : "unknown";
}

class Checker {
public:
    Checker(FXPackage* package, const std::function<void()>& done) : package_(package), done_(done) {}

    std::vector<EntryFindings> Run() {
        for (int i = 0; i < package_->ids.count; ++i)
            if (rows_.emplace(package_->ids[i], Row{}).second)
                order_.push_back(package_->ids[i]);
        for (const int id : order_) {
            Row& row = rows_[id];
            row.findings.id = id;
            SetKind(id, KindOf(*package_->GetDataPtr(id), package_->GetDataType(id)));
        }
        for (const Wanted& wanted : kWanted)
            if (rows_.count(wanted.id) == 0)
                missing_.faults.Warn(Text("entry %d, %s, is missing: %s", wanted.id, wanted.what,
                                          wanted.kind == EntryKind::Picture ? "what shows it is plain white"
                                                                            : "the show goes on without it"));
            else
                Expect(wanted.id, wanted.kind, std::string("the show takes it for ") + wanted.what);
        for (const int id : order_)
            CheckNames(id);
        for (const int id : order_) {
            CheckAsTheShow(id);
            done_();
        }
        missing_.id = -1;
        std::vector<EntryFindings> all;
        for (const int id : order_)
            all.push_back(rows_[id].findings);
        all.push_back(missing_);
        return all;
    }

private:
    struct Row {
        EntryFindings findings;
        EntryFacts facts;
    };

    void SetKind(int id, EntryKind kind) {
        Row& row = rows_[id];
        row.findings.kind = kind;
        row.findings.faults = {};
        row.facts = {};
        CheckEntry(kind, *package_->GetDataPtr(id), &row.findings.faults, &row.facts);
    }

    // Somebody takes the entry for that kind.
    void Expect(int id, EntryKind kind, const std::string& why) {
        const EntryKind found = rows_[id].findings.kind;
        if (found == kind)
            return;
        if (found == EntryKind::Raw && kind != EntryKind::Picture)
            SetKind(id, kind); // its faults say what keeps it from being one
        else
            rows_[id].findings.faults.Add(
                -1, Text("it is of the kind %s, but %s, of the kind %s: one needs another number",
                         KindName(found), why.c_str(), KindName(kind)));
    }

    // What the entry names; -1 with a fault when there is none.
    int Follow(int from, const std::string& text, EntryKind kind, const std::string& what) {
        const int id = EntryNumber(text);
        const char* fault = id < 0                 ? "is no entry's number"
                            : rows_.count(id) == 0 ? "is not in the package"
                                                   : nullptr;
        if (fault != nullptr) {
            rows_[from].findings.faults.Add(-1, what + ", '" + text + "', " + fault);
            return -1;
        }
        Expect(id, kind, Text("entry %d takes it for %s", from, what.c_str()));
        return id;
    }

    void CheckNames(int id) {
        const EntryFacts facts = rows_[id].facts; // grows while it is followed
        Faults& faults = rows_[id].findings.faults;
        for (std::size_t f = 0; f < facts.frames.size() && facts.version == 2; ++f)
            Follow(id, facts.frames[f], EntryKind::Model, Text("key frame %zu", f));
        std::set<std::string> seen;
        for (const MaterialFacts& material : facts.materials) {
            if (!material.picture.empty())
                Follow(id, material.picture, EntryKind::Picture, "the picture of material " + material.name);
            if (!seen.insert(material.name).second)
                faults.Warn("material " + material.name + " is there twice: the first is used");
        }
        if (rows_[id].findings.kind == EntryKind::Library && EntryNumber(facts.name) != id)
            faults.Warn("its name is '" + facts.name +
                        "': named by its own number, the models that use it share it");
        if (!facts.meshes.empty())
            CheckMaterials(id, facts);
    }

    void CheckMaterials(int id, const EntryFacts& facts) {
        std::set<std::string> known = {"", kDesktopMaterial};
        const int library =
            facts.library.empty() ? -1 : Follow(id, facts.library, EntryKind::Library, "the library");
        if (library >= 0)
            for (const MaterialFacts& material : rows_[library].facts.materials)
                known.insert(material.name);
        for (const MeshFacts& mesh : facts.meshes)
            if (known.insert(mesh.material).second)
                rows_[id].findings.faults.Warn("its library has no material " + mesh.material +
                                               ": the mesh is drawn plain");
    }

    // The last word is the readers' that the show has.
    void CheckAsTheShow(int id) {
        EntryFindings& findings = rows_[id].findings;
        if (findings.kind == EntryKind::Picture && fxDevilLoaded())
            return CheckPicture(id, &findings.faults);
        if (!findings.faults.Good())
            return;
        if (findings.kind == EntryKind::Model) {
            FXModel model;
            model.LoadCN(package_, id);
            CheckMeshes(id, model.loadedMeshes, "");
        } else if (findings.kind == EntryKind::Animation && rows_[id].facts.version == 3) {
            FXAnim animation;
            animation.LoadCN(package_, id);
            if (animation.models.count != static_cast<int>(rows_[id].facts.frames.size()))
                findings.faults.Add(-1, "its counts are so high for its size that the show does not read it");
            for (int f = 0; f < animation.models.count; ++f)
                CheckMeshes(id, animation.models[f]->loadedMeshes, Text(" of key frame %d", f));
        }
    }

    void CheckMeshes(int id, const FXArray<FXMesh*>& meshes, const std::string& where) {
        Row& row = rows_[id];
        for (std::size_t m = 0; m < row.facts.meshes.size(); ++m) {
            const auto i = static_cast<int>(m);
            if (i >= meshes.count || meshes[i]->indexCount != row.facts.meshes[m].corners)
                row.findings.faults.Add(-1, Text("mesh %d%s comes out empty in the show", i, where.c_str()));
        }
    }

    void CheckPicture(int id, Faults* faults) {
        FXCanvas canvas;
        if (canvas.CreateFromPictCN(package_, id))
            return;
        const int type = package_->GetDataType(id);
        const FXPackageData* data = package_->GetDataPtr(id);
        std::string text = std::string("it cannot be decoded as ") + EndingOf(type);
        for (const Signature& signature : kSignatures)
            if (signature.type != type && data->size >= static_cast<int>(signature.bytes.size()) &&
                std::memcmp(data->start, signature.bytes.data(), signature.bytes.size()) == 0)
                text += std::string(": its bytes begin as ") + EndingOf(signature.type) + "'s do";
        faults->Add(0, text);
    }

    FXPackage* package_;
    const std::function<void()>& done_;
    std::map<int, Row> rows_;
    std::vector<int> order_;
    EntryFindings missing_;
};

} // namespace

std::vector<EntryFindings> CheckContents(FXPackage* package, const std::function<void()>& done) {
    return Checker(package, done).Run();
}
