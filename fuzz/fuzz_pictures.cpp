// Any bytes as a picture of a package, of the kind that the first byte chooses, loaded through the codec:
// what comes out is a canvas of the size it says, or none.
#include "entry_package.h"
#include "image/canvas.h"
#include "image/codec.h"
#include "package/package.h"

#include <cstdint>
#include <iterator>

namespace {

constexpr int kKinds[] = {kBmp, kJpeg, kPng, kTga, kGif};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    if (size < 1 || !(fxDevilLoaded() || fxLoadDevil()))
        return 0;
    WritePackage({bytes + 1, size - 1}, kKinds[bytes[0] % std::size(kKinds)]);
    FXPackage package;
    FXCanvas canvas;
    Expect(package.Load(WorkFile().c_str()));
    if (!canvas.CreateFromPictCN(&package, kEntry))
        return 0;
    Expect(canvas.usedWidth > 0 && canvas.usedHeight > 0);
    // All of it can be read.
    const std::uint32_t* end = canvas.pixels + std::ptrdiff_t{canvas.width} * canvas.height;
    volatile std::uint32_t sum = 0;
    for (const std::uint32_t* pixel = canvas.pixels; pixel != end; ++pixel)
        sum = sum + *pixel;
    return 0;
}
