#include "Render/RefAudioRenderer.h"

#include <algorithm>
#include <cmath>

namespace twref {

uint32_t RefAudioRenderer::bytesPerSample(uint32_t bitDepth)
{
    return bitDepth > 64 ? 8 : (bitDepth + 7) / 8;
}

double RefAudioRenderer::sampleValue(const RefAudioModel& audio, uint32_t channel, uint64_t sampleIndex)
{
    if (audio.sampleRate == 0)
        return 0.0;
    const double frequency = audio.tone.frequency * double(channel + 1);
    // The phase is reduced per period first so that long clips keep precision.
    const double period = double(audio.sampleRate) / frequency;
    double position = double(sampleIndex);
    if (std::isfinite(period) && period > 0.0)
        position = std::fmod(position, period);
    const double v = audio.tone.amplitude * std::sin(2.0 * M_PI * frequency * position / double(audio.sampleRate));
    return std::isfinite(v) ? std::max(-1.0, std::min(1.0, v)) : 0.0;
}

uint32_t RefAudioRenderer::render(const RefAudioModel& audio, uint64_t sampleCount, int64_t firstSample,
                                  uint32_t maxSamples, void* buffer, uint32_t bufferBytes, uint32_t* bytesWritten)
{
    if (bytesWritten)
        *bytesWritten = 0;
    const uint32_t sampleBytes = bytesPerSample(audio.bitDepth);
    if (!audio.present || buffer == nullptr || audio.channelCount == 0 || sampleBytes == 0 || firstSample < 0 ||
        uint64_t(firstSample) >= sampleCount)
        return 0;
    const uint64_t frameBytes = uint64_t(sampleBytes) * audio.channelCount;
    const uint64_t count = std::min<uint64_t>({uint64_t(maxSamples), bufferBytes / frameBytes,
                                               sampleCount - uint64_t(firstSample)});
    const uint32_t bits = std::min<uint32_t>(audio.bitDepth, 63);
    const double peak = double((int64_t(1) << (bits - 1)) - 1);
    uint8_t* out = static_cast<uint8_t*>(buffer);
    for (uint64_t i = 0; i < count; ++i) {
        for (uint32_t c = 0; c < audio.channelCount; ++c) {
            const int64_t q = std::llround(sampleValue(audio, c, uint64_t(firstSample) + i) * peak);
            const uint64_t u = static_cast<uint64_t>(q);
            for (uint32_t b = 0; b < sampleBytes; ++b)
                *out++ = static_cast<uint8_t>(u >> (8 * b));
        }
    }
    if (bytesWritten)
        *bytesWritten = static_cast<uint32_t>(count * frameBytes);
    return static_cast<uint32_t>(count);
}

}  // namespace twref
