// What the source settings effect learns of a clip, end to end: reference clips
// told to offer cameras, colour science generations, lists, ranges, read-only
// attributes and LUTs, and the 4592-byte answer read back by its offsets.
// Every failure of the probe reaches the effect as its failure flag and a box,
// and leaves the clip without settings data.

#include "ClipImportSupport.h"
#include "FrameTestSupport.h"
#include "SourceSettingsSupport.h"

#include "Utils/qvUtils.h"
#include "Writer/RefClipWriter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace twtest;
using namespace twtest::initdata;
using twref::RefAttribute;
using twref::RefClipModel;
using twref::RefValue;
namespace ClipAttr = twref::RefClipAttr;
namespace FrameAttr = twref::RefFrameAttr;

namespace {

float f32(double value) { return static_cast<float>(value); }

const RefAttribute& clipAttribute(const RefClipModel& model, uint32_t id) {
    const RefAttribute* attribute = model.clipAttribute(id);
    EXPECT_NE(attribute, nullptr);
    static const RefAttribute none;
    return attribute ? *attribute : none;
}

const RefAttribute& frameAttribute(const RefClipModel& model, uint32_t id) {
    const RefAttribute* attribute = model.frameAttribute(id);
    EXPECT_NE(attribute, nullptr);
    static const RefAttribute none;
    return attribute ? *attribute : none;
}

// A tone curve of the panel record: the flag, then seven floats in the
// record's order and the video black level.
void expectCurve(const Bytes& b, size_t at, const twref::RefToneCurve& curve, const std::string& where) {
    const size_t c = at + kGammaControlsCurve;
    EXPECT_EQ(b.at(at), 1) << where;
    EXPECT_EQ(getF32(b, c + 0), curve.saturation) << where;
    EXPECT_EQ(getF32(b, c + 4), curve.contrast) << where;
    EXPECT_EQ(getF32(b, c + 8), curve.midpoint) << where;
    EXPECT_EQ(getF32(b, c + 12), curve.highlights) << where;
    EXPECT_EQ(getF32(b, c + 16), curve.shadows) << where;
    EXPECT_EQ(getF32(b, c + 20), curve.whiteLevel) << where;
    EXPECT_EQ(getF32(b, c + 24), curve.blackLevel) << where;
    EXPECT_EQ(b.at(c + 28), curve.videoBlackLevel != 0 ? 1 : 0) << where;
}

// Everything the record says, against what the clip was told to offer.
void expectPanelMatches(const Bytes& b, const RefClipModel& model) {
    ASSERT_EQ(b.size(), kSize);
    EXPECT_EQ(b.at(kReady), 1);

    // Recorded clip values.
    const size_t a = kAttributes;
    EXPECT_EQ(getU16(b, a + attr::colorScienceGen), clipAttribute(model, ClipAttr::ColorScienceGen).value.number);
    EXPECT_EQ(getText(b, a + attr::gamut, 64), clipAttribute(model, ClipAttr::Gamut).value.text);
    EXPECT_EQ(b.at(a + attr::gamutCompression),
              clipAttribute(model, ClipAttr::GamutCompressionEnable).value.number != 0 ? 1 : 0);
    EXPECT_EQ(getText(b, a + attr::gamma, 64), clipAttribute(model, ClipAttr::Gamma).value.text);
    EXPECT_EQ(getF32(b, a + attr::saturation), f32(clipAttribute(model, ClipAttr::ToneCurveSaturation).value.number));
    EXPECT_EQ(getF32(b, a + attr::contrast), f32(clipAttribute(model, ClipAttr::ToneCurveContrast).value.number));
    EXPECT_EQ(getF32(b, a + attr::midpoint), f32(clipAttribute(model, ClipAttr::ToneCurveMidpoint).value.number));
    EXPECT_EQ(getF32(b, a + attr::highlights), f32(clipAttribute(model, ClipAttr::ToneCurveHighlights).value.number));
    EXPECT_EQ(getF32(b, a + attr::shadows), f32(clipAttribute(model, ClipAttr::ToneCurveShadows).value.number));
    EXPECT_EQ(getF32(b, a + attr::whiteLevel), f32(clipAttribute(model, ClipAttr::ToneCurveWhiteLevel).value.number));
    EXPECT_EQ(getF32(b, a + attr::blackLevel), f32(clipAttribute(model, ClipAttr::ToneCurveBlackLevel).value.number));
    EXPECT_EQ(b.at(a + attr::useVideoBlackLevel),
              clipAttribute(model, ClipAttr::ToneCurveVideoBlackLevel).value.number != 0 ? 1 : 0);
    EXPECT_EQ(b.at(a + attr::highlightRecovery),
              clipAttribute(model, ClipAttr::HighlightRecovery).value.number != 0 ? 1 : 0);
    EXPECT_EQ(getText(b, a + attr::lutMode, 12), clipAttribute(model, ClipAttr::Post3DLUTMode).value.text);

    // Recorded frame values, those of the first frame.
    EXPECT_EQ(getU32(b, a + attr::iso), model.frameAttributeValueOf(0, FrameAttr::ISO).number);
    EXPECT_EQ(getU32(b, a + attr::kelvin), model.frameAttributeValueOf(0, FrameAttr::WhiteBalanceKelvin).number);
    EXPECT_EQ(getI16(b, a + attr::tint), model.frameAttributeValueOf(0, FrameAttr::WhiteBalanceTint).number);
    EXPECT_EQ(getF32(b, a + attr::exposure), f32(model.frameAttributeValueOf(0, FrameAttr::Exposure).number));
    EXPECT_EQ(getText(b, a + attr::timecode, 12), model.timecode.start.substr(0, 12));

    // The lists.
    const std::vector<RefValue>& sciences = clipAttribute(model, ClipAttr::ColorScienceGen).list;
    ASSERT_EQ(getU32(b, kColorScienceCount), sciences.size());
    for (size_t i = 0; i < sciences.size(); ++i) EXPECT_EQ(getU16(b, kColorScienceList + 2 * i), sciences[i].number);
    const std::vector<RefValue>& gamuts = clipAttribute(model, ClipAttr::Gamut).list;
    ASSERT_EQ(getU32(b, kGamutCount), gamuts.size());
    for (size_t i = 0; i < gamuts.size(); ++i) EXPECT_EQ(getText(b, kGamutList + 64 * i, 64), gamuts[i].text);
    const std::vector<RefValue>& gammas = clipAttribute(model, ClipAttr::Gamma).list;
    ASSERT_EQ(getU32(b, kGammaCount), gammas.size());
    for (size_t i = 0; i < gammas.size(); ++i) EXPECT_EQ(getText(b, kGammaList + 64 * i, 64), gammas[i].text);
    const RefAttribute& iso = frameAttribute(model, FrameAttr::ISO);
    ASSERT_EQ(getU32(b, kIsoCount), iso.list.size());
    for (size_t i = 0; i < iso.list.size(); ++i) EXPECT_EQ(getU32(b, kIsoList + 4 * i), iso.list[i].number);
    EXPECT_EQ(b.at(kIsoIsReadOnly), iso.readOnly ? 1 : 0);

    // The default curve of each gamma under each colour science, where the
    // library has one.
    for (size_t science = 0; science < 2; ++science) {
        for (size_t gamma = 0; gamma < 16; ++gamma) {
            const size_t at = gammaControls(science, gamma);
            const std::string where = "science " + std::to_string(science) + ", gamma " + std::to_string(gamma);
            const twref::RefToneCurve* offered = nullptr;
            if (science < sciences.size() && gamma < gammas.size()) {
                for (const twref::RefToneCurve& curve : model.toneCurves) {
                    if (curve.gamma == gammas[gamma].text && curve.colorScienceGen == sciences[science].number) {
                        offered = &curve;
                        break;
                    }
                }
            }
            if (offered) {
                expectCurve(b, at, *offered, where);
            } else {
                EXPECT_EQ(b.at(at), 0) << where;
            }
        }
    }

    // Ranges and read-only flags.
    const RefAttribute& kelvin = frameAttribute(model, FrameAttr::WhiteBalanceKelvin);
    EXPECT_EQ(getU32(b, kColorTempMin), kelvin.minimum.number);
    EXPECT_EQ(getU32(b, kColorTempMax), kelvin.maximum.number);
    EXPECT_EQ(b.at(kColorTempIsReadOnly), kelvin.readOnly ? 1 : 0);
    const RefAttribute& tint = frameAttribute(model, FrameAttr::WhiteBalanceTint);
    EXPECT_EQ(getI16(b, kTintMin), tint.minimum.number);
    EXPECT_EQ(getI16(b, kTintMax), tint.maximum.number);
    EXPECT_EQ(b.at(kTintIsReadOnly), tint.readOnly ? 1 : 0);
    const RefAttribute& exposure = frameAttribute(model, FrameAttr::Exposure);
    EXPECT_EQ(getF32(b, kExposureMin), f32(exposure.minimum.number));
    EXPECT_EQ(getF32(b, kExposureMax), f32(exposure.maximum.number));
    const uint32_t curveIds[7] = {ClipAttr::ToneCurveSaturation, ClipAttr::ToneCurveContrast,
                                  ClipAttr::ToneCurveMidpoint,   ClipAttr::ToneCurveHighlights,
                                  ClipAttr::ToneCurveShadows,    ClipAttr::ToneCurveWhiteLevel,
                                  ClipAttr::ToneCurveBlackLevel};
    for (size_t i = 0; i < 7; ++i) {
        EXPECT_EQ(getF32(b, kToneCurveMin + 4 * i), f32(clipAttribute(model, curveIds[i]).minimum.number)) << i;
        EXPECT_EQ(getF32(b, kToneCurveMax + 4 * i), f32(clipAttribute(model, curveIds[i]).maximum.number)) << i;
    }
    EXPECT_EQ(b.at(kHighlightRecoveryIsReadOnly), clipAttribute(model, ClipAttr::HighlightRecovery).readOnly ? 1 : 0);
    EXPECT_EQ(b.at(kEmbeddedLutAvailable), model.embeddedLut.present() ? 1 : 0);
    EXPECT_EQ(b.at(kTimecodeIsDropFrame), model.timecode.dropFrame ? 1 : 0);
    EXPECT_EQ(getU32(b, kMultiCardFiles), model.multicardFileCount);
}

std::vector<RefValue> texts(const std::vector<std::string>& names) {
    std::vector<RefValue> values;
    for (const std::string& name : names) values.push_back(RefValue::string(name));
    return values;
}

std::vector<std::string> numbered(const std::string& stem, size_t count) {
    std::vector<std::string> names;
    for (size_t i = 0; i < count; ++i) names.push_back(stem + " " + std::to_string(i + 1));
    return names;
}

class PanelDataTest : public ClipImportTest {
protected:
    // The panel data of `model`, imported under `name`, through the effect's call.
    Bytes panelOf(const std::string& name, const RefClipModel& model) {
        twSimFile& file = importClip(writeClip(name, model));
        EffectExchange exchange;
        EXPECT_EQ(exchange.send(file), imNoErr) << name;
        EXPECT_TRUE(exchange.answered()) << name;
        return exchange.answered() ? exchange.answerBytes() : Bytes();
    }

