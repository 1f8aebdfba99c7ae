// Any bytes as a TGA file, read by the codec's modules: a picture of the size it says comes out, or none.
#include "codec/targa_file.h"
#include "image/picture_header.h"
#include "package/package.h"
#include "work_file.h"

#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    const std::span file(bytes, size);
    if (!fxPictureIsPlausible(file, kTga)) // as the modules do
        return 0;
    FXPackageData data;
    data.InitData(bytes, static_cast<int>(size));
    CodecPicture picture;
    if (!fxReadTarga(&data, &picture)) {
        Expect(picture.IsEmpty());
        return 0;
    }
    const std::vector<unsigned char> pixels(picture.bytes.get(), picture.bytes.get() + picture.Bytes());
    Expect(picture.width > 0 && picture.height > 0 && !pixels.empty());
    return 0;
}
