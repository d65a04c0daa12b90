#pragma once
// The reference decoder's pictures: a procedural test chart rendered at any
// output size, in every resource format, through a small but plausible colour
// pipeline, so that each decode setting changes the picture measurably.
//
// Chart, from top to bottom (in fractions of the height, see RefChart.h for the
// exact geometry): two rows of six colour patches, a grey ramp from black to
// white, a frame-index barcode, and a dark band holding the frame number in
// large digits and a bright box that moves one step per frame.
//
// Pipeline, per colour (scene-linear camera values):
//   gain   2^exposure * iso / referenceIso * analogGain
//   white balance: channel gains from kelvin and tint relative to the references
//   highlights: clipped per channel at 1.0, or with highlight recovery scaled
//          down as a whole so that hue survives
//   gamut: saturation about luma by the gamut's factor; gamut compression
//          pulls negative channels back to 0 along the same line
//   gamma: the named transfer curve (colour science 4 and 5 differ); the
//          custom gamma uses the tone-curve controls
//   post 3D LUT (trilinear) when one is given
//   encoding: 8/16-bit clamp and round, float as is, half-float converted
//
// Reentrant: no state outside the call, safe from any number of threads.
// Speed: every row of a band is the same, so the pipeline runs once per
// distinct colour and rows are copied; the cost is close to writing the
// output once.

#include "Format/RefClipModel.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace twref {

// Decode settings of one picture.
struct RefRenderSettings {
    // Clip level.
    uint16_t colorScienceGen = 5;
    std::string gamut = "Blackmagic Design";
    std::string gamma = "Blackmagic Design Film";
    bool gamutCompression = false;
    float toneCurveContrast = 0.5f;
    float toneCurveSaturation = 1.0f;
    float toneCurveMidpoint = 0.41f;
    float toneCurveHighlights = 1.0f;
    float toneCurveShadows = 1.0f;
    float toneCurveBlackLevel = 0.0f;
    float toneCurveWhiteLevel = 1.0f;
    bool toneCurveVideoBlackLevel = false;
    bool highlightRecovery = false;
    float analogGain = 1.0f;   // 'gain' of the clip times 'agpf' of the frame
    // Frame level.
    uint32_t iso = 800;
    uint32_t kelvin = 5600;
    int32_t tint = 0;
    float exposure = 0.0f;
    // What the camera shot at: these values give a neutral picture.
    uint32_t referenceIso = 800;
    uint32_t referenceKelvin = 5600;
    int32_t referenceTint = 0;

    // Reads the current values of attribute lists (ids of RefClipAttr /
    // RefFrameAttr; missing ones keep the defaults above). The references are
    // the model's as-shot frame values of frame 0.
    static RefRenderSettings fromAttributes(const std::vector<RefAttribute>& clipAttributes,
                                            const std::vector<RefAttribute>& frameAttributes,
                                            const RefClipModel& model);
};

struct RefRenderTarget {
    void* data = nullptr;
    size_t sizeBytes = 0;      // must be at least RefRenderer::resourceSizeBytes
    uint32_t width = 0;        // output size, already scaled
    uint32_t height = 0;
    RefResourceFormat format = RefResourceFormat::RGBAU8;
    bool flipVertical = false;    // row 0 shows the chart's bottom
    bool flipHorizontal = false;  // column 0 shows the chart's right edge
};

class RefRenderer {
public:
    // Bytes of a tightly packed picture (planar: three planes one after the
    // other); 0 for an unknown format or an empty size.
    static size_t resourceSizeBytes(RefResourceFormat format, uint32_t width, uint32_t height);
    static uint32_t bytesPerPixel(RefResourceFormat format);  // planar: of one plane sample x 3
    static bool isPlanar(RefResourceFormat format);
    static bool isKnownFormat(RefResourceFormat format);

    // Renders frame frameIndex into the target. lut may be null (no post LUT)
    // and is ignored when it is not valid. False, with nothing written, for an
    // unknown format, an empty size, a null buffer or a buffer too small.
    static bool render(uint64_t frameIndex, const RefRenderSettings& settings, const RefLut* lut,
                       const RefRenderTarget& target);

    // The pipeline for one scene-linear colour: what a patch of that colour
    // becomes before encoding. Tests predict pixel values with it.
    static void processColour(const RefRenderSettings& settings, const RefLut* lut,
                              const float sceneRgb[3], float outRgb[3]);
};

}  // namespace twref