    // The effect's call for a clip whose probe must fail with `title`; the
    // clip is then left with no settings data.
    void expectProbeFails(const std::string& name, const RefClipModel& model, const std::string& title) {
        twSimFile& file = importClip(writeClip(name, model));
        host().events().clear();
        EffectExchange exchange;
        EXPECT_EQ(exchange.send(file), imOtherErr) << title;
        EXPECT_FALSE(exchange.answered()) << title;
        EXPECT_EQ(exchange.effectBytes().at(kImporterFailed), 1) << title;
        EXPECT_EQ(events(), std::vector<std::string>{"3|BRAW - " + title + "| - " + bugReportText()});
        // No half-filled record was kept: the next call probes again, and fails again.
        EffectExchange again;
        EXPECT_EQ(again.send(file), imOtherErr) << title;
        EXPECT_FALSE(again.answered()) << title;
        EXPECT_EQ(events().size(), 2u) << title;
    }
};

}  // namespace

TEST_F(PanelDataTest, TheDefaultCameraOffersItsListsRangesAndCurves) {
    startHost();
    const RefClipModel model;
    twStageWatch stages;
    const Bytes b = panelOf("default.braw", model);
    expectPanelMatches(b, model);
    // Asked twice, the clip's first frame is read once and never decoded.
    EffectExchange again;
    EXPECT_EQ(again.send(*m_files.back()), imNoErr);
    EXPECT_EQ(again.answerBytes(), b);
    EXPECT_EQ(stages.count("read", 0), 1);
    EXPECT_EQ(stages.total("decode"), 0);
    EXPECT_EQ(stages.total("process"), 0);
    // The clip of the default camera: generation 5 of 4 and 5, 14 gamuts, 16
    // gammas, a curve for three gammas, no LUT, no sidecar.
    EXPECT_EQ(getU32(b, kColorScienceCount), 2u);
    EXPECT_EQ(getU32(b, kGamutCount), 14u);
    EXPECT_EQ(getU32(b, kGammaCount), 16u);
    EXPECT_EQ(b.at(gammaControls(1, 0)), 1);
    EXPECT_EQ(b.at(gammaControls(1, 1)), 0);
    EXPECT_EQ(getI32(b, kTimecodeFrames), 86400);
    EXPECT_EQ(b.at(kHasSidecar), 0);
    EXPECT_EQ(b.at(kSidecarLutAvailable), 0);
    finish();
}

