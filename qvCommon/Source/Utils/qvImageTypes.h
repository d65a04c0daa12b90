#pragma once
// Small plain values of pictures: a scale given as a ratio, an area and a colour.

#include <cstdint>

// A scale that is either a value of its own or a ratio of two integers.
struct QvRationalScale {
    float value = 0.0f;
    int32_t num = 0;
    uint32_t den = 0;

    // `value` when it is not 0, else num / den in single precision, else 0.
    float effective() const {
        if (value != 0.0f) return value;
        if (den != 0) return static_cast<float>(num) / static_cast<float>(den);
        return 0.0f;
    }
};

struct QvRect {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;

    bool operator==(const QvRect& other) const {
        return left == other.left && top == other.top && right == other.right && bottom == other.bottom;
    }
    bool operator!=(const QvRect& other) const { return !(*this == other); }
};

struct QvColor {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
    uint8_t alpha = 255;
};

static_assert(sizeof(QvRect) == 16, "QvRect is four 32-bit values");
static_assert(sizeof(QvColor) == 4, "QvColor is four bytes");
