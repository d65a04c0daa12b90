#pragma once
// The one function of tarnwick-host's image module: RGBA pictures written as
// image files with OpenImageIO, the file type chosen by the path's extension.
// The module is loaded only by the commands that write images, so that the
// library and the many libraries it brings are not loaded by every command.

extern "C" {

enum twHostImageType { TW_HOST_IMAGE_U8 = 0, TW_HOST_IMAGE_U16 = 1, TW_HOST_IMAGE_HALF = 2, TW_HOST_IMAGE_FLOAT = 3 };

// `rgba` holds `height` rows of `width` pixels of four elements of
// `memoryType` (U8, U16 or FLOAT), top row first; the file stores `fileType`.
// 1 on success, 0 with the reason in `error`.
typedef int (*twHostImageWriteFunc)(const char* path, int width, int height, int memoryType, int fileType,
                                    const void* rgba, char* error, unsigned errorSize);
int twHostImageWrite(const char* path, int width, int height, int memoryType, int fileType, const void* rgba,
                     char* error, unsigned errorSize);
}

#define TW_HOST_IMAGE_MODULE "tarnwick-host-images.so"
#define TW_HOST_IMAGE_WRITE_SYMBOL "twHostImageWrite"
