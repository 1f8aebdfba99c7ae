// A picture in memory: decoded from the package, captured from the desktop, or cleared to a colour.
#pragma once

#include "image/pixmap.h"

class FXPackage;

// A picture's file as a package holds it, and its type there (FXEntryType).
struct FXPictureFile {
    const unsigned char* start;
    int size;
    int type;
};

// Loaders leave the canvas as it was when there is no picture to be had, and say so; of one that the codec
// cannot convert, a cleared canvas of its size remains. A picture is never resampled: the storage beyond it
// holds backColor.
class FXCanvas : public FXPixmap {
public:
    void Clear(const float* rgba);
    void Destroy();
    // The used pixels of another canvas. False when there is no memory, or they were released.
    bool Copy(const FXCanvas* src);

    int GetWidth() const { return usedWidth; }
    int GetHeight() const { return usedHeight; }
    float GetWidthF() const { return static_cast<float>(usedWidth); }
    float GetHeightF() const { return static_cast<float>(usedHeight); }

    // Entry of a package; its number as text; a file. Need the codec (codec.h); false without it. A package's
    // pictures come by way of the active FXPictureDecoder, where there is one.
    bool CreateFromPictCN(FXPackage* pkg, int entry);
    bool CreateFromPictC(FXPackage* pkg, const char* text);
    bool CreateFromPict(const char* fileName);
    bool Decode(const FXPictureFile& file); // here and now
    // The red of a second picture, no larger than this one, becomes the alpha here; where it does not reach,
    // alpha 0. From an entry, its number as text, or a file. False, with nothing changed, without a picture,
    // for one too large, or when this one's pixels were released.
    bool LoadMaskCN(FXPackage* pkg, int entry);
    bool LoadMaskC(FXPackage* pkg, const char* text);
    bool LoadMask(const char* fileName);

    // Writes the picture, or its alpha as a grey one, in the format of the file's ending; an old file is
    // replaced. PNG, TGA and BMP load as they were, except that BMP has no alpha. False without a picture,
    // without the codec, or when it cannot write the file.
    bool SaveToPict(const char* fileName) const;
    bool SaveToMask(const char* fileName) const;
    // For all JPEG files saved from now on: 0 (smallest) to 99; the codec starts with 99. Nothing without it.
    static void SetJpegQuality(int quality);

    // The pixel at a place of the picture, 0..1 from its upper left; the nearest one beyond the storage. An
    // empty canvas is transparent black.
    void GetColor(float u, float v, float* out) const;
    // The red there, with v from below.
    float GetBump(float u, float v) const;
    // Fills the storage beside and below the picture with its last column and row.
    void ExtendEdges();

    bool opaque = true;        // no pixel loaded or copied so far had alpha below 255
    bool detectTrans = true;   // a file with "tran" in its name is loaded with alphaFromRed
    bool alphaFromRed = false; // loading gives a white picture whose alpha is the source's red
    bool clearOnLoad = true;   // loading fills the whole storage with backColor first
    float backColor[4] = {0, 0, 0, 0};

private:
    bool HasReleasedPixels() const { return pixels == nullptr && width > 0; }
    bool TakeMask(const FXCanvas& mask);
};
