#include "win32/linux/xscreensaver_file.h"

#include "base/whole_file.h"
#include "win32/posix/trimmed.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr const char* kSystemFile = "/etc/X11/app-defaults/XScreenSaver";
constexpr std::string_view kSaverLine = R"(  GL: "Tamblor"  tamblor --root \n\)";
constexpr std::string_view kSaver = "tamblor"; // the program in a line of the list
constexpr std::string_view kEnd = R"(\n)";     // of each saver in the list

using Lines = std::vector<std::string>;

Lines Split(const std::string& text) {
    Lines lines;
    for (std::size_t from = 0; from < text.size();) {
        const std::size_t end = std::min(text.find('\n', from), text.size());
        lines.push_back(text.substr(from, end - from));
        from = end + 1;
    }
    return lines;
}

bool GoesOn(std::string_view line) {
    return line.ends_with('\\');
}

// What a line says without the mark that it goes on.
std::string_view Said(std::string_view line) {
    return Trimmed(line.substr(0, line.size() - (GoesOn(line) ? 1 : 0)));
}

// A setting's lines, [first, last].
struct Setting {
    std::size_t first = 0, last = 0;
    std::string value; // in the first line
    bool found = false;
};

// Names stand alone in the user's file, behind "*" in the system's. The last setting of a name counts.
Setting Find(const Lines& lines, std::string_view name) {
    Setting found;
    for (std::size_t at = 0; at < lines.size(); ++at) {
        const std::size_t first = at;
        while (GoesOn(lines[at]) && at + 1 < lines.size())
            ++at;
        const std::string_view line = lines[first];
        const std::size_t colon = std::min(line.find(':'), line.size());
        std::string_view named = Trimmed(line.substr(0, colon));
        if (named.starts_with('*'))
            named.remove_prefix(1);
        if (named == name && colon < line.size())
            found = {first, at, std::string(Said(line.substr(colon + 1))), true};
    }
    return found;
}

