#include "host/saver_mode.h"

#include <algorithm>

namespace {

constexpr std::string_view kLetters = "SsPpAaCc";
constexpr SaverMode kModes[] = {SaverMode::Saver, SaverMode::Preview, SaverMode::ChangePassword,
                                SaverMode::Configure};

void localReadWindow(std::string_view text, SaverCommand* command) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    for (const char c : text) {
        if (c < '0' || c > '9')
            return;
        command->window = command->window * 10u + static_cast<std::uint32_t>(c - '0');
        command->hasWindow = true;
    }
}

} // namespace

SaverCommand ParseSaverCommandLine(std::string_view text) {
    SaverCommand command;
    const std::size_t at = text.find_first_of(kLetters);
    if (at == std::string_view::npos)
        return command;
    command.mode = kModes[kLetters.find(text[at]) / 2];
    if (command.mode == SaverMode::Preview || command.mode == SaverMode::ChangePassword)
        localReadWindow(text.substr(at + 1), &command);
    return command;
}
