// The default clip, the model's derived figures, timecode and LUT tools.

#include "Format/RefClipModel.h"
#include "Format/RefLutTools.h"
#include "Format/RefTimecode.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace twref;

TEST(FormatModel, DefaultClipOffersWhatTheImporterProbes)
{
    const RefClipModel m;
    // Lists the settings panels are laid out for.
    EXPECT_EQ(m.clipAttribute(RefClipAttr::ColorScienceGen)->list.size(), 2u);
    EXPECT_EQ(m.clipAttribute(RefClipAttr::Gamut)->list.size(), 14u);
    EXPECT_EQ(m.clipAttribute(RefClipAttr::Gamma)->list.size(), 16u);
    EXPECT_LE(m.frameAttribute(RefFrameAttr::ISO)->list.size(), 30u);
    // Ranges exactly as expected, compared as the importer does: single precision.
    struct Range {
        uint32_t id;
        float lo, hi;
    };
    for (const Range& r : {Range{RefClipAttr::ToneCurveContrast, 0.002f, 1.998f},
                           Range{RefClipAttr::ToneCurveSaturation, 0.0f, 4.0f},
                           Range{RefClipAttr::ToneCurveMidpoint, 0.0f, 1.0f},
                           Range{RefClipAttr::ToneCurveHighlights, 0.0f, 1.998f},
                           Range{RefClipAttr::ToneCurveShadows, 0.002f, 2.0f},
                           Range{RefClipAttr::ToneCurveWhiteLevel, 0.0f, 2.0f},
                           Range{RefClipAttr::ToneCurveBlackLevel, -1.0f, 1.0f}}) {
        const RefAttribute* a = m.clipAttribute(r.id);
        ASSERT_NE(a, nullptr) << refFourCCText(r.id);
        EXPECT_EQ(a->minimum, RefValue::f32(r.lo)) << refFourCCText(r.id);
        EXPECT_EQ(a->maximum, RefValue::f32(r.hi)) << refFourCCText(r.id);
        EXPECT_EQ(a->value.type, refClipAttributeType(r.id));
    }
    const RefAttribute* kelvin = m.frameAttribute(RefFrameAttr::WhiteBalanceKelvin);
    EXPECT_EQ(kelvin->minimum, RefValue::u32(2000));
    EXPECT_EQ(kelvin->maximum, RefValue::u32(50000));
    EXPECT_EQ(m.frameAttribute(RefFrameAttr::WhiteBalanceTint)->minimum, RefValue::s16(-150));
    EXPECT_EQ(m.frameAttribute(RefFrameAttr::Exposure)->maximum, RefValue::f32(5.0f));
    for (const RefAttribute& a : m.clipAttributes)
        EXPECT_EQ(a.value.type, refClipAttributeType(a.id)) << refFourCCText(a.id);
    for (const RefAttribute& a : m.frameAttributes)
        EXPECT_EQ(a.value.type, refFrameAttributeType(a.id)) << refFourCCText(a.id);
    // Tone curves only for the gammas that have one, in both colour sciences.
    EXPECT_EQ(m.toneCurves.size(), 6u);
    // The resolution table maps to itself both ways.
    const std::vector<RefResolution> res = m.effectiveResolutions();
    ASSERT_EQ(res.size(), 4u);
    EXPECT_EQ(res[3].width, 240u);
    EXPECT_EQ(res[3].height, 135u);
    EXPECT_EQ(res[3].scale, RefResolutionScale::Eighth);
    EXPECT_FALSE(m.audio.present);
    EXPECT_EQ(m.effectiveAudioSampleCount(), 0u);
}

TEST(FormatModel, DerivedFiguresAndOverrides)
{
    RefClipModel m;
    m.audio.present = true;
    m.frameRate = 25.0f;
    m.frameCount = 50;
    EXPECT_EQ(m.effectiveAudioSampleCount(), 96000u);
    m.frameRate = -1.0f;
    EXPECT_EQ(m.effectiveAudioSampleCount(), 0u);
    m.audio.sampleCount = 7;
    EXPECT_EQ(m.effectiveAudioSampleCount(), 7u);

    m.bitStream.recordedFrames = 10;
    EXPECT_EQ(m.recordedFrameCount(), 10u);
    m.frameOverrideFor(3).bitStreamBytes = 5;
    EXPECT_EQ(m.frameBitStreamBytes(3), 5u);
    EXPECT_EQ(m.frameBitStreamBytes(4), m.bitStream.frameBytes);

    m.frameOverrideFor(3).metadata = {{"iso", RefValue::u32(3200)}, {"extra", RefValue::string("x")}};
    const std::vector<RefMetadataEntry> f3 = m.metadataOfFrame(3);
    EXPECT_EQ(f3.size(), m.frameMetadata.size() + 1);
    EXPECT_EQ(f3[0].value, RefValue::u32(3200)) << "same key keeps its place";
    EXPECT_EQ(f3.back().key, "extra");
    EXPECT_EQ(m.metadataOfFrame(2)[0].value, RefValue::u32(800));

    RefAttribute iso;
    iso.id = RefFrameAttr::ISO;
    iso.value = RefValue::u32(400);
    m.frameOverrideFor(3).attributes.push_back(iso);
    EXPECT_EQ(m.frameAttributeValueOf(3, RefFrameAttr::ISO), RefValue::u32(400));
    EXPECT_EQ(m.frameAttributeValueOf(2, RefFrameAttr::ISO), RefValue::u32(800));
    EXPECT_EQ(m.frameAttributeValueOf(2, 0x12345678).type, RefVariantType::Empty);

    RefFault f;
    f.method = "Clip.GetMetadata";
    f.key = "iso";
    EXPECT_TRUE(refFaultMatches(f, "Clip.GetMetadata", -1, 0, "iso"));
    EXPECT_FALSE(refFaultMatches(f, "Clip.GetMetadata", -1, 0, "scene"));
    f.key.clear();
    f.frame = 4;
    f.attribute = RefFrameAttr::ISO;
    EXPECT_TRUE(refFaultMatches(f, "Clip.GetMetadata", 4, RefFrameAttr::ISO, ""));
    EXPECT_FALSE(refFaultMatches(f, "Clip.GetMetadata", 5, RefFrameAttr::ISO, ""));
    EXPECT_FALSE(refFaultMatches(f, "Clip.GetMetadata", 4, RefFrameAttr::Exposure, ""));
    EXPECT_FALSE(refFaultMatches(f, "Frame.GetMetadata", 4, RefFrameAttr::ISO, ""));
}

