// tarnwick-host's clip commands run as a person runs them, on the product's
// staged plug-in and reference clips: what `info` prints, and the WAV file
// `audio` writes.

#include "HostToolSupport.h"
#include "TempFolder.h"

#include "Render/RefAudioRenderer.h"
#include "Writer/RefClipWriter.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

using twtest::Contains;
using twtest::Quote;
using twtest::ToolRun;

// The tool on the staged plug-in, with its home and system root inside `folder`.
class HostToolClip : public ::testing::Test {
protected:
    HostToolClip() : m_home(m_folder.makeFolder("home")), m_root(m_folder.makeFolder("root")) {}

    ToolRun run(const std::string& arguments) const {
        return twtest::RunTool(m_folder.path(), "--home " + Quote(m_home) + " --system-root " + Quote(m_root) +
                                                    " " + arguments);
    }

    std::string clip(const std::string& name, const twref::RefClipModel& model) const {
        const std::string path = m_folder.join(name);
        EXPECT_TRUE(twref::RefClipWriter::write(path, model));
        return path;
    }

    twtest::TempFolder m_folder;
    std::string m_home;
    std::string m_root;
};

twref::RefClipModel clipWithAudio(uint32_t channels, uint32_t bitDepth) {
    twref::RefClipModel model;
    model.audio.present = true;
    model.audio.channelCount = channels;
    model.audio.bitDepth = bitDepth;
    return model;
}

uint32_t u32(const std::string& bytes, size_t at) {
    uint32_t v = 0;
    std::memcpy(&v, bytes.data() + at, 4);
    return v;
}

uint16_t u16(const std::string& bytes, size_t at) {
    uint16_t v = 0;
    std::memcpy(&v, bytes.data() + at, 2);
    return v;
}

// A WAV file read back chunk by chunk.
struct Wav {
    uint16_t format = 0;
    uint16_t channels = 0;
    uint32_t sampleRate = 0;
    uint32_t byteRate = 0;
    uint16_t blockAlign = 0;
    uint16_t bits = 0;
    std::string fmt;
    uint32_t factFrames = 0;
    std::vector<float> samples;  // interleaved
    bool riffSizeRight = false;
};

Wav readWav(const std::string& path) {
    const std::string bytes = twtest::TempFolder::readFile(path);
    Wav wav;
    if (bytes.size() < 12 || bytes.compare(0, 4, "RIFF") != 0 || bytes.compare(8, 4, "WAVE") != 0) return wav;
    wav.riffSizeRight = u32(bytes, 4) == bytes.size() - 8;
    for (size_t at = 12; at + 8 <= bytes.size();) {
        const std::string id = bytes.substr(at, 4);
        const uint32_t size = u32(bytes, at + 4);
        const size_t body = at + 8;
        if (id == "fmt ") {
            wav.fmt = bytes.substr(body, size);
            wav.format = u16(bytes, body);
            wav.channels = u16(bytes, body + 2);
            wav.sampleRate = u32(bytes, body + 4);
            wav.byteRate = u32(bytes, body + 8);
            wav.blockAlign = u16(bytes, body + 12);
            wav.bits = u16(bytes, body + 14);
        } else if (id == "fact") {
            wav.factFrames = u32(bytes, body);
        } else if (id == "data") {
            wav.samples.resize(size / 4);
            std::memcpy(wav.samples.data(), bytes.data() + body, wav.samples.size() * 4);
        }
        at = body + size + (size & 1);
    }
    return wav;
}

}  // namespace

TEST_F(HostToolClip, InfoShowsWhatTheHostLearnt) {
    twref::RefClipModel model = clipWithAudio(2, 24);
    model.frameRate = 24000.0f / 1001.0f;
    model.timecode.start = "02:00:00:00";
    const std::string path = clip("demo.braw", model);
    m_folder.writeFile("demo.sidecar", "{}");

    const ToolRun info = run("info " + Quote(path));
    EXPECT_EQ(info.exitCode, 0) << info.output;
    for (const std::string& part :
         {std::string("imOpenFile8: 0\nimGetInfo8: 0\n"), std::string("  Size: 1920 x 1080\n"),
          std::string("  Rate: 24000/1001 (23.976 frames per second)\n"), std::string("  Duration: 48 frames\n"),
          std::string("  Pixel aspect: 1:1\n"), std::string("  Timecode: 02:00:00:00\n"),
          std::string("  Codec: Blackmagic RAW with Tarnwick\n"),
          "Audio: 2 channels, 48000 Hz, 24-bit integer, " + std::to_string(model.effectiveAudioSampleCount()) +
              " sample frames\n",
          std::string("Companion files:\n  Sidecar BRAW File: " + m_folder.join("demo.sidecar") + "\n"),
          std::string("Resolutions (full 1920x1080):\n  1920x1080\n  960x540\n  480x270\n  240x135\n"),
          std::string("File properties (imAnalysis 0):\n  Manufacturer:\n        Tarnwick Reference\n"),
          std::string("  Timecode :\n        02:00:00:00\n\n  Tarnwick Version 3.3.9\n"), std::string("imShutdown: 0")}) {
        EXPECT_TRUE(Contains(info.output, part)) << part << "\n---\n" << info.output;
    }
    // The plug-in left nothing behind in the host.
    EXPECT_FALSE(Contains(info.output, "left things behind")) << info.output;

    const ToolRun missing = run("info " + Quote(m_folder.join("missing.braw")));
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(Contains(missing.output, "cannot import " + m_folder.join("missing.braw") + ": imOpenFile8 2"))
        << missing.output;

    EXPECT_EQ(run("info").exitCode, 2);
    EXPECT_EQ(run("info a.braw b.braw").exitCode, 2);
}

