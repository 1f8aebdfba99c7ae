// The saver's process entry, and the facts of the process.
#include "win32/linux/autostart.h"
#include "win32/linux/child_process.h"
#include "win32/linux/confinement.h"
#include "win32/linux/daemon_window.h"
#include "win32/linux/login.h"
#include "win32/linux/shows.h"
#include "win32/linux/watch.h"
#include "win32/linux/where.h"
#include "win32/linux/words.h"
#include "win32/linux/xscreensaver_file.h"
#include "win32/posix/data_folder.h"
#include "win32/posix/settings_file.h"
#include "win32/product.h"
#include "win32/windowing/window_modules.h"
#include "win32/windowing/windowing.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <span>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kFailed = 1; // exit status
constexpr int kUsageError = 2;

std::string commandLine;
std::vector<const WindowSystem*> offered; // for what the command line asks

// As a shell would join them: words with blanks in quotes.
std::string Joined(std::span<const std::string> words) {
    std::string line;
    for (const std::string& word : words) {
        const char* quote = word.empty() || word.find_first_of(" \t") != std::string::npos ? "\"" : "";
        if (!line.empty())
            line += ' ';
        line.append(quote).append(word).append(quote);
    }
    return line;
}

// 0x1c00007, as the tools of X write a window's number, in decimal; anything else, and more than 32 bits, as
// it is.
std::string InDecimal(const std::string& number) {
    const bool hexadecimal = number.starts_with("0x") || number.starts_with("0X");
    const std::uint32_t value = hexadecimal ? WindowNumber(number) : 0;
    return value != 0 ? std::to_string(value) : number;
}

// The length of a switch that takes a window's number ("/p", "-A", "p") at the start of a word; 0: none.
std::size_t WindowSwitch(const std::string& word) {
    const std::size_t letter = word.starts_with('/') || word.starts_with('-') ? 1 : 0;
    return letter < word.size() && std::strchr("pPaA", word[letter]) != nullptr ? letter + 1 : 0;
}

// The words, with window numbers in decimal.
std::vector<std::string> WithDecimals(std::vector<std::string> words) {
    bool awaited = false; // the word before was a switch
    for (std::string& word : words) {
        const std::size_t length = WindowSwitch(word);
        if (awaited)
            word = InDecimal(word);
        else if (length > 0)
            word.replace(length, std::string::npos, InDecimal(word.substr(length)));
        awaited = length > 0 && length == word.size();
    }
    return words;
}

// Status 0, or 1 when nobody can be told.
int Say(const std::string& text) {
    return std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0 ? 0 : 1;
}

int IdleMilliseconds(const Words& words) {
    constexpr double kMillisecondsPerMinute = 60000;
    constexpr int kIdleMinutes = 5;
    const double minutes = words.idleMinutes > 0 ? words.idleMinutes : SettingNumber("idle", kIdleMinutes);
    return static_cast<int>(minutes * kMillisecondsPerMinute);
}

// Other programs' windows, and daemons', have numbers on X11 alone.
bool NameAWindow(const Words& words) {
    const char letter = ClassicSwitch(words);
    return words.task == Task::Hosted || (words.task == Task::Classic && (letter == 'p' || letter == 'a'));
}

void OfferSystemsFor(const Words& words) {
    const std::string only = words.windowSystem.empty() && NameAWindow(words) ? "x11" : words.windowSystem;
    for (const WindowSystem* each : WindowModules())
        if (only.empty() || only == each->name)
            offered.push_back(each);
    OfferWindowSystems(offered);
}

// Why a show does not start here by itself, and what to do, or "": its keys would go to somebody else. When
// no window system opens, the one in use says so when it is asked for a window; where there may be a
// compositor, what is wrong with that is said before.
std::string ReasonAgainstShow(const Words& words) {
    const WindowSystem& used = UsedWindowSystem();
    std::string others;
    for (const WindowSystem* each : offered)
        if (each != &used)
            others += "tamblor: not on " + std::string(each->name) + ": " + each->FindHindrance() + "\n";
    if (!used.Open() && std::getenv("WAYLAND_DISPLAY") != nullptr)
        std::fputs(others.c_str(), stderr);
    const std::string reason = words.windowSystem.empty() && used.Open() ? used.FindHindrance() : "";
    if (reason.empty())
        return "";
    return reason + "\n" + others + "tamblor: --window-system " + used.name + " starts it all the same";
}

// Of the show that somebody starts later.
std::vector<std::string> ShowOptions(const Words& words) {
    std::vector<std::string> options;
    if (words.allMonitors)
        options.emplace_back("--monitors=all");
    if (!words.windowSystem.empty())
        options.push_back("--window-system=" + words.windowSystem);
    return options;
}

int Where() {
    const WhereReport report = FindOutWhere(offered);
    const int said = Say(report.text);
    return report.whole ? said : 1;
}

// The first request takes the show down in good order; should that hang, the second one is the system's. What
// the parent chose to ignore (nohup) stays ignored. A show in a daemon's window leaves signals to the system:
// it holds nothing that has to be given back, and the daemon waits for an end by the signal.
void ListenToSignals() {
    PrepareForRequests();
    struct sigaction action = {};
    action.sa_handler = [](int) { RequestEnd(); };
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    for (const int number : kEndSignals)
        if (!IsIgnored(number))
            sigaction(number, &action, nullptr);
}

