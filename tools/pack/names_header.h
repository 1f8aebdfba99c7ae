// The numbers of named entries, as a C header.
#pragma once

#include "package/name_server.h"

#include <string>

// False with a line in error when two names would be one in C.
bool NamesHeader(const FXNameServer& names, std::string* text, std::string* error);
