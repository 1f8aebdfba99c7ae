// The picture codec: DevIL and its utility library, bound when the show starts so that the saver runs without
// them.
#pragma once

#include "win32/win32.h"

// DevIL's own types and codes (https://openil.sourceforge.net/).
using ILenum = unsigned int;
using ILuint = unsigned int;
using ILint = int;
using ILboolean = unsigned char;

constexpr ILenum IL_RGBA = 0x1908;
constexpr ILenum IL_LUMINANCE = 0x1909;
constexpr ILenum IL_UNSIGNED_BYTE = 0x1401;
constexpr ILenum IL_IMAGE_WIDTH = 0x0DE4;
constexpr ILenum IL_IMAGE_HEIGHT = 0x0DE5;
constexpr ILenum IL_IMAGE_SIZE_OF_DATA = 0x0DE7;
constexpr ILenum IL_FILE_OVERWRITE = 0x0620;
constexpr ILenum IL_JPG_QUALITY = 0x0711;

// The entry points, null while the codec is not loaded.
struct FXCodec {
    void(APIENTRY* ilInit)();
    void(APIENTRY* ilShutDown)();
    ILboolean(APIENTRY* ilEnable)(ILenum);
    ILboolean(APIENTRY* ilDisable)(ILenum);
    void(APIENTRY* ilSetInteger)(ILenum, ILint);
    void(APIENTRY* ilGenImages)(std::size_t, ILuint*);
    void(APIENTRY* ilDeleteImages)(std::size_t, const ILuint*);
    void(APIENTRY* ilBindImage)(ILuint);
    ILint(APIENTRY* ilGetInteger)(ILenum);
    ILboolean(APIENTRY* ilLoadImage)(const char*);
    ILboolean(APIENTRY* ilLoadL)(ILenum, const void*, ILuint);
    ILboolean(APIENTRY* ilSaveImage)(const char*);
    ILuint(APIENTRY* ilCloneCurImage)();
    ILboolean(APIENTRY* ilConvertImage)(ILenum, ILenum);
    ILuint(APIENTRY* ilCopyPixels)(ILuint, ILuint, ILuint, ILuint, ILuint, ILuint, ILenum, ILenum, void*);
    void(APIENTRY* ilSetPixels)(ILint, ILint, ILint, ILuint, ILuint, ILuint, ILenum, ILenum, void*);
    unsigned char*(APIENTRY* ilGetData)();
    ILboolean(APIENTRY* iluScale)(ILuint, ILuint, ILuint);
    void(APIENTRY* iluImageParameter)(ILenum, ILenum);
    ILboolean(APIENTRY* ilTexImage)(ILuint, ILuint, ILuint, unsigned char, ILenum, ILenum, void*);
};

extern FXCodec fxCodec;

// Loads both modules and all entry points; a failure is written to the trace and leaves nothing loaded.
bool fxLoadDevil();
void fxUnloadDevil();
bool fxDevilLoaded();
