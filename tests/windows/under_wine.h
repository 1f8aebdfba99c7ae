// The machine for the tests of the Windows saver: a Wine of the build's own, and programs that run in it.
#pragma once

#include "integration/program.h"

// A file that the build for Windows has made, by its name within that build's folder.
std::string WindowsBuild(const std::string& name);

// Until the end of the test, the codec beside a program may be DevIL itself (tests/codec).
void UseDevilItself();

// A program of Windows or Wine, running. `display` may be empty. The program sees `folder` as the current
// one. A setting comes in place of the usual one.
class WineProgram : public Program {
public:
    WineProgram(const std::string& display, const std::string& folder, std::vector<std::string> words,
                const Environment& settings = {});
};

// Waits until nothing runs in the prefix any more, its services included.
void WaitForWine(const std::string& prefix);
// Ends all that runs there.
void EndWine(const std::string& prefix);
