#include "win32/posix/settings_file.h"

#include "win32/product.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

constexpr std::size_t kLargestFile = 65536;

std::string Trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    const std::size_t last = text.find_last_not_of(" \t\r");
    return first == std::string::npos ? "" : text.substr(first, last - first + 1);
}

std::string Unquoted(const std::string& text) {
    const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    return quoted ? text.substr(1, text.size() - 2) : text;
}

std::string WithHome(const std::string& path) {
    const char* home = std::getenv("HOME");
    return home != nullptr && (path == "~" || path.starts_with("~/")) ? home + path.substr(1) : path;
}

// One line; what is wrong with it, or "".
std::string ReadLine(const std::string& line, std::map<std::string, std::string>* values) {
    const std::string text = Trimmed(line);
    for (const char c : text)
        if (static_cast<unsigned char>(c) < ' ' && c != '\t')
            return "a control character";
    if (text.empty() || text[0] == '#' || text[0] == ';' || (text[0] == '[' && text.back() == ']'))
        return "";
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos)
        return "expected a line of the form: path = /folder";
    const std::string name = Trimmed(text.substr(0, equals));
    const std::string value = WithHome(Unquoted(Trimmed(text.substr(equals + 1))));
    if (name != kDataFolderValue)
        return "unknown setting '" + name + "' (there is one: path)";
    if (!value.starts_with('/'))
        return "path must be a whole path, beginning with / or ~/";
    (*values)[name] = value;
    return "";
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
