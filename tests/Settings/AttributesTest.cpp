#include "Manager/twAttributes.h"
#include "Manager/twSettingsVocabulary.h"

#include "RawBytes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <new>
#include <string>

using namespace twtest;

namespace {

twAttributes inUse() {
    twAttributes a;
    a.useClipAndFrameAttributes = true;
    return a;
}

void setGamma(twAttributes& a, const char* gamma) { twCopyFixedText(a.clip.gamma, sizeof(a.clip.gamma), gamma); }

}  // namespace

TEST(Attributes, DefaultsAreTheSameBytesWhateverTheMemoryHeldBefore) {
    // The blob is compared byte for byte by the host's cache: padding included,
    // a default record must not depend on what was in memory before it.
    Bytes expected(attr::size, 0);
    putDefaultAttributes(expected, 0);
    ASSERT_EQ(sizeof(twAttributes), 212u);

    alignas(twAttributes) unsigned char storage[sizeof(twAttributes)];
    for (int fill : {0x00, 0xAB, 0xFF}) {
        std::memset(storage, fill, sizeof(storage));
        twAttributes* a = new (storage) twAttributes();
        EXPECT_EQ(bytesOf(*a), expected) << "memory filled with " << fill;
        twAttributes copy = *a;
        EXPECT_EQ(bytesOf(copy), expected);
        a->~twAttributes();
    }
}

TEST(Attributes, FixedTextIsBoundedAndPadded) {
    char field[12];
    std::memset(field, 'x', sizeof(field));
    twCopyFixedText(field, sizeof(field), "Sidecar");
    EXPECT_EQ(std::string(field, sizeof(field)), std::string("Sidecar\0\0\0\0\0", 12));

    // A text that fills the field or more is cut, with no terminator.
    twAttributes a;
    const std::string longName(70, 'G');
    twCopyFixedText(a.clip.gamut, sizeof(a.clip.gamut), longName.c_str());
    EXPECT_EQ(std::string(a.clip.gamut, 64), longName.substr(0, 64));
    EXPECT_FALSE(a.clip.gamutCompression);  // the byte after the field is untouched
    EXPECT_EQ(qvUtf8String::FromFixedUtf8CharArray(a.clip.gamut).Str(), longName.substr(0, 64));

    twCopyFixedText(field, sizeof(field), nullptr);
    EXPECT_EQ(std::string(field, sizeof(field)), std::string(12, '\0'));
}

TEST(Attributes, RecordsNotInUseAreEqualWhateverTheyHold) {
    twAttributes a, b;
    b.clip.colorScienceGen = 5;
    twCopyFixedText(b.clip.gamut, 64, "Rec.709");
    b.clip.highlightRecovery = true;
    b.frame.iso = 3200;
    b.frame.exposure = 2.0f;
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(a != b);

    b.useClipAndFrameAttributes = true;
    EXPECT_FALSE(a == b);
    a.useClipAndFrameAttributes = true;
    EXPECT_FALSE(a == b);
    // In use, equal content is equal again.
    EXPECT_TRUE(inUse() == inUse());
}

TEST(Attributes, EveryFrameValueCountsButTheTimecode) {
    const twAttributes base = inUse();
    twAttributes b = base;
    twCopyFixedText(b.frame.timecode, 12, "01:02:03:04");
    EXPECT_TRUE(base == b);
    EXPECT_TRUE(base.frame == b.frame);

    b = base; b.frame.iso = 1600;       EXPECT_FALSE(base == b);
    b = base; b.frame.kelvin = 5600;    EXPECT_FALSE(base == b);
    b = base; b.frame.tint = -10;       EXPECT_FALSE(base == b);
    b = base; b.frame.exposure = 0.25f; EXPECT_FALSE(base == b);
}

TEST(Attributes, EveryClipValueCounts) {
    const twAttributes base = inUse();
    twAttributes b = base;
    b.clip.colorScienceGen = 5;                              EXPECT_FALSE(base == b);
    b = base; twCopyFixedText(b.clip.gamut, 64, "Rec.2020"); EXPECT_FALSE(base == b);
    b = base; b.clip.gamutCompression = true;                EXPECT_FALSE(base == b);
    b = base; setGamma(b, "Linear");                         EXPECT_FALSE(base == b);
    b = base; b.clip.highlightRecovery = true;               EXPECT_FALSE(base == b);
    b = base; twCopyFixedText(b.clip.lutMode, 12, "Embedded"); EXPECT_FALSE(base == b);

    // Texts compare as texts: what follows the terminator doesn't count.
    b = base;
    b.clip.gamut[40] = 'z';
    b.clip.lutMode[11] = 'z';
    EXPECT_TRUE(base == b);
}

TEST(Attributes, ToneCurveCountsOnlyUnderTheCustomGamma) {
    twAttributes film = inUse();
    twAttributes filmChanged = film;
    filmChanged.clip.gammaControls.contrast = 1.2f;
    filmChanged.clip.gammaControls.useVideoBlackLevel = true;
    EXPECT_TRUE(film == filmChanged);

    // A name that only starts like the custom gamma is another gamma.
    setGamma(film, "Blackmagic Design Custom 2");
    setGamma(filmChanged, "Blackmagic Design Custom 2");
    EXPECT_TRUE(film == filmChanged);

    twAttributes custom = inUse();
    setGamma(custom, TW_CUSTOM_GAMMA_NAME);
    ASSERT_TRUE(custom.clip.isCustomGamma());
    float twGammaControlsValues::*floats[] = {
        &twGammaControlsValues::saturation, &twGammaControlsValues::contrast,   &twGammaControlsValues::midpoint,
        &twGammaControlsValues::highlights, &twGammaControlsValues::shadows,    &twGammaControlsValues::whiteLevel,
        &twGammaControlsValues::blackLevel,
    };
    for (auto member : floats) {
        twAttributes changed = custom;
        changed.clip.gammaControls.*member += 0.125f;
        EXPECT_FALSE(custom == changed);
        EXPECT_FALSE(custom.clip.gammaControls == changed.clip.gammaControls);
    }
    twAttributes changed = custom;
    changed.clip.gammaControls.useVideoBlackLevel = true;
    EXPECT_FALSE(custom == changed);
}

