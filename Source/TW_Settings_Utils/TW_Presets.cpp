#include "TW_Settings_Utils/TW_Presets.h"

#include "Common/TW_Debug_Options.h"
#include "Common/twUtils.h"
#include "Manager/twSettingsVocabulary.h"
#include "TW_Settings_Utils/SidecarUtility.h"
#include "TW_Settings_Utils/twFileReplacement.h"
#include "Utils/qvJSON.h"
#include "Utils/qvLogging.h"

#include <cstring>
#include <stdexcept>
#include <string>

namespace {

constexpr const char* kPresetNameKey = "tw_presetName";
constexpr const char* kWBPresetKey = "tw_wbPreset";
constexpr const char* kNoPreset = "No Preset";

QvResult readFailure(QV_JSON_ERR code) {
    switch (code) {
        case QV_JSON_SYNTAX: return QvResult("Json Syntax of Preset is not good");
        case QV_JSON_NOT_FOUND: return QvResult("Preset file does not exist - You need to save it first", true);
        case QV_JSON_READING: return QvResult("Impossible to read Preset File");
        default: return QvResult("Unknown error raised when loading Preset");
    }
}

bool flag(const std::vector<bool>& flags, BRAW_Settings setting) {
    const size_t index = static_cast<size_t>(setting);
    return index < flags.size() && flags[index];
}

}  // namespace

TW_Preset::TW_Preset() : m_active(BRAW_SETTINGS_COUNT, false) {}

QvResult TW_Preset::slotFilePath(int index, qvUtf8String& out) {
    qvUtf8String folder;
    const QvResult result = twUtils::getOrCreateTWPresetFolder(folder);
    if (result.hasError) return result;
    out = folder + "/TW_Preset_" + std::to_string(index + 1) + ".twPreset";
    return QvResult();
}

QvResult TW_Preset::fromSlot(int index, TW_Preset& out) {
    out = TW_Preset();
    out.m_index = index;
    const QvResult result = slotFilePath(index, out.m_filePath);
    if (result.hasError) return result;
    const std::vector<qvUtf8String>& names = TWDebugOptions::getDebugOptions().presetsNames;
    if (index >= 0 && static_cast<size_t>(index) < names.size() && names[static_cast<size_t>(index)] != kNoPreset) {
        out.setName(names[static_cast<size_t>(index)]);
    }
    return QvResult();
}

qvUtf8String TW_Preset::getDisplayedName() const {
    qvUtf8String shown = kNoPreset;
    if (m_isLoaded) shown = m_hasName ? m_name : qvUtf8String("Untitled Preset");
    return "#" + std::to_string(static_cast<long long>(m_index) + 1) + " - " + shown;
}

void TW_Preset::setName(const qvUtf8String& name) {
    if (name.Empty()) return;
    m_hasName = true;
    m_name = name;
}

QvResult TW_Preset::load() { return load(m_filePath); }

QvResult TW_Preset::load(const qvUtf8String& path) {
    QV_JSON json;
    const QV_JSON_ERR read = json.readJSONFile(path);
    if (read != QV_JSON_OK || !json.document.IsObject()) {
        m_isLoaded = false;
        return readFailure(read == QV_JSON_OK ? QV_JSON_SYNTAX : read);
    }

    // Read into copies: a file that is refused leaves the preset as it was.
    twClipAttributes clip = m_clipAttributes;
    twFrameAttributes frame = m_frameAttributes;
    std::vector<bool> active(BRAW_SETTINGS_COUNT, false);
    qvUtf8String name;
    json.getString(json.document, kPresetNameKey, name);

    SidecarUtility::SidecarError error = SidecarUtility::fillPrefsFromJSONSidecarValues(json, clip, frame, active);
    qvUtf8String wbText;
    SidecarUtility::getValueAndActiveState(kWBPresetKey, BRAW_SETTING_WB_PRESET, json, error, active, &wbText,
                                           SidecarUtility::TYPE_STRING, false);
    if (error != SidecarUtility::SIDECAR_OK) {
        QV_LOG(QV_LOG_ERR, "Preset " << path << " refused : a key has the wrong type");
        return QvResult("This Preset File has irregularities - You should considere re-saving it");
    }

    WB_Preset wb = WB_PRESET_NONE;
    if (!wbText.Empty()) {
        for (size_t i = 0; i < s_brawWBChoicesStr.size() && i < s_whiteBalancePresetVector.size(); ++i) {
            if (s_brawWBChoicesStr[i] == wbText) {
                wb = s_whiteBalancePresetVector[i].preset;
                break;
            }
        }
    }

    setName(name);
    m_clipAttributes = clip;
    m_frameAttributes = frame;
    m_active = active;
    m_wbPreset = wb;
    m_isLoaded = true;
    return QvResult();
}

QvResult TW_Preset::save() { return save(m_filePath); }

