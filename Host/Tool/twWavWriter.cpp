#include "twWavWriter.h"

#include <sndfile.h>

namespace {

constexpr uint64_t kBytesPerSample = 4;
// Readers refuse a RIFF chunk beyond 4 GiB: the data size must fit 32 bits.
constexpr uint64_t kMaxDataBytes = 0xFFFFFFFFull - 80;

}  // namespace

twWavWriter::~twWavWriter() {
    std::string ignored;
    finish(ignored);
}

bool twWavWriter::open(const std::string& path, uint32_t channels, uint32_t sampleRate, std::string& error) {
    if (m_file) {
        error = "a file is already open";
        return false;
    }
    if (channels == 0 || channels > 0xFFFF / kBytesPerSample) {
        error = "cannot write " + std::to_string(channels) + " channels";
        return false;
    }
    if (sampleRate == 0 || sampleRate > 0x7FFFFFFF) {
        error = "cannot write a sample rate of " + std::to_string(sampleRate);
        return false;
    }
    SF_INFO info{};
    info.samplerate = static_cast<int>(sampleRate);
    info.channels = static_cast<int>(channels);
    info.format = (channels > 2 ? SF_FORMAT_WAVEX : SF_FORMAT_WAV) | SF_FORMAT_FLOAT;
    m_file = sf_open(path.c_str(), SFM_WRITE, &info);
    if (!m_file) {
        error = path + ": " + sf_strerror(nullptr);
        return false;
    }
    m_channels = channels;
    m_frames = 0;
    return true;
}

bool twWavWriter::append(const float* const* channels, uint32_t frames, std::string& error) {
    if (!m_file) {
        error = "no file is open";
        return false;
    }
    if ((m_frames + frames) * m_channels * kBytesPerSample > kMaxDataBytes) {
        error = "the audio does not fit a WAV file";
        return false;
    }
    m_interleaved.resize(static_cast<size_t>(frames) * m_channels);
    float* out = m_interleaved.data();
    for (uint32_t frame = 0; frame < frames; ++frame)
        for (uint32_t channel = 0; channel < m_channels; ++channel) *out++ = channels[channel][frame];
    const sf_count_t written = sf_writef_float(m_file, m_interleaved.data(), frames);
    m_frames += static_cast<uint64_t>(written > 0 ? written : 0);
    if (written != static_cast<sf_count_t>(frames)) {
        error = std::string("cannot write the samples: ") + sf_strerror(m_file);
        return false;
    }
    return true;
}

bool twWavWriter::finish(std::string& error) {
    if (!m_file) return true;
    const int closed = sf_close(m_file);
    m_file = nullptr;
    if (closed != 0) {
        error = std::string("cannot finish the file: ") + sf_error_number(closed);
        return false;
    }
    return true;
}
