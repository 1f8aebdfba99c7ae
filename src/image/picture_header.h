// What the header of a coded picture says, read without the codec.
#pragma once

#include <optional>
#include <span>

struct FXPictureSize {
    int width = 0; // pixels
    int height = 0;
};

// The size that a BMP, JPEG, PNG, TGA or GIF claims to have (GIF: its screen); `type` is the entry's
// kind in a package. Nothing when the header is of another kind or ends too early, or the codec could not be
// trusted with it.
std::optional<FXPictureSize> fxPictureSize(std::span<const unsigned char> file, int type);

// What the first bytes tell of the kind: PNG, JPEG, GIF, BMP, as the package numbers them; -1 for all others,
// TGA among them, which begins with nothing of its own. Two bytes make a JPEG: one whose third byte is wrong
// is to be looked at as one all the same.
int fxPictureType(std::span<const unsigned char> file);

// Whether the codec may see the file: its size is one that so many bytes can make good and that a canvas can
// hold, and nothing in it is known to make DevIL 1.7.8 hang (a JPEG or PNG that breaks off), read beyond its
// memory (a TGA of 15 or 16 bits that breaks off) or fill 4 GB of it (a TGA of more than 32767 colours).
// Codecs believe a header: from 60 bytes they would fill gigabytes. A header of another kind is left to it to
// refuse.
bool fxPictureIsPlausible(std::span<const unsigned char> file, int type);