// Whether that file allows or forbids it; Silent when it does not say.
enum class Answer { Silent, No, Yes };
Answer AllowsDesktop(const std::string& file) {
    std::string text;
    std::string error;
    if (!fxReadWhole(file, &text, &error))
        return Answer::Silent;
    Setting setting = Find(Split(text), "grabDesktopImages");
    if (!setting.found)
        return Answer::Silent;
    std::ranges::transform(setting.value, setting.value.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const std::string& value = setting.value;
    return value == "true" || value == "yes" || value == "on" || value == "1" ? Answer::Yes : Answer::No;
}

// Empty: nobody says where.
std::string UserFile() {
    const char* home = std::getenv("HOME");
    return home != nullptr && *home == '/' ? std::string(home) + "/.xscreensaver" : "";
}

// A saver in the list: maybe "-" for one that is off, a visual and a name, then the command.
bool IsTamblor(std::string_view saver) {
    saver = Trimmed(saver);
    if (saver.starts_with('-'))
        saver = Trimmed(saver.substr(1));
    const std::size_t word = std::min(saver.find_first_of(kBlanks), saver.size());
    const std::size_t colon = saver.find(':');
    if (colon != std::string_view::npos && colon < word)
        saver = Trimmed(saver.substr(colon + 1));
    if (saver.starts_with('"'))
        saver = Trimmed(saver.substr(std::min(saver.find('"', 1), saver.size() - 1) + 1));
    const std::string_view program = saver.substr(0, std::min(saver.find_first_of(kBlanks), saver.size()));
    return program == kSaver || program.ends_with("/tamblor");
}

// A line of the list without Tamblor; the same when it is not in there.
std::string WithoutTamblor(std::string_view line) {
    std::string rest;
    while (!line.empty()) {
        const std::size_t end = std::min(line.find(kEnd), line.size());
        const std::size_t next = std::min(end + kEnd.size(), line.size());
        if (!IsTamblor(line.substr(0, end)))
            rest += line.substr(0, next);
        line.remove_prefix(next);
    }
    return rest;
}

// Where the list's savers stand: what is behind "programs:" in the first line.
std::string* Part(Lines* lines, const Setting& list, std::size_t at, std::string* head) {
    std::string* line = &(*lines)[at];
    head->clear();
    if (at == list.first) {
        const std::size_t behind = line->find(':') + 1;
        *head = line->substr(0, behind);
        line->erase(0, behind);
    }
    return line;
}

// True when it was in there.
bool RemoveFrom(Lines* lines, const Setting& list) {
    bool removed = false;
    std::size_t last = list.last;
    for (std::size_t at = list.last + 1; at-- > list.first;) {
        std::string head;
        std::string* line = Part(lines, list, at, &head);
        const std::string rest = WithoutTamblor(*line);
        const bool changed = rest != *line;
        const bool ends = at == last && !GoesOn(*line);
        const bool empty = changed && Said(rest).empty();
        removed = removed || changed;
        if (!empty || at == list.first) {
            *line = head + rest;
            continue;
        }
        lines->erase(lines->begin() + static_cast<std::ptrdiff_t>(at));
        --last;
        if (ends) // the line before must not go on into the next setting
            (*lines)[at - 1].pop_back();
    }
    return removed;
}

bool Has(Lines lines, const Setting& list) {
    return RemoveFrom(&lines, list);
}

void AddTo(Lines* lines, const Setting& list) {
    std::size_t at = list.last; // the last line that says something
    while (at > list.first && Said((*lines)[at]).empty())
        --at;
    std::string& line = (*lines)[at];
    const bool open = GoesOn(line);
    if (open)
        line.pop_back();
    const bool none = at == list.first && list.value.empty();
    const std::string_view said = Trimmed(line);
    const bool last = at == list.last;
    if (!none && !said.ends_with(kEnd))
        line += kEnd;
    line += none && !open ? " \\" : "\\";
    const auto behind = lines->begin() + static_cast<std::ptrdiff_t>(at) + 1;
    const auto added = lines->insert(behind, std::string(kSaverLine));
    if (last) // an empty line ends it
        lines->insert(added + 1, "");
}

// The lines, in the place of the file, which keeps its permissions. A link stays one.
bool Replace(const std::string& file, const Lines& lines, std::string* problem) {
    std::error_code failed;
    const fs::path real = fs::canonical(file, failed);
    const std::string target = failed ? file : real.string();
    struct stat before = {};
    const bool exists = stat(target.c_str(), &before) == 0;
    if (exists && ((before.st_mode & S_IWUSR) == 0 || access(target.c_str(), W_OK) != 0)) {
        *problem = file + ": is read-only";
        return false;
    }
    const auto write = [&](std::FILE* out) {
        for (const std::string& line : lines)
            if (std::fwrite(line.data(), 1, line.size(), out) != line.size() || std::fputc('\n', out) == EOF)
                return false;
        return !exists || fchmod(fileno(out), before.st_mode & 07777) == 0;
    };
    return fxReplaceFile(target, write, problem);
}

// The lines of the user's file, none when it is not there; false with what is wrong.
bool Open(std::string* file, Lines* lines, std::string* problem) {
    *file = UserFile();
    if (file->empty()) {
        *problem = "there is no home folder: HOME is not set";
        return false;
    }
    std::error_code failed;
    std::string text;
    if (fs::exists(fs::symlink_status(*file, failed)) && !fxReadWhole(*file, &text, problem))
        return false;
    *lines = Split(text);
    return true;
}

} // namespace

bool DesktopImagesAllowed() {
    const std::string user = UserFile();
    Answer answer = user.empty() ? Answer::Silent : AllowsDesktop(user);
    if (answer == Answer::Silent)
        answer = AllowsDesktop(kSystemFile);
    return answer == Answer::Yes;
}

bool AddToSavers(std::string* line) {
    std::string file;
    Lines lines;
    if (!Open(&file, &lines, line))
        return false;
    Setting list = Find(lines, "programs");
    if (list.found && Has(lines, list)) {
        *line = file + " lists Tamblor already";
        return true;
    }
    if (!list.found) {
        if (!lines.empty() && GoesOn(lines.back())) // into nothing, as yet
            lines.emplace_back();
        list.first = list.last = lines.size();
        lines.emplace_back("programs:");
    }
    AddTo(&lines, list);
    if (!Replace(file, lines, line))
        return false;
    *line = file + " lists Tamblor now";
    return true;
}

bool RemoveFromSavers(std::string* line) {
    std::string file;
    Lines lines;
    if (!Open(&file, &lines, line))
        return false;
    const Setting list = Find(lines, "programs");
    if (!list.found || !RemoveFrom(&lines, list)) {
        *line = file + " does not list Tamblor";
        return true;
    }
    if (!Replace(file, lines, line))
        return false;
    *line = file + " lists Tamblor no more";
    return true;
}
