// What a class of ours writes into a file, as bytes.
#pragma once

#include <cstdio>
#include <functional>
#include <string>

// False when `save` fails, or there is no room for a temporary file.
bool RecordBytes(const std::function<bool(std::FILE*)>& save, std::string* bytes);
