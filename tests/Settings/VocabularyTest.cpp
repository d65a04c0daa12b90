#include "Manager/twAttributes.h"
#include "Manager/twSettingsVocabulary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

const RAW_Setting_Info& info(BRAW_Settings s) { return s_brawSettingsInfosMap.at(s); }

size_t indexOf(const std::vector<qvUtf8String>& list, const char* text) {
    for (size_t i = 0; i < list.size(); ++i)
        if (list[i].Str() == text) return i;
    return list.size();
}

}  // namespace

TEST(Vocabulary, OneEntryPerSettingNumber) {
    ASSERT_EQ(s_brawSettingsInfosMap.size(), BRAW_SETTINGS_COUNT);
    int expected = 0;
    for (const auto& entry : s_brawSettingsInfosMap) EXPECT_EQ(static_cast<int>(entry.first), expected++);

    // The numbers are a file format (active flags of sidecars and presets).
    EXPECT_EQ(info(BRAW_SETTING_WB_PRESET).name.Str(), "White Balance Preset");
    EXPECT_EQ(info(BRAW_SETTING_GAMMA).name.Str(), "Gamma");
    EXPECT_EQ(info(BRAW_SETTING_ISO).name.Str(), "ISO");
    EXPECT_EQ(info(BRAW_SETTING_USE_VIDEO_BLACK_LEVEL).name.Str(), "Use Video Black Level");
    EXPECT_EQ(info(BRAW_SETTING_GAMUT).name.Str(), "Color Space (Gamut)");

    for (const auto& entry : s_brawSettingsInfosMap) {
        const RAW_Setting_Info& i = entry.second;
        // Only lists have choices, and every list has some.
        EXPECT_EQ(i.kind == RAW_SETTING_KIND_LIST, !i.choices.empty()) << i.name.Str();
        if (i.kind == RAW_SETTING_KIND_NUMBER) {
            EXPECT_LE(i.minValue, i.defaultValue) << i.name.Str();
            EXPECT_LE(i.defaultValue, i.maxValue) << i.name.Str();
        }
    }
    EXPECT_EQ(info(BRAW_SETTING_WB_PRESET).choices.size(), s_brawWBChoicesStr.size());
    EXPECT_EQ(info(BRAW_SETTING_GAMMA).choices.size(), 16u);
    EXPECT_EQ(info(BRAW_SETTING_GAMUT).choices.size(), 14u);
    // Preset files test for this index, and read "12000" as it stands.
    EXPECT_EQ(indexOf(s_brawWBChoicesStr, "Custom"), 7u);
    EXPECT_EQ(s_brawISOChoicesStr.back().Str(), "12000");
    EXPECT_EQ(s_brawDecodeUsingToStrMap.size(), 4u);
}

TEST(Vocabulary, SingleFloatLimitsAreWidenedExactly) {
    EXPECT_EQ(info(BRAW_SETTING_MIDPOINT).defaultValue, static_cast<double>(0.41f));
    EXPECT_NE(info(BRAW_SETTING_MIDPOINT).defaultValue, 0.41);
    EXPECT_EQ(info(BRAW_SETTING_CONTRAST).minValue, static_cast<double>(0.002f));
    EXPECT_EQ(info(BRAW_SETTING_CONTRAST).maxValue, static_cast<double>(1.998f));
    EXPECT_EQ(info(BRAW_SETTING_HIGHLIGHTS).maxValue, static_cast<double>(1.998f));
    EXPECT_EQ(info(BRAW_SETTING_SHADOWS).minValue, static_cast<double>(0.002f));
}

TEST(Vocabulary, RecordDefaultsAreChoicesAndDefaultsOfTheTable) {
    const twClipAttributes clip;
    const twFrameAttributes frame;
    const twGammaControlsValues& curve = clip.gammaControls;

    // A default record must show as a valid choice in a panel.
    EXPECT_EQ(indexOf(s_brawGamutChoicesStr, clip.gamut), 0u);
    EXPECT_EQ(indexOf(s_brawGammaChoicesStr, clip.gamma), 0u);
    EXPECT_LT(indexOf(s_brawGammaChoicesStr, TW_CUSTOM_GAMMA_NAME), s_brawGammaChoicesStr.size());
    EXPECT_LT(indexOf(s_brawISOChoicesStr, std::to_string(frame.iso).c_str()), s_brawISOChoicesStr.size());
    ASSERT_EQ(s_brawColorScienceIndexToIntValue.size(), s_brawColorScienceChoicesStr.size());
    for (size_t i = 0; i < s_brawColorScienceChoicesStr.size(); ++i)
        EXPECT_EQ(s_brawColorScienceChoicesStr[i].Str(), "Version " + std::to_string(s_brawColorScienceIndexToIntValue[i]));
    EXPECT_NE(std::find(s_brawColorScienceIndexToIntValue.begin(), s_brawColorScienceIndexToIntValue.end(),
                        clip.colorScienceGen),
              s_brawColorScienceIndexToIntValue.end());

    // Names must fit the records' fixed fields.
    for (const auto* list : {&s_brawGamutChoicesStr, &s_brawGammaChoicesStr})
        for (const qvUtf8String& name : *list) EXPECT_LT(name.Size(), 64u) << name.Str();
    for (const qvUtf8String& mode : s_brawLUTChoicesStr) EXPECT_LT(mode.Size(), 12u);

    EXPECT_EQ(static_cast<float>(info(BRAW_SETTING_SATURATION).defaultValue), curve.saturation);
    EXPECT_EQ(static_cast<float>(info(BRAW_SETTING_CONTRAST).defaultValue), curve.contrast);
    EXPECT_EQ(static_cast<float>(info(BRAW_SETTING_MIDPOINT).defaultValue), curve.midpoint);
    EXPECT_EQ(static_cast<float>(info(BRAW_SETTING_HIGHLIGHTS).defaultValue), curve.highlights);
    EXPECT_EQ(static_cast<float>(info(BRAW_SETTING_SHADOWS).defaultValue), curve.shadows);
    EXPECT_EQ(static_cast<float>(info(BRAW_SETTING_WHITE_LEVEL).defaultValue), curve.whiteLevel);
    EXPECT_EQ(static_cast<float>(info(BRAW_SETTING_BLACK_LEVEL).defaultValue), curve.blackLevel);
    EXPECT_EQ(info(BRAW_SETTING_COLOR_TEMP).defaultValue, frame.kelvin);
    EXPECT_EQ(info(BRAW_SETTING_TINT).defaultValue, frame.tint);
    EXPECT_EQ(info(BRAW_SETTING_EXPOSURE).defaultValue, frame.exposure);
}
