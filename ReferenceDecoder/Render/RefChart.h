#pragma once
// Geometry and scene colours of the reference test chart, shared by the
// renderer and by tests that look for things in a rendered picture. All
// positions are fractions of the output width or height, so they hold at any
// resolution scale; a test converts them with the picture's own size.

#include <cstdint>
#include <functional>

namespace twref {

struct RefRectF {
    float left = 0, top = 0, right = 0, bottom = 0;  // fractions, right/bottom exclusive
    float centreX() const { return (left + right) * 0.5f; }
    float centreY() const { return (top + bottom) * 0.5f; }
};

class RefChart {
public:
    static constexpr int kPatchColumns = 6;
    static constexpr int kPatchRows = 2;
    static constexpr int kBarcodeBits = 32;

    // Patch (row, column): rectangle and scene-linear colour. Row 0 holds
    // saturated colours (red, green, blue, cyan, magenta, yellow), row 1 holds
    // greys and over-exposed colours that only highlight recovery keeps apart.
    static RefRectF patchRect(int row, int column);
    static void patchColour(int row, int column, float rgb[3]);
    // The grey ramp: scene value at a fraction of the width, 0 at the left to 1
    // at the right.
    static RefRectF rampRect();
    static float rampValue(float xFraction);
    // Frame-index barcode: two reference cells (white, black) and then
    // kBarcodeBits cells, most significant bit first; a set bit is white.
    static RefRectF barcodeCellRect(int cell);  // cell 0..kBarcodeBits+1
    static constexpr float kBarcodeWhite = 0.85f;  // scene value of white cells
    static constexpr float kBarcodeBlack = 0.02f;
    // Dark band with the digits and the moving box.
    static RefRectF bottomBandRect();
    static constexpr float kBackground = 0.04f;  // scene grey of the band and gaps
    // The moving box of a frame: it advances one box width per frame and wraps.
    static RefRectF movingBoxRect(uint64_t frameIndex);
    static void movingBoxColour(float rgb[3]);
    // Where the digits of the frame number are (the whole number's box).
    static RefRectF digitsRect();
    static constexpr float kDigitWhite = 0.9f;

    // Reads the barcode back from a picture. sample(xFraction, yFraction)
    // returns the brightness of the picture there (any monotonic measure, e.g.
    // the green channel). Works through any processing that keeps the white
    // reference cell apart from the black one, inverting LUTs included.
    // flipVertical/flipHorizontal say how the picture was rendered.
    static bool readFrameIndex(const std::function<float(float, float)>& sample,
                               bool flipVertical, bool flipHorizontal, uint64_t& frameIndex);
};

}  // namespace twref
