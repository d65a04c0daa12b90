#pragma once
// A WAV file of 32-bit float samples, written as the samples arrive: the host
// hands audio over in blocks, one buffer per channel, and the file interleaves
// them. libsndfile writes the file; more than two channels take the
// extensible format.

#include <cstdint>
#include <string>
#include <vector>

struct sf_private_tag;

class twWavWriter {
public:
    twWavWriter() = default;
    // Finishes the file if it is still open.
    ~twWavWriter();
    twWavWriter(const twWavWriter&) = delete;
    twWavWriter& operator=(const twWavWriter&) = delete;

    // Creates the file for `channels` channels at `sampleRate` frames per
    // second. False with `error` set on failure.
    bool open(const std::string& path, uint32_t channels, uint32_t sampleRate, std::string& error);
    // Appends `frames` sample frames, one buffer per channel.
    bool append(const float* const* channels, uint32_t frames, std::string& error);
    // Writes the final sizes and closes the file.
    bool finish(std::string& error);

    uint64_t framesWritten() const { return m_frames; }

private:
    sf_private_tag* m_file = nullptr;
    uint32_t m_channels = 0;
    uint64_t m_frames = 0;
    std::vector<float> m_interleaved;
};