TEST_F(PanelDataTest, AnotherCameraWithFullListsReadOnlyValuesAndAnEmbeddedLut) {
    startHost();
    RefClipModel model = twref::RefClipWriter::makeClip(64, 36, 30000.0f / 1001.0f, 4);
    model.cameraType = "Reference Camera 12K";
    model.multicardFileCount = 2;
    model.timecode.start = "10:00:00;00";
    model.timecode.dropFrame = true;
    RefAttribute& science = *model.clipAttribute(ClipAttr::ColorScienceGen);
    science.list = {RefValue::u16(4)};
    science.value = RefValue::u16(4);
    // Both lists at their full length, with names of this camera's own.
    const std::vector<std::string> gamuts = numbered("Gamut", 14);
    const std::vector<std::string> gammas = numbered("Gamma", 16);
    model.clipAttribute(ClipAttr::Gamut)->list = texts(gamuts);
    model.clipAttribute(ClipAttr::Gamut)->value = RefValue::string(gamuts[13]);
    model.clipAttribute(ClipAttr::Gamma)->list = texts(gammas);
    model.clipAttribute(ClipAttr::Gamma)->value = RefValue::string(gammas[15]);
    model.setClipAttributeValue(ClipAttr::GamutCompressionEnable, RefValue::u16(1));
    model.setClipAttributeValue(ClipAttr::ToneCurveContrast, RefValue::f32(1.25f));
    model.setClipAttributeValue(ClipAttr::ToneCurveBlackLevel, RefValue::f32(-0.5f));
    model.setClipAttributeValue(ClipAttr::ToneCurveVideoBlackLevel, RefValue::u16(1));
    model.clipAttribute(ClipAttr::HighlightRecovery)->value = RefValue::u16(1);
    model.clipAttribute(ClipAttr::HighlightRecovery)->readOnly = true;
    twref::RefToneCurve first;
    first.gamma = gammas[0];
    first.colorScienceGen = 4;
    first.contrast = 0.75f;
    first.saturation = 1.5f;
    first.videoBlackLevel = 1;
    twref::RefToneCurve last = first;
    last.gamma = gammas[15];
    last.whiteLevel = 1.75f;
    // A curve for a generation the clip does not offer is never asked for.
    twref::RefToneCurve unused = first;
    unused.colorScienceGen = 5;
    model.toneCurves = {first, last, unused};
    // Read-only white balance and ISO are shown as such; an ISO list of 30 fits.
    RefAttribute& iso = *model.frameAttribute(FrameAttr::ISO);
    iso.list.clear();
    for (uint32_t i = 1; i <= 30; ++i) iso.list.push_back(RefValue::u32(100 * i));
    iso.value = RefValue::u32(1600);
    iso.readOnly = true;
    model.frameAttribute(FrameAttr::WhiteBalanceKelvin)->value = RefValue::u32(3200);
    model.frameAttribute(FrameAttr::WhiteBalanceKelvin)->readOnly = true;
    model.frameAttribute(FrameAttr::WhiteBalanceTint)->value = RefValue::s16(-20);
    model.frameAttribute(FrameAttr::WhiteBalanceTint)->readOnly = true;
    model.frameAttribute(FrameAttr::Exposure)->value = RefValue::f32(1.5f);
    twref::RefClipWriter::addEmbeddedLut(model, 5);

    const Bytes b = panelOf("12k.braw", model);
    expectPanelMatches(b, model);
    EXPECT_EQ(getU32(b, kColorScienceCount), 1u);
    EXPECT_EQ(getU32(b, kIsoCount), 30u);
    EXPECT_EQ(b.at(kColorTempIsReadOnly), 1);
    EXPECT_EQ(b.at(kHighlightRecoveryIsReadOnly), 1);
    EXPECT_EQ(b.at(kEmbeddedLutAvailable), 1);
    EXPECT_EQ(getText(b, kAttributes + attr::lutMode, 12), "Embedded");
    EXPECT_EQ(getI32(b, kTimecodeFrames), 10 * 107892);
    EXPECT_EQ(b.at(gammaControls(0, 15)), 1);
    EXPECT_EQ(b.at(gammaControls(1, 0)), 0) << "one colour science leaves the second empty";
    finish();
}

