#include "twImporterSharedPrefs/twImporterSettingsInitData.h"

#include "RawBytes.h"
#include "SettingsInitDataLayout.h"

#include <gtest/gtest.h>

#include <string>

using namespace twtest;
using namespace twtest::initdata;

namespace {

Bytes recordBytes(const twImporterSettingsInitData& data) {
    const auto* first = reinterpret_cast<const uint8_t*>(&data);
    return Bytes(first, first + sizeof(data));
}

twGammaControlsValues curve(float base, bool videoBlack) {
    twGammaControlsValues values;
    values.saturation = base;
    values.contrast = base + 0.125f;
    values.midpoint = base + 0.25f;
    values.highlights = base + 0.375f;
    values.shadows = base + 0.5f;
    values.whiteLevel = base + 0.625f;
    values.blackLevel = base - 1.0f;
    values.useVideoBlackLevel = videoBlack;
    return values;
}

// Every field set to a value of its own, so that a field written at the wrong
// place shows.
twImporterSettingsInitData distinctRecord() {
    twImporterSettingsInitData data;
    data.attributes.useClipAndFrameAttributes = true;
    data.attributes.clip.colorScienceGen = 5;
    twCopyFixedText(data.attributes.clip.gamut, sizeof(data.attributes.clip.gamut), "Rec.2020");
    data.attributes.clip.gamutCompression = true;
    twCopyFixedText(data.attributes.clip.gamma, sizeof(data.attributes.clip.gamma), "Blackmagic Design Custom");
    data.attributes.clip.gammaControls = curve(1.5f, true);
    data.attributes.clip.highlightRecovery = true;
    twCopyFixedText(data.attributes.clip.lutMode, sizeof(data.attributes.clip.lutMode), "Embedded");
    data.attributes.frame.iso = 1600;
    data.attributes.frame.kelvin = 6500;
    data.attributes.frame.tint = -42;
    data.attributes.frame.exposure = -1.25f;
    twCopyFixedText(data.attributes.frame.timecode, sizeof(data.attributes.frame.timecode), "01:02:03:04");
    data.ready = true;
    data.colorScienceList[0] = 4;
    data.colorScienceList[1] = 5;
    data.colorScienceCount = 2;
    twCopyFixedText(data.gamutList[0], 64, "Blackmagic Design");
    twCopyFixedText(data.gamutList[13], 64, "ARRI Wide Gamut 4");
    data.gamutCount = 14;
    twCopyFixedText(data.gammaList[0], 64, "Blackmagic Design Film");
    twCopyFixedText(data.gammaList[15], 64, "ARRI LogC4");
    data.gammaCount = 16;
    for (uint32_t i = 0; i < 30; ++i) data.isoList[i] = 100 * (i + 1);
    data.isoCount = 30;
    data.isoIsReadOnly = true;
    data.gammaControlsPerPreset[0][2] = {true, curve(0.25f, false)};
    data.gammaControlsPerPreset[1][15] = {true, curve(2.5f, true)};
    data.colorTempMax = 50000;
    data.colorTempMin = 2000;
    data.colorTempIsReadOnly = true;
    data.tintMax = 150;
    data.tintMin = -150;
    data.tintIsReadOnly = true;
    data.exposureMax = 5.0f;
    data.exposureMin = -5.0f;
    for (int i = 0; i < 7; ++i) {
        data.toneCurveMax[i] = 10.0f + float(i);
        data.toneCurveMin[i] = -10.0f - float(i);
    }
    data.highlightRecoveryIsReadOnly = true;
    data.embeddedLutAvailable = true;
    data.sidecarLutAvailable = true;
    data.timecodeFrames = 86400;
    data.timecodeIsDropFrame = true;
    data.hasSidecar = true;
    data.multiCardFiles = 2;
    data.importerFailed = true;
    data.setFilepath("/clips/A001.braw");
    data.reloadOptionsCommand = 1;
    data.reloadSidecarCommand = 1;
    data.importerAnswered = 1;
    data.adobeTimecodeSet = 1;
    data.adobeTimecode = 86313;
    return data;
}

}  // namespace

