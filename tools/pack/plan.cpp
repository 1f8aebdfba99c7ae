#include "pack/plan.h"

#include "base/whole_file.h"
#include "image/material.h"
#include "image/material_library.h"
#include "pack/text.h"
#include "pack/wavefront.h"
#include "package/package.h"

#include <algorithm>
#include <climits>
#include <filesystem>
#include <map>
#include <random>
#include <sstream>
#include <string_view>

namespace fs = std::filesystem;

namespace {

// Numbers that the show asks for are never given to an entry that only has a name.
constexpr int kFirstFreeId = 100;

std::string localBeside(const std::string& file, const std::string& name) {
    return (fs::path(file).parent_path() / name).lexically_normal().string();
}

class Planner {
public:
    Planner(const Manifest& manifest, Plan* plan, std::string* error)
        : manifest_(manifest), plan_(*plan), error_(*error) {}

    bool Run() {
        GiveNumbers();
        // Entries may follow that are found on the way.
        for (std::size_t i = 0; i < plan_.entries.size() && error_.empty(); ++i)
            ReadShapes(i);
        for (std::size_t i = 0; i < plan_.entries.size() && error_.empty(); ++i)
            if (plan_.entries[i].entry.kind == EntryKind::Library)
                ReadMaterials(i);
        return error_.empty();
    }

private:
    void Fail(const ManifestEntry& entry, const std::string& text) {
        if (error_.empty())
            error_ = manifest_.Where(entry.line) + text;
    }

    void GiveNumbers() {
        int highest = -1;
        for (const ManifestEntry& entry : manifest_.entries)
            highest = std::max(highest, entry.id);
        plan_.names.firstId = highest < INT_MAX ? std::max(highest + 1, kFirstFreeId) : INT_MAX;
        for (const ManifestEntry& entry : manifest_.entries)
            plan_.entries.push_back({entry, {}, {}, nullptr, -1});
        for (PlannedEntry& planned : plan_.entries)
            if (planned.entry.id < 0)
                GiveNumber(&planned.entry);
    }

    void GiveNumber(ManifestEntry* entry) {
        if (plan_.names.FindId(entry->name.c_str()) >= 0)
            return Fail(*entry, "the name " + entry->name + " is another entry's already");
        entry->id = plan_.names.BuildId(entry->name.c_str());
        if (entry->id < 0)
            Fail(*entry, "no number is left for " + entry->name);
    }

    // The entry of that kind that the file is for, made when there is none. `user` is where it is named.
    int EntryOf(EntryKind kind, const std::string& file, const ManifestEntry& user) {
        for (const PlannedEntry& planned : plan_.entries)
            if (planned.entry.kind == kind && planned.entry.file == file)
                return planned.entry.id;
        ManifestEntry added;
        added.line = user.line;
        added.kind = kind;
        added.file = file;
        added.name = fs::path(file).lexically_proximate(manifest_.folder).generic_string();
        if (kind == EntryKind::Picture) {
            const FXPictureEnding* type = FindPictureEnding(file);
            if (type == nullptr)
                Fail(user, file + kNoPictureEnding);
            else
                added.type = type->type;
        }
        GiveNumber(&added);
        plan_.entries.push_back({added, {}, {}, nullptr, -1});
        return added.id;
    }

    // -1, with an error, when it is not there.
    int Resolve(const EntryReference& reference, const ManifestEntry& user) {
        for (const PlannedEntry& planned : plan_.entries)
            if (reference.name.empty() ? planned.entry.id == reference.id
                                       : planned.entry.name == reference.name)
                return planned.entry.id;
        Fail(user, "there is no entry " +
                       (reference.name.empty() ? std::to_string(reference.id) : "named " + reference.name));
        return -1;
    }

    void ReadShapes(std::size_t i) {
        const ManifestEntry entry = plan_.entries[i].entry;
        if (entry.kind == EntryKind::Model && ReadShape(entry, entry.file, &plan_.entries[i].obj))
            ChooseLibrary(i, entry.file, plan_.entries[i].obj);
        for (const EntryReference& frame : entry.animation.frameEntries)
            Resolve(frame, entry);
        for (const std::string& file : entry.animation.frameFiles) {
            plan_.entries[i].frames.emplace_back();
            if (!ReadShape(entry, file, &plan_.entries[i].frames.back()))
                return;
        }
        if (!entry.animation.frameFiles.empty())
            ChooseLibrary(i, entry.animation.frameFiles.front(), plan_.entries[i].frames.front());
    }

