// tamb-pack dump: bytes, field by field.
#include "image/wavefront_lines.h"
#include "pack/command.h"
#include "pack/entry_check.h"
#include "pack/kinds.h"
#include "pack/package_check.h"
#include "pack/text.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <string>

namespace {

constexpr const char* kHelp =
    R"(usage: tamb-pack dump PACKAGE [ID]

The bytes of an entry, or without an ID of the package itself: where each field begins, its bytes
in hexadecimal, and what it is. docs/formats.md reads one such dump of each format. A picture's
bytes, and those of what is no record, stand there without a word. At the first fault it ends; what
is wrong goes to the standard error output.
)";

constexpr int kBytesPerLine = 16;

void localPrintField(const Field& field) {
    for (int at = 0; at < field.size; at += kBytesPerLine) {
        std::string bytes;
        for (int i = at; i < std::min(at + kBytesPerLine, field.size); ++i)
            bytes += Text("%02x ", field.bytes[i]);
        std::printf(
            "%6d  %s\n", field.offset + at,
            at == 0 && !field.what.empty()
                ? Text("%-*s %s", 3 * kBytesPerLine, bytes.c_str(), Printable(field.what).c_str()).c_str()
                : fxTrimmed(bytes).c_str());
    }
}

int localFinish(const std::string& what, const Faults& faults) {
    for (const Fault& fault : faults.all)
        if (!fault.isWarning)
            return Fail(what + ": " + (fault.offset < 0 ? "" : Text("byte %d: ", fault.offset)) + fault.text);
    return kExitGood;
}

int localDumpPackage(const std::string& file) {
    Faults faults;
    faults.onField = localPrintField;
    PackageFacts facts;
    CheckPackage(file, &faults, &facts);
    return localFinish(file, faults);
}

int localDumpEntry(const std::string& file, const std::string& number) {
    const int id = EntryNumber(number);
    FXPackage package;
    std::string error;
    if (id < 0)
        return FailUsage("'" + number + "' is no entry's number", "dump");
    if (!LoadPackage(file, &package, &error))
        return Fail(error);
    const FXPackageData* entry = package.GetDataPtr(id);
    if (entry == nullptr)
        return Fail("there is no entry " + number + " (tamb-pack list shows which there are)");
    const FXPackageData data = *entry;
    const EntryKind kind = KindOf(package, id);
    Faults faults;
    faults.onField = localPrintField;
    EntryFacts facts;
    CheckEntry(kind, data, &faults, &facts);
    if (kind == EntryKind::Picture || kind == EntryKind::Raw)
        localPrintField({0, data.start, data.size, ""});
    return localFinish("entry " + number, faults);
}

int localRun(const Arguments& arguments) {
    return arguments.words.size() == 1 ? localDumpPackage(arguments.words[0])
                                       : localDumpEntry(arguments.words[0], arguments.words[1]);
}

} // namespace

const Command kDumpCommand = {"dump", "shows an entry's bytes, field by field", kHelp, {}, 1, 2, localRun};
