#pragma once
// A clip's ".sidecar": the decoder library's JSON file of clip and frame
// settings beside the clip. The same keys, each with an "_active" companion,
// make the body of a preset file, so one reader and one writer serve both.
//
// Keys, in the order they are written, with the BRAW_Settings index of each:
//   12 "tone_curve_saturation"  13 "tone_curve_contrast"  14 "tone_curve_midpoint"
//   15 "tone_curve_highlights"  16 "tone_curve_shadows"   17 "tone_curve_white_leve"
//   18 "tone_curve_black_leve"  19 "tone_curve_video_black_leve"  11 "viewing_gamma"
//    1 "viewing_gamut"  2 "gamut_compression_enable"  0 "viewing_bmdgen"
//    5 "highlight_recovery"  7 "post_3dlut_mode"
//   and the frame-level  4 "exposure"  9 "white_balance_kelvin"  10 "white_balance_tint"  3 "iso"
// The three "_leve" names are the format's own: there is no final "l".
//
// A frame-level key holds an object of one member named by the timecode:
// { "iso": { "00:00:00:00": 800 } }. On reading, the first member is taken
// whatever its name, and a plain number is taken as it is.
//
// Every key the file holds that is not in the list stays as it was on a write.

#include "Manager/twAttributes.h"
#include "String/qvUtf8String.h"
#include "Utils/qvJSON.h"

#include <vector>

class SidecarUtility {
public:
    enum SidecarError : int32_t {
        SIDECAR_OK = 0,
        SIDECAR_CANT_OPEN = 1,     // the file exists and can't be opened
        SIDECAR_WRITE_FAILED = 2,
        SIDECAR_SYNTAX = 3,        // a key's value has the wrong type
        SIDECAR_BAD_JSON = 4,      // the file isn't valid JSON
        SIDECAR_MISSING = 5,
    };

    // Type codes of a value.
    enum ValueType : int32_t {
        TYPE_FLOAT = 0,
        TYPE_U16 = 1,
        TYPE_U32 = 2,
        TYPE_I16 = 3,
        TYPE_I32 = 4,
        TYPE_BOOL = 5,    // 0 or 1; a JSON boolean is read as well
        TYPE_STRING = 6,  // the value is a qvUtf8String
    };

    // The whole file into prefs.clip and prefs.frame; fields without a key keep
    // their values. useClipAndFrameAttributes isn't touched.
    static SidecarError fillPrefsFromSidecar(const qvUtf8String& path, twAttributes& prefs);

    // Every key of the list from the document's root. `activeFlags` must hold
    // BRAW_SETTINGS_COUNT flags. A key of the wrong type is logged, leaves its
    // field alone and makes the result SIDECAR_SYNTAX; the others are read all
    // the same.
    static SidecarError fillPrefsFromJSONSidecarValues(QV_JSON& json, twClipAttributes& clip,
                                                       twFrameAttributes& frame, std::vector<bool>& activeFlags);

    // One key and its companion. `value` points to the field's type (a
    // qvUtf8String for TYPE_STRING). The flag of `index` is the companion's
    // value when it reads, else whether the value itself read. `error` becomes
    // SIDECAR_SYNTAX on a value of the wrong type and is left alone otherwise.
    // Booleans and strings can't be frame-level: that is a std::runtime_error.
    static void getValueAndActiveState(const qvUtf8String& key, int index, QV_JSON& json, SidecarError& error,
                                       std::vector<bool>& activeFlags, void* value, int typeCode, bool frameLevel);

    // Puts the settings into the file, keeping every other key it holds, with
    // the sidecar LUT's text laid out again as the decoder library reads it. A
    // file that isn't valid JSON is replaced. The file is replaced whole through
    // a temporary file: on failure (SIDECAR_WRITE_FAILED) it is as it was.
    static SidecarError writeSidecarFromPrefs(const qvUtf8String& path, const twAttributes& prefs);

    // Every key of the list into the document's root, each old member removed
    // first, so the touched keys move to the end. With `writeActive` each key
    // is preceded by its companion.
    static void fillJSONFromSidecarValues(QV_JSON& json, const twClipAttributes& clip, const twFrameAttributes& frame,
                                          const std::vector<bool>& activeFlags, bool writeActive);

    // One key and, with `writeActive`, its companion. A float that isn't
    // finite has no JSON form: the key is then left as it was in the document
    // (the companion is written all the same).
    static void setValueAndActiveStateInJson(const qvUtf8String& key, int index, QV_JSON& json,
                                             const std::vector<bool>& activeFlags, const void* value, int typeCode,
                                             bool frameLevel, const qvUtf8String& frameKey, bool writeActive);

    // Every member of the root named key (a file may hold a key twice), the
    // other members keeping their order.
    static void removeAllMembers(QV_JSON& json, const char* key);

    // "tw_" + key + "_active"; a key that already starts with "tw_" keeps a single prefix.
    static qvUtf8String activeKeyOf(const qvUtf8String& key);
};
