// The one configuration value, the data folder, looked for where a user of this system expects it:
//   1. the environment variable TAMBLOR_DATA
//   2. tamblor/tamblor.conf in the user's configuration folder, then in the system's
//   3. the folder that the package was installed or built into, beside the executable; the one for large
//   screens
//      where the screen is large and there is one
#include "win32/posix/data_folder.h"
#include "win32/posix/last_error.h"
#include "win32/posix/program_file.h"
#include "win32/posix/settings_file.h"
#include "win32/product.h"
#include "win32/win32.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>

namespace fs = std::filesystem;

namespace {

constexpr const char* kDataVariable = "TAMBLOR_DATA";
int theKey; // the address stands for the opened key
int (*theScreenWidth)() = nullptr;

DataPlace ReadSettings(const std::string& name) {
    DataPlace place = {DataPlace::Settings, name, "", "", true};
    SettingsFile file;
    place.there = ReadSettingsFile(name, &file);
    place.problem = file.problem;
    place.folder = file.values[kDataFolderValue];
    return place;
}

void AddInstalled(std::vector<DataPlace>* places) {
    std::error_code failed;
    const fs::path prefix = fs::path(ProgramFile()).parent_path().parent_path();
    std::vector<const char*> shows = {kProductFolder};
    if (theScreenWidth != nullptr && theScreenWidth() > kWidestForDefaultShow)
        shows.insert(shows.begin(), kLargeShowFolder);
    for (const fs::path& share : {prefix / "share", fs::path(TAMBLOR_INSTALLED_SHARE)})
        for (const char* show : shows) {
            const fs::path package = share / show / kPackageFile;
            const bool there = share.is_absolute() && fs::exists(package, failed);
            places->push_back({DataPlace::Installed, package.string(),
                               there ? package.parent_path().string() : "", "", there});
        }
}

} // namespace

void AskScreenWidthOf(int (*width)()) {
    theScreenWidth = width;
}

std::vector<DataPlace> ListDataPlaces() {
    const char* named = std::getenv(kDataVariable);
    std::vector<DataPlace> places = {
        {DataPlace::Variable, kDataVariable, named != nullptr ? named : "", "", true}};
    for (const std::string& name : SettingsFiles())
        places.push_back(ReadSettings(name));
    if (ChosenDataPlace(places) == nullptr)
        AddInstalled(&places);
    return places;
}

const DataPlace* ChosenDataPlace(const std::vector<DataPlace>& places) {
    const auto found =
        std::ranges::find_if(places, [](const DataPlace& place) { return !place.folder.empty(); });
    return found == places.end() ? nullptr : &*found;
}

LSTATUS RegOpenKeyA(HKEY root, const char* name, HKEY* key) {
    return RegOpenKeyExA(root, name, 0, KEY_QUERY_VALUE, key);
}

LSTATUS RegOpenKeyExA(HKEY root, const char* name, DWORD, DWORD, HKEY* key) {
    if (root != HKEY_CURRENT_USER || std::string_view(name) != kSaverKey)
        return ERROR_FILE_NOT_FOUND;
    *key = reinterpret_cast<HKEY>(&theKey);
    return ERROR_SUCCESS;
}

// A bad file is reported even when another place supplied the value: the data is then there all the same.
LSTATUS RegQueryValueExA(HKEY, const char* name, DWORD*, DWORD*, BYTE* data, DWORD* size) {
    if (std::strcmp(name, kDataFolderValue) != 0)
        return ERROR_FILE_NOT_FOUND;
    const std::vector<DataPlace> places = ListDataPlaces();
    std::string problem;
    std::string tried = "looked for in ";
    for (const DataPlace& place : places) {
        if (problem.empty())
            problem = place.problem;
        tried += (&place == places.data() ? "" : ", ") + place.name;
    }
    SetErrorWords(ERROR_BAD_CONFIGURATION, problem);
    SetErrorWords(ERROR_FILE_NOT_FOUND, tried);
    const DataPlace* chosen = ChosenDataPlace(places);
    const std::string folder = chosen != nullptr ? chosen->folder : "";
    if (folder.size() + 1 > *size)
        return ERROR_MORE_DATA;
    if (!folder.empty())
        std::memcpy(data, folder.c_str(), folder.size() + 1);
    *size = static_cast<DWORD>(folder.size() + 1);
    if (!problem.empty()) {
        NoteProblemReported(problem);
        return ERROR_BAD_CONFIGURATION;
    }
    return folder.empty() ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS;
}

LSTATUS RegCloseKey(HKEY) {
    return ERROR_SUCCESS;
}
