// tarnwick-host's clip commands run as a person runs them, on the product's
// staged plug-in and reference clips: what `info` prints, and the WAV file
// `audio` writes.

#include "HostToolSupport.h"
#include "TempFolder.h"

#include "Render/RefAudioRenderer.h"
#include "Writer/RefClipWriter.h"

#include <gtest/gtest.h>
#include <sndfile.h>

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

    ToolRun runSeparately(const std::string& arguments) const {
        return twtest::RunToolSeparately(m_folder.path(), "--home " + Quote(m_home) + " --system-root " +
                                                              Quote(m_root) + " " + arguments);
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

// A WAV file as libsndfile reads it back.
struct Wav {
    bool opened = false;
    int format = 0;
    int channels = 0;
    int sampleRate = 0;
    sf_count_t frames = 0;
    std::vector<float> samples;  // interleaved
};

Wav readWav(const std::string& path) {
    Wav wav;
    SF_INFO info{};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    if (!file) return wav;
    wav.opened = true;
    wav.format = info.format;
    wav.channels = info.channels;
    wav.sampleRate = info.samplerate;
    wav.frames = info.frames;
    wav.samples.resize(static_cast<size_t>(info.frames * info.channels));
    wav.samples.resize(static_cast<size_t>(sf_readf_float(file, wav.samples.data(), info.frames) * info.channels));
    sf_close(file);
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

    // A file that is not there, and one that is not a clip: words first, then
    // the selectors' codes, all on standard error and in that order.
    const std::string missingPath = m_folder.join("missing.braw");
    const ToolRun missing = runSeparately("info " + Quote(missingPath));
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.errors, missingPath + ": the file does not exist\ncannot import " + missingPath +
                                  ": imOpenFile8 2\n");
    EXPECT_FALSE(Contains(missing.output, "imOpenFile8")) << missing.output;
    const std::string damaged = m_folder.writeFile("damaged.braw", "not a clip at all");
    const ToolRun broken = runSeparately("info " + Quote(damaged));
    EXPECT_EQ(broken.exitCode, 1);
    EXPECT_EQ(broken.errors.rfind(damaged + ": the file cannot be read as a clip", 0), 0u) << broken.errors;
    EXPECT_TRUE(Contains(broken.errors, "\ncannot import " + damaged + ": imOpenFile8 ")) << broken.errors;

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
    ASSERT_TRUE(wav.opened) << sf_strerror(nullptr);
    EXPECT_EQ(wav.format, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    EXPECT_EQ(wav.channels, 2);
    EXPECT_EQ(wav.sampleRate, 48000);
    EXPECT_EQ(wav.frames, 96000);
    ASSERT_EQ(wav.samples.size(), 2u * 96000);
    // The samples are the clip's 16-bit tone, channel by channel, interleaved.
    std::vector<int16_t> pcm(2 * 96000);
    uint32_t bytes = 0;
    twref::RefAudioRenderer::render(model.audio, 96000, 0, 96000, pcm.data(), static_cast<uint32_t>(pcm.size() * 2),
                                    &bytes);
    for (size_t i = 0; i < pcm.size(); i += 997) EXPECT_EQ(wav.samples[i], pcm[i] / 32768.0f) << i;
    EXPECT_EQ(wav.samples[2 * 95999 + 1], pcm[2 * 95999 + 1] / 32768.0f);

    // A range that runs past the end is cut to what exists.
    const ToolRun tail = run("audio " + Quote(path) + " " + Quote(out) + " --start 95000 --count 2000");
    EXPECT_EQ(tail.exitCode, 0) << tail.output;
    EXPECT_TRUE(Contains(tail.output, "1000 of the 2000 sample frames asked for exist")) << tail.output;
    wav = readWav(out);
    EXPECT_EQ(wav.frames, 1000);
    ASSERT_EQ(wav.samples.size(), 2000u);
    EXPECT_EQ(wav.samples[1], pcm[2 * 95000 + 1] / 32768.0f);

    // More than two channels take the extensible format, with float samples.
    const std::string six = clip("six.braw", clipWithAudio(6, 24));
    EXPECT_EQ(run("audio " + Quote(six) + " " + Quote(out) + " --count 100").exitCode, 0);
    wav = readWav(out);
    EXPECT_EQ(wav.format, SF_FORMAT_WAVEX | SF_FORMAT_FLOAT);
    EXPECT_EQ(wav.channels, 6);
    EXPECT_EQ(wav.samples.size(), 600u);

    const ToolRun silent = run("audio " + Quote(clip("silent.braw", twref::RefClipModel())) + " " + Quote(out));
    EXPECT_EQ(silent.exitCode, 1);
    EXPECT_TRUE(Contains(silent.output, "has no audio")) << silent.output;
    for (const char* bad : {"audio", "audio only-one.braw", "audio a.braw b.wav --count x", "audio a.braw b.wav --start -3"})
        EXPECT_EQ(run(bad).exitCode, 2) << bad;
    EXPECT_EQ(run("audio " + Quote(path) + " " + Quote(out) + " --start 200000").exitCode, 2);
}
