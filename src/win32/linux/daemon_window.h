// The window that a screen saver daemon gives the show to.
#pragma once

#include <cstdint>
#include <string_view>

// A window's number, decimal or hexadecimal behind 0x, and nothing else before or behind it; 0 when the text
// is no such number, or one of more than 32 bits.
std::uint32_t WindowNumber(std::string_view text);

// The window that the daemon names in the environment; 0 when it names none. On Wayland some put a word there
// that is no number.
std::uint32_t DaemonWindow();
