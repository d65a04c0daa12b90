#include "Manager/twAttributes.h"

#include <cstring>
#include <sstream>

void twCopyFixedText(char* field, size_t fieldSize, const char* text) {
    if (!field || fieldSize == 0) return;
    const size_t length = text ? ::strnlen(text, fieldSize) : 0;
    if (length > 0) std::memcpy(field, text, length);
    std::memset(field + length, 0, fieldSize - length);
}

twGammaControlsValues::twGammaControlsValues()
    : saturation(1.0f),
      contrast(0.5f),
      midpoint(0.41f),
      highlights(1.0f),
      shadows(1.0f),
      whiteLevel(1.0f),
      blackLevel(0.0f),
      useVideoBlackLevel(false),
      padding{} {}

twClipAttributes::twClipAttributes()
    : colorScienceGen(4),
      gamut{},
      gamutCompression(false),
      gamma{},
      padding0(0),
      gammaControls(),
      highlightRecovery(false),
      lutMode{},
      padding1{} {
    twCopyFixedText(gamut, sizeof(gamut), "Blackmagic Design");
    twCopyFixedText(gamma, sizeof(gamma), "Blackmagic Design Film");
    twCopyFixedText(lutMode, sizeof(lutMode), "Disabled");
}

bool twClipAttributes::isCustomGamma() const {
    // The literal ends within the field, so this is an exact match.
    return std::strncmp(gamma, TW_CUSTOM_GAMMA_NAME, sizeof(gamma)) == 0;
}

twFrameAttributes::twFrameAttributes() : iso(800), kelvin(5500), tint(10), padding{}, exposure(0.0f), timecode{} {
    twCopyFixedText(timecode, sizeof(timecode), "00:00:00:00");
}

twAttributes::twAttributes() : useClipAndFrameAttributes(false), padding{}, clip(), frame() {}

bool operator==(const twGammaControlsValues& a, const twGammaControlsValues& b) {
    return a.saturation == b.saturation && a.contrast == b.contrast && a.midpoint == b.midpoint &&
           a.highlights == b.highlights && a.shadows == b.shadows && a.whiteLevel == b.whiteLevel &&
           a.blackLevel == b.blackLevel && a.useVideoBlackLevel == b.useVideoBlackLevel;
}

bool operator==(const twClipAttributes& a, const twClipAttributes& b) {
    if (a.colorScienceGen != b.colorScienceGen) return false;
    if (std::strncmp(a.gamut, b.gamut, sizeof(a.gamut)) != 0) return false;
    if (a.gamutCompression != b.gamutCompression) return false;
    if (std::strncmp(a.gamma, b.gamma, sizeof(a.gamma)) != 0) return false;
    if (a.isCustomGamma() && !(a.gammaControls == b.gammaControls)) return false;
    if (a.highlightRecovery != b.highlightRecovery) return false;
    return std::strncmp(a.lutMode, b.lutMode, sizeof(a.lutMode)) == 0;
}

bool operator==(const twFrameAttributes& a, const twFrameAttributes& b) {
    return a.iso == b.iso && a.kelvin == b.kelvin && a.tint == b.tint && a.exposure == b.exposure;
}

bool operator==(const twAttributes& a, const twAttributes& b) {
    if (a.useClipAndFrameAttributes != b.useClipAndFrameAttributes) return false;
    if (!a.useClipAndFrameAttributes) return true;
    return a.clip == b.clip && a.frame == b.frame;
}

qvUtf8String twAttributes::toStr(const twAttributes& attributes) {
    std::ostringstream text;
    text << "useClipAndFrameAttributes: " << (attributes.useClipAndFrameAttributes ? 1 : 0) << "\n";
    if (!attributes.useClipAndFrameAttributes) return qvUtf8String(text.str());

    const twClipAttributes& clip = attributes.clip;
    text << "--- ClipAttributes ---\n";
    text << "Color Science : Version " << clip.colorScienceGen << "\n";
    text << "Gamut : " << qvUtf8String::FromFixedUtf8CharArray(clip.gamut).Str() << "\n";
    text << "Gamut Compression Enabled : " << (clip.gamutCompression ? 1 : 0) << "\n";
    text << "Highlight Recovery : " << (clip.highlightRecovery ? 1 : 0) << "\n";
    text << "LUT Mode : " << qvUtf8String::FromFixedUtf8CharArray(clip.lutMode).Str() << "\n";
    text << "Gamma : " << qvUtf8String::FromFixedUtf8CharArray(clip.gamma).Str() << "\n";

    const twGammaControlsValues& curve = clip.gammaControls;
    text << "GammaControls : \n";
    text << "    - Constrast : " << curve.contrast << "\n";
    text << "    - Saturation : " << curve.saturation << "\n";
    text << "    - Midpoint : " << curve.midpoint << "\n";
    text << "    - Highlights : " << curve.highlights << "\n";
    text << "    - Shadows : " << curve.shadows << "\n";
    text << "    - White Lvl : " << curve.whiteLevel << "\n";
    text << "    - Black Lvl : " << curve.blackLevel << "\n";
    text << "    - BlackLvlUsed : " << (curve.useVideoBlackLevel ? 1 : 0) << "\n";

    const twFrameAttributes& frame = attributes.frame;
    text << "\n--- FrameAttributes ---\n";
    text << "ColorTemp : " << frame.kelvin << "\n";
    text << "Tint : " << frame.tint << "\n";
    text << "Exposure : " << frame.exposure << "\n";
    text << "Iso : " << frame.iso << "\n";
    return qvUtf8String(text.str());
}

const std::vector<WB_PresetInfo> s_whiteBalancePresetVector = {
    {WB_PRESET_AS_SHOT, 0, 0},        {WB_PRESET_DAYLIGHT, 5500, 10}, {WB_PRESET_CLOUDY, 6500, 10},
    {WB_PRESET_SHADE, 7500, 10},      {WB_PRESET_TUNGSTEN, 2850, 0},  {WB_PRESET_FLUORESCENT, 3800, 21},
    {WB_PRESET_FLASH, 5500, 0},       {WB_PRESET_CUSTOM, 0, 0},
};
