// The pictures that the system reads and writes itself: PNG, JPEG, BMP, GIF.
#pragma once

#include "codec/picture.h"

#include <span>

// `type` is one of the package's. Becomes an RGBA picture, the first of several; its rows in the order of the
// file. False when it is no such file, it is damaged, or there is no memory.
bool fxReadSystemPicture(std::span<const unsigned char> file, int type, CodecPicture* picture);

// The bytes of a file of that type; JPEG of a quality of 0 to 99. JPEG and BMP have no transparency. Null
// when the system does not write that type, or there is no memory.
FXBytes fxEncodeSystemPicture(const CodecPicture& picture, int type, int quality, std::size_t* size);
