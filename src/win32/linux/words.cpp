#include "win32/linux/words.h"

#include "win32/linux/daemon_window.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <string_view>

namespace {

// The letters of the classic switches (host/saver_mode.cpp).
constexpr const char* kSwitches = "SsPpAaCc";

struct Option {
    const char* name;
    const char* value; // what it is called in the help; null: it has none; in brackets: it may be missing
    const char* help;
    // Takes the value, "" without one; gives what is wrong with it, or "".
    std::string (*take)(const std::string& value, Words* words);
};

std::string TakeTask(Task task, Words* words) {
    words->task = task;
    return "";
}

constexpr const char* kNotBoth =
    "--autostart and --watch do not go together; tamblor.conf knows idle = MINUTES";

std::string TakeWindow(const std::string& number, Words* words) {
    words->task = Task::Hosted;
    words->window = WindowNumber(number);
    return words->window != 0 ? "" : "--window-id needs the number of a window, as in 0x1c00007";
}

std::string TakeMonitors(const std::string& value, Words* words) {
    words->allMonitors = value == "all";
    return value == "all" || value == "primary" ? "" : "--monitors is all or primary, not '" + value + "'";
}

std::string TakeWindowSystem(const std::string& value, Words* words) {
    words->windowSystem = value;
    return value == "x11" || value == "wayland" ? ""
                                                : "--window-system is x11 or wayland, not '" + value + "'";
}

std::string TakeLayer(const std::string& value, Words* words) {
    constexpr const char* kLayers[] = {"background", "bottom", "top", "overlay"};
    words->layer = value;
    return std::ranges::find(kLayers, value) != std::end(kLayers)
               ? ""
               : "--layer is background, bottom, top or overlay, not '" + value + "'";
}

std::string TakeMinutes(const std::string& value, Words* words) {
    constexpr double kLeast = 0.01;
    constexpr double kMost = 1440; // a day
    if (words->task == Task::Autostart)
        return kNotBoth;
    words->task = Task::Watch;
    if (value.empty())
        return "";
    const char* end = value.data() + value.size();
    const auto [stop, error] = std::from_chars(value.data(), end, words->idleMinutes);
    const bool good =
        error == std::errc() && stop == end && words->idleMinutes >= kLeast && words->idleMinutes <= kMost;
    return good ? "" : "--watch takes a number of minutes from 0.01 to 1440, not '" + value + "'";
}

std::string TakeAutostart(const std::string& value, Words* words) {
    if (words->task == Task::Watch)
        return kNotBoth;
    words->task = Task::Autostart;
    words->autostart = value == "on";
    return value == "on" || value == "off" ? "" : "--autostart takes on or off, not '" + value + "'";
}

constexpr Option kOptions[] = {
    {"--monitors", "all|primary", "a show on each monitor, or on the primary one alone (so without this)",
     TakeMonitors},
    {"--window-system", "x11|wayland", "use that one (without this, Wayland where it answers, else X11)",
     TakeWindowSystem},
    {"--layer", "background|bottom|top|overlay", "the show as a part of a Wayland desktop: it takes no input",
     TakeLayer},
    {"--help", nullptr, "this text", [](const std::string&, Words* w) { return TakeTask(Task::Help, w); }},
    {"--version", nullptr, "the version",
     [](const std::string&, Words* w) { return TakeTask(Task::Version, w); }},
    {"--root", nullptr, "the show in the window that a screen saver daemon names",
     [](const std::string&, Words* w) { return TakeTask(Task::Hosted, w); }},
    {"-root", nullptr, "the same", [](const std::string&, Words* w) { return TakeTask(Task::Hosted, w); }},
    {"--window-id", "WINDOW", "the show in that window, by its number", TakeWindow},
    {"--register", nullptr, "put Tamblor into XScreenSaver's list of savers",
     [](const std::string&, Words* w) { return TakeTask(Task::Register, w); }},
    {"--unregister", nullptr, "take it out of there",
     [](const std::string&, Words* w) { return TakeTask(Task::Unregister, w); }},
    {"--watch", "[MINUTES]", "wait, and start the show whenever nobody has touched anything for so long",
     TakeMinutes},
    {"--autostart", "on|off", "whether the desktop does that at log-in", TakeAutostart},
    {"--lock", nullptr, "with the show or one of these two: lock the session when the show ends",
     [](const std::string&, Words* w) {
         w->lock = true;
         return std::string();
     }},
    {"--where", nullptr, "what the show would use here, and why; status 1 if that is not enough",
     [](const std::string&, Words* w) { return TakeTask(Task::Where, w); }},
};

const Option* FindOption(std::string_view name) {
    const auto* found = std::ranges::find_if(kOptions, [&](const Option& each) { return each.name == name; });
    return found == std::end(kOptions) ? nullptr : found;
}

bool HasSwitch(const std::string& word) {
    return word.find_first_of(kSwitches) != std::string::npos;
}

// In lower case; 0: there is none.
char FirstSwitch(const std::vector<std::string>& rest) {
    const auto first = std::ranges::find_if(rest, HasSwitch);
    constexpr char kLower = 'a' - 'A';
    return first == rest.end() ? '\0' : static_cast<char>((*first)[first->find_first_of(kSwitches)] | kLower);
}

// By the classic rule, or by having nothing for it.
bool AsksForShow(const std::vector<std::string>& rest) {
    return rest.empty() || FirstSwitch(rest) == 's';
}

// Whether a show may come of this that nobody else watches over, by an option or by the first switch.
bool LeadsToShow(const Words& words) {
    if (words.task == Task::Autostart)
        return words.autostart;
    if (words.task != Task::Classic)
        return words.task == Task::Show || words.task == Task::Watch;
    return AsksForShow(words.rest);
}

Words Wrong(const std::string& problem) {
    Words words;
    words.task = Task::Wrong;
    words.problem = problem + "; tamblor --help lists what there is";
    return words;
}

} // namespace

