#pragma once
// Where the fields of the settings record that the importer and its source
// settings effect exchange sit, in numbers: 64-bit, the object as the effect
// sees it, its virtual table first. Fields of the clip's settings are at
// kAttributes plus the offsets of twtest::attr.

#include <cstddef>

namespace twtest {
namespace initdata {
constexpr size_t kAttributes = 8;
constexpr size_t kReady = 220;
constexpr size_t kColorScienceList = 222;  // u16[2]
constexpr size_t kColorScienceCount = 228;
constexpr size_t kGamutList = 232;  // char[14][64]
constexpr size_t kGamutCount = 1128;
constexpr size_t kGammaList = 1132;  // char[16][64]
constexpr size_t kGammaCount = 2156;
constexpr size_t kIsoList = 2160;  // u32[30]
constexpr size_t kIsoCount = 2280;
constexpr size_t kIsoIsReadOnly = 2284;
// [2][16] of a flag and a tone curve of 32 bytes, 4 bytes in.
constexpr size_t kGammaControlsPerPreset = 2288;
constexpr size_t kGammaControlsEntry = 36;
constexpr size_t kGammaControlsCurve = 4;
constexpr size_t kColorTempMax = 3440;
constexpr size_t kColorTempMin = 3444;
constexpr size_t kColorTempIsReadOnly = 3448;
constexpr size_t kTintMax = 3450;
constexpr size_t kTintMin = 3452;
constexpr size_t kTintIsReadOnly = 3454;
constexpr size_t kExposureMax = 3456;
constexpr size_t kExposureMin = 3460;
// float[7]: saturation, contrast, midpoint, highlights, shadows, white level, black level.
constexpr size_t kToneCurveMax = 3464;
constexpr size_t kToneCurveMin = 3492;
constexpr size_t kHighlightRecoveryIsReadOnly = 3520;
constexpr size_t kEmbeddedLutAvailable = 3521;
constexpr size_t kSidecarLutAvailable = 3522;
constexpr size_t kTimecodeFrames = 3524;
constexpr size_t kTimecodeIsDropFrame = 3528;
constexpr size_t kHasSidecar = 3529;
constexpr size_t kMultiCardFiles = 3532;
constexpr size_t kImporterFailed = 3536;
constexpr size_t kFilepathLength = 3552;
constexpr size_t kFilepath = 3560;
constexpr size_t kFilepathSize = 1024;
constexpr size_t kReloadOptionsCommand = 4584;
constexpr size_t kReloadSidecarCommand = 4585;
constexpr size_t kImporterAnswered = 4586;
constexpr size_t kAdobeTimecodeSet = 4587;
constexpr size_t kAdobeTimecode = 4588;
constexpr size_t kSize = 4592;

// The entry of colour science index `science` and gamma index `gamma`.
constexpr size_t gammaControls(size_t science, size_t gamma) {
    return kGammaControlsPerPreset + (science * 16 + gamma) * kGammaControlsEntry;
}
}  // namespace initdata
}  // namespace twtest
