#include "Manager/twAttributes.h"
#include "Manager/twSettingsVocabulary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace {

const RAW_Setting_Info& info(BRAW_Settings s) { return s_brawSettingsInfosMap.at(s); }

size_t indexOf(const std::vector<qvUtf8String>& list, const char* text) {
    for (size_t i = 0; i < list.size(); ++i)
        if (list[i].Str() == text) return i;
    return list.size();
}

std::vector<std::string> texts(const std::vector<qvUtf8String>& list) {
    std::vector<std::string> out;
    for (const qvUtf8String& t : list) out.push_back(t.Str());
    return out;
}

}  // namespace

// The numbers, names and order are a file format (the active flags of sidecars
// and presets, the values of preset files): every entry and list is pinned
// whole, in order.
TEST(Vocabulary, EverySettingAndEveryListInFullAndInOrder) {
    const std::vector<std::string> colorScience = {"Version 4", "Version 5"};
    const std::vector<std::string> gamut = {
        "Blackmagic Design", "Rec.709",           "Rec.2020",           "DCI-P3 D65",
        "DCI-P3 Theater",    "ACES AP0",          "ACES AP1",           "CIE 1931 XYZ D65",
        "CIE 1931 XYZ D50 (PCS)", "V-Gamut",      "Canon Cinema Gamut", "ARRI Wide Gamut 3",
        "DaVinci Wide Gamut", "ARRI Wide Gamut 4"};
    const std::vector<std::string> iso = {"200", "400", "800", "1200", "12000"};
    const std::vector<std::string> lut = {"Embedded", "Sidecar"};
    const std::vector<std::string> whiteBalance = {"AsShot",   "Daylight",   "Cloudy", "Shade",
                                                   "Tungsten", "Fluoresent", "Flash",  "Custom"};
    const std::vector<std::string> gamma = {"Blackmagic Design Film",
                                            "Blackmagic Design Video",
                                            "Blackmagic Design Extended Video",
                                            "Blackmagic Design Custom",
                                            "Linear",
                                            "Rec.2100 Hybrid Log Gamma",
                                            "Rec.2100 ST2084 (PQ)",
                                            "ACEScct",
                                            "Rec.709",
                                            "V-Log",
                                            "Canon Log2",
                                            "N-Log",
                                            "ARRI LogC3",
                                            "DaVinci Intermediate",
                                            "L-Log",
                                            "ARRI LogC4"};
    EXPECT_EQ(texts(s_brawColorScienceChoicesStr), colorScience);
    EXPECT_EQ(s_brawColorScienceIndexToIntValue, (std::vector<uint16_t>{4, 5}));
    EXPECT_EQ(texts(s_brawGamutChoicesStr), gamut);
    EXPECT_EQ(texts(s_brawISOChoicesStr), iso);
    EXPECT_EQ(texts(s_brawLUTChoicesStr), lut);
    EXPECT_EQ(texts(s_brawWBChoicesStr), whiteBalance);
    EXPECT_EQ(texts(s_brawGammaChoicesStr), gamma);
    std::vector<std::pair<int32_t, std::string>> decodeUsing;
    for (const auto& entry : s_brawDecodeUsingToStrMap) decodeUsing.emplace_back(entry.first, entry.second.Str());
    EXPECT_EQ(decodeUsing, (std::vector<std::pair<int32_t, std::string>>{
                               {0, "BRAW Default"}, {1, "Camera Metadata"}, {2, "Custom A"}, {3, "Custom B"}}));

    struct Row {
        const char* name;
        int32_t kind;
        double defaultValue, minValue, maxValue;
        int32_t valueClass;
        const std::vector<std::string>* choices;
        double auxA, auxB;
    };
    const std::vector<std::string> none;
    const Row rows[] = {
        {"Color Science", 2, 0, 0, 0, 0, &colorScience, 0, 0.5},
        {"Color Space (Gamut)", 2, 0, 0, 0, 0, &gamut, 0, 0.5},
        {"Gamut Compression", 1, 0, 0, 0, 0, &none, 0, 0.5},
        {"ISO", 2, 0, 0, 0, 0, &iso, 0, 0.5},
        {"Exposure", 0, 0, -5, 5, 1, &none, 0, 5},
        {"Highlight Recovery", 1, 0, 0, 0, 0, &none, 0, 0.5},
        {"LUT Enabled", 1, 0, 0, 0, 0, &none, 0, 0.5},
        {"LUT Mode", 2, 0, 0, 0, 0, &lut, 0, 0.5},
        {"White Balance Preset", 2, 0, 0, 0, 0, &whiteBalance, 0, 0.5},
        {"Color Temp", 0, 5500, 2000, 50000, 2, &none, 8000, 0.8},
        {"Tint", 0, 10, -150, 150, 0, &none, 0, 5},
        {"Gamma", 2, 0, 0, 0, 0, &gamma, 0, 0.5},
        {"Saturation", 0, 1, 0, 4, 1, &none, 0, 5},
        {"Contrast", 0, 0.5, 0.002f, 1.998f, 1, &none, 0, 5},
        {"Midpoint", 0, 0.41f, 0, 1, 1, &none, 0, 5},
        {"Highlights", 0, 1, 0, 1.998f, 1, &none, 0, 5},
        {"Shadows", 0, 1, 0.002f, 2, 1, &none, 0, 5},
        {"White Level", 0, 1, 0, 2, 1, &none, 0, 5},
        {"Black Level", 0, 0, -1, 1, 1, &none, 0, 5},
        {"Use Video Black Level", 1, 0, 0, 0, 0, &none, 0, 0.5},
    };
    ASSERT_EQ(s_brawSettingsInfosMap.size(), std::size(rows));
    ASSERT_EQ(BRAW_SETTINGS_COUNT, std::size(rows));
    int number = 0;
    for (const auto& [setting, i] : s_brawSettingsInfosMap) {
        ASSERT_EQ(static_cast<int>(setting), number);
        const Row& r = rows[number++];
        EXPECT_EQ(i.name.Str(), r.name) << number - 1;
        EXPECT_EQ(i.kind, r.kind) << r.name;
        EXPECT_EQ(i.defaultValue, r.defaultValue) << r.name;
        EXPECT_EQ(i.minValue, r.minValue) << r.name;
        EXPECT_EQ(i.maxValue, r.maxValue) << r.name;
        EXPECT_EQ(i.valueClass, r.valueClass) << r.name;
        EXPECT_EQ(texts(i.choices), *r.choices) << r.name;
        EXPECT_EQ(i.auxA, r.auxA) << r.name;
        EXPECT_EQ(i.auxB, r.auxB) << r.name;
    }
    EXPECT_EQ(static_cast<int>(BRAW_SETTING_WB_PRESET), 8);
    EXPECT_EQ(static_cast<int>(BRAW_SETTING_GAMMA), 11);
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
