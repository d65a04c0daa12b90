#pragma once
// Timecode texts of a reference clip: "hh:mm:ss:ff", with ';' before the
// frames for drop-frame timecode. The counting base is the rate rounded to an
// integer (30 for 29.97), at least 1.

#include "Format/RefClipModel.h"

#include <cstdint>
#include <string>

namespace twref {

class RefTimecode {
public:
    static uint32_t timebase(float frameRate);
    // Frame number of a text at a timebase; false when the text is no timecode.
    static bool parse(const std::string& text, uint32_t timebase, bool dropFrame, uint64_t& frames);
    static std::string format(uint64_t frames, uint32_t timebase, bool dropFrame);
    // QueryTimecodeInfo's base frame index of a clip.
    static uint32_t baseFrame(const RefClipModel& model);
    // GetTimecodeForFrame's text: the frame's override, else base + index.
    static std::string forFrame(const RefClipModel& model, uint64_t frameIndex);
};

}  // namespace twref
