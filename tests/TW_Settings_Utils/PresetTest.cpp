// Presets: partial settings that round-trip through their file for every flag
// pattern, apply only what is active, and refuse bad files without harm.

#include "ProductConfig.h"
#include "SettingsFilesSupport.h"
#include "TempFolder.h"

#include "Common/TW_Debug_Options.h"
#include "Manager/twSettingsVocabulary.h"
#include "TW_Settings_Utils/TW_Presets.h"

#include <gtest/gtest.h>
#include <rapidjson/document.h>

using namespace twtest;

namespace {

std::vector<bool> flagsOf(uint32_t bits) {
    std::vector<bool> flags(BRAW_SETTINGS_COUNT);
    for (size_t i = 0; i < flags.size(); ++i) flags[i] = (bits >> i) & 1u;
    return flags;
}

TW_Preset presetWith(const twAttributes& s, WB_Preset wb, uint32_t bits) {
    TW_Preset preset;
    preset.setValues(s.clip, s.frame, wb, flagsOf(bits));
    return preset;
}

}  // namespace

TEST(Preset, EveryFlagPatternSurvivesItsFile) {
    TempFolder folder;
    const std::string path = folder.join("p.twPreset");
    std::vector<uint32_t> patterns = {0u, 0xFFFFFu};
    for (uint32_t bit = 0; bit < BRAW_SETTINGS_COUNT; ++bit) {
        patterns.push_back(1u << bit);
        patterns.push_back(0xFFFFFu & ~(1u << bit));
    }
    for (uint32_t seed = 1; seed < 30; ++seed) patterns.push_back((seed * 2654435761u >> 7) & 0xFFFFFu);

    int n = 0;
    for (uint32_t bits : patterns) {
        ++n;
        const twAttributes s = variedSettings(n % kSettingsVariants);
        const WB_Preset wb = static_cast<WB_Preset>(n % 9);  // 8: none
        TW_Preset written = presetWith(s, wb, bits);
        if (n % 2) written.setName("Night \xE2\x98\xBE " + std::to_string(n));
        SCOPED_TRACE(::testing::Message() << "flags " << std::hex << bits << " wb " << std::dec << wb);
        ASSERT_TRUE(written.save(path).isOk());

        TW_Preset read;
        ASSERT_TRUE(read.load(path).isOk());
        EXPECT_TRUE(read.m_isLoaded);
        EXPECT_EQ(settingsDifference(written.m_clipAttributes, written.m_frameAttributes, read.m_clipAttributes,
                                     read.m_frameAttributes),
                  "");
        EXPECT_EQ(read.m_wbPreset, wb);
        EXPECT_EQ(read.m_hasName, written.m_hasName);
        EXPECT_EQ(read.m_name, written.m_name);
        // "LUT enabled" has no key in the file; the white balance preset's flag
        // travels with its text, which a preset without one doesn't write.
        std::vector<bool> expected = written.m_active;
        expected[BRAW_SETTING_LUT_ENABLED] = false;
        if (wb == WB_PRESET_NONE) expected[BRAW_SETTING_WB_PRESET] = false;
        EXPECT_EQ(read.m_active, expected);
    }
}

TEST(Preset, TheFileItWrites) {
    TempFolder folder;
    TW_Preset preset = presetWith(variedSettings(0), WB_PRESET_FLUORESCENT, 1u << BRAW_SETTING_ISO);
    preset.setName("Dusk");
    ASSERT_TRUE(preset.save(folder.join("a.twPreset")).isOk());
    rapidjson::Document doc;
    doc.Parse(TempFolder::readFile(folder.join("a.twPreset")).c_str());
    ASSERT_TRUE(doc.IsObject());
    std::vector<std::string> names;
    for (auto m = doc.MemberBegin(); m != doc.MemberEnd(); ++m) names.emplace_back(m->name.GetString());
    ASSERT_EQ(names.size(), 1u + 18 * 2 + 2);
    EXPECT_EQ(names[0], "tw_presetName");
    EXPECT_EQ(names[1], "tw_tone_curve_saturation_active");
    EXPECT_EQ(names[2], "tone_curve_saturation");
    EXPECT_EQ(names[names.size() - 4], "tw_iso_active");
    EXPECT_EQ(names[names.size() - 2], "tw_wbPreset_active");
    EXPECT_STREQ(doc["tw_wbPreset"].GetString(), "Fluoresent");
    EXPECT_EQ(doc["tw_iso_active"].GetUint(), 1u);
    EXPECT_EQ(doc["tw_exposure_active"].GetUint(), 0u);
    EXPECT_TRUE(doc["iso"].HasMember("01:02:03:04"));

    // No white balance preset, no name: neither key.
    TW_Preset bare = presetWith(variedSettings(0), WB_PRESET_NONE, 0);
    ASSERT_TRUE(bare.save(folder.join("b.twPreset")).isOk());
    doc.Parse(TempFolder::readFile(folder.join("b.twPreset")).c_str());
    EXPECT_FALSE(doc.HasMember("tw_wbPreset"));
    EXPECT_FALSE(doc.HasMember("tw_presetName"));
}

