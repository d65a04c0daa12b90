#pragma once
// What each of the 20 settings may hold for one clip: its choices, its range
// and whether the clip lets it change. The clip's panel data (filled from the
// decoder library by the first-frame probe) decides where it has the fact;
// where it has none yet, the setting vocabulary's own lists and limits stand.

#include "Manager/twSettingsInitData.h"
#include "Manager/twSettingsVocabulary.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

struct twSettingLimit {
    BRAW_Settings id = BRAW_SETTING_COLOR_SCIENCE;
    std::string name;
    int32_t kind = RAW_SETTING_KIND_NUMBER;
    double minimum = 0.0;
    double maximum = 0.0;
    double defaultValue = 0.0;
    // List settings: the texts shown, and which of them may be chosen.
    std::vector<std::string> choices;
    std::vector<bool> choiceEnabled;
    bool readOnly = false;
};

class twSettingLimits {
public:
    // The vocabulary's limits alone.
    twSettingLimits();
    // The clip's facts over the vocabulary. `data` may be null.
    explicit twSettingLimits(const twSettingsInitData* data);

    const twSettingLimit& operator[](BRAW_Settings id) const { return m_limits[static_cast<size_t>(id)]; }
    // The colour science generation of each choice of BRAW_SETTING_COLOR_SCIENCE.
    const std::vector<uint16_t>& colorScienceGenerations() const { return m_colorScienceGenerations; }
    // The default tone curve of a gamma under a colour science generation, when
    // the clip's data knows it.
    bool toneCurveOf(uint16_t colorScienceGen, const std::string& gamma, twGammaControlsValues& out) const;
    // Whether the clip's data was there to be used.
    bool fromClip() const { return m_fromClip; }

private:
    std::array<twSettingLimit, BRAW_SETTINGS_COUNT> m_limits;
    std::vector<uint16_t> m_colorScienceGenerations;
    twSettingsInitData m_data;
    bool m_fromClip = false;
};
