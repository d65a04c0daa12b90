#pragma once
// The output pixel formats a host frame can be delivered in, with their names
// and sizes. One byte wide: the value travels inside fixed-size records.

#include "String/qvUtf8String.h"

#include <cstdint>

enum QV_PIXEL_FORMAT : uint8_t {
    QV_PIXEL_FORMAT_NONE = 0,
    QV_PIXEL_FORMAT_ARGB_8_LOW = 1,    // A R G B, u8
    QV_PIXEL_FORMAT_ARGB_16_LOW = 2,   // A R G B, u16 from 0 to 32768
    QV_PIXEL_FORMAT_ARGB_32_LOW = 3,   // A R G B, float
    QV_PIXEL_FORMAT_BGRA_8_LOW = 4,    // B G R A, u8
    QV_PIXEL_FORMAT_BGRA_16_LOW = 5,   // B G R A, u16 from 0 to 32768
    QV_PIXEL_FORMAT_BGRA_32_LOW = 6,   // B G R A, float
    QV_PIXEL_FORMAT_ARGB_8_UP = 7,     // A R G B, u8
    QV_PIXEL_FORMAT_ARGB_16_UP = 8,    // A R G B, u16 from 0 to 32768
    QV_PIXEL_FORMAT_ARGB_32_UP = 9,    // A R G B, float
    QV_PIXEL_FORMAT_BGRA_16_UP = 10,   // B G R A, u16 from 0 to 32768
    QV_PIXEL_FORMAT_BGRA_32_UP = 11,   // B G R A, float
    QV_PIXEL_FORMAT_RGBA_8_UP = 12,    // R G B A, u8
    QV_PIXEL_FORMAT_BGRA_8_UP = 13,    // B G R A, u8
    QV_PIXEL_FORMAT_RGB_8_UP = 14,     // R G B, u8
    QV_PIXEL_FORMAT_NONE_END = 15,
};

// Bytes per pixel of the formats 1 to 14, indexed by value minus 1.
extern const uint8_t g_pixelFormatBytesPerPixel[14];

// The format's name ("ARGB_8_LOW"); 0 and 15 are "-NONE-", a value above 15
// its decimal number.
qvUtf8String toString(QV_PIXEL_FORMAT format);

// 0 for a value outside 1 to 14.
uint32_t bytesPerPixel(QV_PIXEL_FORMAT format);
