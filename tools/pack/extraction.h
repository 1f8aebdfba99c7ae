// What comes out of a package: a file for each entry, and the manifest that builds the same package again.
#pragma once

#include "package/package.h"

#include <string>
#include <vector>

struct ExtractedFile {
    std::string name; // in the folder
    std::string bytes;
};

struct Extraction {
    std::vector<ExtractedFile> files;
    std::string manifest;              // the whole of it
    std::vector<std::string> warnings; // what could not be taken
};

// asWavefront: models and animations of version 3 as OBJ files and libraries as MTL files, where they are
// whole; else everything as it is stored, and the manifest builds the same bytes.
Extraction ExtractAll(FXPackage* package, bool isScrambled, bool asWavefront);
// One entry; false with a line in error. As Wavefront: OBJ or MTL.
bool ExtractOne(FXPackage* package, int id, bool asWavefront, std::string* bytes, std::string* error);