    bool ReadShape(const ManifestEntry& entry, const std::string& file, FXObjFile* obj) {
        std::string problem;
        if (!fs::path(file).has_extension() ||
            FXStr(fs::path(file).extension().string().c_str()).iCompare(".obj") == 0)
            Fail(entry,
                 file + ": models are made from .obj files; another file can be packed as it is, with raw =");
        else if (!fxReadObj(file, obj, &problem))
            Fail(entry, problem);
        return error_.empty();
    }

    void ChooseLibrary(std::size_t i, const std::string& file, const FXObjFile& obj) {
        const ManifestEntry entry = plan_.entries[i].entry;
        int id = -1;
        if (entry.library.Given())
            id = Resolve(entry.library, entry);
        else if (obj.libraries.size() > 1)
            Fail(entry,
                 file +
                     ": it names several MTL files, but a model has one library: choose it with library =");
        else if (!obj.libraries.empty())
            id = EntryOf(EntryKind::Library, localBeside(file, obj.libraries.front()), entry);
        plan_.entries[i].libraryId = id;
    }

    void ReadMaterials(std::size_t i) {
        const ManifestEntry entry = plan_.entries[i].entry;
        const auto library = std::make_shared<FXMatlib>();
        library->name.Set(std::to_string(entry.id).c_str());
        std::string problem;
        if (!ReadMtl(entry.file, library.get(), &problem))
            return Fail(entry, problem);
        for (FXMaterial* material : library->materials) {
            if (material->texRef.IsEmpty())
                continue;
            const std::string picture = localBeside(entry.file, material->texRef.text);
            std::error_code failed;
            if (!fs::exists(picture, failed))
                return Fail(entry, entry.file + ": the picture of material " + material->name.text +
                                       " is not there: " + picture);
            material->texRef.Set(std::to_string(EntryOf(EntryKind::Picture, picture, entry)).c_str());
        }
        plan_.entries[i].library = library;
    }

    const Manifest& manifest_;
    Plan& plan_;
    std::string& error_;
};

// What the next line of a header of names defines; "" where that is no identifier: the package makes one of
// most names, but not of those with a tab, an ampersand or an end of the line in them.
std::string localNextMacro(std::istream* lines) {
    constexpr std::string_view kDefine = "#define ";
    std::string line;
    std::getline(*lines, line);
    const std::size_t end = line.find("  ");
    if (!line.starts_with(kDefine) || end == std::string::npos)
        return "";
    const std::string macro = line.substr(kDefine.size(), end - kDefine.size());
    const auto isTaken = [](unsigned char letter) {
        return letter >= 0x80 || letter == '_' || (letter >= '0' && letter <= '9') ||
               (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z');
    };
    return std::ranges::all_of(macro, isTaken) ? macro : "";
}

} // namespace

bool MakePlan(const Manifest& manifest, Plan* plan, std::string* error) {
    error->clear();
    return Planner(manifest, plan, error).Run();
}

bool NamesHeader(const FXNameServer& names, std::string* text, std::string* error) {
    FXPackage writer;
    writer.firstId = names.firstId;
    for (int i = 0; i < names.names.count; ++i)
        writer.names.Push(names.names.Get(i));
    std::error_code failed;
    const fs::path scratch = fs::temp_directory_path(failed) /
                             Text("tamb-pack-names-%08x", static_cast<unsigned>(std::random_device{}()));
    const bool read =
        writer.SaveNamesCpp(scratch.string().c_str()) && fxReadWhole(scratch.string(), text, error);
    fs::remove(scratch, failed);
    if (!read) {
        *error = "there is no room for a temporary file in " + scratch.parent_path().string();
        return false;
    }
    std::map<std::string, const char*> seen;
    std::istringstream lines(*text);
    for (int i = 0; i < names.names.count; ++i) {
        const std::string macro = localNextMacro(&lines);
        if (macro.empty()) {
            *error = std::string("'") + names.names.Get(i) +
                     "' makes no name that C takes: give it an id, or another name";
            return false;
        }
        const auto [first, isNew] = seen.emplace(macro, names.names.Get(i));
        if (!isNew) {
            *error = std::string("'") + first->second + "' and '" + names.names.Get(i) + "' are both " +
                     macro + " in C: give one of them an id, or another name";
            return false;
        }
    }
    return true;
}