TEST_F(HostToolClip, AudioIsWrittenAsFloatWav) {
    const twref::RefClipModel model = clipWithAudio(2, 16);
    const std::string path = clip("tone.braw", model);
    const std::string out = m_folder.join("tone.wav");

    const ToolRun whole = run("audio " + Quote(path) + " " + Quote(out));
    EXPECT_EQ(whole.exitCode, 0) << whole.output;
    EXPECT_TRUE(Contains(whole.output, "Wrote 96000 sample frames from 0 as 32-bit float to " + out)) << whole.output;
    Wav wav = readWav(out);
    EXPECT_TRUE(wav.riffSizeRight);
    EXPECT_EQ(wav.format, 3);
    EXPECT_EQ(wav.fmt.size(), 18u);
    EXPECT_EQ(wav.channels, 2);
    EXPECT_EQ(wav.sampleRate, 48000u);
    EXPECT_EQ(wav.byteRate, 48000u * 8);
    EXPECT_EQ(wav.blockAlign, 8);
    EXPECT_EQ(wav.bits, 32);
    EXPECT_EQ(wav.factFrames, 96000u);
    ASSERT_EQ(wav.samples.size(), 2u * 96000);
    // The samples are the clip's 16-bit tone, channel by channel, interleaved.
    std::vector<int16_t> pcm(2 * 96000);
    uint32_t bytes = 0;
    twref::RefAudioRenderer::render(model.audio, 96000, 0, 96000, pcm.data(), static_cast<uint32_t>(pcm.size() * 2),
                                    &bytes);
    for (size_t i = 0; i < pcm.size(); i += 997) EXPECT_EQ(wav.samples[i], pcm[i] / 32768.0f) << i;

    // A range that runs past the end is cut to what exists.
    const ToolRun tail = run("audio " + Quote(path) + " " + Quote(out) + " --start 95000 --count 2000");
    EXPECT_EQ(tail.exitCode, 0) << tail.output;
    EXPECT_TRUE(Contains(tail.output, "1000 of the 2000 sample frames asked for exist")) << tail.output;
    wav = readWav(out);
    EXPECT_EQ(wav.factFrames, 1000u);
    ASSERT_EQ(wav.samples.size(), 2000u);
    EXPECT_EQ(wav.samples[1], pcm[2 * 95000 + 1] / 32768.0f);

    // More than two channels take the extensible format, with float samples.
    const std::string six = clip("six.braw", clipWithAudio(6, 24));
    EXPECT_EQ(run("audio " + Quote(six) + " " + Quote(out) + " --count 100").exitCode, 0);
    wav = readWav(out);
    EXPECT_EQ(wav.format, 0xFFFE);
    EXPECT_EQ(wav.fmt.size(), 40u);
    EXPECT_EQ(wav.channels, 6);
    EXPECT_EQ(wav.blockAlign, 24);
    EXPECT_EQ(wav.fmt.substr(24, 2), std::string("\x03\x00", 2));
    EXPECT_EQ(wav.samples.size(), 600u);

    const ToolRun silent = run("audio " + Quote(clip("silent.braw", twref::RefClipModel())) + " " + Quote(out));
    EXPECT_EQ(silent.exitCode, 1);
    EXPECT_TRUE(Contains(silent.output, "has no audio")) << silent.output;
    for (const char* bad : {"audio", "audio only-one.braw", "audio a.braw b.wav --count x", "audio a.braw b.wav --start -3"})
        EXPECT_EQ(run(bad).exitCode, 2) << bad;
    EXPECT_EQ(run("audio " + Quote(path) + " " + Quote(out) + " --start 200000").exitCode, 2);
}
