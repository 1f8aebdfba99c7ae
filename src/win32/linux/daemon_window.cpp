#include "win32/linux/daemon_window.h"

#include <charconv>
#include <cstdlib>

std::uint32_t WindowNumber(std::string_view text) {
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (hexadecimal)
        text.remove_prefix(2);
    std::uint32_t number = 0;
    const auto [stop, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, hexadecimal ? 16 : 10);
    return error == std::errc() && stop == text.data() + text.size() ? number : 0;
}

std::uint32_t DaemonWindow() {
    const char* named = std::getenv("XSCREENSAVER_WINDOW");
    return named != nullptr ? WindowNumber(named) : 0;
}