TEST_F(PanelDataTest, ASidecarAndItsLutAreSeen) {
    startHost();
    const RefClipModel model;
    const std::string path = writeClip("sidecar.braw", model);
    twref::RefSidecarSettings settings;
    settings.lut.name = "Look.cube";
    settings.lut.title = "Look";
    settings.lut.size = 2;
    settings.lut.data.assign(2 * 2 * 2 * 3, 0.5f);
    settings.lutMode = "Sidecar";
    ASSERT_TRUE(twref::RefClipWriter::writeSidecar(path, settings));
    twSimFile& file = importClip(path);
    EffectExchange exchange;
    ASSERT_EQ(exchange.send(file), imNoErr);
    const Bytes b = exchange.answerBytes();
    EXPECT_EQ(b.at(kHasSidecar), 1);
    EXPECT_EQ(b.at(kSidecarLutAvailable), 1);
    EXPECT_EQ(b.at(kEmbeddedLutAvailable), 0);
    EXPECT_EQ(getText(b, kAttributes + attr::lutMode, 12), "Sidecar");
    finish();
}

TEST_F(PanelDataTest, ListsOverTheirLengthAndUnusualRangesFailTheProbe) {
    startHost();
    RefClipModel sciences;
    sciences.cameraType = "Three Sciences";
    sciences.clipAttribute(ClipAttr::ColorScienceGen)->list = {RefValue::u16(3), RefValue::u16(4), RefValue::u16(5)};
    expectProbeFails("sciences.braw", sciences,
                     "Color Version list length is superior to the max length allowed. Length : 3");

    RefClipModel gamuts;
    gamuts.clipAttribute(ClipAttr::Gamut)->list = texts(numbered("Gamut", 15));
    expectProbeFails("gamuts.braw", gamuts, "Gamut list length is superior to the max length allowed. Length : 15");

    RefClipModel gammas;
    gammas.clipAttribute(ClipAttr::Gamma)->list = texts(numbered("Gamma", 17));
    expectProbeFails("gammas.braw", gammas, "Gamma list length is superior to the max length allowed. Length : 17");

    RefClipModel readOnlyGamut;
    readOnlyGamut.clipAttribute(ClipAttr::Gamut)->readOnly = true;
    expectProbeFails("readonly-gamut.braw", readOnlyGamut,
                     "Gamut is Read Only for this clip - We didn't know it could happen and that would need to be "
                     "handled !");

    RefClipModel contrast;
    contrast.clipAttribute(ClipAttr::ToneCurveContrast)->minimum = RefValue::f32(0.0f);
    expectProbeFails("contrast.braw", contrast, "BM Constrast Range different than usual : [0 - 1.998]");

    RefClipModel shadows;
    shadows.clipAttribute(ClipAttr::ToneCurveShadows)->readOnly = true;
    expectProbeFails("shadows.braw", shadows,
                     "Shadows is Read Only for this clip - We didn't know it could happen and that would need to be "
                     "handled !");

    RefClipModel noLutMode;
    noLutMode.clipAttribute(ClipAttr::Post3DLUTMode)->supported = false;
    expectProbeFails("lutmode.braw", noLutMode, "Impossible to get LUT Mode from BM");
    finish();
}

