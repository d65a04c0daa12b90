// The reference picture: formats, geometry, the frame index it carries, and a
// visible, predictable effect of every decode setting.

#include "Format/RefLutTools.h"
#include "Render/RefChart.h"
#include "Render/RefRenderer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <set>
#include <thread>

using namespace twref;

namespace {

constexpr RefResourceFormat kAllFormats[] = {
    RefResourceFormat::RGBAU8,  RefResourceFormat::BGRAU8,       RefResourceFormat::RGBU16,
    RefResourceFormat::RGBAU16, RefResourceFormat::BGRAU16,      RefResourceFormat::RGBU16Planar,
    RefResourceFormat::RGBF32,  RefResourceFormat::RGBAF32,      RefResourceFormat::BGRAF32,
    RefResourceFormat::RGBF32Planar, RefResourceFormat::RGBF16,  RefResourceFormat::RGBAF16,
    RefResourceFormat::BGRAF16, RefResourceFormat::RGBF16Planar,
};

float halfToFloat(uint16_t h)
{
    const int exponent = (h >> 10) & 0x1F;
    const int mantissa = h & 0x3FF;
    float v = exponent == 0 ? std::ldexp(float(mantissa), -24)
                            : std::ldexp(float(mantissa + 1024), exponent - 25);
    return (h & 0x8000) ? -v : v;
}

// A rendered picture with a reader for any of its formats.
struct Picture {
    RefResourceFormat format;
    uint32_t width, height;
    std::vector<uint8_t> bytes;

    Picture(RefResourceFormat f, uint32_t w, uint32_t h)
        : format(f), width(w), height(h), bytes(RefRenderer::resourceSizeBytes(f, w, h))
    {
    }

    bool render(uint64_t frame, const RefRenderSettings& s, const RefLut* lut = nullptr, bool flipV = false,
                bool flipH = false)
    {
        RefRenderTarget t;
        t.data = bytes.data();
        t.sizeBytes = bytes.size();
        t.width = width;
        t.height = height;
        t.format = format;
        t.flipVertical = flipV;
        t.flipHorizontal = flipH;
        return RefRenderer::render(frame, s, lut, t);
    }

    // Channel c (0 red, 1 green, 2 blue) at pixel (x, y), as a value in [0, 1] for integers.
    float channel(uint32_t x, uint32_t y, int c) const
    {
        const std::string code = refFourCCText(static_cast<uint32_t>(format));
        const bool bgr = code == "bgra" || code == "16la" || code == "f32a" || code == "f16a";
        const bool planar = RefRenderer::isPlanar(format);
        const uint32_t bpp = RefRenderer::bytesPerPixel(format);
        const uint32_t channels = planar ? 3 : (code == "16il" || code == "f32s" || code == "f16s" ? 3 : 4);
        const uint32_t sample = bpp / (planar ? 3 : channels);
        const int ch = bgr ? 2 - c : c;
        size_t offset;
        if (planar)
            offset = size_t(ch) * width * height * sample + (size_t(y) * width + x) * sample;
        else
            offset = (size_t(y) * width + x) * bpp + size_t(ch) * sample;
        const uint8_t* p = bytes.data() + offset;
        const bool isFloat = code[0] == 'f';
        if (sample == 1)
            return p[0] / 255.0f;
        if (sample == 4) {
            float f;
            std::memcpy(&f, p, 4);
            return f;
        }
        uint16_t v;
        std::memcpy(&v, p, 2);
        return isFloat ? halfToFloat(v) : v / 65535.0f;
    }

    float at(float xf, float yf, int c) const
    {
        const uint32_t x = std::min(width - 1, uint32_t(xf * width));
        const uint32_t y = std::min(height - 1, uint32_t(yf * height));
        return channel(x, y, c);
    }

    void patch(int row, int column, float rgb[3]) const
    {
        const RefRectF r = RefChart::patchRect(row, column);
        for (int c = 0; c < 3; ++c)
            rgb[c] = at(r.centreX(), r.centreY(), c);
    }

    uint64_t frameIndex(bool flipV = false, bool flipH = false) const
    {
        uint64_t index = UINT64_MAX;
        const bool ok = RefChart::readFrameIndex([this](float x, float y) { return at(x, y, 1); }, flipV, flipH,
                                                 index);
        EXPECT_TRUE(ok);
        return index;
    }
};

}  // namespace

