// Paths as text: nothing here touches a file. Both "\" and "/" separate.
#pragma once

// The part after the last separator, inside the given text.
const char* fxGetFilename(const char* path);

// The way from one path to another, as "../b/c"; `to` itself when there is none (another drive, an empty
// path). A path that is a file counts without its last part where the way begins. The result stays valid
// until the next call.
const char* fxBuildRelativePath(const char* from, bool fromIsFile, const char* to, bool toIsFile);
