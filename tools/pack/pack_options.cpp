#include "pack/pack_options.h"

#include <charconv>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

namespace fs = std::filesystem;

const char* const kPackHelp =
    R"(tamb-pack: builds packages for the show, and looks into them.

usage:
  tamb-pack build PACKAGE [--scramble] [--names HEADER] [--manifest FILE] [ENTRY...]
  tamb-pack list PACKAGE
  tamb-pack extract PACKAGE ID FILE

An ENTRY is ID=FILE, or a FILE alone, which gets the next free number; with --names, a C header
with the numbers of those is written. A manifest holds one ID=FILE per line, the file relative to
the manifest's folder, or to FOLDER after --manifest FILE:FOLDER; # begins a comment. The type of an
entry comes from its file's ending: jpg, png, tga, bmp and gif are pictures.
)";

namespace {

bool ParseId(const std::string& text, int* id) {
    const char* const end = text.data() + text.size();
    const auto [stop, failed] = std::from_chars(text.data(), end, *id);
    return failed == std::errc() && stop == end && *id >= 0;
}

bool ParseEntry(const std::string& text, const fs::path& folder, PackOptions* options, std::string* error) {
    const std::size_t equals = text.find('=');
    PackEntry entry;
    if (equals != std::string::npos && !ParseId(text.substr(0, equals), &entry.id)) {
        *error = "'" + text + "': the number before = must be 0 or more";
        return false;
    }
    const std::string name = equals == std::string::npos ? text : text.substr(equals + 1);
    if (name.empty()) {
        *error = "'" + text + "': there is no file behind the =";
        return false;
    }
    entry.file = folder.empty() ? name : (folder / name).string();
    options->entries.push_back(entry);
    return true;
}

bool ReadManifest(const std::string& argument, PackOptions* options, std::string* error) {
    const std::size_t colon = argument.find(':');
    const std::string name = argument.substr(0, colon);
    const fs::path folder =
        colon == std::string::npos ? fs::path(name).parent_path() : fs::path(argument.substr(colon + 1));
    std::ifstream file(name);
    if (!file) {
        *error = name + ": cannot be read";
        return false;
    }
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        std::string word;
        std::istringstream words(line.substr(0, line.find('#')));
        while (words >> word)
            if (!ParseEntry(word, folder, options, error)) {
                *error = name + ":" + std::to_string(number) + ": " + *error;
                return false;
            }
    }
    return true;
}

bool ParseBuild(const std::vector<std::string>& words, PackOptions* options, std::string* error) {
    for (std::size_t i = 2; i < words.size(); ++i) {
        const bool valued = words[i] == "--names" || words[i] == "--manifest";
        if (valued && i + 1 == words.size()) {
            *error = words[i] + " takes a file";
            return false;
        }
        if (words[i] == "--scramble")
            options->scramble = true;
        else if (words[i] == "--names")
            options->nameHeader = words[++i];
        else if (words[i] == "--manifest") {
            if (!ReadManifest(words[++i], options, error))
                return false;
        } else if (words[i].starts_with("--")) {
            *error = "unknown option '" + words[i] + "'";
            return false;
        } else if (!ParseEntry(words[i], {}, options, error)) {
            return false;
        }
    }
    std::set<int> seen;
    for (const PackEntry& entry : options->entries)
        if (entry.id >= 0 && !seen.insert(entry.id).second) {
            *error = "two entries have the number " + std::to_string(entry.id);
            return false;
        }
    return true;
}

} // namespace

bool ParsePackOptions(const std::vector<std::string>& arguments, PackOptions* options, std::string* error) {
    const std::string command = arguments.empty() ? "--help" : arguments[0];
    if (command == "--help" || command == "-h")
        return true;
    if (arguments.size() < 2) {
        *error = "which package? (see --help)";
        return false;
    }
    options->package = arguments[1];
    if (command == "build") {
        options->command = PackOptions::Command::Build;
        return ParseBuild(arguments, options, error);
    }
    if (command == "list" && arguments.size() == 2) {
        options->command = PackOptions::Command::List;
        return true;
    }
    PackEntry entry;
    if (command == "extract" && arguments.size() == 4 && ParseId(arguments[2], &entry.id)) {
        options->command = PackOptions::Command::Extract;
        entry.file = arguments[3];
        options->entries = {entry};
        return true;
    }
    *error = "'" + command + "' and what follows make no sense to me (see --help)";
    return false;
}
