// Where the program lies.
#pragma once

#include <string>

// Its whole path, without links; where there is no /proc, as it was started, which a shell does by the whole
// path.
// "" when it cannot be found out: files are never looked for in whatever folder it was started in.
std::string ProgramFile();