TEST(Render, EveryFormatShowsTheSameChart)
{
    RefRenderSettings s;
    s.gamma = "Rec.709";
    Picture reference(RefResourceFormat::RGBF32, 320, 180);
    ASSERT_TRUE(reference.render(3, s));
    for (RefResourceFormat f : kAllFormats) {
        SCOPED_TRACE(refFourCCText(static_cast<uint32_t>(f)));
        Picture p(f, 320, 180);
        ASSERT_TRUE(p.render(3, s));
        const float tolerance = RefRenderer::bytesPerPixel(f) <= 4 ? 1.0f / 255 : 1e-3f;
        for (int row = 0; row < RefChart::kPatchRows; ++row) {
            for (int col = 0; col < RefChart::kPatchColumns; ++col) {
                float a[3], b[3];
                p.patch(row, col, a);
                reference.patch(row, col, b);
                for (int c = 0; c < 3; ++c)
                    EXPECT_NEAR(a[c], std::min(1.0f, b[c]), tolerance) << row << "," << col << "," << c;
            }
        }
        EXPECT_EQ(p.frameIndex(), 3u);
    }
    // Alpha is opaque.
    Picture rgba(RefResourceFormat::RGBAU8, 8, 8);
    ASSERT_TRUE(rgba.render(0, s));
    EXPECT_EQ(rgba.bytes[3], 255);
}

TEST(Render, PatchesAreWhatThePipelinePredicts)
{
    RefRenderSettings s;
    s.exposure = 0.5f;
    s.gamma = "Blackmagic Design Custom";
    s.toneCurveContrast = 0.8f;
    const RefLut lut = RefLutTools::make(RefLutKind::Warm, 9);
    Picture p(RefResourceFormat::RGBF32, 400, 200);
    ASSERT_TRUE(p.render(0, s, &lut));
    for (int row = 0; row < RefChart::kPatchRows; ++row) {
        for (int col = 0; col < RefChart::kPatchColumns; ++col) {
            float scene[3], expected[3], got[3];
            RefChart::patchColour(row, col, scene);
            RefRenderer::processColour(s, &lut, scene, expected);
            p.patch(row, col, got);
            for (int c = 0; c < 3; ++c)
                EXPECT_FLOAT_EQ(got[c], expected[c]);
        }
    }
    // The ramp rises from left to right.
    const RefRectF ramp = RefChart::rampRect();
    EXPECT_LT(p.at(ramp.left + 0.05f, ramp.centreY(), 1), p.at(ramp.centreX(), ramp.centreY(), 1));
    EXPECT_LT(p.at(ramp.centreX(), ramp.centreY(), 1), p.at(ramp.right - 0.05f, ramp.centreY(), 1));
}

TEST(Render, FlipsMirrorThePicture)
{
    const RefRenderSettings s;
    for (RefResourceFormat f : {RefResourceFormat::BGRAU8, RefResourceFormat::RGBU16Planar}) {
        Picture plain(f, 97, 61), v(f, 97, 61), h(f, 97, 61), both(f, 97, 61);
        ASSERT_TRUE(plain.render(12, s));
        ASSERT_TRUE(v.render(12, s, nullptr, true, false));
        ASSERT_TRUE(h.render(12, s, nullptr, false, true));
        ASSERT_TRUE(both.render(12, s, nullptr, true, true));
        EXPECT_NE(plain.bytes, v.bytes);
        for (uint32_t y = 0; y < 61; ++y) {
            for (uint32_t x = 0; x < 97; ++x) {
                for (int c = 0; c < 3; ++c) {
                    const float value = plain.channel(x, y, c);
                    ASSERT_EQ(value, v.channel(x, 60 - y, c)) << x << "," << y;
                    ASSERT_EQ(value, h.channel(96 - x, y, c)) << x << "," << y;
                    ASSERT_EQ(value, both.channel(96 - x, 60 - y, c)) << x << "," << y;
                }
            }
        }
        EXPECT_EQ(v.frameIndex(true, false), 12u);
        EXPECT_EQ(both.frameIndex(true, true), 12u);
    }
}

TEST(Render, FrameIndexAndMovingContentFollowTheFrame)
{
    const RefRenderSettings s;
    // Read back at full and eighth scale, through an inverting LUT too.
    const RefLut invert = RefLutTools::make(RefLutKind::Invert, 5);
    for (uint32_t width : {4096u / 8, 1920u}) {
        for (uint64_t frame : {0ull, 1ull, 999ull, 65535ull, 0xFFFFFFFFull}) {
            Picture p(RefResourceFormat::RGBAU8, width, width * 9 / 16);
            ASSERT_TRUE(p.render(frame, s));
            EXPECT_EQ(p.frameIndex(), frame);
            ASSERT_TRUE(p.render(frame, s, &invert));
            EXPECT_EQ(p.frameIndex(), frame);
        }
    }
    // Consecutive frames differ where the box moves and where the number is.
    Picture a(RefResourceFormat::RGBAU8, 320, 180), b(RefResourceFormat::RGBAU8, 320, 180);
    ASSERT_TRUE(a.render(4, s));
    ASSERT_TRUE(b.render(5, s));
    const RefRectF box = RefChart::movingBoxRect(5);
    EXPECT_NE(a.at(box.centreX(), box.centreY(), 0), b.at(box.centreX(), box.centreY(), 0));
    const RefRectF oldBox = RefChart::movingBoxRect(4);
    EXPECT_NE(a.at(oldBox.centreX(), oldBox.centreY(), 0), b.at(oldBox.centreX(), oldBox.centreY(), 0));
    size_t digitsDiffer = 0;
    const RefRectF digits = RefChart::digitsRect();
    for (uint32_t y = uint32_t(digits.top * 180); y < uint32_t(digits.bottom * 180); ++y)
        for (uint32_t x = uint32_t(digits.left * 320); x < uint32_t(digits.right * 320); ++x)
            digitsDiffer += a.channel(x, y, 1) != b.channel(x, y, 1);
    EXPECT_GT(digitsDiffer, 20u);
}

