#pragma once
// What the settings panels must know about one clip, gathered into its
// twSettingsInitData in two steps: the clip-level facts straight from the
// library's clip object (the recorded values, the lists of colour sciences,
// gamuts and gammas, the tone curve ranges and the default curve of each
// gamma), and the frame-level facts (ISO list, white balance and exposure
// ranges) from the clip's first frame, read without decoding.
//
// A camera whose ranges are not the usual ones fails on purpose: the panels'
// controls are laid out for those ranges.

#include <BlackmagicRawAPI.h>

#include "String/qvBSTR.h"
#include "Utils/qvResult.h"

#include <memory>

class qvBRAW_Clip;
class twSettingsInitData;

class SourceSettingsInitialization {
public:
    // The clip-level facts into the clip's data, which must exist. Clears the
    // data's ready flag first; on any failure the clip is left with no data,
    // so that a partly filled record is never seen. Takes the clip's lock.
    static QvResult initClipSourceSettingsInitData(qvBRAW_Clip& clip, IBlackmagicRaw* codec);
    // The lists, the tone curves and ranges, and the LUT facts. The caller
    // holds the clip's lock.
    static QvResult initClipSourceSettingsInitDataSharedPrefs(qvBRAW_Clip& clip, IBlackmagicRaw* codec,
                                                              const qvBSTR& cameraType);
    // The frame-level facts of `frame` into `data`.
    static QvResult getFrameInfosFromBM(IBlackmagicRawFrame* frame, std::shared_ptr<twSettingsInitData> data);
};
