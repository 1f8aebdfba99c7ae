// Paths as text: nothing here touches a file. Both "\" and "/" separate; a null path is empty.
#pragma once

#include <string_view>

// Functions that make a path share one buffer: a result stays valid until the next one is made, and may be an
// argument of that call. One that would be longer than 259 characters is empty, and so is one that there is
// no memory for.

// The part after the last separator, inside the given text.
const char* fxGetFilename(const char* path);

// The way from one path to another, as "../b/c"; `to` itself when there is none (another drive, an empty
// path), it is too long, or there is no memory. A path that is a file counts without its last part where the
// way begins.
const char* fxBuildRelativePath(const char* from, bool fromIsFile, const char* to, bool toIsFile);

// b within the folder a, "." and ".." resolved as far as there are parts to go up. b loses one separator in
// front; if it then names a drive it is the result, and if it still begins with a separator, a gives the
// drive alone. Separated as a is, else as b is, else with "\".
const char* fxCombinePaths(const char* a, const char* b);

// With the part behind the last "." of the file name replaced, or added; `ext` with its dot or without, empty
// for none. A name's dots in front begin no extension.
const char* fxChangeExt(const char* path, const char* ext);
// "a/b.png" and "_1" give "a/b_1.png".
const char* fxAppenfFname(const char* path, const char* suffix);

// The separator that a path without one at its end is to get: "/" when it has no other, else "\".
char fxSeparatorOf(std::string_view path);