int Complain(int status, const std::string& problem) {
    std::fprintf(stderr, "tamblor: %s\n", problem.c_str());
    return status;
}

// Of a change to the list of savers: done or not, and the line about it.
int Tell(bool done, const std::string& line) {
    return done ? Say(line + "\n") : Complain(kFailed, line);
}

// The screen is the daemon's window from now on; what is wrong with that, or "".
std::string ShowInWindow(std::uint32_t named) {
    const std::uint32_t number = named != 0 ? named : DaemonWindow();
    if (number == 0)
        return "--root needs the number of a window in XSCREENSAVER_WINDOW, as screen saver daemons set it";
    const HWND window = reinterpret_cast<HWND>(static_cast<UINT_PTR>(number));
    const int monitor = UsedWindowSystem().EnterWindow(window, DesktopImagesAllowed());
    showNumber = monitor; // daemons start one on each
    if (monitor > 0)
        return "";
    char text[80];
    std::snprintf(text, sizeof text, "there is no window 0x%x that a show can lie in", number);
    return text;
}

int CountShows() {
    OfferWindowSystems(offered);
    return UsedWindowSystem().CountShows();
}

// From here on this is the process of one of the shows. A single one is no other than without the option. A
// connection to the compositor that was handed over is one for one process.
void BeginShowOnEachMonitor() {
    if (std::getenv("WAYLAND_SOCKET") != nullptr)
        return;
    const int count = CountInAnotherProcess(CountShows);
    if (count == 1)
        return;
    const int number = ForkShows(count);
    showNumber = number + 1;
    UsedWindowSystem().ChooseShow(number, count);
}

// Without memory for what the show cannot be without, it ends at once, and the window system gives back what
// it held: nothing is taken down, since the loop may be drawing. All else that nobody has foreseen is the
// system's.
[[noreturn]] void EndWithoutMemory() {
    try {
        if (std::current_exception())
            std::rethrow_exception(std::current_exception());
    } catch (const std::bad_alloc&) {
        std::fputs("tamblor: there is no memory\n", stderr);
        _exit(kFailed);
    } catch (...) {
        std::abort();
    }
    std::abort();
}

// Before anything else of the program asks for memory.
[[gnu::constructor(101)]] void PrepareForNoMemory() {
    std::set_terminate(EndWithoutMemory);
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

int main(int count, char** arguments) {
    GiveUpNewPrivileges();
    const std::vector<std::string> all(arguments, arguments + count);
    Words words = ReadWords(std::span(all).subspan(all.empty() ? 0 : 1));
    // A daemon that says nothing more than where.
    if (count == 1 && DaemonWindow() != 0)
        words.task = Task::Hosted;
    std::string line;
    switch (words.task) { // those that need no window system
    case Task::Wrong:
        return Complain(kUsageError, words.problem);
    case Task::Help:
        return Say(HelpText());
    case Task::Version:
        return Say(VersionText());
    case Task::Register:
        return Tell(AddToSavers(&line), line);
    case Task::Unregister:
        return Tell(RemoveFromSavers(&line), line);
    case Task::Autostart:
        return SetAutostart(words.autostart, words.lock, ShowOptions(words));
    default:
        break;
    }
    OfferSystemsFor(words);
    AskScreenWidthOf([] { return GetSystemMetrics(SM_CXSCREEN); });
    switch (words.task) {
    case Task::Watch:
        line = ReasonAgainstShow(words);
        return line.empty() ? Watch(IdleMilliseconds(words), words.lock, ShowOptions(words))
                            : Complain(kFailed, line);
    case Task::Where:
        HonourSettings();
        return Where();
    case Task::Show:
    case Task::Hosted:
        words.rest = {"/s"};
        break;
    default:
        break;
    }
    for (const int number : {SIGPIPE, SIGXFSZ}) // a write that fails says so
        std::signal(number, SIG_IGN);
    if (words.allMonitors && words.task != Task::Hosted)
        BeginShowOnEachMonitor();
    if (words.task != Task::Hosted) {
        ListenToSignals();
    } else if (const std::string problem = ShowInWindow(words.window); !problem.empty()) {
        return Complain(kFailed, problem);
    }
    if (!words.layer.empty() && !UsedWindowSystem().EnterLayer(words.layer))
        return Complain(kFailed, "--layer needs a Wayland compositor with layers (zwlr_layer_shell_v1)");
    if (words.task != Task::Hosted && ClassicSwitch(words) == 's')
        line = ReasonAgainstShow(words);
    if (!line.empty())
        return Complain(kFailed, line);
    HonourSettings();
    CallWhenOpenGlIsThere([] { Confine(); }); // before the package is read; without it the show goes on
    commandLine = Joined(all);
    line = Joined(WithDecimals(words.rest));
    const int status = WinMain(nullptr, nullptr, line.data(), SW_SHOWNORMAL);
    if (words.lock)
        LockSession();
    return status;
}
