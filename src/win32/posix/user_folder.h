// Folders of the user, as the XDG base directories are found.
#pragma once

#include <string>

// The folder that the variable names, else HOME and what is given below it ("/.config"). Only whole paths
// count. Empty: nobody says where.
std::string UserFolder(const char* variable, const char* belowHome);
