// What an entry of a package holds.
#pragma once

#include "package/package.h"

#include <span>
#include <string>

enum class EntryKind { Picture, Model, Animation, Library, Matrix, Phaser, Raw };

// "picture", "model", ...
const char* KindName(EntryKind kind);

// Null for what is no picture's type or ending. An ending counts in either case; "jpeg" is one too.
const FXPictureEnding* FindPictureType(int type);
const FXPictureEnding* FindPictureEnding(const std::string& file);
// Said of a file that has none of them.
inline constexpr char kNoPictureEnding[] = ": pictures are jpg, png, tga, bmp or gif files";

// What the scene asks a package for.
struct ShowEntry {
    int id;
    EntryKind kind;
    const char* what; // "the medallion"
};
std::span<const ShowEntry> ShowEntries();
