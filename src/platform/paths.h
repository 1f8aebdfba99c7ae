// Folders. All files are opened by names relative to the current folder, so choosing the data folder makes it
// current.
#pragma once

#include "base/str.h"

// Type path 1 is the start folder, later the data folder; 2 the system's fonts folder. They end with a
// separator.
void fxInitPaths();
void fxSetTypePath(int type, const char* path); // cut to 259 characters, null is empty
const char* fxGetTypePath(int type);            // null for other types

bool fxSetActPath(const char* path);          // makes it the current folder
bool fxSetPath(int type);                     // fxSetActPath of a type path
bool fxSetSubPath(int type, const char* sub); // the folder `sub` of a type path (fxCombinePaths)
// The current folder with a separator behind it, valid until the next call; ".\" when it is deeper than 259
// characters.
const char* fxGetActPath();
bool fxPathExists(const char* path); // a file or a folder

// The whole name of a file in the folder where programs keep this user's logs. The folder is made when it is
// missing. Empty when there is none.
FXStr fxStateFile(const char* name);
