// The process entry, and the facts of the process.
#include "win32/x11/x11.h"

#include <csignal>
#include <cstring>
#include <string>

namespace {

std::string commandLine;

// As a shell would join them: words with blanks in quotes.
std::string Joined(char** words) {
    std::string line;
    for (; *words != nullptr; ++words) {
        const char* quote = **words == '\0' || std::strpbrk(*words, " \t") != nullptr ? "\"" : "";
        if (!line.empty())
            line += ' ';
        line.append(quote).append(*words).append(quote);
    }
    return line;
}

// The first request takes the show down in good order; should that hang, the second one is the system's. What
// the parent chose to ignore (nohup) stays ignored.
void ListenToSignals() {
    struct sigaction action = {};
    action.sa_handler = [](int) { RequestEnd(); };
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction before = {};
        if (sigaction(number, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            sigaction(number, &action, nullptr);
    }
    std::signal(SIGPIPE, SIG_IGN);
}

} // namespace

char* GetCommandLineA() {
    return commandLine.data();
}

BOOL GetVersionExA(OSVERSIONINFOA* version) {
    version->dwMajorVersion = version->dwMinorVersion = version->dwBuildNumber = 0;
    version->dwPlatformId = VER_PLATFORM_WIN32_NT;
    version->szCSDVersion[0] = '\0';
    return TRUE;
}

// Nobody here asks whether a saver runs.
BOOL SystemParametersInfoA(UINT, UINT, void*, UINT) {
    return TRUE;
}

int main(int, char** words) {
    ListenToSignals();
    commandLine = Joined(words);
    std::string arguments = words[0] != nullptr ? Joined(words + 1) : "";
    return WinMain(nullptr, nullptr, arguments.data(), SW_SHOWNORMAL);
}
