#include "win32/linux/autostart.h"

#include "base/whole_file.h"
#include "win32/posix/program_file.h"
#include "win32/posix/user_folder.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr mode_t kForAll = 0644;

int Fail(const std::string& what, int error) {
    std::fprintf(stderr, "tamblor: %s: %s\n", what.c_str(), std::strerror(error));
    return 1;
}

// A value of a desktop entry.
std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char c : text)
        escaped += c == '\\'   ? "\\\\"
                   : c == '\n' ? "\\n"
                   : c == '\t' ? "\\t"
                   : c == '\r' ? "\\r"
                               : std::string(1, c);
    return escaped;
}

// One word of an Exec line, before it is escaped as a value.
std::string Quoted(const std::string& word) {
    std::string quoted = "\"";
    for (const char c : word) {
        if (std::strchr("\"`$\\", c) != nullptr)
            quoted += '\\';
        quoted.append(c == '%' ? 2 : 1, c);
    }
    return quoted + '"';
}

// `options` of the watcher, each with a blank before it.
std::string Entry(const std::string& program, const std::string& options) {
    return "[Desktop Entry]\n"
           "Type=Application\n"
           "Name=Tamblor\n"
           "Comment=Starts the show when nobody has touched anything for a while\n"
           "Exec=" +
           Escaped(Quoted(program)) + " --watch" + options + "\nTryExec=" + Escaped(program) +
           "\nTerminal=false\n";
}

int Write(const fs::path& file, const std::string& text) {
    const auto write = [&](std::FILE* out) {
        return std::fputs(text.c_str(), out) >= 0 && fchmod(fileno(out), kForAll) == 0;
    };
    return fxReplaceFile(file.string(), write) ? 0 : Fail(file.string(), errno != 0 ? errno : ENOMEM);
}

} // namespace

int SetAutostart(bool on, bool lock, const std::vector<std::string>& showOptions) {
    const std::string configuration = UserFolder("XDG_CONFIG_HOME", "/.config");
    if (configuration.empty())
        return Fail("no configuration folder: neither XDG_CONFIG_HOME nor HOME names one", ENOENT);
    const fs::path folder = fs::path(configuration) / "autostart";
    const fs::path file = folder / "tamblor.desktop";
    if (!on) {
        const bool removed = unlink(file.c_str()) == 0;
        if (!removed && errno != ENOENT)
            return Fail(file.string(), errno);
        std::printf("%s %s\n", file.c_str(), removed ? "removed" : "is not there");
        return 0;
    }
    const std::string program = ProgramFile();
    if (program.empty())
        return Fail("/proc/self/exe", ENOENT);
    std::error_code failed;
    fs::create_directories(folder, failed);
    if (failed)
        return Fail(folder.string(), failed.value());
    std::string options = lock ? " --lock" : "";
    for (const std::string& option : showOptions)
        options += " " + option;
    const int status = Write(file, Entry(program, options));
    if (status == 0)
        std::printf("%s written; it counts from the next log-in\n", file.c_str());
    return status;
}