QvResult TW_Preset::save(const qvUtf8String& path) {
    QV_JSON json;
    json.initEmptyJSON(true);
    if (m_hasName) json.addStringToObject(json.document, kPresetNameKey, m_name);

    std::vector<bool> active = m_active;
    active.resize(BRAW_SETTINGS_COUNT, false);
    SidecarUtility::fillJSONFromSidecarValues(json, m_clipAttributes, m_frameAttributes, active, true);

    if (m_wbPreset != WB_PRESET_NONE) {
        for (size_t i = 0; i < s_whiteBalancePresetVector.size() && i < s_brawWBChoicesStr.size(); ++i) {
            if (s_whiteBalancePresetVector[i].preset != m_wbPreset) continue;
            const qvUtf8String text = s_brawWBChoicesStr[i];
            SidecarUtility::setValueAndActiveStateInJson(kWBPresetKey, BRAW_SETTING_WB_PRESET, json, active, &text,
                                                         SidecarUtility::TYPE_STRING, false, qvUtf8String(), true);
            break;
        }
    }

    twFileReplacement replacement(path, "preset");
    if (json.writeJSONFile(replacement.tempPath()) != QV_JSON_OK || replacement.commit().hasError) {
        return QvResult("Impossible to write Preset to disk");
    }
    m_isLoaded = true;
    return QvResult();
}

void TW_Preset::getValues(twClipAttributes& clip, twFrameAttributes& frame, WB_Preset& wb) const {
    const twClipAttributes& mine = m_clipAttributes;
    if (flag(m_active, BRAW_SETTING_GAMUT)) std::memcpy(clip.gamut, mine.gamut, sizeof(clip.gamut));
    if (flag(m_active, BRAW_SETTING_COLOR_SCIENCE)) clip.colorScienceGen = mine.colorScienceGen;
    // Gamut compression is left out on purpose: a preset never carries it.

    if (flag(m_active, BRAW_SETTING_ISO)) frame.iso = m_frameAttributes.iso;
    if (flag(m_active, BRAW_SETTING_EXPOSURE)) frame.exposure = m_frameAttributes.exposure;
    if (flag(m_active, BRAW_SETTING_HIGHLIGHT_RECOVERY)) clip.highlightRecovery = mine.highlightRecovery;
    if (flag(m_active, BRAW_SETTING_LUT_MODE)) std::memcpy(clip.lutMode, mine.lutMode, sizeof(clip.lutMode));

    const bool wbActive = flag(m_active, BRAW_SETTING_WB_PRESET);
    if (wbActive) wb = m_wbPreset;
    // A named white balance brings its own kelvin and tint.
    if (!wbActive || m_wbPreset == WB_PRESET_CUSTOM) {
        if (flag(m_active, BRAW_SETTING_COLOR_TEMP)) frame.kelvin = m_frameAttributes.kelvin;
        if (flag(m_active, BRAW_SETTING_TINT)) frame.tint = m_frameAttributes.tint;
    }

    if (flag(m_active, BRAW_SETTING_GAMMA)) {
        std::memcpy(clip.gamma, mine.gamma, sizeof(clip.gamma));
        // The tone curve acts only under the custom gamma.
        if (!clip.isCustomGamma()) return;
    }
    twGammaControlsValues& curve = clip.gammaControls;
    const twGammaControlsValues& from = mine.gammaControls;
    if (flag(m_active, BRAW_SETTING_SATURATION)) curve.saturation = from.saturation;
    if (flag(m_active, BRAW_SETTING_CONTRAST)) curve.contrast = from.contrast;
    if (flag(m_active, BRAW_SETTING_MIDPOINT)) curve.midpoint = from.midpoint;
    if (flag(m_active, BRAW_SETTING_HIGHLIGHTS)) curve.highlights = from.highlights;
    if (flag(m_active, BRAW_SETTING_SHADOWS)) curve.shadows = from.shadows;
    if (flag(m_active, BRAW_SETTING_WHITE_LEVEL)) curve.whiteLevel = from.whiteLevel;
    if (flag(m_active, BRAW_SETTING_BLACK_LEVEL)) curve.blackLevel = from.blackLevel;
    if (flag(m_active, BRAW_SETTING_USE_VIDEO_BLACK_LEVEL)) curve.useVideoBlackLevel = from.useVideoBlackLevel;
}

void TW_Preset::setValues(const twClipAttributes& clip, const twFrameAttributes& frame, const WB_Preset& wb,
                          const std::vector<bool>& active) {
    if (active.size() != BRAW_SETTINGS_COUNT) {
        throw std::runtime_error("ERROR - Active Params have not the good size when settings Values");
    }
    m_clipAttributes = clip;
    m_frameAttributes = frame;
    m_wbPreset = wb;
    m_active = active;
    m_isLoaded = true;
}