TEST_F(PanelDataTest, FailuresOfTheClipObjectFailTheProbe) {
    startHost();
    const std::vector<std::pair<std::string, std::string>> faults = {
        {"Clip.GetCameraType", "BM Get Camera Name error"},
        {"Clip.GetTimecodeForFrame", "BM Get Timecode error"},
        {"Clip.CloneClipProcessingAttributes", "BM Query Clip Processing Attributes error"},
    };
    for (size_t i = 0; i < faults.size(); ++i) {
        RefClipModel model;
        model.addFault(faults[i].first, twref::RefResult::Fail);
        expectProbeFails("clip" + std::to_string(i) + ".braw", model, faults[i].second);
    }

    RefClipModel sidecar;
    sidecar.addFault("Clip.GetSidecarFileAttached", twref::RefResult::Fail);
    expectProbeFails("sidecar-fault.braw", sidecar,
                     "BM GetSidecarFileAttached error : " +
                         qvUtils::getHRESULTerrorMessage(static_cast<int32_t>(twref::RefResult::Fail)).Str());

    RefClipModel list;
    list.addFault("ClipProcessingAttributes.GetClipAttributeList", twref::RefResult::Fail);
    list.faults.back().attribute = ClipAttr::Gamma;
    list.faults.back().skip = 1;
    expectProbeFails("gamma-values.braw", list, "BM Query Gamma List error");
    finish();
}

