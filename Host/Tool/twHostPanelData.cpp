#include "twHostPanelData.h"

#include "Manager/twSettingsVocabulary.h"
#include "Utils/qvJSON.h"

#include <cstring>
#include <ostream>
#include <sstream>
#include <vector>

namespace {

// The offsets the effect writes and reads, fixed by the wire format.
constexpr size_t kImporterFailed = twImporterSettingsWire::importerFailed;
constexpr size_t kReloadOptionsCommand = twImporterSettingsWire::reloadOptionsCommand;
constexpr size_t kReloadSidecarCommand = twImporterSettingsWire::reloadSidecarCommand;
constexpr size_t kAdobeTimecode = twImporterSettingsWire::adobeTimecode;
// The virtual table pointer heads the object: the record's data starts after it.
constexpr size_t kDataStart = sizeof(void*);

std::string text(const char* field, size_t size) { return std::string(field, ::strnlen(field, size)); }

const char* yesNo(bool value) { return value ? "yes" : "no"; }
const char* onOff(bool value) { return value ? "on" : "off"; }

std::string readOnlyMark(bool readOnly) { return readOnly ? " (read-only)" : ""; }

std::string scienceName(uint16_t generation) {
    for (size_t i = 0; i < s_brawColorScienceIndexToIntValue.size(); ++i) {
        if (s_brawColorScienceIndexToIntValue[i] == generation) return s_brawColorScienceChoicesStr[i].Str();
    }
    return "Version " + std::to_string(generation);
}

}  // namespace

twHostPanelAnswer twHostSendPanelCommand(twSimFile& file, twHostPanelCommand command) {
    // The effect's record: raw memory laid out by offsets, as a record made by
    // another plug-in is. Eight-byte words keep its alignment.
    std::vector<uint64_t> words(TW_IMPORTER_SETTINGS_INIT_DATA_SIZE / 8, 0);
    auto* bytes = reinterpret_cast<unsigned char*>(words.data());
    bytes[kReloadOptionsCommand] = command == twHostPanelCommand::ReloadOptions ? 1 : 0;
    bytes[kReloadSidecarCommand] = command == twHostPanelCommand::ReloadSidecar ? 1 : 0;
    const uint32_t unknownTimecode = TW_ADOBE_TIMECODE_UNKNOWN;
    std::memcpy(bytes + kAdobeTimecode, &unknownTimecode, sizeof(unknownTimecode));

    char slot[sizeof(void*)];
    const void* effectRecord = bytes;
    std::memcpy(slot, &effectRecord, sizeof(slot));

    twHostPanelAnswer answer;
    answer.result = file.sourceSettingsCommand(slot, static_cast<csSDK_int32>(TW_IMPORTER_SETTINGS_INIT_DATA_SIZE));
    const unsigned char* through = nullptr;
    std::memcpy(&through, slot, sizeof(through));
    answer.answered = through != nullptr && through != bytes;
    answer.failed = bytes[kImporterFailed] != 0;
    const unsigned char* source = answer.answered ? through : bytes;
    // The record is copied behind this program's own virtual table pointer.
    std::memcpy(reinterpret_cast<unsigned char*>(&answer.record) + kDataStart, source + kDataStart,
                TW_IMPORTER_SETTINGS_INIT_DATA_SIZE - kDataStart);
    return answer;
}