TEST(SettingsInitData, ANewRecordIsEmptyWithTheTimecodeUnknown) {
    const Bytes b = recordBytes(twImporterSettingsInitData());
    ASSERT_EQ(b.size(), kSize);
    Bytes defaults(attr::size, 0);
    putDefaultAttributes(defaults, 0);
    EXPECT_EQ(Bytes(b.begin() + kAttributes, b.begin() + kAttributes + attr::size), defaults);
    EXPECT_EQ(b.at(kReady), 0);
    EXPECT_EQ(getU32(b, kColorScienceCount), 0u);
    EXPECT_EQ(getU32(b, kIsoCount), 0u);
    EXPECT_EQ(getU32(b, kMultiCardFiles), 0u);
    EXPECT_EQ(b.at(kImporterFailed), 0);
    EXPECT_EQ(getU64(b, kFilepathLength), 0u);
    EXPECT_EQ(Bytes(b.begin() + kFilepath, b.begin() + kFilepath + kFilepathSize), Bytes(kFilepathSize, 0));
    EXPECT_EQ(b.at(kReloadOptionsCommand), 0);
    EXPECT_EQ(b.at(kReloadSidecarCommand), 0);
    EXPECT_EQ(b.at(kImporterAnswered), 0);
    EXPECT_EQ(b.at(kAdobeTimecodeSet), 0);
    EXPECT_EQ(getU32(b, kAdobeTimecode), 0xFFFFFFFFu);
}

