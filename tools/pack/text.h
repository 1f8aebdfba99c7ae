// Lines for people, and numbers that come back as they were.
#pragma once

#include "base/str.h"

#include <string>

std::string Text(const char* format, ...) FX_PRINTF(1, 2);
// The shortest text that reads as the same number.
std::string NumberText(float value);
std::string NumberText(double value);
// As it stands between the quotes of a TOML string.
std::string Quoted(const std::string& text);
// For a terminal: names come from files, and may hold what would command it.
std::string Printable(std::string text);
// One of several, as in "3 meshes", "1 mesh".
std::string Counted(long long n, const char* one, const char* many);
// "v 1 2 3" and a line feed: a line of a Wavefront file.
std::string Line3(const char* keyword, const float* numbers);

// As fxReplaceFile does it; false with "FILE: why" in error.
bool WriteWhole(const std::string& file, const std::string& bytes, std::string* error);
