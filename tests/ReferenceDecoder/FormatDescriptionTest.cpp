// The JSON description of a reference clip: every figure survives a round
// trip, the short forms mean what the format says, and bad descriptions are
// refused with a message that names the member.

#include "Format/RefClipFile.h"
#include "Format/RefLutTools.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace twref;

namespace {

RefClipModel parseOk(const std::string& json)
{
    RefClipModel model;
    std::string error;
    EXPECT_TRUE(RefClipFile::parseDescription(json.data(), json.size(), model, error)) << error;
    return model;
}

std::string parseError(const std::string& json)
{
    RefClipModel model;
    std::string error;
    EXPECT_FALSE(RefClipFile::parseDescription(json.data(), json.size(), model, error)) << json;
    return error;
}

// A model that differs from the defaults in every part of the format.
RefClipModel unusualModel()
{
    RefClipModel m;
    m.width = 4096;
    m.height = 2160;
    m.frameRate = 29.97f;
    m.sensorRate = 59.94f;
    m.frameCount = 300;
    m.cameraType = "Test Cam";
    m.multicardFileCount = 2;
    m.timecode.start = "10:00:00;00";
    m.timecode.dropFrame = true;
    m.timecode.baseFrame = 1234;
    for (uint32_t i = 0; i < 21; ++i) {
        RefResolution r;
        r.width = 4096 - i;
        r.height = 2160 - i;
        r.scale = i == 20 ? static_cast<RefResolutionScale>(0x01020304) : RefResolutionScale::Half;
        r.recordedWidth = i;
        m.resolutions.push_back(r);
    }
    m.metadata = {{"u8", RefValue::u8(255)},
                  {"s16", RefValue::s16(-32768)},
                  {"u16", RefValue::u16(65535)},
                  {"s32", RefValue::s32(INT32_MIN)},
                  {"u32", RefValue::u32(UINT32_MAX)},
                  {"f32", RefValue::f32(0.1f)},
                  {"f64", RefValue::f64(0.1)},
                  {"text", RefValue::string("quote \" and \\ and \xC3\xA9")},
                  {"empty", RefValue::empty()},
                  {"numbers", RefValue::numberArray(RefVariantType::S16, {-1, 2, 3})},
                  {"texts", RefValue::stringArray({"x", ""})}};
    m.frameMetadata = {{"iso", RefValue::u32(1600)}};
    m.audio.present = true;
    m.audio.channelCount = 6;
    m.audio.sampleRate = 96000;
    m.audio.bitDepth = 24;
    m.audio.sampleCount = 123456;
    m.audio.tone.frequency = 440.0;
    m.audio.tone.amplitude = 0.25;
    m.clipAttribute(RefClipAttr::Gamut)->readOnly = true;
    m.clipAttribute(RefClipAttr::Gamma)->list.resize(3);
    m.clipAttribute(RefClipAttr::HighlightRecovery)->supported = false;
    m.clipAttributes.erase(m.clipAttributes.begin());  // no colour science at all
    m.frameAttribute(RefFrameAttr::WhiteBalanceTint)->minimum = RefValue::s16(-100);
    m.toneCurves.resize(1);
    m.toneCurves[0].contrast = 1.25f;
    m.embeddedLut = RefLutTools::make(RefLutKind::Warm, 3, "W.cube", "Warm title");
    m.bitStream.frameBytes = 100;
    m.bitStream.recordedFrames = 10;
    RefFrameOverride& f = m.frameOverrideFor(5);
    f.corrupt = true;
    f.corruptResult = RefResult::Unexpected;
    f.hasTimecode = true;
    f.timecode = "";
    f.bitStreamBytes = 7;
    f.metadata = {{"iso", RefValue::u32(3200)}};
    RefAttribute iso;
    iso.id = RefFrameAttr::ISO;
    iso.value = RefValue::u32(3200);
    f.attributes = {iso};
    RefFault fault;
    fault.method = "ClipProcessingAttributes.GetClipAttributeRange";
    fault.result = RefResult::InvalidArg;
    fault.frame = 3;
    fault.attribute = RefClipAttr::ToneCurveContrast;
    fault.key = "k";
    fault.skip = 1;
    fault.count = 2;
    m.faults.push_back(fault);
    m.addDelay("stage.decode", 40, 2);
    return m;
}

}  // namespace

