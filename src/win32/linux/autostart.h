// The entry in the user's autostart folder, by which the desktop starts the watcher at log-in.
#pragma once

// Writes autostart/tamblor.desktop in the user's configuration folder ("tamblor --watch", with --lock and
// --monitors=all where these are asked for), or removes it. Says on stdout what it did, on stderr what failed. Gives the exit status.
int SetAutostart(bool on, bool lock, bool allMonitors);
