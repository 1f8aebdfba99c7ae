#include "pack/content_check.h"

#include "anim/morph_animation.h"
#include "geometry/mesh.h"
#include "image/canvas.h"
#include "image/codec.h"
#include "image/material_library.h"
#include "image/picture_header.h"
#include "pack/command.h"
#include "pack/entry_kind.h"
#include "pack/kinds.h"
#include "pack/package_check.h"
#include "pack/picture_codec.h"
#include "pack/text.h"
#include "progress.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace {

const char* localEndingOf(int type) {
    const FXPictureEnding* known = FindPictureType(type);
    return known != nullptr ? known->ending : "unknown";
}

class Checker {
public:
    Checker(FXPackage* package, const std::function<void()>& done) : package_(package), done_(done) {}

    std::vector<EntryFindings> Run() {
        const std::vector<EntryKind> kinds = KindsOf(*package_);
        for (std::size_t i = 0; i < kinds.size(); ++i) {
            const int id = package_->ids[static_cast<int>(i)];
            const auto [row, isNew] = rows_.emplace(id, Row{});
            if (!isNew)
                continue;
            order_.push_back(id);
            EntryFindings& findings = row->second.findings;
            findings.id = id;
            findings.kind = kinds[i];
            CheckEntry(kinds[i], *package_->GetDataPtr(id), &findings.faults, &row->second.facts);
        }
        for (const ShowEntry& wanted : ShowEntries())
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

    // An entry that refers to it takes it for that kind.
    void Expect(int id, EntryKind kind, const std::string& why) {
        const EntryKind found = rows_[id].findings.kind;
        if (found != kind)
            rows_[id].findings.faults.Add(
                -1, Text("it is of the kind %s, but %s, of the kind %s: one needs another number",
                         KindName(found), why.c_str(), KindName(kind)));
    }

    void Follow(int from, const Reference& reference) {
        Faults& faults = rows_[from].findings.faults;
        const std::string named = reference.what + ", '" + reference.text + "', ";
        const std::optional<int> id = ReferenceNumber(reference.text);
        if (!id)
            return faults.Add(-1, named + "is no entry's number");
        if (rows_.count(*id) == 0)
            return faults.Add(-1, named + "is not in the package");
        if (reference.text != std::to_string(*id))
            faults.Warn(named + "is no plain number: the show takes it for " + std::to_string(*id));
        Expect(*id, reference.kind, Text("entry %d takes it for %s", from, reference.what.c_str()));
    }

    void CheckNames(int id) {
        const EntryFacts& facts = rows_[id].facts;
        Faults& faults = rows_[id].findings.faults;
        for (const Reference& reference : ReferencesOf(facts))
            Follow(id, reference);
        std::set<std::string> seen;
        for (const MaterialFacts& material : facts.materials)
            if (!seen.insert(material.name).second)
                faults.Warn("material " + material.name + " is there twice: the first is used");
        if (rows_[id].findings.kind == EntryKind::Library && facts.name != std::to_string(id))
            faults.Warn("its name is '" + facts.name +
                        "': named by its own number, the models that use it share it");
        std::set<std::string> known = {"", kDesktopMaterial};
        for (const MaterialFacts& material : LibraryOf(facts))
            known.insert(material.name);
        for (const MeshFacts& mesh : facts.meshes)
            if (known.insert(mesh.material).second)
                faults.Warn("its library has no material " + mesh.material + ": the mesh is drawn plain");
    }

    // The materials that a model or an animation has.
    std::vector<MaterialFacts> LibraryOf(const EntryFacts& facts) const {
        const auto row = rows_.find(ReferenceNumber(facts.library).value_or(-1));
        return facts.library.empty() || row == rows_.end() ? std::vector<MaterialFacts>()
                                                           : row->second.facts.materials;
    }

    // What the show's own readers make of the entry decides.
    void CheckAsTheShow(int id) {
        EntryFindings& findings = rows_[id].findings;
        const EntryFacts& facts = rows_[id].facts;
        if (findings.kind == EntryKind::Picture && fxDevilLoaded())
            return CheckPicture(id, &findings.faults);
        if (!findings.faults.Good())
            return;
        FXLoadBudget budget;
        budget.TakeMaterials(static_cast<int>(LibraryOf(facts).size()));
        if (findings.kind == EntryKind::Model) {
            FXModel model;
            model.LoadCN(package_, id, &budget);
            if (budget.IsExceeded())
                findings.faults.Add(
                    -1, RefusalText(Text("mesh %d and what follows", model.loadedMeshes.count), budget));
            else
                CheckMeshes(id, model.loadedMeshes, "");
        } else if (findings.kind == EntryKind::Animation) {
            FXAnim animation;
            animation.LoadCN(package_, id, &budget);
            if (budget.IsExceeded())
                findings.faults.Add(
                    -1, RefusalText(facts.version == 2 ? KeyFramesFrom(animation) : "its meshes", budget));
            for (int f = 0; f < animation.models.count && facts.version == 3 && !budget.IsExceeded(); ++f)
                CheckMeshes(id, animation.models[f]->meshes, Text(" of key frame %d", f));
        }
    }

    // The first that is not there, of an animation whose key frames all are entries.
    static std::string KeyFramesFrom(const FXAnim& animation) {
        return Text("key frame %d and what follows", animation.models.Findpos(nullptr));
    }

    void CheckMeshes(int id, const FXOwnerArray<FXMesh>& meshes, const std::string& where) {
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
        std::string text = std::string("it cannot be decoded as ") + localEndingOf(type);
        const int seen = fxPictureType({data->start, static_cast<std::size_t>(data->size)});
        if (seen != kRaw && seen != type)
            text += std::string(": its bytes begin as ") + localEndingOf(seen) + "'s do";
        faults->Add(0, text);
    }

    FXPackage* package_;
    const std::function<void()>& done_;
    std::map<int, Row> rows_;
    std::vector<int> order_;
    EntryFindings missing_;
};

constexpr OptionRule kOptions[] = {{"--quiet", nullptr}};

constexpr const char* kHelp =
    R"(usage: tamb-pack verify PACKAGE [options]