TEST(FormatDescription, RoundTripKeepsEveryFigure)
{
    const RefClipModel original = unusualModel();
    const std::string text = RefClipFile::describe(original);
    const RefClipModel back = parseOk(text);

    EXPECT_EQ(RefClipFile::describe(back), text);
    EXPECT_EQ(back.width, 4096u);
    EXPECT_FLOAT_EQ(back.frameRate, 29.97f);
    EXPECT_EQ(back.timecode.baseFrame, 1234);
    ASSERT_EQ(back.resolutions.size(), 21u);
    EXPECT_EQ(static_cast<uint32_t>(back.resolutions[20].scale), 0x01020304u);
    EXPECT_EQ(back.resolutions[3].recordedWidth, 3u);
    ASSERT_EQ(back.metadata.size(), original.metadata.size());
    for (size_t i = 0; i < back.metadata.size(); ++i) {
        EXPECT_EQ(back.metadata[i].key, original.metadata[i].key);
        EXPECT_TRUE(back.metadata[i].value == original.metadata[i].value) << back.metadata[i].key;
    }
    EXPECT_EQ(back.clipAttribute(RefClipAttr::ColorScienceGen), nullptr);
    EXPECT_TRUE(back.clipAttribute(RefClipAttr::Gamut)->readOnly);
    EXPECT_FALSE(back.clipAttribute(RefClipAttr::HighlightRecovery)->supported);
    EXPECT_EQ(back.clipAttribute(RefClipAttr::Gamma)->list.size(), 3u);
    EXPECT_TRUE(back.embeddedLut == original.embeddedLut);
    const RefFrameOverride* f = back.frameOverride(5);
    ASSERT_NE(f, nullptr);
    EXPECT_TRUE(f->corrupt);
    EXPECT_EQ(f->corruptResult, RefResult::Unexpected);
    EXPECT_TRUE(f->hasTimecode);
    EXPECT_EQ(f->timecode, "");
    EXPECT_EQ(f->attributes.at(0).value.number, 3200);
    ASSERT_EQ(back.faults.size(), 1u);
    EXPECT_EQ(back.faults[0].attribute, RefClipAttr::ToneCurveContrast);
    EXPECT_EQ(back.faults[0].result, RefResult::InvalidArg);
    EXPECT_EQ(back.faults[0].count, 2u);
    EXPECT_EQ(back.delays.at(0).milliseconds, 40u);
}

TEST(FormatDescription, FaultTestFrameRatesSurvive)
{
    for (float rate : {0.0f, -24.0f, NAN, INFINITY, 1e-30f}) {
        RefClipModel m;
        m.frameRate = rate;
        const RefClipModel back = parseOk(RefClipFile::describe(m));
        if (std::isnan(rate)) {
            EXPECT_TRUE(std::isnan(back.frameRate));
        } else {
            EXPECT_EQ(back.frameRate, rate);
        }
    }
}

TEST(FormatDescription, ShortFormsAreTypedByContext)
{
    const RefClipModel m = parseOk(R"({
        "frame_rate": 25,
        "metadata": {"s": "text", "i": -3, "u": 3000000000, "f": 1.5, "b": true,
                     "a": [1, 2.5], "t": ["x", "y"],
                     "typed": {"type": "u16", "value": 7},
                     "arr": {"type": "array", "element": "u8", "value": [1, 300]}},
        "clip_attributes": {"csgn": {"value": 4, "list": [4]}, "gamt": "Rec.709",
                            "tcon": {"min": 0, "max": 2, "read_only": true}},
        "frame_attributes": {"fiso": 1600, "wbtn": {"value": -20}},
        "resolutions": [{"width": 8, "height": 4, "scale": "qrtr"},
                        {"width": 2, "height": 1, "scale": "eighth_upside_down"},
                        {"width": 1, "height": 1, "scale": 42}],
        "faults": [{"method": "Clip.GetWidth"}, {"method": "Clip.GetHeight", "result": "0x80000003"},
                   {"method": "Clip.GetFrameCount", "result": -2147483646}]
    })");
    EXPECT_EQ(m.frameRate, 25.0f);
    auto meta = [&](const std::string& key) {
        for (const RefMetadataEntry& e : m.metadata)
            if (e.key == key)
                return e.value;
        ADD_FAILURE() << key;
        return RefValue();
    };
    EXPECT_EQ(meta("s").type, RefVariantType::String);
    EXPECT_EQ(meta("i").type, RefVariantType::S32);
    EXPECT_EQ(meta("u").type, RefVariantType::U32);
    EXPECT_EQ(meta("f").type, RefVariantType::Float32);
    EXPECT_EQ(meta("b").type, RefVariantType::U8);
    EXPECT_EQ(meta("a").elementType, RefVariantType::Float32);
    EXPECT_EQ(meta("t").texts.size(), 2u);
    EXPECT_EQ(meta("typed").type, RefVariantType::U16);
    EXPECT_EQ(meta("arr").numbers[1], 44);  // 300 wraps as a cast to u8 does
    EXPECT_EQ(m.metadata.size(), 9u);       // replaces the default list

    // Attributes merge over the defaults and take their interface types.
    const RefAttribute* csgn = m.clipAttribute(RefClipAttr::ColorScienceGen);
    EXPECT_EQ(csgn->value.type, RefVariantType::U16);
    EXPECT_EQ(csgn->list.size(), 1u);
    EXPECT_EQ(m.clipAttribute(RefClipAttr::Gamut)->value.text, "Rec.709");
    EXPECT_EQ(m.clipAttribute(RefClipAttr::Gamut)->list.size(), 14u);
    const RefAttribute* tcon = m.clipAttribute(RefClipAttr::ToneCurveContrast);
    EXPECT_EQ(tcon->minimum.type, RefVariantType::Float32);
    EXPECT_FLOAT_EQ(tcon->value.number, 0.5f);
    EXPECT_TRUE(tcon->readOnly);
    EXPECT_EQ(m.frameAttribute(RefFrameAttr::ISO)->value, RefValue::u32(1600));
    EXPECT_EQ(m.frameAttribute(RefFrameAttr::WhiteBalanceTint)->value, RefValue::s16(-20));

    EXPECT_EQ(m.resolutions[0].scale, RefResolutionScale::Quarter);
    EXPECT_EQ(m.resolutions[1].scale, RefResolutionScale::EighthUpsideDown);
    EXPECT_EQ(static_cast<uint32_t>(m.resolutions[2].scale), 42u);
    EXPECT_EQ(m.faults[0].result, RefResult::Fail);
    EXPECT_EQ(m.faults[1].result, RefResult::InvalidArg);
    EXPECT_EQ(m.faults[2].result, RefResult::OutOfMemory);
}

