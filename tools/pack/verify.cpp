// tamb-pack verify: what is wrong with a package, and where.
#include "pack/command.h"
#include "pack/content_check.h"
#include "pack/package_check.h"
#include "pack/picture_codec.h"
#include "pack/text.h"
#include "progress.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace {

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

const Command kVerifyCommand = {
    "verify", "says what is wrong with a package, and where", kHelp, kOptions, 1, 1, localRun};
