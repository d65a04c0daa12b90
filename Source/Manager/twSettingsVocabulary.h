#pragma once
// What settings a clip has, with their display names, kinds, defaults and
// limits, and the lists of choices of the list settings. The numbers of
// BRAW_Settings index every active-flag vector (sidecars, presets), so their
// order is a file format: never renumber.
//
// The tables are built once, at load time, and are constant from then on.

#include "String/qvUtf8String.h"

#include <cstdint>
#include <map>
#include <vector>

enum BRAW_Settings : int32_t {
    BRAW_SETTING_COLOR_SCIENCE = 0,
    BRAW_SETTING_GAMUT = 1,
    BRAW_SETTING_GAMUT_COMPRESSION = 2,
    BRAW_SETTING_ISO = 3,
    BRAW_SETTING_EXPOSURE = 4,
    BRAW_SETTING_HIGHLIGHT_RECOVERY = 5,
    BRAW_SETTING_LUT_ENABLED = 6,
    BRAW_SETTING_LUT_MODE = 7,
    BRAW_SETTING_WB_PRESET = 8,
    BRAW_SETTING_COLOR_TEMP = 9,
    BRAW_SETTING_TINT = 10,
    BRAW_SETTING_GAMMA = 11,
    BRAW_SETTING_SATURATION = 12,
    BRAW_SETTING_CONTRAST = 13,
    BRAW_SETTING_MIDPOINT = 14,
    BRAW_SETTING_HIGHLIGHTS = 15,
    BRAW_SETTING_SHADOWS = 16,
    BRAW_SETTING_WHITE_LEVEL = 17,
    BRAW_SETTING_BLACK_LEVEL = 18,
    BRAW_SETTING_USE_VIDEO_BLACK_LEVEL = 19,
};

// How many settings exist: the size of every active-flag vector.
constexpr size_t BRAW_SETTINGS_COUNT = 20;

// The kinds of RAW_Setting_Info::kind.
constexpr int32_t RAW_SETTING_KIND_NUMBER = 0;
constexpr int32_t RAW_SETTING_KIND_SWITCH = 1;
constexpr int32_t RAW_SETTING_KIND_LIST = 2;

struct RAW_Setting_Info {
    qvUtf8String name;
    int32_t kind;
    double defaultValue;
    double minValue;
    double maxValue;
    // valueClass, auxA and auxB have no reader in the plug-in: they are kept for
    // the panels that lay out a control from them.
    int32_t valueClass;
    std::vector<qvUtf8String> choices;
    double auxA;
    double auxB;
};

// "Version 4", "Version 5", and the generation number of each.
extern const std::vector<qvUtf8String> s_brawColorScienceChoicesStr;
extern const std::vector<uint16_t> s_brawColorScienceIndexToIntValue;
extern const std::vector<qvUtf8String> s_brawGamutChoicesStr;
// The last value is "12000", as the panels have always shown it.
extern const std::vector<qvUtf8String> s_brawISOChoicesStr;
extern const std::vector<qvUtf8String> s_brawLUTChoicesStr;
// Also the values of "tw_wbPreset" in preset files, so the spelling stays
// ("Fluoresent"). The index of a text is its WB_Preset number.
extern const std::vector<qvUtf8String> s_brawWBChoicesStr;
extern const std::vector<qvUtf8String> s_brawGammaChoicesStr;
// How a clip is decoded, by index: "BRAW Default", "Camera Metadata", "Custom A", "Custom B".
extern const std::map<int32_t, qvUtf8String> s_brawDecodeUsingToStrMap;

// One entry per BRAW_Settings value.
extern const std::map<BRAW_Settings, RAW_Setting_Info> s_brawSettingsInfosMap;