TEST(FormatDescription, MergeKeepsWhatTheOptionsLeaveOut)
{
    RefClipModel m = unusualModel();
    std::string error;
    const std::string json = R"({"frame_count": 5, "camera_type": "Other"})";
    ASSERT_TRUE(RefClipFile::mergeDescription(json.data(), json.size(), m, error)) << error;
    EXPECT_EQ(m.frameCount, 5u);
    EXPECT_EQ(m.cameraType, "Other");
    EXPECT_EQ(m.width, 4096u);
    EXPECT_EQ(m.faults.size(), 1u);

    const std::string bad = R"({"frame_count": -1})";
    EXPECT_FALSE(RefClipFile::mergeDescription(bad.data(), bad.size(), m, error));
    EXPECT_EQ(m.frameCount, 5u) << "a failed merge leaves the model alone";
}

TEST(FormatDescription, BadDescriptionsNameTheMember)
{
    EXPECT_NE(parseError("").find("not valid JSON"), std::string::npos);
    EXPECT_NE(parseError("[]").find("expected a JSON object"), std::string::npos);
    EXPECT_NE(parseError("{} {}").find("not valid JSON"), std::string::npos);
    EXPECT_NE(parseError(R"({"widht": 3})").find("unknown member \"widht\""), std::string::npos);
    EXPECT_NE(parseError(R"({"width": -3})").find("width"), std::string::npos);
    EXPECT_NE(parseError(R"({"width": 5000000000})").find("width"), std::string::npos);
    EXPECT_NE(parseError(R"({"format": "other"})").find("format"), std::string::npos);
    EXPECT_NE(parseError(R"({"version": 2})").find("unsupported version 2"), std::string::npos);
    EXPECT_NE(parseError(R"({"clip_attributes": {"gamt": 3}})").find("clip_attributes.gamt"), std::string::npos);
    EXPECT_NE(parseError(R"({"clip_attributes": {"toolong": 3}})").find("four-character"), std::string::npos);
    EXPECT_NE(parseError(R"({"metadata": {"k": {"type": "u17", "value": 1}}})").find("metadata.k.type"),
              std::string::npos);
    EXPECT_NE(parseError(R"({"metadata": {"k": {"type": "u8"}}})").find("missing \"value\""), std::string::npos);
    EXPECT_NE(parseError(R"({"frames": [{"corrupt": true}]})").find("frames[0]"), std::string::npos);
    EXPECT_NE(parseError(R"({"faults": [{"method": "X", "result": "E_WHATEVER"}]})").find("faults[0].result"),
              std::string::npos);
    EXPECT_NE(parseError(R"({"resolutions": [{"width": 1}]})").find("resolutions[0]"), std::string::npos);
    EXPECT_NE(parseError(R"({"embedded_lut": {"size": 300}})").find("embedded_lut.size"), std::string::npos);
    EXPECT_NE(parseError(R"({"embedded_lut": {"data": "1 x 2"}})").find("embedded_lut.data"), std::string::npos);
    EXPECT_NE(parseError(R"({"audio": {"tone": {"pitch": 3}}})").find("audio.tone"), std::string::npos);

    // Deep nesting is refused without exhausting the stack.
    const std::string deep = "{\"metadata\": " + std::string(100000, '[') + std::string(100000, ']') + "}";
    EXPECT_FALSE(parseError(deep).empty());
}

TEST(FormatDescription, GeneratedLutAndAudioDefaults)
{
    const RefClipModel m = parseOk(R"({"embedded_lut": {"size": 5, "generate": "invert"},
                                       "audio": {"channels": 1}})");
    EXPECT_EQ(m.embeddedLut.size, 5u);
    EXPECT_TRUE(m.embeddedLut.valid());
    EXPECT_FLOAT_EQ(m.embeddedLut.data[0], 1.0f);
    EXPECT_TRUE(m.audio.present) << "an audio member means audio";
    EXPECT_EQ(m.audio.sampleRate, 48000u);

    // A LUT of the wrong length is kept so that the library can report it.
    const RefClipModel bad = parseOk(R"({"embedded_lut": {"size": 2, "data": [0, 0, 0]}})");
    EXPECT_FALSE(bad.embeddedLut.valid());
}
