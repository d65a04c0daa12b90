// The clip writer library and the tw-make-clip command.

#include "Format/RefClipFile.h"
#include "Format/RefTimecode.h"
#include "TempFolder.h"
#include "Writer/RefClipWriter.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

#include <sys/wait.h>

using namespace twref;

TEST(Writer, TypicalClipsInAFewLines)
{
    twtest::TempFolder folder;
    const std::string path = folder.join("a.braw");
    RefClipModel model = RefClipWriter::makeClipWithAudio(1280, 720, 25.0f, 10, 4, 48000, 24);
    RefClipWriter::addAllMetadataTypes(model);
    RefClipWriter::addEmbeddedLut(model, 5);
    std::string error;
    ASSERT_TRUE(RefClipWriter::write(path, model, &error)) << error;

    RefClipModel back;
    RefClipLayout layout;
    ASSERT_TRUE(RefClipFile::read(path, back, layout, error)) << error;
    EXPECT_EQ(back.width, 1280u);
    EXPECT_EQ(layout.frames.size(), 10u);
    EXPECT_EQ(back.effectiveAudioSampleCount(), 19200u);
    EXPECT_EQ(back.audio.channelCount, 4u);
    EXPECT_TRUE(back.embeddedLut.valid());
    EXPECT_EQ(back.clipAttribute(RefClipAttr::Post3DLUTMode)->value.text, "Embedded");

    // Every variant type appears, as a value and as an array element.
    std::set<RefVariantType> types, elements;
    for (const RefMetadataEntry& e : back.metadata) {
        types.insert(e.value.type);
        if (e.value.isArray())
            elements.insert(e.value.elementType);
    }
    for (uint32_t t = 0; t <= 9; ++t)
        EXPECT_TRUE(types.count(static_cast<RefVariantType>(t))) << refVariantTypeName(static_cast<RefVariantType>(t));
    for (uint32_t t = 1; t <= 9; ++t) {
        if (t != 8) {
            EXPECT_TRUE(elements.count(static_cast<RefVariantType>(t))) << t;
        }
    }
    EXPECT_FALSE(back.metadataOfFrame(0).empty());

    // Broken files for tests are one call away too.
    ASSERT_TRUE(RefClipWriter::writeBytes(folder.join("b.braw"), "TWREFCLP"));
    EXPECT_FALSE(RefClipFile::read(folder.join("b.braw"), back, layout, error));

    RefSidecarSettings sidecar;
    sidecar.iso = 1600;
    ASSERT_TRUE(RefClipWriter::writeSidecar(path, sidecar));
    EXPECT_EQ(*RefSidecar::read(folder.join("a.sidecar")).settings.iso, 1600u);

    EXPECT_FALSE(RefClipWriter::write(folder.join("no/such/folder/c.braw"), model, &error));
    EXPECT_NE(error.find("cannot create"), std::string::npos);
}

TEST(Writer, HugeFrameCountsNeedALimitedRecordCount)
{
    twtest::TempFolder folder;
    RefClipModel model;
    model.frameCount = 1ull << 40;
    std::string error;
    EXPECT_FALSE(RefClipWriter::write(folder.join("huge.braw"), model, &error));
    EXPECT_NE(error.find("recordedFrames"), std::string::npos);
    model.bitStream.recordedFrames = 3;
    ASSERT_TRUE(RefClipWriter::write(folder.join("huge.braw"), model, &error)) << error;
    RefClipLayout layout;
    ASSERT_TRUE(RefClipFile::read(folder.join("huge.braw"), model, layout, error));
    EXPECT_EQ(model.frameCount, 1ull << 40);
    EXPECT_EQ(layout.frames.size(), 3u);
}

TEST(Writer, TrimmedClipsMoveEverythingAlong)
{
    RefClipModel model = RefClipWriter::makeClipWithAudio(64, 32, 24.0f, 100, 2, 48000, 16);
    model.frameOverrideFor(10).corrupt = true;
    model.frameOverrideFor(30).hasTimecode = true;
    model.frameOverrideFor(60).corrupt = true;
    model.addFault("stage.read", RefResult::Fail);
    const RefClipModel t = RefClipWriter::trimmed(model, 20, 50);
    EXPECT_EQ(t.frameCount, 50u);
    ASSERT_EQ(t.frames.size(), 2u);
    EXPECT_EQ(t.frames[0].index, 10u);
    EXPECT_TRUE(t.frames[0].hasTimecode);
    EXPECT_EQ(t.frames[1].index, 40u);
    EXPECT_TRUE(t.frames[1].corrupt);
    EXPECT_EQ(RefTimecode::forFrame(t, 0), RefTimecode::forFrame(model, 20));
    EXPECT_EQ(t.effectiveAudioSampleCount(), 100000u);
    EXPECT_TRUE(t.faults.empty());
    EXPECT_EQ(RefClipWriter::trimmed(model, 90, 50).frameCount, 10u);
    EXPECT_EQ(RefClipWriter::trimmed(model, 500, 5).frameCount, 0u);
}

#ifdef TW_MAKE_CLIP_PATH
TEST(Writer, MakeClipCommand)
{
    twtest::TempFolder folder;
    const std::string tool = TW_MAKE_CLIP_PATH;
    const std::string json = folder.writeFile("d.json", R"({"camera_type": "From JSON", "frame_count": 9})");
    const std::string out = folder.join("demo.braw");
    const std::string command = "'" + tool + "' --json '" + json + "' --size 640x360 --fps 29.97 --drop-frame " +
                                "--audio 2,44100,24 --lut invert:3 --corrupt 2 --fault Clip.GetFrameRate=E_FAIL '" +
                                out + "' 2>/dev/null";
    ASSERT_EQ(std::system(command.c_str()), 0);
    RefClipModel m;
    RefClipLayout layout;
    std::string error;
    ASSERT_TRUE(RefClipFile::read(out, m, layout, error)) << error;
    EXPECT_EQ(m.cameraType, "From JSON");
    EXPECT_EQ(m.frameCount, 9u);
    EXPECT_EQ(m.width, 640u);
    EXPECT_FLOAT_EQ(m.frameRate, 29.97f);
    EXPECT_TRUE(m.timecode.dropFrame);
    EXPECT_EQ(m.audio.sampleRate, 44100u);
    EXPECT_EQ(m.embeddedLut.size, 3u);
    EXPECT_TRUE(m.frameOverride(2)->corrupt);
    ASSERT_EQ(m.faults.size(), 1u);
    EXPECT_EQ(m.faults[0].method, "Clip.GetFrameRate");

    auto status = [](const std::string& c) {
        const int s = std::system((c + " >/dev/null 2>&1").c_str());
        return WIFEXITED(s) ? WEXITSTATUS(s) : -1;
    };
    EXPECT_EQ(status("'" + tool + "' --help"), 0);
    EXPECT_EQ(status("'" + tool + "' --dump '" + out + "'"), 0);
    EXPECT_EQ(status("'" + tool + "' --bogus x.braw"), 2);
    EXPECT_EQ(status("'" + tool + "' --size 12 x.braw"), 2);
    EXPECT_EQ(status("'" + tool + "'"), 2);
    EXPECT_EQ(status("'" + tool + "' --dump '" + json + "'"), 1);
}
#endif
