#pragma once
// What PopulateFrameStateBuffer writes into the caller's frame-state buffer:
// everything the decode and process jobs need, as plain bytes (the buffer is
// the caller's memory, so it can hold no reference), sealed with a checksum so
// that a buffer the library never filled, or one written over, is refused.

#include "Render/RefRenderer.h"

#include <BlackmagicRawAPI.h>

#include <cstdint>

namespace twref {

struct RefFrameState {
    static constexpr uint32_t kMagic = 0x54574653;  // 'TWFS'
    static constexpr uint32_t kVersion = 1;
    static constexpr uint32_t kFlipVertical = 1;
    static constexpr uint32_t kFlipHorizontal = 2;

    uint32_t magic;
    uint32_t version;
    uint64_t clipId;
    uint64_t frameIndex;
    uint32_t bitStreamBytes;
    uint32_t resourceFormat;
    uint32_t resolutionScale;
    uint32_t width;
    uint32_t height;
    uint32_t flags;
    uint32_t lutSize;
    uint32_t decodedBytes;
    uint32_t processedBytes;
    uint32_t workingBytes;

    // The decode settings (RefRenderSettings, texts bounded).
    uint16_t colorScienceGen;
    uint8_t gamutCompression;
    uint8_t toneCurveVideoBlackLevel;
    uint8_t highlightRecovery;
    uint8_t reserved[3];
    float toneCurveContrast;
    float toneCurveSaturation;
    float toneCurveMidpoint;
    float toneCurveHighlights;
    float toneCurveShadows;
    float toneCurveBlackLevel;
    float toneCurveWhiteLevel;
    float analogGain;
    uint32_t iso;
    uint32_t kelvin;
    int32_t tint;
    float exposure;
    uint32_t referenceIso;
    uint32_t referenceKelvin;
    int32_t referenceTint;
    char gamut[96];
    char gamma[96];

    uint32_t checksum;

    void setSettings(const RefRenderSettings& settings);
    RefRenderSettings settings() const;
    // Sizes from format, size and LUT, then the checksum: the last step of filling.
    void seal();
    uint32_t lutBytes() const { return lutSize * lutSize * lutSize * 3 * uint32_t(sizeof(float)); }

    // A sealed state read from a caller's buffer (copied out, since the caller
    // may change the buffer while a job runs). E_POINTER or E_INVALIDARG.
    static HRESULT read(const void* buffer, RefFrameState& out);
};

// The head of a decoded buffer, written by the decode job and checked by the
// process job.
struct RefDecodedHeader {
    static constexpr uint32_t kMagic = 0x54574443;  // 'TWDC'
    uint32_t magic;
    uint32_t bitStreamBytes;
    uint64_t clipId;
    uint64_t frameIndex;
};

}  // namespace twref
