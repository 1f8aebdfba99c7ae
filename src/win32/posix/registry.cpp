// The one configuration value, the data folder, looked for where a user of this system expects it:
//   1. the environment variable TAMBLOR_DATA
//   2. tamblor/tamblor.conf in the user's configuration folder, then in the system's
//   3. the folder that the package was installed or built into, beside the executable; the one for large
//   screens where
//      the screen is large and there is one
#include "win32/posix/data_folder.h"
#include "win32/posix/last_error.h"
#include "win32/posix/settings_file.h"
#include "win32/product.h"
#include "win32/win32.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr const char* kDataVariable = "TAMBLOR_DATA";
int theKey; // the address stands for the opened key
int (*theScreenWidth)() = nullptr;

// The search for the data folder.
struct Search {
    std::string folder;  // empty: there is none
    std::string problem; // of the first bad file
    std::string tried = kDataVariable;
};

void SearchInstalled(Search* search) {
    std::error_code failed;
    const fs::path prefix = fs::read_symlink("/proc/self/exe", failed).parent_path().parent_path();
    std::vector<const char*> shows = {kProductFolder};
    if (theScreenWidth != nullptr && theScreenWidth() > kWidestForDefaultShow)
        shows.insert(shows.begin(), kLargeShowFolder);
    for (const fs::path& share : {prefix / "share", fs::path(TAMBLOR_INSTALLED_SHARE)})
        for (const char* show : shows) {
            const fs::path package = share / show / kPackageFile;
            search->tried += ", " + package.string();
            if (search->folder.empty() && share.is_absolute() && fs::exists(package, failed))
                search->folder = package.parent_path().string();
        }
}

// The first folder that somebody names; bad files are passed over.
Search SearchDataFolder() {
    Search search;
    if (const char* named = std::getenv(kDataVariable))
        search.folder = named;
    for (const std::string& name : SettingsFiles()) {
        search.tried += ", " + name;
        SettingsFile file;
        if (!ReadSettingsFile(name, &file))
            continue;
        if (search.problem.empty())
            search.problem = file.problem;
        if (search.folder.empty())
            search.folder = file.values[kDataFolderValue];
    }
    if (search.folder.empty())
        SearchInstalled(&search);
    return search;
}

} // namespace

void AskScreenWidthOf(int (*width)()) {
    theScreenWidth = width;
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
    const Search search = SearchDataFolder();
    SetErrorWords(ERROR_BAD_CONFIGURATION, search.problem);
    SetErrorWords(ERROR_FILE_NOT_FOUND, "looked for in " + search.tried);
    const std::string& folder = search.folder;
    if (folder.size() + 1 > *size)
        return ERROR_MORE_DATA;
    if (!folder.empty())
        std::memcpy(data, folder.c_str(), folder.size() + 1);
    *size = static_cast<DWORD>(folder.size() + 1);
    if (!search.problem.empty()) {
        NoteProblemReported(search.problem);
        return ERROR_BAD_CONFIGURATION;
    }
    return folder.empty() ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS;
}

LSTATUS RegCloseKey(HKEY) {
    return ERROR_SUCCESS;
}