namespace {

struct InjectedFault {
    const char* method;
    uint32_t attribute;
    uint32_t skip;
    const char* text;
};

RefClipModel withFault(const InjectedFault& fault) {
    RefClipModel model;
    model.addFault(fault.method, twref::RefResult::Fail);
    model.faults.back().attribute = fault.attribute;
    model.faults.back().skip = fault.skip;
    return model;
}

}  // namespace

TEST_F(PanelDataTest, EveryClipQueryTheLibraryRefusesIsShownByItsOwnText) {
    startHost();
    const char* const list = "ClipProcessingAttributes.GetClipAttributeList";
    const char* const value = "ClipProcessingAttributes.GetClipAttribute";
    const char* const range = "ClipProcessingAttributes.GetClipAttributeRange";
    const InjectedFault faults[] = {
        {list, ClipAttr::ColorScienceGen, 0, "BM Query Color Science List length error"},
        {list, ClipAttr::ColorScienceGen, 1, "BM Query Color Science List error"},
        {list, ClipAttr::Gamut, 0, "BM Query Gamut List Length error"},
        {list, ClipAttr::Gamma, 0, "BM Query Gamma List length error"},
        {value, ClipAttr::ColorScienceGen, 0, "Impossible to get ColorScienceGen from BM"},
        {value, ClipAttr::Gamut, 0, "Impossible to get Gamut from BM"},
        {value, ClipAttr::GamutCompressionEnable, 0, "Impossible to get Gamut Compression Enabled from BM"},
        {value, ClipAttr::Gamma, 0, "Impossible to get Gamma from BM"},
        {range, ClipAttr::HighlightRecovery, 0, "Impossible to get Highlight Recovery Range from BM"},
        {value, ClipAttr::HighlightRecovery, 0, "Impossible to get Highlight Recovery from BM"},
        {range, ClipAttr::ToneCurveSaturation, 0, "Impossible to get Saturation Range from BM"},
        {value, ClipAttr::ToneCurveMidpoint, 0, "Impossible to get Midpoint from BM"},
        {range, ClipAttr::ToneCurveVideoBlackLevel, 0, "Impossible to get Video BlackLvl Range from BM"},
        {value, ClipAttr::ToneCurveVideoBlackLevel, 0, "Impossible to get Video BlackLvl from BM"},
    };
    int n = 0;
    for (const InjectedFault& fault : faults) {
        expectProbeFails("fault" + std::to_string(n++) + ".braw", withFault(fault), fault.text);
    }
    finish();
}

