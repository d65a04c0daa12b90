// settings: what the source settings panel shows of a clip, and changes made
// through the clip's sidecar, as the host's source settings effect makes them.

#include "twHostClipSupport.h"
#include "twHostCommand.h"
#include "twHostPanelData.h"

#include "Manager/twAttributes.h"
#include "TW_Settings_Utils/LutUtility.h"
#include "TW_Settings_Utils/SidecarUtility.h"
#include "TW_Settings_Utils/TW_Presets.h"
#include "Manager/twSettingsVocabulary.h"
#include "Utils/qvJSON.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <ostream>
#include <sstream>
#include <vector>

namespace {

std::string fixedText(const char* field, size_t size) { return std::string(field, ::strnlen(field, size)); }

std::string numberText(double value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

bool fileExists(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0;
}

// The clip's sidecar: its path less the extension's 4 characters, then "sidecar".
std::string sidecarPathOf(const std::string& clip) {
    return (clip.size() >= 4 ? clip.substr(0, clip.size() - 4) : clip) + "sidecar";
}

// A change a person asked for: it either lands in `prefs` or says why not.
struct Refusal {
    std::string message;
};

bool parseNumber(const std::string& text, double& out) {
    if (text.empty()) return false;
    char* end = nullptr;
    errno = 0;
    out = std::strtod(text.c_str(), &end);
    return errno == 0 && end == text.c_str() + text.size() && std::isfinite(out);
}

bool parseSwitch(const std::string& text, bool& out) {
    if (text == "1" || text == "on" || text == "true" || text == "yes") return out = true, true;
    if (text == "0" || text == "off" || text == "false" || text == "no") return out = false, true;
    return false;
}

std::string rangeRefusal(const std::string& given, double minimum, double maximum) {
    return given + ": outside the range this clip offers, " + numberText(minimum) + " to " + numberText(maximum);
}

// One settable key: how its value is judged against the panel data and where it goes.
struct SettingKey {
    const char* key;
    const char* meaning;
    std::function<bool(const std::string& given, const std::string& value, const twImporterSettingsInitData& panel,
                       twAttributes& prefs, std::string& refusal)>
        apply;
};

// A number of a range the panel gives.
SettingKey ranged(const char* key, const char* meaning, std::function<double(const twImporterSettingsInitData&)> min,
                  std::function<double(const twImporterSettingsInitData&)> max,
                  std::function<bool(const twImporterSettingsInitData&)> readOnly,
                  std::function<void(twAttributes&, double)> store) {
    return {key, meaning,
            [=](const std::string& given, const std::string& value, const twImporterSettingsInitData& panel,
                twAttributes& prefs, std::string& refusal) {
                double number = 0.0;
                if (!parseNumber(value, number)) return refusal = given + ": not a number", false;
                if (readOnly && readOnly(panel)) return refusal = given + ": read-only for this clip", false;
                const double lowest = min(panel);
                const double highest = max(panel);
                if (number < lowest || number > highest) return refusal = rangeRefusal(given, lowest, highest), false;
                store(prefs, number);
                return true;
            }};
}

SettingKey toneCurve(const char* key, const char* meaning, size_t index, float twGammaControlsValues::*field) {
    return ranged(
        key, meaning, [index](const twImporterSettingsInitData& p) { return double(p.toneCurveMin[index]); },
        [index](const twImporterSettingsInitData& p) { return double(p.toneCurveMax[index]); }, nullptr,
        [field](twAttributes& a, double v) { a.clip.gammaControls.*field = static_cast<float>(v); });
}

SettingKey switchKey(const char* key, const char* meaning, std::function<bool(const twImporterSettingsInitData&)> ro,
                     std::function<void(twAttributes&, bool)> store) {
    return {key, meaning,
            [=](const std::string& given, const std::string& value, const twImporterSettingsInitData& panel,
                twAttributes& prefs, std::string& refusal) {
                bool on = false;
                if (!parseSwitch(value, on)) return refusal = given + ": not on or off (1, 0, on, off)", false;
                if (ro && ro(panel)) return refusal = given + ": read-only for this clip", false;
                store(prefs, on);
                return true;
            }};
}

// A number of one of the panel's lists (ISOs, colour sciences).
SettingKey offeredNumber(const char* key, const char* what,
                         std::function<std::vector<double>(const twImporterSettingsInitData&)> offered,
                         std::function<bool(const twImporterSettingsInitData&)> readOnly,
                         std::function<void(twAttributes&, double)> store) {
    return {key, what,
            [=](const std::string& given, const std::string& value, const twImporterSettingsInitData& panel,
                twAttributes& prefs, std::string& refusal) {
                double number = 0.0;
                if (!parseNumber(value, number)) return refusal = given + ": not a number", false;
                if (readOnly && readOnly(panel)) return refusal = given + ": read-only for this clip", false;
                const std::vector<double> list = offered(panel);
                if (std::find(list.begin(), list.end(), number) != list.end()) {
                    store(prefs, number);
                    return true;
                }
                std::string names;
                for (size_t i = 0; i < list.size(); ++i) names += (i ? ", " : "") + numberText(list[i]);
                refusal = given + ": not " + std::string(what) + " this clip offers (" + names + ")";
                return false;
            }};
}

// A name of the panel's gamma list (or, without `gamma`, its gamut list).
SettingKey listed(const char* key, const char* meaning, bool gamma) {
    return {key, meaning,
            [=](const std::string& given, const std::string& value, const twImporterSettingsInitData& panel,
                twAttributes& prefs, std::string& refusal) {
                const uint32_t n = gamma ? std::min<uint32_t>(panel.gammaCount, 16) : std::min<uint32_t>(panel.gamutCount, 14);
                const auto nameAt = [&](uint32_t i) {
                    return fixedText(gamma ? panel.gammaList[i] : panel.gamutList[i], 64);
                };
                std::string names;
                for (uint32_t i = 0; i < n; ++i) {
                    if (nameAt(i) == value) {
                        twCopyFixedText(gamma ? prefs.clip.gamma : prefs.clip.gamut, 64, value.c_str());
                        return true;
                    }
                    names += (i ? ", " : "") + nameAt(i);
                }
                refusal = given + ": not one this clip offers (" + names + ")";
                return false;
            }};
}

const std::vector<SettingKey>& settingKeys() {
    static const std::vector<SettingKey> keys = {
        offeredNumber("iso", "an ISO", [](const twImporterSettingsInitData& p) {
            return std::vector<double>(p.isoList, p.isoList + std::min<uint32_t>(p.isoCount, 30));
        }, [](const twImporterSettingsInitData& p) { return p.isoIsReadOnly; },
                      [](twAttributes& a, double v) { a.frame.iso = static_cast<uint32_t>(v); }),
        ranged(
            "exposure", "stops", [](const twImporterSettingsInitData& p) { return double(p.exposureMin); },
            [](const twImporterSettingsInitData& p) { return double(p.exposureMax); }, nullptr,
            [](twAttributes& a, double v) { a.frame.exposure = static_cast<float>(v); }),
        ranged(
            "kelvin", "colour temperature",
            [](const twImporterSettingsInitData& p) { return double(p.colorTempMin); },
            [](const twImporterSettingsInitData& p) { return double(p.colorTempMax); },
            [](const twImporterSettingsInitData& p) { return p.colorTempIsReadOnly; },
            [](twAttributes& a, double v) { a.frame.kelvin = static_cast<uint32_t>(std::lround(v)); }),
        ranged(
            "tint", "white balance tint", [](const twImporterSettingsInitData& p) { return double(p.tintMin); },
            [](const twImporterSettingsInitData& p) { return double(p.tintMax); },
            [](const twImporterSettingsInitData& p) { return p.tintIsReadOnly; },
            [](twAttributes& a, double v) { a.frame.tint = static_cast<int16_t>(std::lround(v)); }),
        toneCurve("saturation", "tone curve", 0, &twGammaControlsValues::saturation),
        toneCurve("contrast", "tone curve", 1, &twGammaControlsValues::contrast),
        toneCurve("midpoint", "tone curve", 2, &twGammaControlsValues::midpoint),
        toneCurve("highlights", "tone curve", 3, &twGammaControlsValues::highlights),
        toneCurve("shadows", "tone curve", 4, &twGammaControlsValues::shadows),
        toneCurve("white_level", "tone curve", 5, &twGammaControlsValues::whiteLevel),
        toneCurve("black_level", "tone curve", 6, &twGammaControlsValues::blackLevel),
        switchKey("video_black_level", "tone curve", nullptr,
                  [](twAttributes& a, bool v) { a.clip.gammaControls.useVideoBlackLevel = v; }),
        switchKey("highlight_recovery", "on or off",
                  [](const twImporterSettingsInitData& p) { return p.highlightRecoveryIsReadOnly; },
                  [](twAttributes& a, bool v) { a.clip.highlightRecovery = v; }),
        switchKey("gamut_compression", "on or off", nullptr,
                  [](twAttributes& a, bool v) { a.clip.gamutCompression = v; }),
        listed("gamma", "a gamma of the clip's list", true),
        listed("gamut", "a gamut of the clip's list", false),
        offeredNumber("color_science", "a colour science", [](const twImporterSettingsInitData& p) {
            return std::vector<double>(p.colorScienceList,
                                       p.colorScienceList + std::min<uint32_t>(p.colorScienceCount, 2));
        }, nullptr, [](twAttributes& a, double v) { a.clip.colorScienceGen = static_cast<uint16_t>(v); }),
    };
    return keys;
}

std::string keysHelp() {
    std::string text = "change a setting in the clip's sidecar (repeatable). Keys:";
    for (const SettingKey& key : settingKeys()) text += std::string(" ") + key.key;
    return text;
}

// The names this product writes into a sidecar: every settings key with its
// "_active" companion, as the settings library lays them out, and the
// sidecar LUT's members.
std::vector<std::string> productKeys() {
    QV_JSON json;
    json.initEmptyJSON(true);
    const twAttributes defaults;
    SidecarUtility::fillJSONFromSidecarValues(json, defaults.clip, defaults.frame,
                                              std::vector<bool>(BRAW_SETTINGS_COUNT, true), true);
    std::vector<std::string> keys;
    for (auto it = json.document.MemberBegin(); it != json.document.MemberEnd(); ++it) {
        keys.emplace_back(it->name.GetString(), it->name.GetStringLength());
    }
    for (const char* lut : {"post_3dlut_sidecar_name", "post_3dlut_sidecar_title", "post_3dlut_sidecar_size",
                            "post_3dlut_sidecar_data"}) {
        keys.emplace_back(lut);
    }
    return keys;
}

class twSettingsCommand final : public twHostCommand {
public:
    // With --json the standard output is the panel's JSON alone, for jq and the like.
    bool writesDataToStandardOutput() const override { return m_json; }

    void addOptions(CLI::App& command) override {
        command.add_option("CLIP", m_clip, "the clip whose settings to show or change")->required();
        command.add_flag("--json", m_json, "print the JSON the settings panels read instead of the readable view");
        command.add_option("--set", m_sets, keysHelp())->type_name("KEY=VALUE");
        command.add_option("--lut", m_lut, "put this .cube LUT into the clip's sidecar and decode with it")
            ->check(CLI::ExistingFile)
            ->type_name("FILE.cube");
        command.add_option("--preset", m_preset, "apply the active settings of this preset file")
            ->check(CLI::ExistingFile)
            ->type_name("FILE.twPreset");
        auto* reset = command.add_flag("--reset", m_reset, "remove this product's settings from the clip's sidecar");
        reset->excludes("--set")->excludes("--lut")->excludes("--preset");
    }

    int run(twHostSession& s) override {
        std::unique_ptr<twSimFile> file = twHostImportClip(s, m_clip);
        if (!file) return kExitPluginFailure;

        twHostPanelAnswer panel = twHostSendPanelCommand(*file, twHostPanelCommand::Fill);
        if (panel.result != imNoErr || !panel.answered) {
            s.err << m_clip << ": the importer gave no panel data (imPerformSourceSettingsCommand " << panel.result
                  << (panel.failed ? ", failure flag set" : "") << ")\n";
            for (const twSimEvent& event : s.host.events().all()) s.err << "  " << event.title << "\n";
            file->close();
            return kExitPluginFailure;
        }

        int exit = kExitOk;
        if (m_reset) {
            exit = reset(s, *file);
        } else if (!m_sets.empty() || !m_lut.empty() || !m_preset.empty()) {
            exit = change(s, *file, panel.record);
        } else if (m_json) {
            s.out << twHostPanelJson(panel.record) << "\n";
        } else {
            twHostPrintPanel(s.out, panel.record);
        }
        file->close();
        return exit;
    }

private:
    int change(twHostSession& s, twSimFile& file, const twImporterSettingsInitData& panel) {
        // What the clip decodes with now: the camera's values, then the sidecar's.
        const std::string sidecar = sidecarPathOf(m_clip);
        twAttributes prefs = panel.attributes;
        if (fileExists(sidecar)) {
            const SidecarUtility::SidecarError read = SidecarUtility::fillPrefsFromSidecar(sidecar, prefs);
            if (read != SidecarUtility::SIDECAR_OK && read != SidecarUtility::SIDECAR_MISSING) {
                s.err << sidecar << ": the sidecar cannot be read (error " << read
                      << "); nothing was written, so that none of it is lost\n";
                return kExitUsage;
            }
        }
        if (!m_preset.empty()) {
            TW_Preset preset;
            const QvResult loaded = preset.load(m_preset);
            if (loaded.hasError) {
                s.err << m_preset << ": " << loaded.toString() << "; nothing was written\n";
                return kExitUsage;
            }
            WB_Preset whiteBalance = WB_PRESET_NONE;
            preset.getValues(prefs.clip, prefs.frame, whiteBalance);
        }

        std::vector<std::string> refusals;
        for (const std::string& set : m_sets) {
            const std::string given = "--set " + set;
            const size_t equal = set.find('=');
            const std::string key = set.substr(0, equal);
            const auto found = std::find_if(settingKeys().begin(), settingKeys().end(),
                                            [&](const SettingKey& k) { return key == k.key; });
            if (equal == std::string::npos || found == settingKeys().end()) {
                refusals.push_back(given + ": not KEY=VALUE with a known key (see --help)");
                continue;
            }
            std::string refusal;
            if (!found->apply(given, set.substr(equal + 1), panel, prefs, refusal)) refusals.push_back(refusal);
        }
        if (!refusals.empty()) {
            for (const std::string& refusal : refusals) s.err << refusal << "\n";
            s.err << "nothing was written\n";
            return kExitUsage;
        }

        if (!m_lut.empty()) twCopyFixedText(prefs.clip.lutMode, sizeof(prefs.clip.lutMode), "Sidecar");
        const SidecarUtility::SidecarError written = SidecarUtility::writeSidecarFromPrefs(sidecar, prefs);
        if (written != SidecarUtility::SIDECAR_OK) {
            s.err << sidecar << ": the sidecar could not be written (error " << written << ")\n";
            return kExitPluginFailure;
        }
        if (!m_lut.empty()) {
            // The LUT is named in the sidecar after its file, which a bare name doesn't give.
            char* absolute = ::realpath(m_lut.c_str(), nullptr);
            const std::string cube = absolute ? absolute : m_lut;
            std::free(absolute);
            const QvResult lut = LutUtility::addLUTToSidecar(sidecar, cube);
            if (lut.hasError) {
                s.err << cube << ": " << lut.toString() << "\n";
                return kExitPluginFailure;
            }
        }
        s.out << "Wrote " << sidecar << "\n";
        if (!fixedText(prefs.clip.gamma, sizeof(prefs.clip.gamma)).empty() && !prefs.clip.isCustomGamma()) {
            for (const std::string& set : m_sets) {
                if (isToneCurveKey(set.substr(0, set.find('=')))) {
                    s.out << "Note: the tone curve acts only under the gamma \"" << TW_CUSTOM_GAMMA_NAME << "\"\n";
                    break;
                }
            }
        }
        return reload(s, file);
    }

    int reset(twHostSession& s, twSimFile& file) {
        const std::string sidecar = sidecarPathOf(m_clip);
        if (!fileExists(sidecar)) {
            s.out << "No sidecar beside the clip: nothing to reset\n";
            return kExitOk;
        }
        QV_JSON json;
        if (json.readJSONFile(sidecar) != QV_JSON_OK || !json.document.IsObject()) {
            s.err << sidecar << ": the sidecar cannot be read; it was left as it is\n";
            return kExitUsage;
        }
        for (const std::string& key : productKeys()) SidecarUtility::removeAllMembers(json, key.c_str());
        if (json.document.MemberCount() == 0) {
            if (std::remove(sidecar.c_str()) != 0) {
                s.err << sidecar << ": the sidecar could not be removed: " << std::strerror(errno) << "\n";
                return kExitPluginFailure;
            }
            s.out << "Removed " << sidecar << ": it held nothing else\n";
        } else {
            bool layoutFailed = false;
            const QvResult written = LutUtility::writeSidecar(json, sidecar, false, layoutFailed);
            if (written.hasError) {
                s.err << sidecar << ": " << written.toString() << "\n";
                return kExitPluginFailure;
            }
            s.out << "Wrote " << sidecar << " without this product's settings; its other members stay\n";
        }
        return reload(s, file);
    }

    static bool isToneCurveKey(const std::string& key) {
        for (const char* k : {"saturation", "contrast", "midpoint", "highlights", "shadows", "white_level",
                              "black_level", "video_black_level"}) {
            if (key == k) return true;
        }
        return false;
    }

    // The effect's reload command, so that the open clip decodes with the new sidecar.
    static int reload(twHostSession& s, twSimFile& file) {
        const twHostPanelAnswer reloaded = twHostSendPanelCommand(file, twHostPanelCommand::ReloadSidecar);
        s.out << "Reloaded the clip's sidecar (imPerformSourceSettingsCommand " << reloaded.result << ")\n";
        return reloaded.result == imNoErr ? kExitOk : kExitPluginFailure;
    }

    std::string m_clip;
    bool m_json = false;
    std::vector<std::string> m_sets;
    std::string m_lut;
    std::string m_preset;
    bool m_reset = false;
};

[[maybe_unused]] const bool registered = twHostRegisterCommand<twSettingsCommand>(
    "settings", "show what the source settings panel shows of a clip, or change it through its sidecar", 70);

}  // namespace
