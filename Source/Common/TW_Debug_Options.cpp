#include "Common/TW_Debug_Options.h"

#include "Common/twUtils.h"
#include "FileSystem/qvFileSystem.h"

// Only the narrow-character ini class is used (no wide conversion library), and
// its template bodies are compiled here rather than taken from a prebuilt library.
#define SI_NO_CONVERSION
#define SI_IMPLEMENTATION
#include <SimpleIni.h>

#include <cstdio>
#include <sstream>
#include <string>

TWDebugOptions debugOptions;

namespace {

using OptionsIni = CSimpleIniTempl<char, SI_GenericNoCase<char>, SI_ConvertA<char>>;

const char kGeneral[] = "General";
const char kPremierePro[] = "PremierePro";
const char kAfterEffects[] = "AfterEffects";
const char kMissing[] = "None";
const char kNoPreset[] = "No Preset";

void newIni(OptionsIni& ini) {
    // UTF-8, one value per key, no multi-line values, blanks around "=".
    ini.SetUnicode(true);
    ini.SetMultiKey(false);
    ini.SetMultiLine(false);
    ini.SetSpaces(true);
}

// "true" / "false" set the field (the other way round for an inverted key);
// anything else, "True" and "1" included, leaves it alone.
void readBool(const OptionsIni& ini, const char* section, const char* key, bool& field, bool inverted = false) {
    const std::string value = ini.GetValue(section, key, kMissing);
    if (value == "true") field = !inverted;
    if (value == "false") field = inverted;
}

qvUtf8String slotPrefix(size_t slot) { return qvUtf8String("#" + std::to_string(slot + 1) + " - "); }

}  // namespace

TWDebugOptions::TWDebugOptions() { reset(); }

TWDebugOptions& TWDebugOptions::getDebugOptions() { return debugOptions; }

void TWDebugOptions::loadDebugOptions() { debugOptions.load(); }

void TWDebugOptions::exportDebugOptions() { debugOptions.exportToFile(); }

void TWDebugOptions::reset() {
    needToUpdate = false;
    loggingLevel = QV_LOG_DESACTIVATED;
    gpuDecoding = false;
    presetsNames.assign(kPresetCount, qvUtf8String(kNoPreset));
    enableCorrectXML = false;
    brawDesktopFilepath.Clear();
    disableAutoUpdate = false;
    importerIsFullyAsync = true;
    pproAmeLowerPriority = false;
    pproDisableTimecodeWarning = false;
    pproImporterOnlyOneFrameWhenLayerSettings = true;
    pproDisableSourceSettingsPanel = false;
    rememberAlwaysSetNewSourceMode = false;
    aeLowerPriority = false;
    aeLayerSettingsGPUEnabled = true;
}

void TWDebugOptions::applyPresetName(size_t slot, const qvUtf8String& value) {
    if (slot >= presetsNames.size()) return;
    qvUtf8String name = value;
    const qvUtf8String prefix = slotPrefix(slot);
    if (name.Length() > prefix.Length() && name.StartsWith(prefix)) name = name.Substr(prefix.Length());
    name.Remove(qvUtf8Char('|'));
    if (name.Size() >= 65) name = name.Left(64);
    if (name.Empty() || name.StartsWith("No Preset") || name.StartsWith("Untitled Preset")) return;
    presetsNames[slot] = name;
}

void TWDebugOptions::load() {
    qvUtf8String path;
    if (qvFileSystem::getIniFilepath(path).hasError) return;

    OptionsIni ini;
    newIni(ini);
    SI_Error rc = SI_FILE;
    if (FILE* file = std::fopen(path.c_str(), "rb")) {
        rc = ini.LoadFile(file);
        std::fclose(file);
    }
    // A file that went away brings the defaults back.
    reset();
    if (rc < 0) return;

    const std::string logging = ini.GetValue(kGeneral, "logging", kMissing);
    if (logging != kMissing) {
        for (size_t i = 0; i < QvLogging::loggingLevelStr.size(); ++i) {
            if (QvLogging::loggingLevelStr[i] == logging) loggingLevel = static_cast<QV_LOG_LVL>(i);
        }
    }

    qvUtf8String presetFolder;
    twUtils::getOrCreateTWPresetFolder(presetFolder);

    // Preset names: an older form of data, only taken in, never written back.
    const std::string allNames = ini.GetValue(kGeneral, "presetsNames", kMissing);
    if (allNames == kMissing) {
        for (size_t i = 0; i < kPresetCount; ++i) {
            const std::string key = "presetsName" + std::to_string(i);
            const std::string value = ini.GetValue(kGeneral, key.c_str(), kMissing);
            if (value == kMissing) continue;
            needToUpdate = true;
            applyPresetName(i, qvUtf8String(value));
        }
    } else {
        needToUpdate = true;
        const std::vector<qvUtf8String> fields = qvUtf8String(allNames).Split(qvUtf8String("|"));
        for (size_t i = 0; i < fields.size(); ++i) applyPresetName(i, fields[i]);
        for (size_t i = fields.size(); i < presetsNames.size(); ++i) applyPresetName(i, qvUtf8String(presetsNames[i]));
    }

    const std::string desktopPath = ini.GetValue(kGeneral, "brawDesktopFilepath", kMissing);
    if (desktopPath != kMissing) brawDesktopFilepath = qvUtf8String(desktopPath);

    readBool(ini, kGeneral, "prproHybridGPUCPUDecoding", gpuDecoding);
    readBool(ini, kGeneral, "importerSyncMode2", importerIsFullyAsync);
    readBool(ini, kGeneral, "enableCorrectXml", enableCorrectXML);
    readBool(ini, kGeneral, "enableAutoUpdate", disableAutoUpdate, true);
    readBool(ini, kPremierePro, "lowerPriority", pproAmeLowerPriority);
    readBool(ini, kPremierePro, "pproDisableTimecodeWarning", pproDisableTimecodeWarning);
    readBool(ini, kPremierePro, "pproDisableSourceSettingsPanel", pproDisableSourceSettingsPanel);
    readBool(ini, kPremierePro, "rememberAlwaysSetNewSourceMode", rememberAlwaysSetNewSourceMode);
    readBool(ini, kPremierePro, "alwaysSetNewSourceMode", alwaysSetNewSourceMode);
    readBool(ini, kAfterEffects, "lowerPriority", aeLowerPriority);
    readBool(ini, kAfterEffects, "ImporterOnlyOneFrameWhenLayerSettings", pproImporterOnlyOneFrameWhenLayerSettings);
    readBool(ini, kAfterEffects, "aeLayerSettingsGPUEnabled3", aeLayerSettingsGPUEnabled);
}

