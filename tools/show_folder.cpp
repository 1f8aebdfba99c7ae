#include "show_folder.h"

#include "win32/product.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace {

constexpr const char* kDesktop = "desktop.png";

fs::path localPrefix() {
    std::error_code failed;
    return fs::read_symlink("/proc/self/exe", failed).parent_path().parent_path();
}

} // namespace

std::string ShowFolder() {
    return (localPrefix() / "share" / kProductFolder).string();
}

std::string GeneratedDesktop() {
    std::error_code failed;
    const fs::path built = localPrefix() / "assets" / kDesktop;
    return fs::exists(built, failed) ? built.string() : (fs::path(ShowFolder()) / kDesktop).string();
}
