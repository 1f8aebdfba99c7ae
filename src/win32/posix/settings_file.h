// The settings file: lines "name = value", comments after # or ;, [sections] for the eye only.
#pragma once

#include <map>
#include <string>

struct SettingsFile {
    std::map<std::string, std::string> values;
    std::string problem; // "file:line: what is wrong"; empty: the file is good
};

// Reads and validates. A file that is not there is false; a bad one is true with a problem and no values.
bool ReadSettingsFile(const std::string& name, SettingsFile* settings);
