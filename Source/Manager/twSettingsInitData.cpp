#include "Manager/twSettingsInitData.h"

#include <string>
#include <vector>

twSettingsInitData::twSettingsInitData()
    : attributes(),
      ready(false),
      colorScienceList{},
      colorScienceCount(0),
      gamutList{},
      gamutCount(0),
      gammaList{},
      gammaCount(0),
      isoList{},
      isoCount(0),
      isoIsReadOnly(false),
      gammaControlsPerPreset{},
      colorTempMax(0),
      colorTempMin(0),
      colorTempIsReadOnly(false),
      tintMax(0),
      tintMin(0),
      tintIsReadOnly(false),
      exposureMax(0.0f),
      exposureMin(0.0f),
      toneCurveMax{},
      toneCurveMin{},
      highlightRecoveryIsReadOnly(false),
      embeddedLutAvailable(false),
      sidecarLutAvailable(false),
      timecodeFrames(0),
      timecodeIsDropFrame(false),
      hasSidecar(false),
      multiCardFiles(0) {}

twSettingsInitData::~twSettingsInitData() = default;

namespace {

unsigned int flag(bool value) { return value ? 1u : 0u; }

// A tone curve as the panels read it. The video black level has two forms:
// a JSON boolean in "gammaControlsPerPreset", 0 or 1 in "cameraMetadata", and
// each reader expects its own.
void addGammaControls(QV_JSON& json, rapidjson::Value& object, const twGammaControlsValues& curve,
                      bool videoBlackAsBoolean) {
    json.addFloatToObject(object, "saturation", curve.saturation);
    json.addFloatToObject(object, "contrast", curve.contrast);
    json.addFloatToObject(object, "midpoint", curve.midpoint);
    json.addFloatToObject(object, "highlight", curve.highlights);
    json.addFloatToObject(object, "shadow", curve.shadows);
    json.addFloatToObject(object, "whiteLvl", curve.whiteLevel);
    json.addFloatToObject(object, "blackLvl", curve.blackLevel);
    if (videoBlackAsBoolean) {
        json.addBoolToObject(object, "useVideoBlackLvl", curve.useVideoBlackLevel);
    } else {
        json.addUintToObject(object, "useVideoBlackLvl", flag(curve.useVideoBlackLevel));
    }
}

}  // namespace

void twSettingsInitData::fillInfosIntoJSONObject(QV_JSON& json, rapidjson::Value& object) {
    // A count beyond its list never reaches the array's end.
    const uint32_t isos = isoCount < 30 ? isoCount : 30;
    json.addUintArrayToObject(object, "isoList", std::vector<unsigned int>(isoList, isoList + isos));
    json.addUintToObject(object, "isoIsReadOnly", flag(isoIsReadOnly));
    json.addUintToObject(object, "highlightRecoveryIsReadOnly", flag(highlightRecoveryIsReadOnly));
    json.addUintToObject(object, "colorTempIsReadOnly", flag(colorTempIsReadOnly));
    json.addUintToObject(object, "tintIsReadOnly", flag(tintIsReadOnly));

    // Two objects, one per colour science index, even for a clip with one; a
    // gamma whose curve is unknown has no member, so indices may be missing.
    rapidjson::Value perPreset;
    json.createEmptyArray(perPreset);
    for (const auto& science : gammaControlsPerPreset) {
        rapidjson::Value byGamma;
        json.createEmptyObject(byGamma);
        for (size_t gamma = 0; gamma < 16; ++gamma) {
            if (!science[gamma].first) continue;
            rapidjson::Value curve;
            json.createEmptyObject(curve);
            addGammaControls(json, curve, science[gamma].second, true);
            json.addObjectToObject(byGamma, std::to_string(gamma).c_str(), curve);
        }
        json.addObjectToArray(perPreset, byGamma);
    }
    json.addArrayToObject(object, "gammaControlsPerPreset", perPreset);

    json.addUintToObject(object, "embeddedLutAvailable", flag(embeddedLutAvailable));
    json.addUintToObject(object, "sidecarLutAvailable", flag(sidecarLutAvailable));
    json.addStringToObject(object, "timecode", qvUtf8String::FromFixedUtf8CharArray(attributes.frame.timecode));
    json.addInt64ToObject(object, "timecodeFrames", timecodeFrames);
    json.addUintToObject(object, "timecodeIsDropFrame", flag(timecodeIsDropFrame));
    json.addUintToObject(object, "hasSidecar", flag(hasSidecar));
    json.addUintToObject(object, "multiCardFiles", multiCardFiles);

    const twClipAttributes& clip = attributes.clip;
    const twFrameAttributes& frame = attributes.frame;
    rapidjson::Value camera;
    json.createEmptyObject(camera);
    json.addUintToObject(camera, "colorScience", clip.colorScienceGen);
    json.addStringToObject(camera, "gamut", qvUtf8String::FromFixedUtf8CharArray(clip.gamut));
    json.addUintToObject(camera, "gamutCompressionEnabled", flag(clip.gamutCompression));
    json.addStringToObject(camera, "gamma", qvUtf8String::FromFixedUtf8CharArray(clip.gamma));
    json.addUintToObject(camera, "iso", frame.iso);
    json.addFloatToObject(camera, "exposure", frame.exposure);
    json.addUintToObject(camera, "highlightRecovery", flag(clip.highlightRecovery));
    json.addStringToObject(camera, "lut", qvUtf8String::FromFixedUtf8CharArray(clip.lutMode));
    json.addUintToObject(camera, "colorTemp", frame.kelvin);
    json.addIntToObject(camera, "tint", frame.tint);
    addGammaControls(json, camera, clip.gammaControls, false);
    json.addObjectToObject(object, "cameraMetadata", camera);
}
