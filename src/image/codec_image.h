// An image of the codec, and the clone that may be made of it.
#pragma once

#include "image/codec.h"

// Bound from its construction on; image and clone are deleted in this order.
class CodecImages {
public:
    CodecImages() {
        fxCodec.ilGenImages(1, &image_);
        fxCodec.ilBindImage(image_);
    }
    ~CodecImages() {
        fxCodec.ilDeleteImages(1, &image_);
        if (clone_ != 0)
            fxCodec.ilDeleteImages(1, &clone_);
    }
    CodecImages(const CodecImages&) = delete;
    CodecImages& operator=(const CodecImages&) = delete;

    // The clone becomes the current image. False when there is none.
    bool Clone() {
        clone_ = fxCodec.ilCloneCurImage();
        fxCodec.ilBindImage(clone_);
        return clone_ != 0;
    }

private:
    ILuint image_ = 0;
    ILuint clone_ = 0;
};
