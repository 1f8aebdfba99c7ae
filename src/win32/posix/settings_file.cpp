#include "win32/posix/settings_file.h"

#include "win32/posix/trimmed.h"
#include "win32/product.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string_view>

namespace {

constexpr std::size_t kLargestFile = 65536;

// The settings that are numbers, and the least and the greatest that each may be.
struct NumberSetting {
    std::string_view name;
    int least, most;
};
constexpr int kMinutesPerDay = 1440;
constexpr NumberSetting kNumbers[] = {
    {"idle", 1, kMinutesPerDay},  // minutes until the watcher starts the show
    {"max_fps", 0, 1000},         // frames a second; 0: as many as the driver shows
    {"mouse_threshold", 0, 1000}, // pixels
    {"samples", 0, 16},           // of each pixel
};

std::set<std::string> reported; // problems

std::string Variable(const char* name, const std::string& otherwise) {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : otherwise;
}

std::string Unquoted(const std::string& text) {
    const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    return quoted ? text.substr(1, text.size() - 2) : text;
}

std::string WithHome(const std::string& path) {
    const char* home = std::getenv("HOME");
    return home != nullptr && (path == "~" || path.starts_with("~/")) ? home + path.substr(1) : path;
}

// False when it is no whole number, or larger than an int.
bool ReadNumber(const std::string& text, int* number) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, *number);
    return error == std::errc() && stop == end;
}

// What is wrong with the value of a setting that is a number, or "".
std::string CheckNumber(const std::string& name, const std::string& value) {
    const auto* const setting = std::ranges::find(kNumbers, name, &NumberSetting::name);
    if (setting == std::end(kNumbers)) {
        std::string known = kDataFolderValue;
        for (const NumberSetting& each : kNumbers)
            known.append(", ").append(each.name);
        return "unknown setting '" + name + "' (there are: " + known + ")";
    }
    int number = 0;
    if (ReadNumber(value, &number) && number >= setting->least && number <= setting->most)
        return "";
    return name + " must be a whole number from " + std::to_string(setting->least) + " to " +
           std::to_string(setting->most);
}

// One line; what is wrong with it, or "".
std::string ReadLine(const std::string& line, std::map<std::string, std::string>* values) {
    const std::string text(Trimmed(line));
    for (const char c : text)
        if (static_cast<unsigned char>(c) < ' ' && c != '\t')
            return "a control character";
    if (text.empty() || text[0] == '#' || text[0] == ';' || (text[0] == '[' && text.back() == ']'))
        return "";
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos)
        return "expected a line of the form: path = /folder";
    const std::string name(Trimmed(text.substr(0, equals)));
    std::string value = Unquoted(std::string(Trimmed(text.substr(equals + 1))));
    std::string wrong;
    if (name != kDataFolderValue)
        wrong = CheckNumber(name, value);
    else if (value = WithHome(value); !value.starts_with('/'))
        wrong = "path must be a whole path, beginning with / or ~/";
    if (wrong.empty())
        (*values)[name] = value;
    return wrong;
}

} // namespace

bool ReadSettingsFile(const std::string& name, SettingsFile* settings) {
    std::error_code failed;
    if (!std::filesystem::is_regular_file(name, failed))
        return false;
    if (std::filesystem::file_size(name, failed) > kLargestFile) {
        settings->problem = name + ": too large for a settings file";
        return true;
    }
    std::ifstream file(name);
    if (!file)
        settings->problem = name + ": cannot be read";
    std::string line;
    for (int number = 1; settings->problem.empty() && std::getline(file, line); ++number) {
        const std::string wrong = ReadLine(line, &settings->values);
        if (!wrong.empty())
            settings->problem.append(name).append(":").append(std::to_string(number)).append(": " + wrong);
    }
    if (!settings->problem.empty())
        settings->values.clear();
    return true;
}

std::vector<std::string> SettingsFiles() {
    std::vector<std::string> folders = {Variable("XDG_CONFIG_HOME", Variable("HOME", "") + "/.config")};
    std::stringstream system(Variable("XDG_CONFIG_DIRS", "/etc/xdg"));
    for (std::string folder; std::getline(system, folder, ':');)
        folders.push_back(folder);
    std::erase_if(folders, [](const std::string& folder) { return !folder.starts_with('/'); }); // no place
    for (std::string& folder : folders)
        folder.append("/").append(kProductFolder).append("/").append(kSettingsFile);
    return folders;
}

int SettingNumber(const char* name, int otherwise) {
    bool found = false;
    int number = otherwise;
    for (const std::string& place : SettingsFiles()) {
        SettingsFile file;
        if (!ReadSettingsFile(place, &file))
            continue;
        if (!file.problem.empty() && reported.insert(file.problem).second)
            std::fprintf(stderr, "tamblor: configuration: %s\n", file.problem.c_str());
        if (const auto at = file.values.find(name); !found && at != file.values.end())
            found = ReadNumber(at->second, &number);
    }
    return number;
}

void NoteProblemReported(const std::string& problem) {
    reported.insert(problem);
}
