#include "Render/RefChart.h"

#include <cmath>

namespace twref {

namespace {

constexpr float kMarginX = 0.04f;
constexpr float kContentRight = 0.96f;
constexpr float kPatchGap = 0.02f;
constexpr float kPatchTop[RefChart::kPatchRows] = {0.04f, 0.22f};
constexpr float kPatchHeight = 0.16f;
constexpr float kRampTop = 0.42f, kRampBottom = 0.56f;
constexpr float kBarcodeTop = 0.60f, kBarcodeBottom = 0.66f;
constexpr float kBandTop = 0.70f;
constexpr float kDigitsLeft = kMarginX, kDigitsRight = 0.60f, kDigitsTop = 0.72f, kDigitsBottom = 0.96f;
constexpr float kBoxLeft = 0.62f, kBoxTop = 0.74f, kBoxBottom = 0.94f;
constexpr int kBoxPositions = 10;
constexpr float kBoxWidth = (kContentRight - kBoxLeft) / kBoxPositions;

constexpr float kPatchColours[RefChart::kPatchRows][RefChart::kPatchColumns][3] = {
    {{0.60f, 0.05f, 0.05f},
     {0.05f, 0.50f, 0.05f},
     {0.05f, 0.05f, 0.60f},
     {0.05f, 0.45f, 0.50f},
     {0.50f, 0.05f, 0.45f},
     {0.55f, 0.50f, 0.05f}},
    // Greys, then highlights beyond the sensor's clip point.
    {{0.18f, 0.18f, 0.18f},
     {0.45f, 0.45f, 0.45f},
     {0.90f, 0.90f, 0.90f},
     {2.00f, 1.20f, 0.60f},
     {0.60f, 1.60f, 2.40f},
     {3.00f, 3.00f, 3.00f}},
};

}  // namespace

RefRectF RefChart::patchRect(int row, int column)
{
    const float width = (kContentRight - kMarginX - kPatchGap * (kPatchColumns - 1)) / kPatchColumns;
    RefRectF r;
    r.left = kMarginX + column * (width + kPatchGap);
    r.right = r.left + width;
    r.top = kPatchTop[row];
    r.bottom = r.top + kPatchHeight;
    return r;
}

void RefChart::patchColour(int row, int column, float rgb[3])
{
    for (int c = 0; c < 3; ++c)
        rgb[c] = kPatchColours[row][column][c];
}

RefRectF RefChart::rampRect() { return {kMarginX, kRampTop, kContentRight, kRampBottom}; }

float RefChart::rampValue(float xFraction)
{
    const float v = (xFraction - kMarginX) / (kContentRight - kMarginX);
    return v < 0.0f ? 0.0f : (v > 1.0f ? 1.0f : v);
}

RefRectF RefChart::barcodeCellRect(int cell)
{
    const float width = (kContentRight - kMarginX) / (kBarcodeBits + 2);
    return {kMarginX + cell * width, kBarcodeTop, kMarginX + (cell + 1) * width, kBarcodeBottom};
}

RefRectF RefChart::bottomBandRect() { return {0.0f, kBandTop, 1.0f, 1.0f}; }

RefRectF RefChart::movingBoxRect(uint64_t frameIndex)
{
    const float left = kBoxLeft + float(frameIndex % kBoxPositions) * kBoxWidth;
    return {left, kBoxTop, left + kBoxWidth, kBoxBottom};
}

void RefChart::movingBoxColour(float rgb[3])
{
    rgb[0] = 0.95f;
    rgb[1] = 0.45f;
    rgb[2] = 0.08f;
}

RefRectF RefChart::digitsRect() { return {kDigitsLeft, kDigitsTop, kDigitsRight, kDigitsBottom}; }

bool RefChart::readFrameIndex(const std::function<float(float, float)>& sample, bool flipVertical,
                              bool flipHorizontal, uint64_t& frameIndex)
{
    auto at = [&](int cell) {
        const RefRectF r = barcodeCellRect(cell);
        const float x = flipHorizontal ? 1.0f - r.centreX() : r.centreX();
        const float y = flipVertical ? 1.0f - r.centreY() : r.centreY();
        return sample(x, y);
    };
    const float white = at(0);
    const float black = at(1);
    if (!(std::fabs(white - black) > 1e-4f))
        return false;
    const float threshold = (white + black) * 0.5f;
    const bool whiteIsHigh = white > black;
    uint64_t value = 0;
    for (int bit = 0; bit < kBarcodeBits; ++bit) {
        const float v = at(2 + bit);
        const bool set = (v > threshold) == whiteIsHigh;
        value = (value << 1) | (set ? 1u : 0u);
    }
    frameIndex = value;
    return true;
}

}  // namespace twref