TEST(Preset, OnlyActiveSettingsApply) {
    twAttributes mine = variedSettings(0);  // custom gamma
    twCopyFixedText(mine.clip.gamma, 64, TW_CUSTOM_GAMMA_NAME);
    const twAttributes target;
    auto apply = [&](uint32_t bits, WB_Preset presetWb, const twAttributes& start = twAttributes()) {
        twAttributes out = start;
        WB_Preset wb = WB_PRESET_NONE;
        presetWith(mine, presetWb, bits).getValues(out.clip, out.frame, wb);
        return std::make_pair(out, wb);
    };

    // Nothing active: nothing changes.
    auto [none, noneWb] = apply(0, WB_PRESET_DAYLIGHT);
    EXPECT_EQ(settingsDifference(none.clip, none.frame, target.clip, target.frame), "");
    EXPECT_EQ(noneWb, WB_PRESET_NONE);

    // Everything active: all but gamut compression.
    auto [all, allWb] = apply(0xFFFFFu, WB_PRESET_CUSTOM);
    twAttributes expected = mine;
    expected.clip.gamutCompression = target.clip.gamutCompression;
    expected.frame.timecode[0] = target.frame.timecode[0];
    EXPECT_EQ(settingsDifference(all.clip, all.frame, expected.clip, expected.frame), "");
    EXPECT_EQ(allWb, WB_PRESET_CUSTOM);

    // A named white balance brings its own kelvin and tint.
    const uint32_t wbBits = (1u << BRAW_SETTING_WB_PRESET) | (1u << BRAW_SETTING_COLOR_TEMP) | (1u << BRAW_SETTING_TINT);
    auto [daylight, daylightWb] = apply(wbBits, WB_PRESET_DAYLIGHT);
    EXPECT_EQ(daylightWb, WB_PRESET_DAYLIGHT);
    EXPECT_EQ(daylight.frame.kelvin, target.frame.kelvin);
    EXPECT_EQ(daylight.frame.tint, target.frame.tint);
    auto [custom, customWb] = apply(wbBits, WB_PRESET_CUSTOM);
    EXPECT_EQ(custom.frame.kelvin, mine.frame.kelvin);
    EXPECT_EQ(custom.frame.tint, mine.frame.tint);
    auto [noPreset, noPresetWb] = apply(wbBits & ~(1u << BRAW_SETTING_WB_PRESET), WB_PRESET_DAYLIGHT);
    EXPECT_EQ(noPresetWb, WB_PRESET_NONE);
    EXPECT_EQ(noPreset.frame.kelvin, mine.frame.kelvin);

    // The tone curve goes with the gamma only when that gamma is the custom one;
    // without the gamma it goes under any gamma.
    const uint32_t curveBits = (1u << BRAW_SETTING_GAMMA) | (1u << BRAW_SETTING_SATURATION);
    EXPECT_EQ(apply(curveBits, WB_PRESET_NONE).first.clip.gammaControls.saturation, mine.clip.gammaControls.saturation);
    twCopyFixedText(mine.clip.gamma, 64, "Linear");
    auto [linear, unusedWb] = apply(curveBits, WB_PRESET_NONE);
    EXPECT_STREQ(linear.clip.gamma, "Linear");
    EXPECT_EQ(linear.clip.gammaControls.saturation, target.clip.gammaControls.saturation);
    EXPECT_EQ(apply(1u << BRAW_SETTING_SATURATION, WB_PRESET_NONE).first.clip.gammaControls.saturation,
              mine.clip.gammaControls.saturation);

    TW_Preset preset;
    EXPECT_THROW(preset.setValues(mine.clip, mine.frame, WB_PRESET_NONE, std::vector<bool>(19)), std::runtime_error);
    EXPECT_FALSE(preset.m_isLoaded);
}

