#pragma once
// A preset: a named, partial set of decode settings in a ".twPreset" file of
// the "TW_Preset" folder. Every setting has an active flag (by BRAW_Settings),
// and applying a preset changes only the settings whose flag is set.
//
// The file is the sidecar's vocabulary with every "_active" companion, plus
// "tw_presetName" when the preset is named and "tw_wbPreset" (the white
// balance preset's text, "Fluoresent" spelling included) unless there is none.

#include "Manager/twAttributes.h"
#include "String/qvUtf8String.h"
#include "Utils/qvResult.h"

#include <vector>

class TW_Preset {
public:
    TW_Preset();

    // The slot `index` of the preset list: its file in the preset folder and the
    // name the options file keeps for it (unless that is "No Preset").
    static QvResult fromSlot(int index, TW_Preset& out);
    // <preset folder>/TW_Preset_<index + 1>.twPreset, the folder created when missing.
    static QvResult slotFilePath(int index, qvUtf8String& out);

    // "#" + (index + 1) + " - " + the name when loaded and named, "Untitled
    // Preset" when loaded and unnamed, "No Preset" when not loaded: the form of
    // TWDebugOptions::getPresetNamesWithPrefix.
    qvUtf8String getDisplayedName() const;
    // An empty text is ignored.
    void setName(const qvUtf8String& name);

    QvResult load();
    // Reading failures leave the values as they were, with the preset not
    // loaded. A file with a key of the wrong type is refused whole ("This Preset
    // File has irregularities - You should considere re-saving it") and the
    // preset is left as it was.
    QvResult load(const qvUtf8String& path);
    QvResult save();
    // Replaces the file through a temporary file: a failed save ("Impossible to
    // write Preset to disk") leaves the former file.
    QvResult save(const qvUtf8String& path);

    // Applies the active settings onto the arguments. Gamut compression is never
    // applied; kelvin and tint only without an active white balance preset or
    // with the custom one; the tone curve only under the custom gamma when the
    // gamma is applied.
    void getValues(twClipAttributes& clip, twFrameAttributes& frame, WB_Preset& wb) const;
    // `active` must hold BRAW_SETTINGS_COUNT flags, else std::runtime_error
    // "ERROR - Active Params have not the good size when settings Values".
    void setValues(const twClipAttributes& clip, const twFrameAttributes& frame, const WB_Preset& wb,
                   const std::vector<bool>& active);

    int32_t m_index = -1;
    bool m_hasName = false;
    qvUtf8String m_name;
    bool m_isLoaded = false;
    qvUtf8String m_filePath;
    twClipAttributes m_clipAttributes;
    twFrameAttributes m_frameAttributes;
    WB_Preset m_wbPreset = WB_PRESET_AS_SHOT;
    std::vector<bool> m_active;
};