TEST(FormatModel, ValuesConvertLikeCasts)
{
    EXPECT_EQ(RefValue::ofType(RefVariantType::U8, 256).number, 0);
    EXPECT_EQ(RefValue::ofType(RefVariantType::S16, 40000).number, 40000 - 65536);
    EXPECT_EQ(RefValue::ofType(RefVariantType::U32, -1).number, 4294967295.0);
    EXPECT_EQ(RefValue::ofType(RefVariantType::Float32, 0.1).number, double(0.1f));
    EXPECT_EQ(RefValue::ofType(RefVariantType::Float32, 1e300).number, HUGE_VAL);
    EXPECT_EQ(RefValue::ofType(RefVariantType::U16, NAN).number, 0);
    EXPECT_EQ(RefValue::ofType(RefVariantType::String, 1).type, RefVariantType::Empty);
    EXPECT_NE(RefValue::u16(1), RefValue::s16(1)) << "the type is part of the value";
    EXPECT_EQ(RefValue::stringArray({"a", "b"}).arraySize(), 2u);

    int32_t r = 0;
    EXPECT_TRUE(refParseResult("E_NOINTERFACE", r));
    EXPECT_EQ(r, int32_t(0x80000004u));
    EXPECT_EQ(refResultText(RefResult::Fail), "E_FAIL");
    EXPECT_EQ(refResultText(int32_t(0x80001234u)), "0x80001234");
    EXPECT_FALSE(refParseResult("-99999999999", r));
    uint32_t code = 0;
    EXPECT_TRUE(refParseFourCC("gamt", code));
    EXPECT_EQ(code, RefClipAttr::Gamut);
    EXPECT_EQ(refFourCCText(RefClipAttr::Gamut), "gamt");
    EXPECT_EQ(refFourCCText(0x01), "0x00000001");
}

TEST(FormatTimecode, TextsAndBaseFrames)
{
    EXPECT_EQ(RefTimecode::format(86400, 24, false), "01:00:00:00");
    EXPECT_EQ(RefTimecode::format(24 * 3600 * 24 + 5, 24, false), "00:00:00:05") << "wraps at 24 hours";
    // Drop frame at 29.97: frames 0 and 1 of each minute are skipped except every tenth.
    EXPECT_EQ(RefTimecode::format(1799, 30, true), "00:00:59;29");
    EXPECT_EQ(RefTimecode::format(1800, 30, true), "00:01:00;02");
    EXPECT_EQ(RefTimecode::format(17982, 30, true), "00:10:00;00");
    uint64_t frames = 0;
    ASSERT_TRUE(RefTimecode::parse("00:01:00;02", 30, true, frames));
    EXPECT_EQ(frames, 1800u);
    ASSERT_TRUE(RefTimecode::parse("00:10:00;00", 30, true, frames));
    EXPECT_EQ(frames, 17982u);
    EXPECT_FALSE(RefTimecode::parse("00:00:00:24", 24, false, frames));
    EXPECT_FALSE(RefTimecode::parse("1:2:3", 24, false, frames));
    EXPECT_FALSE(RefTimecode::parse("00:00:00:00x", 24, false, frames));
    EXPECT_EQ(RefTimecode::timebase(29.97f), 30u);
    EXPECT_EQ(RefTimecode::timebase(0.0f), 1u);
    EXPECT_EQ(RefTimecode::timebase(NAN), 1u);

    RefClipModel m;
    EXPECT_EQ(RefTimecode::baseFrame(m), 86400u);
    EXPECT_EQ(RefTimecode::forFrame(m, 25), "01:00:01:01");
    m.timecode.baseFrame = 10;
    EXPECT_EQ(RefTimecode::baseFrame(m), 10u);
    m.frameOverrideFor(2).hasTimecode = true;
    EXPECT_EQ(RefTimecode::forFrame(m, 2), "") << "a frame without timecode";
    m.timecode.baseFrame = -1;
    m.timecode.start = "garbage";
    EXPECT_EQ(RefTimecode::baseFrame(m), 0u);
    m.frameRate = -5.0f;
    EXPECT_EQ(RefTimecode::forFrame(m, 3), "00:00:03:00") << "rates below 1 count whole seconds";
}