TEST(SettingsInitData, EveryFieldSitsAtItsWireOffset) {
    const Bytes b = recordBytes(distinctRecord());
    const size_t clip = kAttributes;
    EXPECT_EQ(b.at(clip + attr::useClipAndFrameAttributes), 1);
    EXPECT_EQ(getU16(b, clip + attr::colorScienceGen), 5);
    EXPECT_EQ(getText(b, clip + attr::gamut, 64), "Rec.2020");
    EXPECT_EQ(b.at(clip + attr::gamutCompression), 1);
    EXPECT_EQ(getText(b, clip + attr::gamma, 64), "Blackmagic Design Custom");
    EXPECT_EQ(getF32(b, clip + attr::saturation), 1.5f);
    EXPECT_EQ(getF32(b, clip + attr::blackLevel), 0.5f);
    EXPECT_EQ(b.at(clip + attr::useVideoBlackLevel), 1);
    EXPECT_EQ(b.at(clip + attr::highlightRecovery), 1);
    EXPECT_EQ(getText(b, clip + attr::lutMode, 12), "Embedded");
    EXPECT_EQ(getU32(b, clip + attr::iso), 1600u);
    EXPECT_EQ(getU32(b, clip + attr::kelvin), 6500u);
    EXPECT_EQ(getI16(b, clip + attr::tint), -42);
    EXPECT_EQ(getF32(b, clip + attr::exposure), -1.25f);
    EXPECT_EQ(getText(b, clip + attr::timecode, 12), "01:02:03:04");

    EXPECT_EQ(b.at(kReady), 1);
    EXPECT_EQ(getU16(b, kColorScienceList), 4);
    EXPECT_EQ(getU16(b, kColorScienceList + 2), 5);
    EXPECT_EQ(getU32(b, kColorScienceCount), 2u);
    EXPECT_EQ(getText(b, kGamutList, 64), "Blackmagic Design");
    EXPECT_EQ(getText(b, kGamutList + 13 * 64, 64), "ARRI Wide Gamut 4");
    EXPECT_EQ(getU32(b, kGamutCount), 14u);
    EXPECT_EQ(getText(b, kGammaList, 64), "Blackmagic Design Film");
    EXPECT_EQ(getText(b, kGammaList + 15 * 64, 64), "ARRI LogC4");
    EXPECT_EQ(getU32(b, kGammaCount), 16u);
    EXPECT_EQ(getU32(b, kIsoList), 100u);
    EXPECT_EQ(getU32(b, kIsoList + 29 * 4), 3000u);
    EXPECT_EQ(getU32(b, kIsoCount), 30u);
    EXPECT_EQ(b.at(kIsoIsReadOnly), 1);

    EXPECT_EQ(b.at(gammaControls(0, 2)), 1);
    EXPECT_EQ(getF32(b, gammaControls(0, 2) + kGammaControlsCurve), 0.25f);
    EXPECT_EQ(getF32(b, gammaControls(0, 2) + kGammaControlsCurve + 24), -0.75f);
    EXPECT_EQ(b.at(gammaControls(0, 2) + kGammaControlsCurve + 28), 0);
    EXPECT_EQ(b.at(gammaControls(1, 15)), 1);
    EXPECT_EQ(getF32(b, gammaControls(1, 15) + kGammaControlsCurve + 4), 2.625f);
    EXPECT_EQ(b.at(gammaControls(1, 15) + kGammaControlsCurve + 28), 1);
    EXPECT_EQ(b.at(gammaControls(1, 14)), 0);

    EXPECT_EQ(getU32(b, kColorTempMax), 50000u);
    EXPECT_EQ(getU32(b, kColorTempMin), 2000u);
    EXPECT_EQ(b.at(kColorTempIsReadOnly), 1);
    EXPECT_EQ(getI16(b, kTintMax), 150);
    EXPECT_EQ(getI16(b, kTintMin), -150);
    EXPECT_EQ(b.at(kTintIsReadOnly), 1);
    EXPECT_EQ(getF32(b, kExposureMax), 5.0f);
    EXPECT_EQ(getF32(b, kExposureMin), -5.0f);
    EXPECT_EQ(getF32(b, kToneCurveMax), 10.0f);
    EXPECT_EQ(getF32(b, kToneCurveMax + 24), 16.0f);
    EXPECT_EQ(getF32(b, kToneCurveMin), -10.0f);
    EXPECT_EQ(getF32(b, kToneCurveMin + 24), -16.0f);
    EXPECT_EQ(b.at(kHighlightRecoveryIsReadOnly), 1);
    EXPECT_EQ(b.at(kEmbeddedLutAvailable), 1);
    EXPECT_EQ(b.at(kSidecarLutAvailable), 1);
    EXPECT_EQ(getI32(b, kTimecodeFrames), 86400);
    EXPECT_EQ(b.at(kTimecodeIsDropFrame), 1);
    EXPECT_EQ(b.at(kHasSidecar), 1);
    EXPECT_EQ(getU32(b, kMultiCardFiles), 2u);

    EXPECT_EQ(b.at(kImporterFailed), 1);
    EXPECT_EQ(getU64(b, kFilepathLength), 16u);
    EXPECT_EQ(getText(b, kFilepath, kFilepathSize), "/clips/A001.braw");
    EXPECT_EQ(b.at(kReloadOptionsCommand), 1);
    EXPECT_EQ(b.at(kReloadSidecarCommand), 1);
    EXPECT_EQ(b.at(kImporterAnswered), 1);
    EXPECT_EQ(b.at(kAdobeTimecodeSet), 1);
    EXPECT_EQ(getU32(b, kAdobeTimecode), 86313u);
}

TEST(SettingsInitData, TheExchangesOffsetsAreThoseOfTheRecordsMembers) {
    const twImporterSettingsInitData data;
    const auto at = [&](const void* member) {
        return static_cast<size_t>(static_cast<const char*>(member) - reinterpret_cast<const char*>(&data));
    };
    EXPECT_EQ(at(&data.importerFailed), twImporterSettingsWire::importerFailed);
    EXPECT_EQ(at(&data.reloadOptionsCommand), twImporterSettingsWire::reloadOptionsCommand);
    EXPECT_EQ(at(&data.reloadSidecarCommand), twImporterSettingsWire::reloadSidecarCommand);
    EXPECT_EQ(at(&data.importerAnswered), twImporterSettingsWire::importerAnswered);
    EXPECT_EQ(at(&data.adobeTimecodeSet), twImporterSettingsWire::adobeTimecodeSet);
    EXPECT_EQ(at(&data.adobeTimecode), twImporterSettingsWire::adobeTimecode);
}

