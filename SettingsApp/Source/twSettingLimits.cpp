#include "twSettingLimits.h"

#include <cstring>

namespace {

std::vector<std::string> texts(const std::vector<qvUtf8String>& list) {
    std::vector<std::string> out;
    out.reserve(list.size());
    for (const qvUtf8String& text : list) out.push_back(text.Str());
    return out;
}

std::string fixedText(const char* field, size_t size) { return std::string(field, strnlen(field, size)); }

// A range the clip reports replaces the vocabulary's only when it is a range.
void takeRange(twSettingLimit& limit, double minimum, double maximum) {
    if (maximum > minimum) {
        limit.minimum = minimum;
        limit.maximum = maximum;
    }
}

}  // namespace

twSettingLimits::twSettingLimits() : twSettingLimits(nullptr) {}

twSettingLimits::twSettingLimits(const twSettingsInitData* data) {
    for (const auto& entry : s_brawSettingsInfosMap) {
        twSettingLimit& limit = m_limits[static_cast<size_t>(entry.first)];
        const RAW_Setting_Info& info = entry.second;
        limit.id = entry.first;
        limit.name = info.name.Str();
        limit.kind = info.kind;
        limit.minimum = info.minValue;
        limit.maximum = info.maxValue;
        limit.defaultValue = info.defaultValue;
        limit.choices = texts(info.choices);
    }
    m_colorScienceGenerations = s_brawColorScienceIndexToIntValue;

    // The probe marks its data ready once the first frame has told everything;
    // data that isn't ready holds only defaults.
    m_fromClip = data != nullptr && data->ready;
    if (m_fromClip) {
        m_data = *data;
        const twSettingsInitData& d = *data;
        if (d.colorScienceCount > 0) {
            m_colorScienceGenerations.clear();
            std::vector<std::string>& choices = m_limits[BRAW_SETTING_COLOR_SCIENCE].choices;
            choices.clear();
            for (uint32_t i = 0; i < d.colorScienceCount && i < 2; ++i) {
                m_colorScienceGenerations.push_back(d.colorScienceList[i]);
                choices.push_back("Version " + std::to_string(d.colorScienceList[i]));
            }
        }
        if (d.gamutCount > 0) {
            std::vector<std::string>& choices = m_limits[BRAW_SETTING_GAMUT].choices;
            choices.clear();
            for (uint32_t i = 0; i < d.gamutCount && i < 14; ++i) choices.push_back(fixedText(d.gamutList[i], 64));
        }
        if (d.gammaCount > 0) {
            std::vector<std::string>& choices = m_limits[BRAW_SETTING_GAMMA].choices;
            choices.clear();
            for (uint32_t i = 0; i < d.gammaCount && i < 16; ++i) choices.push_back(fixedText(d.gammaList[i], 64));
        }
        if (d.isoCount > 0) {
            std::vector<std::string>& choices = m_limits[BRAW_SETTING_ISO].choices;
            choices.clear();
            for (uint32_t i = 0; i < d.isoCount && i < 30; ++i) choices.push_back(std::to_string(d.isoList[i]));
        }
        m_limits[BRAW_SETTING_ISO].readOnly = d.isoIsReadOnly;
        takeRange(m_limits[BRAW_SETTING_EXPOSURE], d.exposureMin, d.exposureMax);
        takeRange(m_limits[BRAW_SETTING_COLOR_TEMP], d.colorTempMin, d.colorTempMax);
        m_limits[BRAW_SETTING_COLOR_TEMP].readOnly = d.colorTempIsReadOnly;
        takeRange(m_limits[BRAW_SETTING_TINT], d.tintMin, d.tintMax);
        m_limits[BRAW_SETTING_TINT].readOnly = d.tintIsReadOnly;
        // A preset only sets kelvin and tint: with both fixed it has nothing to do.
        m_limits[BRAW_SETTING_WB_PRESET].readOnly = d.colorTempIsReadOnly && d.tintIsReadOnly;
        m_limits[BRAW_SETTING_HIGHLIGHT_RECOVERY].readOnly = d.highlightRecoveryIsReadOnly;
        for (int i = 0; i < 7; ++i) {
            takeRange(m_limits[static_cast<size_t>(BRAW_SETTING_SATURATION + i)], d.toneCurveMin[i], d.toneCurveMax[i]);
        }
    }

    // Which LUT the clip can offer; without the clip's word both may be chosen.
    twSettingLimit& lutMode = m_limits[BRAW_SETTING_LUT_MODE];
    lutMode.choiceEnabled.assign(lutMode.choices.size(), true);
    if (m_fromClip) {
        for (size_t i = 0; i < lutMode.choices.size(); ++i) {
            if (lutMode.choices[i] == "Embedded") lutMode.choiceEnabled[i] = data->embeddedLutAvailable;
            if (lutMode.choices[i] == "Sidecar") lutMode.choiceEnabled[i] = data->sidecarLutAvailable;
        }
    }
    for (twSettingLimit& limit : m_limits) {
        if (limit.choiceEnabled.size() != limit.choices.size()) limit.choiceEnabled.assign(limit.choices.size(), true);
    }
}

bool twSettingLimits::toneCurveOf(uint16_t colorScienceGen, const std::string& gamma,
                                  twGammaControlsValues& out) const {
    if (!m_fromClip) return false;
    size_t science = m_colorScienceGenerations.size();
    for (size_t i = 0; i < m_colorScienceGenerations.size(); ++i) {
        if (m_colorScienceGenerations[i] == colorScienceGen) science = i;
    }
    const std::vector<std::string>& gammas = m_limits[BRAW_SETTING_GAMMA].choices;
    for (size_t g = 0; g < gammas.size() && g < 16; ++g) {
        if (gammas[g] != gamma || science >= 2) continue;
        const auto& entry = m_data.gammaControlsPerPreset[science][g];
        if (!entry.first) return false;
        out = entry.second;
        return true;
    }
    return false;
}
