// What our codec beside this program makes of picture files. pictures decode FILE...: writes FILE.decoded for
// each (decoded.h). pictures all FILE...: saves each in every form that the codec writes too, as
// FILE.saved.png and so on; last it damages the file again and again, and hands it to the codec without the
// saver's look at its header. Ends with status 0 when it gets that far.
#include "image/codec.h"
#include "package/package.h"
#include "unit/picture_files.h"
#include "windows/decoded.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

namespace {

constexpr int kDamages = 12; // to each file

std::string Read(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void SaveAgain(const std::string& name) {
    FXCanvas canvas;
    canvas.detectTrans = false;
    if (!canvas.CreateFromPict(name.c_str()))
        return;
    for (const char* ending : {".png", ".bmp", ".tga", ".jpg"})
        canvas.SaveToPict((name + ".saved" + ending).c_str());
    canvas.SaveToMask((name + ".mask.png").c_str());
}

// All of what comes out can be read.
void LoadAsItIs(int type, const std::string& file) {
    volatile unsigned sum = 0;
    ILuint image = 0;
    fxCodec.ilGenImages(1, &image);
    fxCodec.ilBindImage(image);
    if (fxCodec.ilLoadL(static_cast<ILenum>(type), file.data(), static_cast<ILuint>(file.size())) != 0 &&
        fxCodec.ilConvertImage(IL_RGBA, IL_UNSIGNED_BYTE) != 0) {
        const ILint bytes = fxCodec.ilGetInteger(IL_IMAGE_SIZE_OF_DATA);
        if (bytes != 4 * fxCodec.ilGetInteger(IL_IMAGE_WIDTH) * fxCodec.ilGetInteger(IL_IMAGE_HEIGHT))
            std::exit(2);
        for (ILint i = 0; i < bytes; i += 61)
            sum = sum + fxCodec.ilGetData()[i];
    }
    fxCodec.ilDeleteImages(1, &image);
}

void Damage(const std::string& name, std::uint32_t seed) {
    int size = 0, type = kRaw;
    FXPackage::CheckFile(name.c_str(), &size, &type);
    const std::string whole = Read(name);
    Noise noise(seed);
    for (int i = 0; i < kDamages; ++i) {
        std::string file = whole.substr(0, static_cast<std::size_t>(noise.Below(size)) + 1);
        if (i % 2 == 0)
            file = whole;
        for (int changes = noise.Below(5); changes >= 0; --changes)
            file[static_cast<std::size_t>(
                noise.Below(std::min(static_cast<int>(file.size()), i % 4 == 0 ? 64 : size)))] =
                static_cast<char>(noise.Below(256));
        LoadAsItIs(type, file);
    }
}

} // namespace

int main(int count, char** words) {
    if (count < 2 || !fxLoadDevil() || GetProcAddress(GetModuleHandleA("DevIL"), "iluScale") == nullptr)
        return 1; // DevIL itself has that function in its other module
    for (int i = 2; i < count; ++i) {
        const std::string name = words[i];
        std::ofstream(name + ".decoded", std::ios::binary) << Decoded(name);
        if (std::strcmp(words[1], "all") != 0)
            continue;
        SaveAgain(name);
        Damage(name, static_cast<std::uint32_t>(i));
    }
    fxUnloadDevil();
    return 0;
}