Words ReadWords(std::span<const std::string> all) {
    Words words;
    bool anyOption = false;
    std::string unknown; // the first word that is neither an option nor anything for the classic rule
    for (std::size_t i = 0; i < all.size(); ++i) {
        const std::string& word = all[i];
        const std::size_t equals = std::min(word.find('='), word.size());
        const Option* option = FindOption(std::string_view(word).substr(0, equals));
        if (option == nullptr) {
            words.rest.push_back(word);
            if (unknown.empty() && word.starts_with('-') && !HasSwitch(word))
                unknown = word;
            continue;
        }
        anyOption = true;
        std::string value = equals < word.size() ? word.substr(equals + 1) : "";
        if (option->value == nullptr && equals < word.size())
            return Wrong(std::string(option->name) + " has no value");
        if (option->value != nullptr && option->value[0] != '[' && equals == word.size()) {
            if (i + 1 == all.size())
                return Wrong(std::string(option->name) + " needs a value, " + option->value);
            value = all[++i];
        }
        const std::string problem = option->take(value, &words);
        if (!problem.empty())
            return Wrong(problem);
    }
    if (!unknown.empty() && (anyOption || std::ranges::none_of(words.rest, HasSwitch)))
        return Wrong("unknown option " + unknown);
    if ((words.allMonitors || !words.layer.empty()) && !AsksForShow(words.rest))
        return Wrong(std::string(words.allMonitors ? "--monitors" : "--layer") + " is for the show");
    if (words.task == Task::Classic && anyOption && words.rest.empty())
        words.task = Task::Show;
    const bool own = words.task == Task::Watch || words.task == Task::Autostart;
    if (own && !words.rest.empty())
        return Wrong("unexpected word " + words.rest.front());
    const bool asks = words.task == Task::Help || words.task == Task::Version;
    if (!words.layer.empty() && !asks && (words.task != Task::Show && words.task != Task::Classic))
        return Wrong("--layer is for the show");
    if (words.lock && !asks && !LeadsToShow(words))
        return Wrong("--lock goes with the show, --watch or --autostart on");
    return words;
}

char ClassicSwitch(const Words& words) {
    return FirstSwitch(words.rest);
}

std::string HelpText() {
    std::string text = "tamblor: a screen saver that burns the desktop away and rebuilds it.\n\n"
                       "usage: tamblor [OPTION...] [SWITCH]\n\n"
                       "switches, as screen savers have them on Windows; the first of these letters counts:\n"
                       "  /s                    the show, full screen\n"
                       "  /p WINDOW             a still in another program's window, by its number\n"
                       "  /c, or nothing        settings; there are none to show\n\n"
                       "options:\n";
    for (const Option& option : kOptions) {
        std::string name = std::string("  ") + option.name;
        if (option.value != nullptr)
            name.append(option.value[0] == '[' ? "[=" : "=")
                .append(option.value + (option.value[0] == '[' ? 1 : 0));
        name.resize(std::max<std::size_t>(name.size() + 1, 24), ' ');
        text += name + option.help + "\n";
    }
    return text;
}

std::string VersionText() {
    return "tamblor " TAMBLOR_VERSION "\n";
}
