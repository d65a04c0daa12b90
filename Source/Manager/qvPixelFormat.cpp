#include "Manager/qvPixelFormat.h"

#include <string>

const uint8_t g_pixelFormatBytesPerPixel[14] = {4, 8, 16, 4, 8, 16, 4, 8, 16, 8, 16, 4, 4, 3};

qvUtf8String toString(QV_PIXEL_FORMAT format) {
    static const char* const names[16] = {
        "-NONE-",     "ARGB_8_LOW", "ARGB_16_LOW", "ARGB_32_LOW", "BGRA_8_LOW", "BGRA_16_LOW",
        "BGRA_32_LOW", "ARGB_8_UP", "ARGB_16_UP",  "ARGB_32_UP",  "BGRA_16_UP", "BGRA_32_UP",
        "RGBA_8_UP",  "BGRA_8_UP",  "RGB_8_UP",    "-NONE-"};
    if (format < 16) return qvUtf8String(names[format]);
    return qvUtf8String(std::to_string(static_cast<unsigned>(format)));
}

uint32_t bytesPerPixel(QV_PIXEL_FORMAT format) {
    if (format < 1 || format > 14) return 0;
    return g_pixelFormatBytesPerPixel[format - 1];
}
