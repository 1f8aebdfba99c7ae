// Where the tools find the default show: beside the executable, as built and as installed.
#pragma once

#include <string>

// The folder that holds tamb.dat.
std::string ShowFolder();
// The picture of a desktop that stands in for a real one; the file may not exist.
std::string GeneratedDesktop();
