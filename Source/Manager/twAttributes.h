#pragma once
// The decode settings a user can change for a clip: the colour science, gamut,
// gamma and tone curve of the clip, and the white balance, ISO and exposure of
// a frame.
//
// These are plain fixed-size records without pointers: twAttributes travels
// inside the importer's prefs blob, which the host keeps in its projects and
// compares byte for byte as part of its frame cache key. Texts are therefore
// fixed character arrays, NUL-padded, and a text that fills its array keeps no
// terminator. Every byte is a member, padding included, so that a record made
// here never carries indeterminate bytes into the blob.

#include "String/qvUtf8String.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

// The one gamma under which the tone curve controls act.
constexpr const char* TW_CUSTOM_GAMMA_NAME = "Blackmagic Design Custom";

// Bounded copy of `text` into a fixed text field of `fieldSize` bytes: the rest
// of the field is NUL, and a text of `fieldSize` bytes or more is cut with no
// terminator. A null text clears the field.
void twCopyFixedText(char* field, size_t fieldSize, const char* text);

// The tone curve of the custom gamma.
struct twGammaControlsValues {
    float saturation;
    float contrast;
    float midpoint;
    float highlights;
    float shadows;
    float whiteLevel;
    float blackLevel;
    bool useVideoBlackLevel;
    uint8_t padding[3];

    // The curve of a new clip: 1, 0.5, 0.41, 1, 1, 1, 0, no video black level.
    twGammaControlsValues();
};

struct twClipAttributes {
    uint16_t colorScienceGen;
    char gamut[64];
    bool gamutCompression;
    char gamma[64];
    uint8_t padding0;
    twGammaControlsValues gammaControls;
    bool highlightRecovery;
    char lutMode[12];  // "Disabled", "Embedded" or "Sidecar"
    uint8_t padding1[3];

    // Generation 4, "Blackmagic Design" gamut, "Blackmagic Design Film" gamma,
    // the default curve, LUT "Disabled", everything else off.
    twClipAttributes();

    // Whether the gamma is exactly TW_CUSTOM_GAMMA_NAME (compared within the field).
    bool isCustomGamma() const;
};

struct twFrameAttributes {
    uint32_t iso;
    uint32_t kelvin;
    int16_t tint;
    uint8_t padding[2];
    float exposure;
    // The sidecar's key of frame-level values; not a setting of its own.
    char timecode[12];

    // ISO 800, 5500 K, tint 10, exposure 0, timecode "00:00:00:00".
    twFrameAttributes();
};

struct twAttributes {
    // False: the values below are ignored and the decoder's own settings of the
    // clip stand.
    bool useClipAndFrameAttributes;
    uint8_t padding[3];
    twClipAttributes clip;
    twFrameAttributes frame;

    // Not in use, with the defaults of both records.
    twAttributes();

    // The log's view of the settings, one "name : value" line each.
    static qvUtf8String toStr(const twAttributes& attributes);
};

// A NaN compares unequal to everything, itself included.
bool operator==(const twGammaControlsValues& a, const twGammaControlsValues& b);
// The tone curve counts only under the custom gamma: elsewhere it doesn't change
// the picture, so two records that differ only there are the same settings.
bool operator==(const twClipAttributes& a, const twClipAttributes& b);
// The timecode is where the values are filed, not a value: it doesn't count.
bool operator==(const twFrameAttributes& a, const twFrameAttributes& b);
// Two records not in use are equal whatever they hold.
bool operator==(const twAttributes& a, const twAttributes& b);
inline bool operator!=(const twGammaControlsValues& a, const twGammaControlsValues& b) { return !(a == b); }
inline bool operator!=(const twClipAttributes& a, const twClipAttributes& b) { return !(a == b); }
inline bool operator!=(const twFrameAttributes& a, const twFrameAttributes& b) { return !(a == b); }
inline bool operator!=(const twAttributes& a, const twAttributes& b) { return !(a == b); }

// A white balance preset, numbered in the order of s_brawWBChoicesStr.
enum WB_Preset : uint32_t {
    WB_PRESET_AS_SHOT = 0,
    WB_PRESET_DAYLIGHT = 1,
    WB_PRESET_CLOUDY = 2,
    WB_PRESET_SHADE = 3,
    WB_PRESET_TUNGSTEN = 4,
    WB_PRESET_FLUORESCENT = 5,
    WB_PRESET_FLASH = 6,
    WB_PRESET_CUSTOM = 7,
    WB_PRESET_NONE = 8,
};

struct WB_PresetInfo {
    WB_Preset preset;
    uint32_t kelvin;
    int32_t tint;
};

// Kelvin and tint of each preset, in the order of s_brawWBChoicesStr. "As shot"
// and "Custom" carry no values of their own (0, 0).
extern const std::vector<WB_PresetInfo> s_whiteBalancePresetVector;

// The layout is part of the prefs blob that old projects hand back: keep it.
static_assert(sizeof(twGammaControlsValues) == 32, "twGammaControlsValues layout");
static_assert(offsetof(twGammaControlsValues, contrast) == 4 && offsetof(twGammaControlsValues, midpoint) == 8 &&
                  offsetof(twGammaControlsValues, highlights) == 12 && offsetof(twGammaControlsValues, shadows) == 16 &&
                  offsetof(twGammaControlsValues, whiteLevel) == 20 &&
                  offsetof(twGammaControlsValues, blackLevel) == 24 &&
                  offsetof(twGammaControlsValues, useVideoBlackLevel) == 28,
              "twGammaControlsValues layout");
static_assert(sizeof(twClipAttributes) == 180, "twClipAttributes layout");
static_assert(offsetof(twClipAttributes, gamut) == 2 && offsetof(twClipAttributes, gamutCompression) == 66 &&
                  offsetof(twClipAttributes, gamma) == 67 && offsetof(twClipAttributes, gammaControls) == 132 &&
                  offsetof(twClipAttributes, highlightRecovery) == 164 && offsetof(twClipAttributes, lutMode) == 165,
              "twClipAttributes layout");
static_assert(sizeof(twFrameAttributes) == 28, "twFrameAttributes layout");
static_assert(offsetof(twFrameAttributes, kelvin) == 4 && offsetof(twFrameAttributes, tint) == 8 &&
                  offsetof(twFrameAttributes, exposure) == 12 && offsetof(twFrameAttributes, timecode) == 16,
              "twFrameAttributes layout");
static_assert(sizeof(twAttributes) == 212, "twAttributes is 212 bytes inside the prefs blob");
static_assert(offsetof(twAttributes, clip) == 4 && offsetof(twAttributes, frame) == 184, "twAttributes layout");
static_assert(std::is_trivially_copyable<twAttributes>::value, "twAttributes is copied as plain bytes");
static_assert(std::is_standard_layout<twAttributes>::value, "twAttributes is a plain record");
static_assert(sizeof(WB_Preset) == 4, "WB_Preset is a 32-bit number");
