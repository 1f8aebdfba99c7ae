// Whole files by name: read, and replaced.
#pragma once

#include <cstdio>
#include <functional>
#include <string>

// The bytes of a file. False with "FILE: cannot be read: why" in error, also for one beyond 2 GiB.
bool fxReadWhole(const std::string& file, std::string* bytes, std::string* error);

// Puts one file in the place of another. False when that does not work: `from` is removed then, `to` is as it
// was, and errno says why.
bool fxMoveInto(const std::string& from, const std::string& to);

// `write` fills FILE.new, which takes FILE's place when all of it has reached the disk: a failure leaves what
// stood there, and nobody reads half a file. False, with errno and "FILE: cannot be written: why" in error.
bool fxReplaceFile(const std::string& file, const std::function<bool(std::FILE*)>& write,
                   std::string* error = nullptr);
