// The bytes of every planned entry, as a package.
#pragma once

#include "pack/memory_package.h"
#include "pack/plan.h"

#include <string>

// The picture codec is loaded when a model's material has a picture: its size is part of the model. False
// with a line in error that says where.
bool MakeContents(const Manifest& manifest, const Plan& plan, bool showProgress, MemoryPackage* package,
                  std::string* error);
