#include "twWavWriter.h"

#include <cerrno>
#include <cstring>
#include <vector>

namespace {

constexpr uint16_t kFormatIeeeFloat = 3;
constexpr uint16_t kFormatExtensible = 0xFFFE;
constexpr uint32_t kBytesPerSample = 4;
// Readers refuse a RIFF chunk beyond 4 GiB: the data size must fit 32 bits.
constexpr uint64_t kMaxDataBytes = 0xFFFFFFFFull - 80;

// The subtype GUID of float samples in an extensible format chunk:
// 00000003-0000-0010-8000-00aa00389b71, in its on-disk byte order.
const unsigned char kFloatSubtype[16] = {0x03, 0x00, 0x00, 0x00, 0x00, 0x00, 0x10, 0x00,
                                         0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

void put16(std::vector<unsigned char>& out, uint16_t v) {
    out.push_back(static_cast<unsigned char>(v & 0xFF));
    out.push_back(static_cast<unsigned char>(v >> 8));
}

void put32(std::vector<unsigned char>& out, uint32_t v) {
    for (int shift = 0; shift < 32; shift += 8) out.push_back(static_cast<unsigned char>((v >> shift) & 0xFF));
}

void putTag(std::vector<unsigned char>& out, const char* tag) { out.insert(out.end(), tag, tag + 4); }

}  // namespace

twWavWriter::~twWavWriter() {
    std::string ignored;
    if (m_file) finish(ignored);
}

// Float samples need a "fact" chunk; more than two channels need the extensible
// format chunk, whose channel mask 0 leaves the speaker layout unspecified.
bool twWavWriter::writeHeader() {
    const bool extensible = m_channels > 2;
    const uint64_t dataBytes = m_frames * m_channels * kBytesPerSample;
    const uint32_t fmtSize = extensible ? 40 : 18;
    const uint32_t riffSize = 4 + (8 + fmtSize) + (8 + 4) + (8 + static_cast<uint32_t>(dataBytes));

    std::vector<unsigned char> header;
    putTag(header, "RIFF");
    put32(header, riffSize);
    putTag(header, "WAVE");

    putTag(header, "fmt ");
    put32(header, fmtSize);
    put16(header, extensible ? kFormatExtensible : kFormatIeeeFloat);
    put16(header, static_cast<uint16_t>(m_channels));
    put32(header, m_sampleRate);
    put32(header, m_sampleRate * m_channels * kBytesPerSample);
    put16(header, static_cast<uint16_t>(m_channels * kBytesPerSample));
    put16(header, 8 * kBytesPerSample);
    if (extensible) {
        put16(header, 22);
        put16(header, 8 * kBytesPerSample);
        put32(header, 0);
        header.insert(header.end(), kFloatSubtype, kFloatSubtype + sizeof(kFloatSubtype));
    } else {
        put16(header, 0);
    }

    putTag(header, "fact");
    put32(header, 4);
    put32(header, static_cast<uint32_t>(m_frames));

    putTag(header, "data");
    put32(header, static_cast<uint32_t>(dataBytes));

    return std::fseek(m_file, 0, SEEK_SET) == 0 && std::fwrite(header.data(), 1, header.size(), m_file) == header.size();
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
    if (sampleRate == 0) {
        error = "cannot write a sample rate of 0";
        return false;
    }
    m_file = std::fopen(path.c_str(), "wb");
    if (!m_file) {
        error = path + ": " + std::strerror(errno);
        return false;
    }
    m_channels = channels;
    m_sampleRate = sampleRate;
    m_frames = 0;
    if (!writeHeader()) {
        error = path + ": cannot write the header";
        std::fclose(m_file);
        m_file = nullptr;
        return false;
    }
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
    std::vector<unsigned char> bytes;
    bytes.reserve(static_cast<size_t>(frames) * m_channels * kBytesPerSample);
    for (uint32_t frame = 0; frame < frames; ++frame) {
        for (uint32_t channel = 0; channel < m_channels; ++channel) {
            uint32_t bits;
            std::memcpy(&bits, &channels[channel][frame], sizeof(bits));
            put32(bytes, bits);
        }
    }
    if (std::fwrite(bytes.data(), 1, bytes.size(), m_file) != bytes.size()) {
        error = std::string("cannot write the samples: ") + std::strerror(errno);
        return false;
    }
    m_frames += frames;
    return true;
}

bool twWavWriter::finish(std::string& error) {
    if (!m_file) return true;
    const bool header = writeHeader();
    const bool closed = std::fclose(m_file) == 0;
    m_file = nullptr;
    if (!header || !closed) {
        error = "cannot finish the file";
        return false;
    }
    return true;
}
