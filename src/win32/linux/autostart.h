// The entry in the user's autostart folder, by which the desktop starts the watcher at log-in.
#pragma once

#include <string>
#include <vector>

// Writes autostart/tamblor.desktop in the user's configuration folder ("tamblor --watch", with --lock if
// `lock`, and with these words for the show), or removes it. Says on stdout what it did, on stderr what
// failed. Gives the exit status.
int SetAutostart(bool on, bool lock, const std::vector<std::string>& showOptions);
