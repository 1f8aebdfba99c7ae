#include "pack/names_header.h"

#include "base/whole_file.h"
#include "pack/text.h"
#include "package/package.h"

#include <filesystem>
#include <map>
#include <random>
#include <sstream>

namespace fs = std::filesystem;

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
    std::string define, macro, number;
    for (int i = 0; lines >> define >> macro >> number; ++i) {
        const auto [first, isNew] = seen.emplace(macro, names.names.Get(i));
        if (!isNew) {
            *error = std::string("'") + first->second + "' and '" + names.names.Get(i) + "' are both " +
                     macro + " in C: give one of them an id, or another name";
            return false;
        }
    }
    return true;
}