TEST(SettingsInitData, APathThatFillsTheFieldIsCutWithoutTerminator) {
    twImporterSettingsInitData data;
    const std::string longPath = "/" + std::string(1100, 'p') + ".braw";
    data.setFilepath(longPath);
    const Bytes b = recordBytes(data);
    EXPECT_EQ(getU64(b, kFilepathLength), kFilepathSize);
    EXPECT_EQ(getText(b, kFilepath, kFilepathSize), longPath.substr(0, kFilepathSize));
    // The commands behind the field are untouched.
    EXPECT_EQ(b.at(kReloadOptionsCommand), 0);

    data.setFilepath("/short.braw");
    EXPECT_EQ(data.filepathLength, 11u);
    EXPECT_EQ(getText(recordBytes(data), kFilepath, kFilepathSize), "/short.braw");
}

TEST(SettingsInitData, TheJsonHoldsTheKeysInOrderWithEachBooleanInItsForm) {
    twImporterSettingsInitData data = distinctRecord();
    data.isoCount = 3;
    QV_JSON json;
    json.initEmptyJSON(true);
    data.fillInfosIntoJSONObject(json, json.document);
    const std::string expected =
        R"({"filepath":"/clips/A001.braw","isoList":[100,200,300],"isoIsReadOnly":1,)"
        R"("highlightRecoveryIsReadOnly":1,"colorTempIsReadOnly":1,"tintIsReadOnly":1,)"
        R"("gammaControlsPerPreset":[{"2":{"saturation":0.25,"contrast":0.375,"midpoint":0.5,"highlight":0.625,)"
        R"("shadow":0.75,"whiteLvl":0.875,"blackLvl":-0.75,"useVideoBlackLvl":false}},)"
        R"({"15":{"saturation":2.5,"contrast":2.625,"midpoint":2.75,"highlight":2.875,"shadow":3.0,)"
        R"("whiteLvl":3.125,"blackLvl":1.5,"useVideoBlackLvl":true}}],)"
        R"("embeddedLutAvailable":1,"sidecarLutAvailable":1,"timecode":"01:02:03:04","timecodeFrames":86400,)"
        R"("timecodeIsDropFrame":1,"hasSidecar":1,"multiCardFiles":2,)"
        R"("cameraMetadata":{"colorScience":5,"gamut":"Rec.2020","gamutCompressionEnabled":1,)"
        R"("gamma":"Blackmagic Design Custom","iso":1600,"exposure":-1.25,"highlightRecovery":1,"lut":"Embedded",)"
        R"("colorTemp":6500,"tint":-42,"saturation":1.5,"contrast":1.625,"midpoint":1.75,"highlight":1.875,)"
        R"("shadow":2.0,"whiteLvl":2.125,"blackLvl":0.5,"useVideoBlackLvl":1}})";
    EXPECT_EQ(json.generateJsonFinalString().Str(), expected);
}

TEST(SettingsInitData, ABareRecordGivesAnEmptyIsoListAndTwoEmptyCurveObjects) {
    twSettingsInitData data;
    QV_JSON json;
    json.initEmptyJSON(true);
    data.fillInfosIntoJSONObject(json, json.document);
    const std::string text = json.generateJsonFinalString().Str();
    EXPECT_EQ(text.rfind(R"({"isoList":[],"isoIsReadOnly":0,)", 0), 0u) << text;
    EXPECT_NE(text.find(R"("gammaControlsPerPreset":[{},{}],)"), std::string::npos) << text;
    EXPECT_EQ(text.find("filepath"), std::string::npos);
    EXPECT_NE(text.find(R"("timecode":"00:00:00:00","timecodeFrames":0,)"), std::string::npos) << text;
}

TEST(SettingsInitData, TheClipsFactsCarryIntoTheImportersRecord) {
    twSettingsInitData facts;
    facts.isoCount = 2;
    facts.isoList[1] = 3200;
    facts.gammaControlsPerPreset[1][3] = {true, curve(0.5f, true)};
    const twImporterSettingsInitData record(facts);
    EXPECT_EQ(record.isoCount, 2u);
    EXPECT_EQ(record.isoList[1], 3200u);
    EXPECT_TRUE(record.gammaControlsPerPreset[1][3].first);
    EXPECT_EQ(record.adobeTimecode, TW_ADOBE_TIMECODE_UNKNOWN);
    EXPECT_EQ(record.filepathLength, 0u);
}
