// The settings file: lines "name = value", comments after # or ;, [sections] for the eye only.
#pragma once

#include <map>
#include <string>
#include <vector>

struct SettingsFile {
    std::map<std::string, std::string> values;
    std::string problem; // "file:line: what is wrong"; empty: the file is good
};

// Reads and validates. A file that is not there is false; a bad one is true with a problem and no values.
bool ReadSettingsFile(const std::string& name, SettingsFile* settings);

// The files there may be, in the user's configuration folder first, then in the system's.
std::vector<std::string> SettingsFiles();

// A setting that is a number, from the first file that names it; `otherwise` when none does. The names and
// what each may be are in a table (settings_file.cpp). A bad file is passed over, and its problem reported on
// the standard error stream, once in a process.
int SettingNumber(const char* name, int otherwise);

// The caller reports this problem of a file itself: SettingNumber does not do so again.
void NoteProblemReported(const std::string& problem);
