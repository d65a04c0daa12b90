#pragma once
// A picture size in pixels. A plain pair of 32-bit values, so that it can live
// inside fixed-size records that are copied as bytes.

#include "String/qvUtf8String.h"

#include <cstdint>

struct QvResolution {
    uint32_t width;
    uint32_t height;

    QvResolution() : width(0), height(0) {}
    QvResolution(uint32_t inWidth, uint32_t inHeight) : width(inWidth), height(inHeight) {}

    // width + "x" + height, e.g. "1920x1080".
    qvUtf8String toString() const;

    bool operator==(const QvResolution& other) const { return width == other.width && height == other.height; }
    bool operator!=(const QvResolution& other) const { return !(*this == other); }
};

static_assert(sizeof(QvResolution) == 8, "QvResolution is two 32-bit values");
