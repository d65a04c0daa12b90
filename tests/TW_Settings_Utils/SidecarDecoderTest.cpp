// End to end: a sidecar that the settings library writes, read by the decoder
// library on ReloadSidecarFile, changes the decoded picture exactly as the
// settings say. "As the settings say" is the renderer's picture of the same
// clip whose own values are those settings.

#include "LibraryTestSupport.h"
#include "SettingsFilesSupport.h"

#include "Format/RefLutTools.h"
#include "Render/RefRenderer.h"
#include "TW_Settings_Utils/LutUtility.h"
#include "TW_Settings_Utils/SidecarUtility.h"

#include <cstdlib>
#include <cstdio>

using namespace twtest;
using twref::RefClipModel;
using twref::RefValue;

namespace {

struct SidecarDecodeFixture : ::testing::Test {
    RefLibrary lib;
    TempFolder folder;
    RecordingCallback callback;
};

// The clip's own values as settings: a sidecar of these changes nothing.
twAttributes settingsOfClip(const RefClipModel& model) {
    twAttributes a;
    a.useClipAndFrameAttributes = true;
    a.clip.colorScienceGen = static_cast<uint16_t>(model.clipAttribute(twref::RefClipAttr::ColorScienceGen)->value.number);
    a.frame.kelvin = static_cast<uint32_t>(model.frameAttribute(twref::RefFrameAttr::WhiteBalanceKelvin)->value.number);
    a.frame.tint = static_cast<int16_t>(model.frameAttribute(twref::RefFrameAttr::WhiteBalanceTint)->value.number);
    a.frame.iso = static_cast<uint32_t>(model.frameAttribute(twref::RefFrameAttr::ISO)->value.number);
    a.frame.exposure = 0.0f;
    return a;
}

// The settings as the clip's own values.
RefClipModel withSettings(RefClipModel model, const twAttributes& s) {
    using namespace twref;
    auto clip = [&](uint32_t id, const RefValue& v) { model.clipAttribute(id)->value = v; };
    auto frame = [&](uint32_t id, const RefValue& v) { model.frameAttribute(id)->value = v; };
    const twGammaControlsValues& curve = s.clip.gammaControls;
    clip(RefClipAttr::ToneCurveSaturation, RefValue::f32(curve.saturation));
    clip(RefClipAttr::ToneCurveContrast, RefValue::f32(curve.contrast));
    clip(RefClipAttr::ToneCurveMidpoint, RefValue::f32(curve.midpoint));
    clip(RefClipAttr::ToneCurveHighlights, RefValue::f32(curve.highlights));
    clip(RefClipAttr::ToneCurveShadows, RefValue::f32(curve.shadows));
    clip(RefClipAttr::ToneCurveWhiteLevel, RefValue::f32(curve.whiteLevel));
    clip(RefClipAttr::ToneCurveBlackLevel, RefValue::f32(curve.blackLevel));
    clip(RefClipAttr::ToneCurveVideoBlackLevel, RefValue::u16(curve.useVideoBlackLevel ? 1 : 0));
    clip(RefClipAttr::Gamma, RefValue::string(s.clip.gamma));
    clip(RefClipAttr::Gamut, RefValue::string(s.clip.gamut));
    clip(RefClipAttr::GamutCompressionEnable, RefValue::u16(s.clip.gamutCompression ? 1 : 0));
    clip(RefClipAttr::ColorScienceGen, RefValue::u16(s.clip.colorScienceGen));
    clip(RefClipAttr::HighlightRecovery, RefValue::u16(s.clip.highlightRecovery ? 1 : 0));
    clip(RefClipAttr::Post3DLUTMode, RefValue::string(s.clip.lutMode));
    frame(RefFrameAttr::Exposure, RefValue::f32(s.frame.exposure));
    frame(RefFrameAttr::WhiteBalanceKelvin, RefValue::u32(s.frame.kelvin));
    frame(RefFrameAttr::WhiteBalanceTint, RefValue::s16(s.frame.tint));
    frame(RefFrameAttr::ISO, RefValue::u32(s.frame.iso));
    return model;
}

// The clip `asShot` decoded with the current values of `current`: ISO and
// white balance act relative to what the camera shot.
std::vector<uint8_t> rendered(const RefClipModel& current, const RefClipModel& asShot, const twref::RefLut* lut) {
    const twref::RefRenderSettings settings =
        twref::RefRenderSettings::fromAttributes(current.clipAttributes, current.frameAttributes, asShot);
    std::vector<uint8_t> out(twref::RefRenderer::resourceSizeBytes(twref::RefResourceFormat::RGBAU8, 256, 144));
    twref::RefRenderTarget target;
    target.data = out.data();
    target.sizeBytes = out.size();
    target.width = 256;
    target.height = 144;
    target.format = twref::RefResourceFormat::RGBAU8;
    twref::RefRenderer::render(0, settings, lut, target);
    return out;
}

// Frame 0 as a caller decodes it: with the clip's processing attributes of now.
std::vector<uint8_t> decoded(FlowDriver& driver, IBlackmagicRawClip* clip) {
    Held<IBlackmagicRawClipProcessingAttributes> attributes;
    EXPECT_EQ(clip->CloneClipProcessingAttributes(attributes.out()), S_OK);
    FlowRequest request;
    request.clip = clip;
    request.clipAttributes = attributes.get();
    driver.run(request);
    EXPECT_EQ(request.processResult, S_OK);
    std::vector<uint8_t> pixels = request.pixels;
    driver.releaseBuffers(request);
    return pixels;
}

// The LUT text goes through six, then ten decimals and the library's float
// reading: one step of 8 bits is the most that may differ.
int largestDifference(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
    if (a.size() != b.size()) return 256;
    int largest = 0;
    for (size_t i = 0; i < a.size(); ++i) largest = std::max(largest, std::abs(int(a[i]) - int(b[i])));
    return largest;
}

}  // namespace

