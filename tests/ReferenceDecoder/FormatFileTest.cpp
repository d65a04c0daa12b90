// The .braw container: header, description and frame records, read from
// memory and from disk, with damaged and cut-short files.

#include "Format/RefClipFile.h"
#include "TempFolder.h"
#include "Writer/RefClipWriter.h"

#include <gtest/gtest.h>

#include <cstdio>

using namespace twref;

namespace {

bool parseBytes(const std::string& bytes, RefClipModel& model, RefClipLayout& layout, std::string& error)
{
    return RefClipFile::parse(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), model, layout, error);
}

RefClipModel smallClip()
{
    RefClipModel m = RefClipWriter::makeClip(64, 32, 24.0f, 6);
    m.bitStream.frameBytes = 40;
    m.frameOverrideFor(2).bitStreamBytes = 10;
    m.frameOverrideFor(4).corrupt = true;
    return m;
}

}  // namespace

TEST(FormatFile, RecordsAreLaidOutAndChecked)
{
    const RefClipModel model = smallClip();
    const std::string bytes = RefClipFile::serialize(model);
    ASSERT_EQ(bytes.compare(0, 8, "TWREFCLP"), 0);

    RefClipModel back;
    RefClipLayout layout;
    std::string error;
    ASSERT_TRUE(parseBytes(bytes, back, layout, error)) << error;
    EXPECT_EQ(RefClipFile::describe(back), RefClipFile::describe(model));
    EXPECT_EQ(layout.fileSize, bytes.size());
    ASSERT_EQ(layout.frames.size(), 6u);
    EXPECT_EQ(layout.frames[0].sizeBytes, kRefFrameRecordHeaderBytes + 40);
    EXPECT_EQ(layout.frames[2].sizeBytes, kRefFrameRecordHeaderBytes + 10);
    EXPECT_EQ(layout.maxRecordBytes, kRefFrameRecordHeaderBytes + 40);
    EXPECT_EQ(layout.frames[5].offset + layout.frames[5].sizeBytes, bytes.size());

    for (uint64_t i = 0; i < 6; ++i) {
        const char* record = bytes.data() + layout.frames[i].offset;
        const bool ok = RefClipFile::validateFrameRecord(record, layout.frames[i].sizeBytes, i, error);
        EXPECT_EQ(ok, i != 4) << "frame " << i << ": " << error;
    }
    // A record is tied to its frame and its full length.
    const char* first = bytes.data() + layout.frames[0].offset;
    EXPECT_FALSE(RefClipFile::validateFrameRecord(first, layout.frames[0].sizeBytes, 1, error));
    EXPECT_FALSE(RefClipFile::validateFrameRecord(first, layout.frames[0].sizeBytes - 1, 0, error));
    EXPECT_FALSE(RefClipFile::validateFrameRecord(nullptr, 100, 0, error));
    // Different frames carry different payloads.
    EXPECT_NE(RefClipFile::makeFrameRecord(model, 0).substr(kRefFrameRecordHeaderBytes),
              RefClipFile::makeFrameRecord(model, 1).substr(kRefFrameRecordHeaderBytes));
}

TEST(FormatFile, DamagedHeadsAreErrorsNotCrashes)
{
    const std::string good = RefClipFile::serialize(smallClip());
    const uint32_t jsonLength = static_cast<uint32_t>(RefClipFile::describe(smallClip()).size());
    RefClipModel model;
    RefClipLayout layout;
    std::string error;

    struct Case {
        std::string bytes;
        const char* expected;
    };
    std::string wrongVersion = good;
    wrongVersion[8] = 2;
    std::string hugeLength = good;
    hugeLength[15] = '\x7F';
    std::string badJson = good;
    badJson[16] = '[';
    const Case cases[] = {
        {"", "too short"},
        {good.substr(0, 15), "too short"},
        {"TWREFCLX" + good.substr(8), "marker"},
        {wrongVersion, "version 2"},
        {hugeLength, "beyond the limit"},
        {good.substr(0, kRefClipHeaderBytes + jsonLength - 1), "cut short"},
        {badJson, "not valid JSON"},
    };
    for (const Case& c : cases) {
        EXPECT_FALSE(parseBytes(c.bytes, model, layout, error)) << c.expected;
        EXPECT_NE(error.find(c.expected), std::string::npos) << error;
    }
}

