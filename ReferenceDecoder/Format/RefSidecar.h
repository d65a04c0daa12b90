#pragma once
// The clip's ".sidecar" file as the library reads it at opening and on
// ReloadSidecarFile: the decode settings keys, the sidecar LUT of the
// "post_3dlut_sidecar_*" members, and every other member as metadata that
// takes precedence over the clip's own.
//
// Tolerance follows the library's callbacks: a file that is not valid JSON (or
// not a JSON object) is ignored whole and reported as an error with the line
// number; a member of the wrong type is ignored and reported as a warning with
// its line; everything else is used. Raw line feeds inside strings (the LUT
// data is laid out over many lines) are accepted.

#include "Format/RefClipModel.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace twref {

struct RefSidecarSettings {
    // Clip level.
    std::optional<float> toneCurveSaturation;       // "tone_curve_saturation"
    std::optional<float> toneCurveContrast;         // "tone_curve_contrast"
    std::optional<float> toneCurveMidpoint;         // "tone_curve_midpoint"
    std::optional<float> toneCurveHighlights;       // "tone_curve_highlights"
    std::optional<float> toneCurveShadows;          // "tone_curve_shadows"
    std::optional<float> toneCurveWhiteLevel;       // "tone_curve_white_leve"
    std::optional<float> toneCurveBlackLevel;       // "tone_curve_black_leve"
    std::optional<uint16_t> toneCurveVideoBlackLevel;  // "tone_curve_video_black_leve"
    std::optional<std::string> gamma;               // "viewing_gamma"
    std::optional<std::string> gamut;               // "viewing_gamut"
    std::optional<uint16_t> gamutCompression;       // "gamut_compression_enable"
    std::optional<uint16_t> colorScienceGen;        // "viewing_bmdgen"
    std::optional<uint16_t> highlightRecovery;      // "highlight_recovery"
    std::optional<std::string> lutMode;             // "post_3dlut_mode"
    // Frame level: a direct number, or an object whose first member is taken
    // (its name is a timecode).
    std::optional<float> exposure;                  // "exposure"
    std::optional<uint32_t> kelvin;                 // "white_balance_kelvin"
    std::optional<int16_t> tint;                    // "white_balance_tint"
    std::optional<uint32_t> iso;                    // "iso"
    // "post_3dlut_sidecar_name", "_title", "_size", "_data"; present only when
    // all four are there and the data has size^3 * 3 numbers.
    RefLut lut;
    // Every other member, in file order: strings as String, integers as S32
    // (U32 above its range), other numbers as Float32, booleans as U8, arrays of
    // numbers as Float32 arrays. Objects and nulls are skipped.
    std::vector<RefMetadataEntry> metadata;
};

struct RefSidecarIssue {
    uint32_t line = 0;  // 1-based; 0 when unknown
    std::string message;
};

struct RefSidecarResult {
    enum class Status {
        Missing,  // no file beside the clip
        Parsed,   // read (possibly with warnings): attached
        Failed,   // unreadable or bad JSON: ignored whole, not attached
    };
    Status status = Status::Missing;
    std::string path;
    RefSidecarSettings settings;
    std::vector<RefSidecarIssue> warnings;
    RefSidecarIssue error;  // with Failed
    bool attached() const { return status == Status::Parsed; }
};

class RefSidecar {
public:
    // "dir/clip.braw" -> "dir/clip.sidecar" (the extension replaced; appended when there is none).
    static std::string pathForClip(const std::string& clipPath);
    static RefSidecarResult read(const std::string& sidecarPath);
    static RefSidecarResult parse(const std::string& text);
    // Puts the settings into the current values of the model's attributes
    // (read-only attributes keep theirs) and the metadata over the clip metadata.
    // The LUT is not touched: the library keeps it beside the model.
    static void applyToModel(const RefSidecarSettings& settings, RefClipModel& model);
    // A sidecar text holding the settings that are set, the LUT members when a
    // LUT is present, and the metadata entries.
    static std::string serialize(const RefSidecarSettings& settings);
    static bool write(const std::string& sidecarPath, const RefSidecarSettings& settings);
};

}  // namespace twref
