#pragma once
// Making reference clips in tests and tools: a model in, a .braw file out, plus
// helpers for the clips tests need most.

#include "Format/RefClipModel.h"
#include "Format/RefSidecar.h"

#include <cstdint>
#include <string>

namespace twref {

class RefClipWriter {
public:
    // Writes the clip file; false with error on an I/O failure.
    static bool write(const std::string& path, const RefClipModel& model, std::string* error = nullptr);
    // Writes raw bytes (for broken files in tests).
    static bool writeBytes(const std::string& path, const std::string& bytes, std::string* error = nullptr);
    // Writes the sidecar beside a clip path (clip.braw -> clip.sidecar).
    static bool writeSidecar(const std::string& clipPath, const RefSidecarSettings& settings,
                             std::string* error = nullptr);

    // Typical clips.
    static RefClipModel makeClip(uint32_t width, uint32_t height, float frameRate, uint64_t frameCount);
    // With audio of the given layout (sample count derived from the video).
    static RefClipModel makeClipWithAudio(uint32_t width, uint32_t height, float frameRate,
                                          uint64_t frameCount, uint32_t channels,
                                          uint32_t sampleRate, uint32_t bitDepth);
    // Every variant type once in the clip and frame metadata, arrays included.
    static void addAllMetadataTypes(RefClipModel& model);
    // An embedded LUT (Warm kind) and "lutm" "Embedded".
    static void addEmbeddedLut(RefClipModel& model, uint32_t size = 17);
    // The clip a trim job makes: frames [first, first + count) of model, with
    // overrides, timecode and audio moved along.
    static RefClipModel trimmed(const RefClipModel& model, uint64_t first, uint64_t count);
};

}  // namespace twref