void twHostPrintPanel(std::ostream& out, const twImporterSettingsInitData& data) {
    const twClipAttributes& clip = data.attributes.clip;
    const twFrameAttributes& frame = data.attributes.frame;
    const twGammaControlsValues& curve = clip.gammaControls;

    out << "Values (the camera's, with the sidecar's changes):\n";
    out << "  Colour science: " << scienceName(clip.colorScienceGen) << "\n";
    out << "  Gamut: " << text(clip.gamut, sizeof(clip.gamut)) << " (compression " << onOff(clip.gamutCompression)
        << ")\n";
    out << "  Gamma: " << text(clip.gamma, sizeof(clip.gamma)) << "\n";
    out << "  ISO: " << frame.iso << readOnlyMark(data.isoIsReadOnly) << "\n";
    out << "  White balance: " << frame.kelvin << " K" << readOnlyMark(data.colorTempIsReadOnly) << ", tint "
        << frame.tint << readOnlyMark(data.tintIsReadOnly) << "\n";
    out << "  Exposure: " << frame.exposure << "\n";
    out << "  Highlight recovery: " << onOff(clip.highlightRecovery)
        << readOnlyMark(data.highlightRecoveryIsReadOnly) << "\n";
    out << "  LUT mode: " << text(clip.lutMode, sizeof(clip.lutMode)) << "\n";
    out << "  Tone curve: saturation " << curve.saturation << ", contrast " << curve.contrast << ", midpoint "
        << curve.midpoint << ", highlights " << curve.highlights << ", shadows " << curve.shadows << ", white level "
        << curve.whiteLevel << ", black level " << curve.blackLevel << ", video black level "
        << onOff(curve.useVideoBlackLevel) << "\n";

    out << "Choices:\n";
    out << "  Colour sciences:";
    for (uint32_t i = 0; i < data.colorScienceCount && i < 2; ++i) {
        out << (i ? ", " : " ") << scienceName(data.colorScienceList[i]);
    }
    out << "\n  Gamuts (" << data.gamutCount << "):\n";
    for (uint32_t i = 0; i < data.gamutCount && i < 14; ++i) out << "    " << text(data.gamutList[i], 64) << "\n";
    out << "  Gammas (" << data.gammaCount << "), with the colour sciences that give a default tone curve:\n";
    for (uint32_t i = 0; i < data.gammaCount && i < 16; ++i) {
        out << "    " << text(data.gammaList[i], 64);
        std::string curves;
        for (uint32_t s = 0; s < data.colorScienceCount && s < 2; ++s) {
            if (data.gammaControlsPerPreset[s][i].first) {
                curves += (curves.empty() ? "" : ", ") + scienceName(data.colorScienceList[s]);
            }
        }
        out << (curves.empty() ? "" : "  [tone curve: " + curves + "]") << "\n";
    }
    out << "  ISOs (" << data.isoCount << ")" << readOnlyMark(data.isoIsReadOnly) << ":";
    for (uint32_t i = 0; i < data.isoCount && i < 30; ++i) out << (i ? ", " : " ") << data.isoList[i];
    out << "\n";

    out << "Ranges:\n";
    out << "  Colour temperature: " << data.colorTempMin << " to " << data.colorTempMax << " K"
        << readOnlyMark(data.colorTempIsReadOnly) << "\n";
    out << "  Tint: " << data.tintMin << " to " << data.tintMax << readOnlyMark(data.tintIsReadOnly) << "\n";
    out << "  Exposure: " << data.exposureMin << " to " << data.exposureMax << "\n";
    const char* const curveNames[7] = {"Saturation", "Contrast", "Midpoint",   "Highlights",
                                       "Shadows",    "White level", "Black level"};
    for (size_t i = 0; i < 7; ++i) {
        out << "  " << curveNames[i] << ": " << data.toneCurveMin[i] << " to " << data.toneCurveMax[i] << "\n";
    }

    out << "LUTs: embedded " << yesNo(data.embeddedLutAvailable) << ", sidecar " << yesNo(data.sidecarLutAvailable)
        << "\n";
    out << "Sidecar: " << (data.hasSidecar ? "attached" : "none") << "\n";
    out << "Timecode: " << text(frame.timecode, sizeof(frame.timecode)) << " (frame " << data.timecodeFrames << ", "
        << (data.timecodeIsDropFrame ? "drop-frame" : "non-drop") << ")\n";
    out << "Files of the clip: " << data.multiCardFiles << "\n";
}

std::string twHostPanelJson(twImporterSettingsInitData& data) {
    QV_JSON json;
    json.initEmptyJSON(true);
    data.fillInfosIntoJSONObject(json, json.document);
    return json.generateJsonFinalString().Str();
}
