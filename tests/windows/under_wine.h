// The machine for the tests of the Windows saver: a Wine of the build's own, and programs that run in it.
#pragma once

#include "integration/program.h"

// What the build for Windows is (a folder), and which Wine runs it (two programs). Comes before all others
// here. False when there is no such Wine.
bool ChooseWine(const std::string& build, const std::string& wine, const std::string& wineserver);
// Makes the prefix when there is none yet, which takes some seconds. Empty when well, else what went wrong.
std::string PrepareWine();
// Ends what still runs in the prefix, the services too: the next test has another display.
void EndWine();

// Wine's settings for a program; what is there stays as it is. WINEDLLPATH is where the codec is.
void AddWineSettings(Environment* environment);
// The name by which a Windows program knows a file.
std::string WindowsPath(const std::string& file);
// A file that the build for Windows has made, by its name within that build's folder.
std::string WindowsBuild(const std::string& name);

// A program of Windows or Wine, running. `display` may be empty. The program sees `folder` as the current
// one.
class WineProgram : public Program {
public:
    WineProgram(const std::string& display, const std::string& folder, const std::vector<std::string>& words);
};