TEST_F(PanelDataTest, EveryFrameQueryTheLibraryRefusesFailsTheProbeWithItsTextInTheLog) {
    writeOptions("INFO");
    startHost();
    const InjectedFault faults[] = {
        {"Frame.GetISOList", 0, 0, "BM Query ISO List length error"},
        {"Frame.GetISOList", 0, 1, "BM Query ISO List error"},
        {"Frame.GetClipAttribute", FrameAttr::ISO, 0, "Impossible to get ISO from BM"},
        {"Frame.GetClipAttributeRange", FrameAttr::WhiteBalanceKelvin, 0, "Impossible to get ColorTemp Range from BM"},
        {"Frame.GetClipAttribute", FrameAttr::WhiteBalanceKelvin, 0, "Impossible to get ColorTemp from BM"},
        {"Frame.GetClipAttributeRange", FrameAttr::WhiteBalanceTint, 0, "Impossible to get Tint Range from BM"},
        {"Frame.GetClipAttribute", FrameAttr::WhiteBalanceTint, 0, "Impossible to get Tint from BM"},
        {"Frame.GetClipAttributeRange", FrameAttr::Exposure, 0, "Impossible to get Exposure Range from BM"},
        {"Frame.GetClipAttribute", FrameAttr::Exposure, 0, "Impossible to get Exposure from BM"},
    };
    int n = 0;
    for (const InjectedFault& fault : faults) {
        expectProbeFails("frame-fault" + std::to_string(n++) + ".braw", withFault(fault),
                         "Error happened ! Impossible to call initClipSourceSettingsInitData !");
        EXPECT_NE(logText().find(std::string("(2) getFrameInfosFromBM ") + fault.text), std::string::npos)
            << fault.text;
    }

    RefClipModel kelvin;
    kelvin.frameAttribute(FrameAttr::WhiteBalanceKelvin)->minimum = RefValue::u32(1000);
    expectProbeFails("kelvin.braw", kelvin, "Error happened ! Impossible to call initClipSourceSettingsInitData !");
    EXPECT_NE(logText().find("BM ColorTemp Range different than usual : [1000 - 50000]"), std::string::npos);
    finish();
}

TEST_F(PanelDataTest, FailuresOfTheFirstFrameFailTheProbeAndAreLogged) {
    writeOptions("INFO");
    startHost();
    const std::string generic = "Error happened ! Impossible to call initClipSourceSettingsInitData !";

    RefClipModel tint;
    tint.cameraType = "Narrow Tint";
    tint.frameAttribute(FrameAttr::WhiteBalanceTint)->minimum = RefValue::s16(-100);
    tint.frameAttribute(FrameAttr::WhiteBalanceTint)->maximum = RefValue::s16(100);
    expectProbeFails("tint.braw", tint, generic);
    EXPECT_NE(logText().find("(2) getFrameInfosFromBM BM Tint Range different than usual : [-100 - 100]"),
              std::string::npos);

    RefClipModel exposure;
    exposure.frameAttribute(FrameAttr::Exposure)->readOnly = true;
    expectProbeFails("exposure.braw", exposure, generic);
    EXPECT_NE(logText().find("(2) getFrameInfosFromBM Exposure is Read Only for this clip"), std::string::npos);

    RefClipModel isos;
    isos.frameAttribute(FrameAttr::ISO)->list.assign(31, RefValue::u32(800));
    expectProbeFails("isos.braw", isos, generic);
    EXPECT_NE(logText().find("ISO list length is superior to the max length allowed. Length : 31"), std::string::npos);

    RefClipModel frame;
    frame.addFault("Frame.QueryInterface", twref::RefResult::Fail);
    frame.faults.back().key = "ClipProcessingAttributes";
    expectProbeFails("frame.braw", frame, generic);
    EXPECT_NE(logText().find("Querying interface IID_IBlackmagicRawClipProcessingAttributes failed !"),
              std::string::npos);

    RefClipModel read;
    read.addFault("stage.read", twref::RefResult::Fail, 0);
    expectProbeFails("read.braw", read, generic);
    EXPECT_NE(logText().find("(6) ReadComplete called with error code - "), std::string::npos);
    finish();
}
