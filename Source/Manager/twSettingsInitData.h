#pragma once
// What a settings panel must know about a clip before it can show a control:
// the clip's values as recorded, the lists of choices, the ranges, what is
// read-only, and the default tone curve of each gamma. A clip holds it once it
// has been filled from the clip and its first frame; the panels receive it as
// JSON.

#include "Manager/twAttributes.h"
#include "Utils/qvJSON.h"

#include <cstdint>
#include <utility>

class twSettingsInitData {
public:
    twSettingsInitData();
    virtual ~twSettingsInitData();
    twSettingsInitData(const twSettingsInitData&) = default;
    twSettingsInitData& operator=(const twSettingsInitData&) = default;

    // Adds what the panels read to `object`, a value of `json`'s document. The
    // lists of gamuts, gammas and colour sciences and the ranges stay out: the
    // panels have them from the setting vocabulary.
    virtual void fillInfosIntoJSONObject(QV_JSON& json, rapidjson::Value& object);

    twAttributes attributes;
    // Cleared when the probing of the first frame starts.
    bool ready;
    uint16_t colorScienceList[2];
    uint32_t colorScienceCount;
    char gamutList[14][64];
    uint32_t gamutCount;
    char gammaList[16][64];
    uint32_t gammaCount;
    uint32_t isoList[30];
    uint32_t isoCount;
    bool isoIsReadOnly;
    // By colour science index, then gamma index; the flag says the curve is known.
    std::pair<bool, twGammaControlsValues> gammaControlsPerPreset[2][16];
    uint32_t colorTempMax;
    uint32_t colorTempMin;
    bool colorTempIsReadOnly;
    int16_t tintMax;
    int16_t tintMin;
    bool tintIsReadOnly;
    float exposureMax;
    float exposureMin;
    // Saturation, contrast, midpoint, highlights, shadows, white level, black level.
    float toneCurveMax[7];
    float toneCurveMin[7];
    bool highlightRecoveryIsReadOnly;
    bool embeddedLutAvailable;
    bool sidecarLutAvailable;
    int32_t timecodeFrames;
    bool timecodeIsDropFrame;
    bool hasSidecar;
    uint32_t multiCardFiles;
};
