#pragma once
// The reference decoder's audio: interleaved little-endian PCM of the clip's
// test tone, computed on demand for any range of sample frames.

#include "Format/RefClipModel.h"

#include <cstdint>

namespace twref {

class RefAudioRenderer {
public:
    // Bytes of one sample of one channel: (bitDepth + 7) / 8, 0 for depth 0.
    static uint32_t bytesPerSample(uint32_t bitDepth);
    // Fills buffer with up to maxSamples sample frames starting at firstSample:
    // as many as fit in bufferBytes and lie inside [0, sampleCount). Samples are
    // signed, little-endian, in containers of bytesPerSample (8-bit samples are
    // signed too); odd depths keep their value range in the low bits.
    // Returns the sample frames written; bytesWritten gets their byte size.
    static uint32_t render(const RefAudioModel& audio, uint64_t sampleCount, int64_t firstSample,
                           uint32_t maxSamples, void* buffer, uint32_t bufferBytes,
                           uint32_t* bytesWritten);
    // The value of one sample as a float in [-1, 1] before quantisation.
    static double sampleValue(const RefAudioModel& audio, uint32_t channel, uint64_t sampleIndex);
};

}  // namespace twref
