// The picture codec for as long as this lives; one inside another changes nothing.
#pragma once

#include "image/codec.h"

class PictureCodec {
public:
    PictureCodec() : isMine_(!fxDevilLoaded() && fxLoadDevil()) {}
    ~PictureCodec() {
        if (isMine_)
            fxUnloadDevil();
    }
    PictureCodec(const PictureCodec&) = delete;
    PictureCodec& operator=(const PictureCodec&) = delete;

    static bool Loaded() { return fxDevilLoaded(); }

private:
    bool isMine_;
};

// What to do when it does not load.
inline constexpr const char* kNoCodec =
    "the picture library DevIL does not load (Debian: apt-get install libdevil1c2)";
