// Pictures in other sizes.
#pragma once

#include "codec/picture.h"

constexpr ILenum ILU_FILTER = 0x2600;
constexpr ILenum ILU_NEAREST = 0x2601;
constexpr ILenum ILU_BILINEAR = 0x2603;

// In the format and the order of rows of the original. ILU_BILINEAR
// mixes the pixels around a place; all other filters take one as it is. False when w or h is none that a
// picture can have, or there is no memory.
bool fxScale(const CodecPicture& from, int w, int h, ILenum filter, CodecPicture* to);
