// A manifest with every number known: entries without one numbered, from 100 on or behind the highest, and
// the MTL files and pictures that its models name made entries of their own.
#pragma once

#include "geometry/obj_file.h"
#include "pack/manifest.h"
#include "package/name_server.h"
#include "progress.h"

#include <memory>
#include <string>
#include <vector>

class FXMatlib;

struct PlannedEntry {
    ManifestEntry entry; // with its number
    FXObjFile obj;       // of a model, as read
    std::vector<FXObjFile> frames;
    std::shared_ptr<FXMatlib> library; // of an MTL file; pictures by entry number
    int libraryId = -1;                // that a model names; -1: none
};

struct Plan {
    FXNameServer names; // of the entries that the manifest gives no number
    std::vector<PlannedEntry> entries;
};

// Reads the OBJ and MTL files. False with a line in error that says where.
bool MakePlan(const Manifest& manifest, Plan* plan, std::string* error);

// The numbers of named entries as a C header. False with a line in error when a name makes none that C takes,
// or two make the same.
bool NamesHeader(const FXNameServer& names, std::string* text, std::string* error);