TEST(FormatFile, CutShortRecordsLeaveTheLaterFramesMissing)
{
    const RefClipModel source = smallClip();
    const std::string good = RefClipFile::serialize(source);
    RefClipModel model;
    RefClipLayout full, layout;
    std::string error;
    ASSERT_TRUE(parseBytes(good, model, full, error));

    // Cut inside frame 3: frames 0-2 remain.
    const std::string cut = good.substr(0, full.frames[3].offset + 5);
    ASSERT_TRUE(parseBytes(cut, model, layout, error)) << error;
    EXPECT_EQ(layout.frames.size(), 3u);
    EXPECT_EQ(model.frameCount, 6u) << "the clip still claims its frames";

    // A record of the wrong frame ends the table too.
    std::string shuffled = good;
    shuffled[full.frames[1].offset + 8] = 9;
    ASSERT_TRUE(parseBytes(shuffled, model, layout, error));
    EXPECT_EQ(layout.frames.size(), 1u);

    // recordedFrames writes fewer records on purpose.
    RefClipModel partial = source;
    partial.bitStream.recordedFrames = 2;
    ASSERT_TRUE(parseBytes(RefClipFile::serialize(partial), model, layout, error));
    EXPECT_EQ(layout.frames.size(), 2u);
}

TEST(FormatFile, ReadingFromDiskFollowsTheFile)
{
    twtest::TempFolder folder;
    const std::string path = folder.join("clip.braw");
    ASSERT_TRUE(RefClipWriter::write(path, smallClip()));

    RefClipModel model;
    RefClipLayout layout;
    std::string error;
    ASSERT_TRUE(RefClipFile::read(path, model, layout, error)) << error;
    EXPECT_EQ(model.width, 64u);
    EXPECT_TRUE(RefClipFile::stillReadable(path, layout));

    std::vector<uint8_t> record;
    bool damaged = true;
    ASSERT_TRUE(RefClipFile::readFrameRecord(path, layout, 3, record, damaged, error)) << error;
    EXPECT_FALSE(damaged);
    EXPECT_EQ(record.size(), layout.frames[3].sizeBytes);
    EXPECT_TRUE(RefClipFile::validateFrameRecord(record.data(), record.size(), 3, error));

    EXPECT_FALSE(RefClipFile::readFrameRecord(path, layout, 4, record, damaged, error));
    EXPECT_TRUE(damaged) << "the corrupt frame reads as damaged";
    EXPECT_FALSE(RefClipFile::readFrameRecord(path, layout, 6, record, damaged, error));
    EXPECT_FALSE(damaged) << "a frame without a record is missing, not damaged";

    // The file goes away: reads fail, the probe says so; it comes back: both work.
    ASSERT_EQ(std::remove(path.c_str()), 0);
    EXPECT_FALSE(RefClipFile::stillReadable(path, layout));
    EXPECT_FALSE(RefClipFile::readFrameRecord(path, layout, 0, record, damaged, error));
    EXPECT_FALSE(damaged);
    ASSERT_TRUE(RefClipWriter::write(path, smallClip()));
    EXPECT_TRUE(RefClipFile::stillReadable(path, layout));
    EXPECT_TRUE(RefClipFile::readFrameRecord(path, layout, 0, record, damaged, error));

    // Replaced by another clip of another size: no longer the clip that was opened.
    RefClipModel other = smallClip();
    other.frameCount = 3;
    ASSERT_TRUE(RefClipWriter::write(path, other));
    EXPECT_FALSE(RefClipFile::stillReadable(path, layout));

    EXPECT_FALSE(RefClipFile::read(folder.join("missing.braw"), model, layout, error));
    EXPECT_NE(error.find("cannot open"), std::string::npos);
    EXPECT_FALSE(RefClipFile::read(folder.path(), model, layout, error)) << "a folder is no clip";
}
