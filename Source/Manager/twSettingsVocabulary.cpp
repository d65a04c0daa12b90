#include "Manager/twSettingsVocabulary.h"

const std::vector<qvUtf8String> s_brawColorScienceChoicesStr = {"Version 4", "Version 5"};
const std::vector<uint16_t> s_brawColorScienceIndexToIntValue = {4, 5};

const std::vector<qvUtf8String> s_brawGamutChoicesStr = {
    "Blackmagic Design",
    "Rec.709",
    "Rec.2020",
    "DCI-P3 D65",
    "DCI-P3 Theater",
    "ACES AP0",
    "ACES AP1",
    "CIE 1931 XYZ D65",
    "CIE 1931 XYZ D50 (PCS)",
    "V-Gamut",
    "Canon Cinema Gamut",
    "ARRI Wide Gamut 3",
    "DaVinci Wide Gamut",
    "ARRI Wide Gamut 4",
};

const std::vector<qvUtf8String> s_brawISOChoicesStr = {"200", "400", "800", "1200", "12000"};

const std::vector<qvUtf8String> s_brawLUTChoicesStr = {"Embedded", "Sidecar"};

const std::vector<qvUtf8String> s_brawWBChoicesStr = {"AsShot",   "Daylight",   "Cloudy", "Shade",
                                                      "Tungsten", "Fluoresent", "Flash",  "Custom"};

const std::vector<qvUtf8String> s_brawGammaChoicesStr = {
    "Blackmagic Design Film",
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
    "ARRI LogC4",
};

const std::map<int32_t, qvUtf8String> s_brawDecodeUsingToStrMap = {
    {0, "BRAW Default"},
    {1, "Camera Metadata"},
    {2, "Custom A"},
    {3, "Custom B"},
};

namespace {

// The panels' limits were single-precision numbers; keep the exact widened values.
constexpr double kF0_41 = static_cast<double>(0.41f);
constexpr double kF0_002 = static_cast<double>(0.002f);
constexpr double kF1_998 = static_cast<double>(1.998f);

RAW_Setting_Info list(const char* name, const std::vector<qvUtf8String>& choices) {
    return {name, RAW_SETTING_KIND_LIST, 0, 0, 0, 0, choices, 0, 0.5};
}

RAW_Setting_Info toggle(const char* name) { return {name, RAW_SETTING_KIND_SWITCH, 0, 0, 0, 0, {}, 0, 0.5}; }

RAW_Setting_Info number(const char* name, double def, double min, double max, int32_t valueClass, double auxA,
                        double auxB) {
    return {name, RAW_SETTING_KIND_NUMBER, def, min, max, valueClass, {}, auxA, auxB};
}

}  // namespace

const std::map<BRAW_Settings, RAW_Setting_Info> s_brawSettingsInfosMap = {
    {BRAW_SETTING_COLOR_SCIENCE, list("Color Science", s_brawColorScienceChoicesStr)},
    {BRAW_SETTING_GAMUT, list("Color Space (Gamut)", s_brawGamutChoicesStr)},
    {BRAW_SETTING_GAMUT_COMPRESSION, toggle("Gamut Compression")},
    {BRAW_SETTING_ISO, list("ISO", s_brawISOChoicesStr)},
    {BRAW_SETTING_EXPOSURE, number("Exposure", 0, -5, 5, 1, 0, 5)},
    {BRAW_SETTING_HIGHLIGHT_RECOVERY, toggle("Highlight Recovery")},
    {BRAW_SETTING_LUT_ENABLED, toggle("LUT Enabled")},
    {BRAW_SETTING_LUT_MODE, list("LUT Mode", s_brawLUTChoicesStr)},
    {BRAW_SETTING_WB_PRESET, list("White Balance Preset", s_brawWBChoicesStr)},
    {BRAW_SETTING_COLOR_TEMP, number("Color Temp", 5500, 2000, 50000, 2, 8000, 0.8)},
    {BRAW_SETTING_TINT, number("Tint", 10, -150, 150, 0, 0, 5)},
    {BRAW_SETTING_GAMMA, list("Gamma", s_brawGammaChoicesStr)},
    {BRAW_SETTING_SATURATION, number("Saturation", 1, 0, 4, 1, 0, 5)},
    {BRAW_SETTING_CONTRAST, number("Contrast", 0.5, kF0_002, kF1_998, 1, 0, 5)},
    {BRAW_SETTING_MIDPOINT, number("Midpoint", kF0_41, 0, 1, 1, 0, 5)},
    {BRAW_SETTING_HIGHLIGHTS, number("Highlights", 1, 0, kF1_998, 1, 0, 5)},
    {BRAW_SETTING_SHADOWS, number("Shadows", 1, kF0_002, 2, 1, 0, 5)},
    {BRAW_SETTING_WHITE_LEVEL, number("White Level", 1, 0, 2, 1, 0, 5)},
    {BRAW_SETTING_BLACK_LEVEL, number("Black Level", 0, -1, 1, 1, 0, 5)},
    {BRAW_SETTING_USE_VIDEO_BLACK_LEVEL, toggle("Use Video Black Level")},
};
