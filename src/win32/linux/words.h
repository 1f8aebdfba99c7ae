// The words of the command line that only Linux has: long options. They are looked for before the classic
// rule (host/saver_mode.h), which would take a switch from the letters in them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

enum class Task {
    Classic, // what the rest of the words ask for, by the classic rule
    Show,    // full screen
    Hosted,  // the show in a window of a screen saver daemon
    Register,
    Unregister,
    Help,
    Version,
    Watch,
    Autostart,
    Where, // linux/where.h
    Wrong,
};

struct Words {
    Task task = Task::Classic;
    std::uint32_t window = 0;      // of Hosted: the one named by its number; 0: the daemon says which
    std::vector<std::string> rest; // what is left for the classic rule
    bool allMonitors = false;      // a show on each
    std::string problem;           // of Wrong: one line for the user
    double idleMinutes = 0;        // of Watch; 0: as it is configured
    bool autostart = false;        // of Autostart: on
    bool lock = false;             // the session, when the show ends
    std::string windowSystem;      // the one to be used; "": the first that opens
    std::string layer;             // of the desktop, that the show is on; "": it is above everything
};

// The words behind the program's name. An option stands as it is ("--help"), with its value behind it or
// after an equals sign ("--name VALUE", "--name=VALUE"), or there alone where it may be missing. A word that
// begins with a minus and is none of the options is wrong, unless the classic rule makes a switch of it.
// Options that only say how ask for the show, where nothing else asks for anything.
Words ReadWords(std::span<const std::string> words);

// The switch that the classic rule finds in them, in lower case; 0: none.
char ClassicSwitch(const Words& words);

// What --help prints, and --version: both end with a newline.
std::string HelpText();
std::string VersionText();