TEST(Render, EverySettingChangesThePicture)
{
    RefRenderSettings base;
    base.gamma = "Blackmagic Design Custom";  // where the tone-curve controls act
    const std::vector<std::pair<const char*, std::function<void(RefRenderSettings&)>>> changes = {
        {"colour science", [](RefRenderSettings& s) { s.colorScienceGen = 4; }},
        {"gamut", [](RefRenderSettings& s) { s.gamut = "Rec.709"; }},
        {"gamma", [](RefRenderSettings& s) { s.gamma = "Blackmagic Design Film"; }},
        {"gamut compression", [](RefRenderSettings& s) { s.gamutCompression = true; }},
        {"contrast", [](RefRenderSettings& s) { s.toneCurveContrast = 0.7f; }},
        {"saturation", [](RefRenderSettings& s) { s.toneCurveSaturation = 1.4f; }},
        {"midpoint", [](RefRenderSettings& s) { s.toneCurveMidpoint = 0.5f; }},
        {"highlights", [](RefRenderSettings& s) { s.toneCurveHighlights = 0.6f; }},
        {"shadows", [](RefRenderSettings& s) { s.toneCurveShadows = 1.5f; }},
        {"black level", [](RefRenderSettings& s) { s.toneCurveBlackLevel = 0.1f; }},
        {"white level", [](RefRenderSettings& s) { s.toneCurveWhiteLevel = 0.8f; }},
        {"video black level", [](RefRenderSettings& s) { s.toneCurveVideoBlackLevel = true; }},
        {"highlight recovery", [](RefRenderSettings& s) { s.highlightRecovery = true; }},
        {"analog gain", [](RefRenderSettings& s) { s.analogGain = 2.0f; }},
        {"iso", [](RefRenderSettings& s) { s.iso = 1600; }},
        {"kelvin", [](RefRenderSettings& s) { s.kelvin = 3200; }},
        {"tint", [](RefRenderSettings& s) { s.tint = 40; }},
        {"exposure", [](RefRenderSettings& s) { s.exposure = -1.0f; }},
    };
    Picture reference(RefResourceFormat::RGBAU8, 160, 90);
    ASSERT_TRUE(reference.render(0, base));
    for (const auto& change : changes) {
        RefRenderSettings s = base;
        change.second(s);
        Picture p(RefResourceFormat::RGBAU8, 160, 90);
        ASSERT_TRUE(p.render(0, s));
        EXPECT_NE(p.bytes, reference.bytes) << change.first;
    }
    const RefLut lut = RefLutTools::make(RefLutKind::Mono, 5);
    Picture withLut(RefResourceFormat::RGBAU8, 160, 90);
    ASSERT_TRUE(withLut.render(0, base, &lut));
    EXPECT_NE(withLut.bytes, reference.bytes) << "post LUT";

    // Every gamut and every gamma of the lists looks different.
    std::set<std::vector<uint8_t>> pictures;
    for (const std::string& g : refDefaultGamuts()) {
        RefRenderSettings s = base;
        s.gamut = g;
        Picture p(RefResourceFormat::RGBAU8, 160, 90);
        ASSERT_TRUE(p.render(0, s));
        pictures.insert(p.bytes);
    }
    EXPECT_EQ(pictures.size(), refDefaultGamuts().size());
    pictures.clear();
    for (const std::string& g : refDefaultGammas()) {
        RefRenderSettings s = base;
        s.gamma = g;
        Picture p(RefResourceFormat::RGBAU8, 160, 90);
        ASSERT_TRUE(p.render(0, s));
        pictures.insert(p.bytes);
    }
    EXPECT_EQ(pictures.size(), refDefaultGammas().size());
}