TEST(FormatLut, CubeFilesAndLookups)
{
    const RefLut warm = RefLutTools::make(RefLutKind::Warm, 5, "W.cube", "Warm \"title\"");
    ASSERT_TRUE(warm.valid());
    RefLut back;
    std::string error;
    ASSERT_TRUE(RefLutTools::parseCube(RefLutTools::toCube(warm), back, error)) << error;
    EXPECT_EQ(back.size, 5u);
    EXPECT_EQ(back.title, "Warm \"title\"");
    for (size_t i = 0; i < warm.data.size(); ++i)
        EXPECT_NEAR(back.data[i], warm.data[i], 1e-6);

    const std::string crlf = "# comment\r\nTITLE \"x\"\r\nDOMAIN_MIN 0 0 0\r\nLUT_3D_SIZE 2\r\n"
                             "0 0 0\r\n1 0 0\r\n0 1 0\r\n1 1 0\r\n0 0 1\r\n1 0 1\r\n0 1 1\r\n1 1 1\r\n";
    ASSERT_TRUE(RefLutTools::parseCube(crlf, back, error)) << error;
    EXPECT_EQ(back.title, "x");
    EXPECT_FALSE(RefLutTools::parseCube("LUT_3D_SIZE 2\n0 0 0\n", back, error));
    EXPECT_NE(error.find("expected 8"), std::string::npos);
    EXPECT_FALSE(RefLutTools::parseCube("0 0 0\n", back, error));
    EXPECT_FALSE(RefLutTools::parseCube("LUT_1D_SIZE 2\n0 0 0\n1 1 1\n", back, error));
    EXPECT_FALSE(RefLutTools::parseCube("LUT_3D_SIZE 2\n0 0 zero\n", back, error));

    const float mid[3] = {0.25f, 0.5f, 0.75f};
    float out[3];
    RefLutTools::apply(RefLutTools::make(RefLutKind::Identity, 9), mid, out);
    EXPECT_NEAR(out[0], 0.25f, 1e-6);
    EXPECT_NEAR(out[2], 0.75f, 1e-6);
    RefLutTools::apply(RefLutTools::make(RefLutKind::Invert, 2), mid, out);
    EXPECT_NEAR(out[1], 0.5f, 1e-6);
    EXPECT_NEAR(out[2], 0.25f, 1e-6);
    const float outside[3] = {-3.0f, 7.0f, NAN};
    RefLutTools::apply(RefLutTools::make(RefLutKind::Identity, 3), outside, out);
    EXPECT_EQ(out[0], 0.0f);
    EXPECT_EQ(out[1], 1.0f);
    EXPECT_EQ(out[2], 0.0f);
    RefLut broken = RefLutTools::make(RefLutKind::Invert, 3);
    broken.data.pop_back();
    RefLutTools::apply(broken, mid, out);
    EXPECT_EQ(out[1], 0.5f) << "a LUT of the wrong length passes colours through";
}

TEST(FormatModel, ResolutionLookupsAndBrokenTables)
{
    RefClipModel m;
    RefResolutionScale scale = RefResolutionScale::Full;
    uint32_t w = 0, h = 0;
    // The default table maps to itself both ways.
    for (const RefResolution& r : m.effectiveResolutions()) {
        ASSERT_TRUE(refClosestScaleForResolution(m, r.width, r.height, scale));
        EXPECT_EQ(scale, r.scale);
        ASSERT_TRUE(refClosestResolutionForScale(m, scale, w, h));
        EXPECT_EQ(w, r.width);
        EXPECT_EQ(h, r.height);
    }
    EXPECT_TRUE(refClosestScaleForResolution(m, 900, 500, scale));
    EXPECT_EQ(scale, RefResolutionScale::Half) << "nearest in area";

    // A repeated scale with another size does not map back to itself.
    m.resolutions = {{100, 50, RefResolutionScale::Full, 0, 0}, {60, 30, RefResolutionScale::Full, 0, 0}};
    ASSERT_TRUE(refClosestScaleForResolution(m, 60, 30, scale));
    ASSERT_TRUE(refClosestResolutionForScale(m, scale, w, h));
    EXPECT_EQ(w, 100u);
    // A scale without an entry falls back to the divided full size; a code that is no scale fails.
    EXPECT_TRUE(refClosestResolutionForScale(m, RefResolutionScale::Quarter, w, h));
    EXPECT_EQ(w, m.width / 4);
    EXPECT_FALSE(refClosestResolutionForScale(m, static_cast<RefResolutionScale>(7), w, h));
}
