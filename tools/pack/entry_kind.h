// What an entry of a package holds.
#pragma once

#include "package/package.h"

#include <span>
#include <string>

enum class EntryKind { Picture, Model, Animation, Library, Matrix, Phaser, Raw };

// "picture", "model", ...
const char* KindName(EntryKind kind);

// The kinds of picture file, by the ending of their names.
struct PictureType {
    const char* ending; // "png"
    int type;           // kPng
};
// Null for what is no picture's type or ending; an ending counts in either case.
const PictureType* FindPictureType(int type);
const PictureType* FindPictureEnding(const std::string& file);

// What the scene asks a package for.
struct ShowEntry {
    int id;
    EntryKind kind;
    const char* what; // "the medallion"
};
std::span<const ShowEntry> ShowEntries();