TEST(Render, SettingsPullTheWayTheirNamesSay)
{
    RefRenderSettings base;
    base.gamma = "Rec.709";
    auto patch = [](const RefRenderSettings& s, int row, int col, float out[3]) {
        float scene[3];
        RefChart::patchColour(row, col, scene);
        RefRenderer::processColour(s, nullptr, scene, out);
    };
    float ref[3], v[3];
    patch(base, 1, 0, ref);  // mid grey is neutral as shot
    EXPECT_NEAR(ref[0], ref[1], 1e-5);
    EXPECT_NEAR(ref[1], ref[2], 1e-5);

    RefRenderSettings s = base;
    s.exposure = 1.0f;
    patch(s, 1, 0, v);
    EXPECT_GT(v[1], ref[1]);
    s = base;
    s.iso = 400;
    patch(s, 1, 0, v);
    EXPECT_LT(v[1], ref[1]);
    s = base;
    s.kelvin = 8000;
    patch(s, 1, 0, v);
    EXPECT_GT(v[0], v[2]) << "a higher white balance warms the picture";
    s = base;
    s.tint = 60;
    patch(s, 1, 0, v);
    EXPECT_LT(v[1], v[0]) << "positive tint is magenta";

    // Highlight recovery keeps the hue of a clipped highlight.
    patch(base, 1, 3, v);
    EXPECT_FLOAT_EQ(v[0], v[1]) << "without it red and green both clip";
    s = base;
    s.highlightRecovery = true;
    patch(s, 1, 3, v);
    EXPECT_GT(v[0], v[1]);

    // The wider gamut saturates less than Rec.709.
    s = base;
    s.gamut = "Rec.709";
    patch(s, 0, 0, v);
    patch(base, 0, 0, ref);
    EXPECT_GT(v[0] - v[1], ref[0] - ref[1]);
}

TEST(Render, BadTargetsWriteNothing)
{
    const RefRenderSettings s;
    std::vector<uint8_t> buffer(64, 0xAB);
    RefRenderTarget t;
    t.data = buffer.data();
    t.sizeBytes = buffer.size();
    t.width = 4;
    t.height = 4;
    EXPECT_TRUE(RefRenderer::render(0, s, nullptr, t));
    std::fill(buffer.begin(), buffer.end(), 0xAB);
    t.sizeBytes = 63;
    EXPECT_FALSE(RefRenderer::render(0, s, nullptr, t));
    t.sizeBytes = 64;
    t.format = static_cast<RefResourceFormat>(0x12345678);
    EXPECT_FALSE(RefRenderer::render(0, s, nullptr, t));
    t.format = RefResourceFormat::RGBAU8;
    t.width = 0;
    EXPECT_FALSE(RefRenderer::render(0, s, nullptr, t));
    t.width = 4;
    t.data = nullptr;
    EXPECT_FALSE(RefRenderer::render(0, s, nullptr, t));
    EXPECT_EQ(std::count(buffer.begin(), buffer.end(), 0xAB), 64);
    EXPECT_EQ(RefRenderer::resourceSizeBytes(static_cast<RefResourceFormat>(1), 4, 4), 0u);
    EXPECT_EQ(RefRenderer::resourceSizeBytes(RefResourceFormat::RGBF32Planar, 3, 2), 72u);

    // Tiny pictures and hostile settings render without harm.
    RefRenderSettings wild;
    wild.exposure = NAN;
    wild.kelvin = 0;
    wild.toneCurveContrast = INFINITY;
    wild.gamma = "no such gamma";
    for (uint32_t w : {1u, 2u, 3u}) {
        Picture p(RefResourceFormat::RGBF16Planar, w, 1);
        EXPECT_TRUE(p.render(123456789, wild, nullptr, true, true));
    }
    RefLut broken = RefLutTools::make(RefLutKind::Invert, 4);
    broken.data.resize(5);
    Picture p(RefResourceFormat::RGBAU8, 16, 9);
    EXPECT_TRUE(p.render(0, s, &broken)) << "an invalid LUT is ignored";
}

TEST(RenderConcurrency, ThreadsRenderIndependently)
{
    RefRenderSettings s;
    s.gamma = "Blackmagic Design Custom";
    const RefLut lut = RefLutTools::make(RefLutKind::Warm, 9);
    Picture expected(RefResourceFormat::RGBAF32, 256, 144);
    ASSERT_TRUE(expected.render(7, s, &lut));
    std::vector<Picture> pictures(4, Picture(RefResourceFormat::RGBAF32, 256, 144));
    std::vector<std::thread> threads;
    for (size_t i = 0; i < pictures.size(); ++i)
        threads.emplace_back([&, i] {
            for (int round = 0; round < 5; ++round)
                pictures[i].render(7, s, &lut);
        });
    for (std::thread& t : threads)
        t.join();
    for (const Picture& p : pictures)
        EXPECT_EQ(p.bytes, expected.bytes);
}
