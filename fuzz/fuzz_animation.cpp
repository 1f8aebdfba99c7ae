// Any bytes as a morph animation in a package, of either version: loaded, played with straight and with
// curved motion, and saved. Behind a first byte that is odd, the package has a model as well, which key
// frames of the older version can name: its length is the second byte, in steps of four.
#include "anim/morph_animation.h"
#include "entry_package.h"
#include "package/package.h"
#include "whole_model.h"

#include <algorithm>

namespace {

void localPlay(FXAnim* animation) {
    animation->UpdateInterpolation(true, true);
    animation->StartAnim(10);
    for (double time = 10; time < 14; time += 0.3) {
        if (animation->playing && time - animation->startTime >= animation->frameDuration)
            animation->ContinueAnim(time), ++animation->frame, animation->UpdateIFrame();
        animation->UpdateIPos(time);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    if (size < 2)
        return 0;
    const std::size_t model = (bytes[0] & 1) != 0 ? std::min<std::size_t>(bytes[1] * 4u, size - 2) : 0;
    WritePackage({bytes + 2 + model, size - 2 - model}, kRaw, {bytes + 2, model});
    FXPackage package;
    Expect(package.Load(WorkFile().c_str()));
    FXAnim animation;
    {
        const FewElements few(size);
        FXArray<int> pictures;
        FXAnim::ListPictures(&package, kEntry, &pictures);
        if (!animation.LoadCN(&package, kEntry))
            return 0;
    }
    for (const FXModel* each : animation.models)
        if (each != nullptr)
            ExpectWhole(*each);
    const int last = animation.models.count - 1;
    animation.UnitizeStretch1(last);
    animation.ComputeFrontTexCoords(last, -1);
    for (const bool linear : {true, false}) {
        animation.linear = linear;
        localPlay(&animation);
    }
    if (IsOneThatIsWritten(size))
        static_cast<void>(animation.Save(WorkFile().c_str()));
    return 0;
}