TEST(Preset, BadFilesAreRefusedAndTheValuesStay) {
    TempFolder folder;
    TW_Preset preset = presetWith(variedSettings(2), WB_PRESET_SHADE, 0xFFFFFu);
    const TW_Preset before = preset;
    auto unchanged = [&] {
        return settingsDifference(preset.m_clipAttributes, preset.m_frameAttributes, before.m_clipAttributes,
                                  before.m_frameAttributes) == "" &&
               preset.m_wbPreset == before.m_wbPreset && preset.m_active == before.m_active;
    };

    QvResult result = preset.load(folder.join("missing.twPreset"));
    EXPECT_EQ(result.toString(), "Preset file does not exist - You need to save it first");
    EXPECT_TRUE(result.hasWarning);
    EXPECT_FALSE(preset.m_isLoaded);
    EXPECT_TRUE(unchanged());

    for (const char* bad : {"{\"iso\": ", "", "[1]"}) {
        preset.m_isLoaded = true;
        EXPECT_EQ(preset.load(folder.writeFile("bad.twPreset", bad)).toString(), "Json Syntax of Preset is not good");
        EXPECT_FALSE(preset.m_isLoaded);
        EXPECT_TRUE(unchanged());
    }
    EXPECT_FALSE(preset.load(folder.makeFolder("dir.twPreset")).isOk());

    for (const char* wrong : {R"({"iso": "800"})", R"({"tw_wbPreset": 3})", R"({"viewing_gamma": 1})",
                              R"({"tone_curve_contrast": {"a": 1}})"}) {
        SCOPED_TRACE(wrong);
        preset.m_isLoaded = true;
        EXPECT_EQ(preset.load(folder.writeFile("w.twPreset", wrong)).toString(),
                  "This Preset File has irregularities - You should considere re-saving it");
        EXPECT_TRUE(unchanged());
    }

    // Missing keys are inactive, extra keys are ignored, an unknown white
    // balance text is no preset.
    ASSERT_TRUE(preset.load(folder.writeFile("p.twPreset", R"({"tw_presetName": "", "iso": 1250, "zoom": [1, 2],
                                                               "tw_wbPreset": "Moonlight", "tw_mystery_active": 1})"))
                    .isOk());
    EXPECT_EQ(preset.m_frameAttributes.iso, 1250u);
    EXPECT_EQ(preset.m_wbPreset, WB_PRESET_NONE);
    std::vector<bool> expected(BRAW_SETTINGS_COUNT, false);
    expected[BRAW_SETTING_ISO] = true;
    expected[BRAW_SETTING_WB_PRESET] = true;
    EXPECT_EQ(preset.m_active, expected);
    EXPECT_FALSE(preset.m_hasName);
    ASSERT_TRUE(preset.load(folder.writeFile("q.twPreset", "{}")).isOk());
    EXPECT_EQ(preset.m_wbPreset, WB_PRESET_NONE);
}

// The names the options file keeps, in the form the panels show them.
TEST(Preset, NamesAsTheOptionsFileShowsThem) {
    UseProductConfig();
    ScopedTestRoots roots;
    TW_Preset preset;
    preset.m_index = 0;
    EXPECT_EQ(preset.getDisplayedName(), "#1 - No Preset");
    preset.m_isLoaded = true;
    EXPECT_EQ(preset.getDisplayedName(), "#1 - Untitled Preset");
    preset.setName("");
    EXPECT_FALSE(preset.m_hasName);

    TWDebugOptions& options = TWDebugOptions::getDebugOptions();
    options.reset();
    options.presetsNames[2] = "Sunset";
    TW_Preset slot;
    ASSERT_TRUE(TW_Preset::fromSlot(2, slot).isOk());
    EXPECT_EQ(slot.m_name, "Sunset");
    EXPECT_NE(slot.m_filePath.Str().find("/Library/Application Support/Qervane/Tarnwick/TW_Preset/"), std::string::npos);
    slot.setValues(twClipAttributes(), twFrameAttributes(), WB_PRESET_NONE, flagsOf(1u << BRAW_SETTING_ISO));
    ASSERT_TRUE(slot.save().isOk());
    TW_Preset again;
    ASSERT_TRUE(TW_Preset::fromSlot(2, again).isOk());
    ASSERT_TRUE(again.load().isOk());
    EXPECT_EQ(again.getDisplayedName(), options.getPresetNamesWithPrefix()[2]);
    EXPECT_EQ(again.getDisplayedName(), "#3 - Sunset");

    TW_Preset unnamed;
    ASSERT_TRUE(TW_Preset::fromSlot(5, unnamed).isOk());
    EXPECT_FALSE(unnamed.m_hasName);
    EXPECT_EQ(unnamed.getDisplayedName(), "#6 - No Preset");
}
