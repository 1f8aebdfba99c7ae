#include "show_folder.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace {

fs::path localPrefix() {
    std::error_code failed;
    return fs::read_symlink("/proc/self/exe", failed).parent_path().parent_path();
}

} // namespace

std::string ShowFolder() {
    return (localPrefix() / "share" / "tamblor").string();
}

std::string GeneratedDesktop() {
    std::error_code failed;
    const fs::path built = localPrefix() / "assets" / "desktop.png";
    return fs::exists(built, failed) ? built.string()
                                     : (localPrefix() / "share" / "tamblor" / "desktop.png").string();
}
