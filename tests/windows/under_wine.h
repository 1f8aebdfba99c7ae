// The machine for the tests of the Windows saver: a Wine of the build's own, and programs that run in it.
#pragma once

#include "integration/program.h"

// A file that the build for Windows has made, by its name within that build's folder.
std::string WindowsBuild(const std::string& name);

// Until the end of the test, the codec beside a program may be DevIL itself (tests/codec).
void UseDevilItself();

// A program of Windows or Wine, running. `display` may be empty. The program sees `folder` as the current
// one.
class WineProgram : public Program {
public:
    WineProgram(const std::string& display, const std::string& folder, std::vector<std::string> words);
};