TEST_F(SidecarDecodeFixture, EachSettingShowsInThePictureAsItSays) {
    const RefClipModel model = smallClip(2);
    const std::string clipPath = writeClip(folder, "A001.braw", model);
    const std::string sidecar = folder.join("A001.sidecar");
    const std::string cube = folder.writeFile(
        "Warm.cube", twref::RefLutTools::toCube(twref::RefLutTools::make(twref::RefLutKind::Warm, 17, "", "Warm")));
    twref::RefLut lut;
    std::string error;
    ASSERT_TRUE(twref::RefLutTools::parseCube(TempFolder::readFile(cube), lut, error)) << error;

    struct Change {
        const char* what;
        std::function<void(twAttributes&)> apply;
        bool withLut;
    };
    const std::vector<Change> changes = {
        {"ISO", [](twAttributes& s) { s.frame.iso = 1600; }, false},
        {"white balance", [](twAttributes& s) { s.frame.kelvin = 3200; s.frame.tint = 40; }, false},
        {"exposure", [](twAttributes& s) { s.frame.exposure = -1.25f; }, false},
        {"gamma", [](twAttributes& s) { twCopyFixedText(s.clip.gamma, 64, "Blackmagic Design Video"); }, false},
        {"tone curve and its _leve keys",
         [](twAttributes& s) {
             twCopyFixedText(s.clip.gamma, 64, TW_CUSTOM_GAMMA_NAME);
             s.clip.gammaControls.contrast = 1.4f;
             s.clip.gammaControls.saturation = 1.6f;
             s.clip.gammaControls.whiteLevel = 0.8f;
             s.clip.gammaControls.blackLevel = 0.05f;
             s.clip.gammaControls.useVideoBlackLevel = true;
         },
         false},
        {"gamut", [](twAttributes& s) { twCopyFixedText(s.clip.gamut, 64, "Rec.709"); s.clip.gamutCompression = true; },
         false},
        {"highlight recovery and colour science",
         [](twAttributes& s) { s.clip.highlightRecovery = true; s.clip.colorScienceGen = 4; }, false},
        {"LUT", [](twAttributes& s) { twCopyFixedText(s.clip.lutMode, 12, "Sidecar"); }, true},
    };
    {
        CodecSession session(lib, &callback);
        FlowDriver driver(session.codec.get(), callback);
        Held<IBlackmagicRawClip> clip;
        ASSERT_EQ(session.open(clipPath, clip), S_OK);
        const std::vector<uint8_t> asShot = decoded(driver, clip.get());
        ASSERT_EQ(asShot, rendered(model, model, nullptr));

        for (const Change& change : changes) {
            SCOPED_TRACE(change.what);
            std::remove(sidecar.c_str());
            // A key of another tool travels along and is no trouble for the library.
            folder.writeFile("A001.sidecar", R"({"camera_notes": "kept", "reel": 3})");
            if (change.withLut) {
                ASSERT_TRUE(LutUtility::addLUTToSidecar(sidecar, cube).isOk());
            }
            twAttributes settings = settingsOfClip(model);
            change.apply(settings);
            ASSERT_EQ(SidecarUtility::writeSidecarFromPrefs(sidecar, settings), SidecarUtility::SIDECAR_OK);

            callback.clearSidecarIssues();
            ASSERT_EQ(clip->ReloadSidecarFile(), S_OK);
            bool attached = false;
            ASSERT_EQ(clip->GetSidecarFileAttached(&attached), S_OK);
            EXPECT_TRUE(attached);
            for (const auto& issue : callback.sidecarIssues()) ADD_FAILURE() << issue.line << ": " << issue.info;

            const std::vector<uint8_t> picture = decoded(driver, clip.get());
            EXPECT_NE(picture, asShot);
            EXPECT_LE(largestDifference(picture, rendered(withSettings(model, settings), model, change.withLut ? &lut : nullptr)),
                      change.withLut ? 1 : 0);
        }

        // Back to the clip's own values: the picture as shot again.
        std::remove(sidecar.c_str());
        ASSERT_EQ(SidecarUtility::writeSidecarFromPrefs(sidecar, settingsOfClip(model)), SidecarUtility::SIDECAR_OK);
        ASSERT_EQ(clip->ReloadSidecarFile(), S_OK);
        EXPECT_EQ(decoded(driver, clip.get()), asShot);
    }
    EXPECT_NO_LIVE_OBJECTS(lib);
}