TEST(Attributes, NotANumberIsUnequalEvenToItself) {
    twGammaControlsValues curve;
    curve.midpoint = std::numeric_limits<float>::quiet_NaN();
    const twGammaControlsValues same = curve;
    EXPECT_FALSE(curve == same);

    twAttributes custom = inUse();
    setGamma(custom, TW_CUSTOM_GAMMA_NAME);
    custom.clip.gammaControls = curve;
    const twAttributes copy = custom;
    EXPECT_FALSE(custom == copy);
    // Under another gamma the curve isn't looked at.
    setGamma(custom, "Blackmagic Design Film");
    EXPECT_TRUE(custom == twAttributes(custom));

    twAttributes frame = inUse();
    frame.frame.exposure = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(frame == twAttributes(frame));
}

TEST(Attributes, TextForTheLog) {
    EXPECT_EQ(twAttributes::toStr(twAttributes()).Str(), "useClipAndFrameAttributes: 0\n");

    twAttributes a = inUse();
    a.clip.colorScienceGen = 5;
    twCopyFixedText(a.clip.gamut, 64, "DaVinci Wide Gamut");
    a.clip.gamutCompression = true;
    setGamma(a, TW_CUSTOM_GAMMA_NAME);
    a.clip.gammaControls.saturation = 1.25f;
    a.clip.gammaControls.contrast = 0.333333f;
    a.clip.gammaControls.midpoint = 0.41f;
    a.clip.gammaControls.highlights = 2.0f;
    a.clip.gammaControls.shadows = 0.5f;
    a.clip.gammaControls.whiteLevel = 1.5f;
    a.clip.gammaControls.blackLevel = -0.1f;
    a.clip.gammaControls.useVideoBlackLevel = true;
    a.clip.highlightRecovery = false;
    twCopyFixedText(a.clip.lutMode, 12, "Sidecar");
    a.frame.iso = 1250;
    a.frame.kelvin = 3200;
    a.frame.tint = -12;
    a.frame.exposure = -1.5f;
    EXPECT_EQ(twAttributes::toStr(a).Str(),
              "useClipAndFrameAttributes: 1\n"
              "--- ClipAttributes ---\n"
              "Color Science : Version 5\n"
              "Gamut : DaVinci Wide Gamut\n"
              "Gamut Compression Enabled : 1\n"
              "Highlight Recovery : 0\n"
              "LUT Mode : Sidecar\n"
              "Gamma : Blackmagic Design Custom\n"
              "GammaControls : \n"
              "    - Constrast : 0.333333\n"
              "    - Saturation : 1.25\n"
              "    - Midpoint : 0.41\n"
              "    - Highlights : 2\n"
              "    - Shadows : 0.5\n"
              "    - White Lvl : 1.5\n"
              "    - Black Lvl : -0.1\n"
              "    - BlackLvlUsed : 1\n"
              "\n--- FrameAttributes ---\n"
              "ColorTemp : 3200\n"
              "Tint : -12\n"
              "Exposure : -1.5\n"
              "Iso : 1250\n");

    // A name that fills its field is shown whole and no further.
    twCopyFixedText(a.clip.lutMode, 12, "ABCDEFGHIJKLMNOP");
    EXPECT_NE(twAttributes::toStr(a).Str().find("LUT Mode : ABCDEFGHIJKL\n"), std::string::npos);
}

TEST(Attributes, WhiteBalancePresetsFollowTheChoiceList) {
    struct Row { uint32_t kelvin; int32_t tint; };
    const Row rows[] = {{0, 0}, {5500, 10}, {6500, 10}, {7500, 10}, {2850, 0}, {3800, 21}, {5500, 0}, {0, 0}};
    ASSERT_EQ(s_whiteBalancePresetVector.size(), 8u);
    ASSERT_EQ(s_brawWBChoicesStr.size(), s_whiteBalancePresetVector.size());
    for (size_t i = 0; i < s_whiteBalancePresetVector.size(); ++i) {
        // The row of a preset is found by its number and named by the same index.
        EXPECT_EQ(static_cast<size_t>(s_whiteBalancePresetVector[i].preset), i);
        EXPECT_EQ(s_whiteBalancePresetVector[i].kelvin, rows[i].kelvin) << i;
        EXPECT_EQ(s_whiteBalancePresetVector[i].tint, rows[i].tint) << i;
    }
    EXPECT_EQ(s_brawWBChoicesStr[WB_PRESET_CUSTOM].Str(), "Custom");
    EXPECT_EQ(s_brawWBChoicesStr[WB_PRESET_FLUORESCENT].Str(), "Fluoresent");
    EXPECT_EQ(static_cast<uint32_t>(WB_PRESET_NONE), 8u);
}
