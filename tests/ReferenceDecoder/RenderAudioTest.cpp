// The test tone: sample layout per bit depth, ranges and buffer limits.

#include "Render/RefAudioRenderer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

using namespace twref;

namespace {

RefAudioModel tone(uint32_t channels, uint32_t bits)
{
    RefAudioModel a;
    a.present = true;
    a.channelCount = channels;
    a.bitDepth = bits;
    a.sampleRate = 48000;
    a.tone.frequency = 1000.0;
    a.tone.amplitude = 0.5;
    return a;
}

int64_t sampleAt(const std::vector<uint8_t>& buffer, uint32_t bytes, size_t index)
{
    uint64_t u = 0;
    for (uint32_t b = 0; b < bytes; ++b)
        u |= uint64_t(buffer[index * bytes + b]) << (8 * b);
    const int shift = 64 - 8 * int(bytes);
    return int64_t(u << shift) >> shift;  // sign-extend
}

}  // namespace

TEST(RenderAudio, SamplesFollowTheBitDepth)
{
    for (uint32_t bits : {8u, 12u, 16u, 24u, 32u}) {
        SCOPED_TRACE(bits);
        const RefAudioModel a = tone(2, bits);
        const uint32_t bytes = RefAudioRenderer::bytesPerSample(bits);
        EXPECT_EQ(bytes, (bits + 7) / 8);
        std::vector<uint8_t> buffer(100 * 2 * bytes);
        uint32_t written = 0;
        ASSERT_EQ(RefAudioRenderer::render(a, 1000, 10, 100, buffer.data(), uint32_t(buffer.size()), &written), 100u);
        EXPECT_EQ(written, buffer.size());
        const double peak = std::ldexp(1.0, int(bits) - 1) - 1.0;
        int64_t largest = 0;
        for (size_t i = 0; i < 100; ++i) {
            for (uint32_t c = 0; c < 2; ++c) {
                const int64_t v = sampleAt(buffer, bytes, i * 2 + c);
                EXPECT_EQ(v, std::llround(RefAudioRenderer::sampleValue(a, c, 10 + i) * peak));
                largest = std::max<int64_t>(largest, std::llabs(v));
            }
        }
        EXPECT_NEAR(double(largest), peak * 0.5, peak * 0.01) << "half scale amplitude";
    }
    // The channels carry different tones, so a swap is visible.
    const RefAudioModel a = tone(2, 16);
    EXPECT_NE(RefAudioRenderer::sampleValue(a, 0, 5), RefAudioRenderer::sampleValue(a, 1, 5));
}

TEST(RenderAudio, ReadsStopAtTheEndAndAtTheBuffer)
{
    const RefAudioModel a = tone(3, 24);
    std::vector<uint8_t> buffer(9 * 50, 0xEE);
    uint32_t written = 0;
    EXPECT_EQ(RefAudioRenderer::render(a, 100, 90, 50, buffer.data(), uint32_t(buffer.size()), &written), 10u);
    EXPECT_EQ(written, 90u);
    EXPECT_EQ(buffer[90], 0xEE) << "nothing written past the samples read";
    EXPECT_EQ(RefAudioRenderer::render(a, 100, 0, 50, buffer.data(), 9 * 7 + 8, &written), 7u)
        << "only whole sample frames that fit";
    EXPECT_EQ(RefAudioRenderer::render(a, 100, 100, 50, buffer.data(), 450, &written), 0u);
    EXPECT_EQ(written, 0u);
    EXPECT_EQ(RefAudioRenderer::render(a, 100, -1, 50, buffer.data(), 450, &written), 0u);
    EXPECT_EQ(RefAudioRenderer::render(a, 100, 0, 50, nullptr, 450, &written), 0u);

    RefAudioModel silent = a;
    silent.present = false;
    EXPECT_EQ(RefAudioRenderer::render(silent, 100, 0, 50, buffer.data(), 450, &written), 0u);
    RefAudioModel zero = a;
    zero.bitDepth = 0;
    EXPECT_EQ(RefAudioRenderer::render(zero, 100, 0, 50, buffer.data(), 450, &written), 0u);
    zero = a;
    zero.sampleRate = 0;
    EXPECT_EQ(RefAudioRenderer::sampleValue(zero, 0, 1), 0.0);

    // Far into a long clip the tone is still a clean sine.
    const double late = RefAudioRenderer::sampleValue(a, 0, 48000ull * 3600 * 10 + 12);
    EXPECT_NEAR(late, RefAudioRenderer::sampleValue(a, 0, 12), 1e-9);
}