qvUtf8String TWDebugOptions::to_string() const {
    std::ostringstream out;
    auto line = [&out](const char* name, const auto& value) { out << "    - " << name << " : " << value << "\n"; };
    out << "Tarnwick_options.ini Content : \n";
    line("needToUpdate", int(needToUpdate));
    line("loggingLevel", int(loggingLevel));
    line("gpuDecoding", int(gpuDecoding));
    line("enableCorrectXML", int(enableCorrectXML));
    line("brawDesktopFilepath", brawDesktopFilepath.Str());
    line("disableAutoUpdate", int(disableAutoUpdate));
    line("importerIsFullyAsync", int(importerIsFullyAsync));
    line("pproAmeLowerPriority", int(pproAmeLowerPriority));
    line("pproDisableTimecodeWarning", int(pproDisableTimecodeWarning));
    line("pproImporterOnlyOneFrameWhenLayerSettings", int(pproImporterOnlyOneFrameWhenLayerSettings));
    line("pproDisableSourceSettingsPanel", int(pproDisableSourceSettingsPanel));
    line("rememberAlwaysSetNewSourceMode", int(rememberAlwaysSetNewSourceMode));
    line("aeLowerPriority", int(aeLowerPriority));
    line("aeLayerSettingsGPUEnabled", int(aeLayerSettingsGPUEnabled));
    return qvUtf8String(out.str());
}

void TWDebugOptions::exportToFile() const {
    qvUtf8String path;
    if (qvFileSystem::getIniFilepath(path).hasError) return;

    OptionsIni ini;
    newIni(ini);
    const size_t level = static_cast<size_t>(loggingLevel);
    const qvUtf8String levelText =
        level < QvLogging::loggingLevelStr.size() ? QvLogging::loggingLevelStr[level] : qvUtf8String(std::to_string(level));
    ini.SetValue(kGeneral, "logging", levelText.c_str());
    ini.SetValue(kGeneral, "prproHybridGPUCPUDecoding", boolToIniStr(gpuDecoding).c_str());
    ini.SetValue(kGeneral, "importerSyncMode2", boolToIniStr(importerIsFullyAsync).c_str());
    ini.SetValue(kGeneral, "enableCorrectXml", boolToIniStr(enableCorrectXML).c_str());
    ini.SetValue(kGeneral, "enableAutoUpdate", boolToIniStr(!disableAutoUpdate).c_str());
    if (!brawDesktopFilepath.Empty()) ini.SetValue(kGeneral, "brawDesktopFilepath", brawDesktopFilepath.c_str());
    ini.SetValue(kPremierePro, "lowerPriority", boolToIniStr(pproAmeLowerPriority).c_str());
    ini.SetValue(kPremierePro, "pproDisableTimecodeWarning", boolToIniStr(pproDisableTimecodeWarning).c_str());
    ini.SetValue(kPremierePro, "pproDisableSourceSettingsPanel", boolToIniStr(pproDisableSourceSettingsPanel).c_str());
    ini.SetValue(kPremierePro, "rememberAlwaysSetNewSourceMode", boolToIniStr(rememberAlwaysSetNewSourceMode).c_str());
    ini.SetValue(kPremierePro, "alwaysSetNewSourceMode", boolToIniStr(alwaysSetNewSourceMode).c_str());
    ini.SetValue(kAfterEffects, "lowerPriority", boolToIniStr(aeLowerPriority).c_str());
    ini.SetValue(kAfterEffects, "ImporterOnlyOneFrameWhenLayerSettings",
                 boolToIniStr(pproImporterOnlyOneFrameWhenLayerSettings).c_str());
    ini.SetValue(kAfterEffects, "aeLayerSettingsGPUEnabled3", boolToIniStr(aeLayerSettingsGPUEnabled).c_str());

    FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) return;
    ini.SaveFile(file, false);
    std::fclose(file);
}

std::vector<qvUtf8String> TWDebugOptions::getPresetNamesWithPrefix() const {
    std::vector<qvUtf8String> names;
    names.reserve(presetsNames.size());
    for (size_t i = 0; i < presetsNames.size(); ++i) names.push_back(slotPrefix(i) + presetsNames[i]);
    return names;
}

qvUtf8String TWDebugOptions::boolToIniStr(bool value) { return qvUtf8String(value ? "true" : "false"); }