  --quiet   no progress, and nothing said about a good package

Checks the package's header and tables, reads every entry to its last byte, decodes every
picture, and looks for what entries name: libraries, pictures, key frames. Every fault is a line:

  PACKAGE: entry ID (KIND), byte OFFSET: what is wrong

and after those of an entry, indented, what to do. OFFSET counts in the entry; in faults of the
package itself, in the file, or of a scrambled one in its unscrambled body. Lines with 'warning:'
say what the show can live with, and what it makes of it: what it asks for and the package has
not, what is of no use, what is odd.

Exit status: 0 the package is good (there may be warnings), 1 it has faults or cannot be checked,
2 the command line makes no sense.
)";

const char* localRemedyFor(EntryKind kind) {
    switch (kind) {
    case EntryKind::Picture:
        return "open it in a picture editor, save it again, and build the package again";
    case EntryKind::Model:
    case EntryKind::Animation:
        return "make it again from its OBJ files with tamb-pack build; until then the show draws what it can "
               "read of it, which may be nothing";
    case EntryKind::Library:
        return "make it again from its MTL file with tamb-pack build; until then the show takes what it can "
               "read of it, and default colours for the rest";
    case EntryKind::Matrix:
    case EntryKind::Phaser:
    case EntryKind::Raw:
        break;
    }
    return "build the package again with an entry that is whole";
}

class Report {
public:
    explicit Report(const std::string& file) : file_(file) {}

    void Add(const std::string& where, const Faults& faults, const char* byte, const char* remedy) {
        for (const Fault& fault : faults.all) {
            std::string line = file_ + (fault.isWarning ? ": warning: " : ": ") + where;
            if (fault.offset >= 0)
                line += (where.empty() ? "" : ", ") + Text(byte, fault.offset);
            if (!where.empty() || fault.offset >= 0)
                line += ": ";
            std::printf("%s%s\n", line.c_str(), Printable(fault.text).c_str());
            ++(fault.isWarning ? warnings_ : faults_);
        }
        if (!faults.Good())
            std::printf("    what to do: %s\n", remedy);
    }

    int Finish(bool quiet) {
        if (faults_ > 0 || !quiet)
            std::printf("%s: %s, %s\n", file_.c_str(),
                        faults_ > 0 ? Counted(faults_, "fault", "faults").c_str() : "good",
                        Counted(warnings_, "warning", "warnings").c_str());
        return faults_ > 0 ? kExitFault : kExitGood;
    }

private:
    std::string file_;
    int faults_ = 0;
    int warnings_ = 0;
};

int localRun(const Arguments& arguments) {
    const std::string& file = arguments.words[0];
    const bool quiet = arguments.Has("--quiet");
    Report report(file);
    Faults faults;
    PackageFacts facts;
    FXPackage package;
    const bool readable = CheckPackage(file, &faults, &facts) && package.Load(file.c_str());
    report.Add("", faults, facts.isScrambled ? "byte %d of the unscrambled body" : "byte %d",
               "build the package again from its manifest (tamb-pack build), or take a good copy");
    if (!readable || OverlapsTooMuch(package))
        return report.Finish(quiet);

    const PictureCodec codec;
    std::vector<EntryFindings> findings;
    {
        Progress progress("entry", static_cast<std::size_t>(facts.entries), !quiet);
        std::size_t done = 0;
        findings = CheckContents(&package, [&] { progress.Done(++done); });
        progress.Clear();
    }
    for (const EntryFindings& entry : findings) {
        if (std::ranges::find(facts.misplaced, entry.id) != facts.misplaced.end())
            continue; // what is wrong with it has been said
        report.Add(entry.id < 0 ? "" : Text("entry %d (%s)", entry.id, KindName(entry.kind)), entry.faults,
                   "byte %d", localRemedyFor(entry.kind));
    }
    const int status = report.Finish(quiet);
    return PictureCodec::Loaded() ? status : Fail(std::string("the pictures are not checked: ") + kNoCodec);
}

} // namespace

std::vector<EntryFindings> CheckContents(FXPackage* package, const std::function<void()>& done) {
    return Checker(package, done).Run();
}

const Command kVerifyCommand = {
    "verify", "says what is wrong with a package, and where", kHelp, kOptions, 1, 1, localRun};
