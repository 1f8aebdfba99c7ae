// How the saver under test is started; chosen when the tests are linked: the executable of this system, or
// the one for Windows under Wine.
#pragma once

#include "integration/saver_process.h"

// The program (its whole path) and what comes before the saver's own arguments. `data` is the folder in which
// the saver is to find its package; what is needed besides is prepared there and put into the environment.
std::vector<std::string> SaverCommand(const TempFolder& data, Environment* environment);

// The name by which the saver knows a file, which it says where something is wrong with that.
std::string SaverName(const std::string& file);

// Whether the saver draws already, told by how often it has read its clock. Always true where that is not
// counted: there its window comes up with the first frame due at once.
bool SaverDraws(std::uint32_t clockReads);
