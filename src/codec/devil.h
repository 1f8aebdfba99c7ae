// What the modules offer the saver, as its codec bridge asks for it (image/codec.h), for pictures of bytes
// (IL_UNSIGNED_BYTE) with one plane. As in DevIL, all of it is about the image that is bound, and by one
// thread at a time.
#pragma once

#include "image/codec.h"

#include <cstddef>

extern "C" {

void APIENTRY ilInit();
void APIENTRY ilShutDown(); // deletes all images

// Modes and numbers that are not known change nothing; IL_FALSE.
ILboolean APIENTRY ilEnable(ILenum mode);
ILboolean APIENTRY ilDisable(ILenum mode);
void APIENTRY ilSetInteger(ILenum mode, ILint value);
ILint APIENTRY ilGetInteger(ILenum mode); // 0: not known

// A name of 0 is no image. Names of deleted images are given again.
void APIENTRY ilGenImages(std::size_t n, ILuint* names);
void APIENTRY ilDeleteImages(std::size_t n, const ILuint* names);
void APIENTRY ilBindImage(ILuint name);
ILuint APIENTRY ilCloneCurImage(); // 0: there is none, or no memory

// The image becomes the picture; after a failure it is as it was.
ILboolean APIENTRY ilLoadImage(const char* fileName);
ILboolean APIENTRY ilLoadL(ILenum type, const void* bytes, ILuint size);
ILboolean APIENTRY ilTexImage(ILuint w, ILuint h, ILuint d, unsigned char channels, ILenum format,
                              ILenum type,
                              void* pixels); // null: black
// The kind is the name's ending: png, jpg, bmp, tga.
ILboolean APIENTRY ilSaveImage(const char* fileName);

ILboolean APIENTRY ilConvertImage(ILenum format, ILenum type);
unsigned char* APIENTRY ilGetData();
// A part of the image, which lies within it; the bytes that were copied, 0 for none.
ILuint APIENTRY ilCopyPixels(ILuint x, ILuint y, ILuint z, ILuint w, ILuint h, ILuint d, ILenum format,
                             ILenum type, void* pixels);
// What lies outside of the image is passed over.
void APIENTRY ilSetPixels(ILint x, ILint y, ILint z, ILuint w, ILuint h, ILuint d, ILenum format, ILenum type,
                          void* pixels);

ILboolean APIENTRY iluScale(ILuint w, ILuint h, ILuint d);
void APIENTRY iluImageParameter(ILenum parameter, ILenum value); // ILU_FILTER
}
