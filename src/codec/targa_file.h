// TGA files.
#pragma once

#include "codec/picture.h"
#include "package/package_data.h"

// Becomes an RGBA picture whose rows are in the file's order. Palettes, greys and colours of 15, 16, 24 and
// 32 bits, plain or in runs. False when it is another kind of file, ends too early, or there is no memory.
bool fxReadTarga(FXPackageData* file, CodecPicture* picture);
// The bytes of a file: greys, colours, or colours with alpha, as the picture has them, not in runs. Null when
// there is no memory.
FXBytes fxEncodeTarga(const CodecPicture& picture, std::size_t* size);
