// XScreenSaver's file of the user's preferences, ~/.xscreensaver: lines "name: value", of which the last
// character \ says that the value goes on in the next line.
#pragma once

#include <string>

// Whether the user lets savers show pictures of the desktop: grabDesktopImages in that file, else in the
// system's own. Where neither says so, they may not.
bool DesktopImagesAllowed();

// Adds Tamblor to the end of the list of savers: the others keep their numbers, by which one of them may be
// chosen. Removes it. The rest of the file stays as it is; a file that is not there, or has no list, gets
// one with Tamblor alone, to which the daemon adds its own savers. The file is replaced when the new one is
// whole. True with a line for the user, also when there is nothing to do. False with what is wrong: no home
// folder, a file that cannot be read or is read-only, no place to write; the file is then as it was.
bool AddToSavers(std::string* line);
bool RemoveFromSavers(std::string* line);
