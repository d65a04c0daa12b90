// A clip's audio end to end: what imGetInfo8 announces by bit depth, and the
// samples ImportAudio7 delivers, in the middle, sequentially and at the end.

#include "ClipImportSupport.h"

#include <gtest/gtest.h>

namespace {

using twref::RefClipModel;

std::vector<std::vector<float>> filled(size_t channels, size_t frames, float value) {
    return std::vector<std::vector<float>>(channels, std::vector<float>(frames, value));
}

}  // namespace

TEST_F(ClipImportTest, SampleTypeAndSamplesFollowTheBitDepth) {
    writeOptions("INFO");
    startHost();
    struct Case {
        uint32_t bitDepth;
        PrAudioSampleType type;
    };
    const Case cases[] = {{8, kPrAudioSampleType_8BitInt},
                          {16, kPrAudioSampleType_16BitInt},
                          {24, kPrAudioSampleType_24BitInt},
                          {32, kPrAudioSampleType_32BitInt}};
    for (const Case& c : cases) {
        const RefClipModel model = clipWithAudio(2, 44100, c.bitDepth);
        twSimFile& file = importClip(writeClip("audio" + std::to_string(c.bitDepth) + ".braw", model));
        ASSERT_EQ(file.infoResult(), imNoErr) << c.bitDepth;
        const imFileInfoRec8& info = file.info();
        EXPECT_EQ(info.hasAudio, 1) << c.bitDepth;
        EXPECT_EQ(packed(info.audInfo.sampleType), c.type) << c.bitDepth;
        EXPECT_EQ(packed(info.audInfo.numChannels), 2) << c.bitDepth;
        EXPECT_EQ(packed(info.audInfo.sampleRate), 44100.0f) << c.bitDepth;
        EXPECT_EQ(packed(info.audDuration), 88200) << c.bitDepth;
        // The host's time base for audio stays 48 kHz whatever the clip's rate.
        EXPECT_EQ(record(file).audioSampleRate, 48000.0) << c.bitDepth;

        const twSimAudioResult audio = file.importAudio(1000, 441, 2);
        ASSERT_EQ(audio.result, imNoErr) << c.bitDepth;
        EXPECT_EQ(audio.channels, expectedAudio(model, 1000, 441)) << c.bitDepth;
    }

    twSimFile& silent = importClip(writeClip("silent.braw", RefClipModel()));
    ASSERT_EQ(silent.infoResult(), imNoErr);
    EXPECT_EQ(silent.info().hasAudio, 0);
    EXPECT_EQ(packed(silent.info().audInfo.sampleType), kPrAudioSampleType_32BitFloat);
    EXPECT_EQ(packed(silent.info().audInfo.numChannels), 0);
    EXPECT_TRUE(errorMessages().empty());

    // A depth the host has no integer type for is announced as float, and a
    // read of it stops at the barrier with the user told why.
    twSimFile& odd = importClip(writeClip("odd.braw", clipWithAudio(2, 48000, 12)));
    ASSERT_EQ(odd.infoResult(), imNoErr);
    EXPECT_EQ(odd.info().hasAudio, 1);
    EXPECT_EQ(packed(odd.info().audInfo.sampleType), kPrAudioSampleType_32BitFloat);
    EXPECT_EQ(errorMessages(), std::vector<std::string>{"Unknown audio bit depth"});
    host().events().clear();
    EXPECT_EQ(odd.importAudio(0, 100, 2).result, malUnknownError);
    EXPECT_EQ(events(), std::vector<std::string>{"3|BRAW - Importer GetInfos Error|Irregular audio Bit Depth : 12 - " +
                                                 bugReportText()});
}

TEST_F(ClipImportTest, AudioGoesOnFromTheLastReadAndStopsAtTheEndOfTheClip) {
    startHost();
    const RefClipModel model = clipWithAudio(2, 48000, 16);
    twSimFile& file = importClip(writeClip("tone.braw", model));
    ASSERT_EQ(file.infoResult(), imNoErr);
    const long long total = file.info().audDuration;
    ASSERT_EQ(total, 96000);

    // A negative position goes on where the last read ended.
    ASSERT_EQ(file.importAudio(500, 100, 2).result, imNoErr);
    twSimAudioResult next = file.importAudio(-1, 100, 2);
    ASSERT_EQ(next.result, imNoErr);
    EXPECT_EQ(next.channels, expectedAudio(model, 600, 100));
    EXPECT_EQ(record(file).audioPosition, 700);

    // Ten frames are left: they are delivered and the rest of the host's
    // buffer stays as the host gave it.
    const float untouched = 7.0f;
    twSimAudioResult tail = file.importAudio(total - 10, 1000, 2, untouched);
    ASSERT_EQ(tail.result, imNoErr);
    const std::vector<std::vector<float>> delivered = expectedAudio(model, total - 10, 10);
    for (size_t c = 0; c < 2; ++c) {
        EXPECT_EQ(std::vector<float>(tail.channels[c].begin(), tail.channels[c].begin() + 10), delivered[c]);
        EXPECT_EQ(std::vector<float>(tail.channels[c].begin() + 10, tail.channels[c].end()),
                  std::vector<float>(990, untouched));
    }
    EXPECT_EQ(record(file).audioPosition, total);

    // Nothing is left: the whole buffer is silence, from the end or after it.
    EXPECT_EQ(file.importAudio(-1, 64, 2, untouched).channels, filled(2, 64, 0.0f));
    twSimAudioResult atEnd = file.importAudio(total, 64, 2, untouched);
    EXPECT_EQ(atEnd.result, imNoErr);
    EXPECT_EQ(atEnd.channels, filled(2, 64, 0.0f));
    EXPECT_EQ(record(file).audioPosition, total);
}
