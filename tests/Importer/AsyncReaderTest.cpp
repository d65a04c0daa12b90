// The asynchronous reader end to end, as a host plays back: frames started
// ahead and collected later, from the queue and then from the cache; a frame
// never started; cancel and flush; a frame still being decoded; error frames.

#include "ClipImportSupport.h"
#include "FrameTestSupport.h"
#include "twSimAsyncReader.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace {

using twref::RefClipModel;

RefClipModel smallClip(uint64_t frames = 12) {
    RefClipModel model;
    model.width = 64;
    model.height = 36;
    model.frameCount = frames;
    return model;
}


}  // namespace

TEST_F(ClipImportTest, ReaderDecodesWhatItWasToldAheadAndTheCacheServesItAfterwards) {
    startHost();
    const RefClipModel model = smallClip();
    twSimFile& file = importClip(writeClip("play.braw", model));
    ASSERT_EQ(file.infoResult(), imNoErr);
    csSDK_int32 created = -1;
    std::unique_ptr<twSimAsyncReader> reader = file.createAsyncReader(&created);
    ASSERT_EQ(created, imNoErr);
    ASSERT_TRUE(reader);
    twStageWatch watch;

    for (long long f = 0; f < 6; ++f)
        EXPECT_EQ(reader->initiateRead(file.frameRequest(f, 64, 36, PrPixelFormat_BGRA_4444_8u)), 0);
    for (long long f = 0; f < 6; ++f) {
        twSimFrameResult got = reader->waitForFrame(file.frameRequest(f, 64, 36, PrPixelFormat_BGRA_4444_8u));
        ASSERT_EQ(got.result, 0) << f;
        EXPECT_EQ(differenceFrom(got.frame, expectedHostFrame(model, static_cast<uint64_t>(f), 64, 36,
                                                              PrPixelFormat_BGRA_4444_8u)),
                  "")
            << f;
        EXPECT_EQ(watch.count("read", static_cast<uint64_t>(f)), 1) << f;
    }
    // Collected frames went to the cache: asked again, nothing is decoded.
    EXPECT_EQ(host().cache().size(), 6u);
    const unsigned long long frames = host().frames().createdCount();
    EXPECT_EQ(reader->initiateRead(file.frameRequest(2, 64, 36, PrPixelFormat_BGRA_4444_8u)), 0);
    EXPECT_EQ(reader->initiateRead(file.frameRequest(2, 64, 36, PrPixelFormat_BGRA_4444_8u)), 0);
    twSimFrameResult cached = reader->getFrame(file.frameRequest(2, 64, 36, PrPixelFormat_BGRA_4444_8u));
    EXPECT_EQ(cached.result, 0);
    EXPECT_TRUE(cached.frame);
    EXPECT_EQ(watch.count("read", 2), 1);
    EXPECT_EQ(host().frames().createdCount(), frames);

    // A frame nobody started is decoded at once and not cached.
    twSimFrameResult unasked = reader->getFrame(file.frameRequest(9, 64, 36, PrPixelFormat_BGRA_4444_8u));
    ASSERT_EQ(unasked.result, 0);
    EXPECT_EQ(differenceFrom(unasked.frame, expectedHostFrame(model, 9, 64, 36, PrPixelFormat_BGRA_4444_8u)), "");
    EXPECT_EQ(host().cache().size(), 6u);
    EXPECT_EQ(watch.count("read", 9), 1);
    // Two readers of one file share the queue and the cache.
    std::unique_ptr<twSimAsyncReader> second = file.createAsyncReader();
    ASSERT_TRUE(second);
    EXPECT_EQ(second->initiateRead(file.frameRequest(10, 64, 36, PrPixelFormat_BGRA_4444_8u)), 0);
    twSimFrameResult shared = reader->waitForFrame(file.frameRequest(10, 64, 36, PrPixelFormat_BGRA_4444_8u));
    EXPECT_EQ(shared.result, 0);
    EXPECT_EQ(watch.count("read", 10), 1);
    EXPECT_EQ(reader->close(), 0);
    EXPECT_EQ(second->close(), 0);
}

TEST_F(ClipImportTest, CancelledAndFlushedFramesAreDecodedAgainWhenAskedFor) {
    startHost();
    const RefClipModel model = smallClip();
    twSimFile& file = importClip(writeClip("cancel.braw", model));
    std::unique_ptr<twSimAsyncReader> reader = file.createAsyncReader();
    ASSERT_TRUE(reader);
    twStageWatch watch;
    const twSimFrameRequest three = file.frameRequest(3, 64, 36, PrPixelFormat_BGRA_4444_8u);

    // Cancelled while its process stage waits: the request ends there and is
    // never taken for a picture.
    watch.hold(3);
    ASSERT_EQ(reader->initiateRead(three), 0);
    watch.waitUntilHeld();
    EXPECT_EQ(reader->cancelRead(three), 0);
    watch.open();
    twSimFrameResult afterCancel = reader->getFrame(three);
    ASSERT_EQ(afterCancel.result, 0);
    EXPECT_EQ(differenceFrom(afterCancel.frame, expectedHostFrame(model, 3, 64, 36, PrPixelFormat_BGRA_4444_8u)),
              "");
    EXPECT_EQ(watch.count("read", 3), 2);

    // Flushed: decoded but never collected, the frames are dropped with their PPix.
    for (long long f = 5; f < 8; ++f)
        ASSERT_EQ(reader->initiateRead(file.frameRequest(f, 64, 36, PrPixelFormat_BGRA_4444_8u)), 0);
    EXPECT_EQ(reader->flush(), 0);
    twSimFrameResult afterFlush = reader->getFrame(file.frameRequest(6, 64, 36, PrPixelFormat_BGRA_4444_8u));
    ASSERT_EQ(afterFlush.result, 0);
    EXPECT_EQ(differenceFrom(afterFlush.frame, expectedHostFrame(model, 6, 64, 36, PrPixelFormat_BGRA_4444_8u)),
              "");
    EXPECT_EQ(watch.count("read", 6), 2);
    EXPECT_EQ(reader->close(), 0);
}

TEST_F(ClipImportTest, WithoutFullAsyncAFrameStillDecodingIsNotReadyYet) {
    m_folder.writeFile("home/Library/Application Support/Qervane/Tarnwick/Tarnwick_options.ini",
                       "[General]\nlogging=INFO\nimporterSyncMode2=false\n");
    startHost();
    const RefClipModel model = smallClip();
    twSimFile& file = importClip(writeClip("pending.braw", model));
    std::unique_ptr<twSimAsyncReader> reader = file.createAsyncReader();
    ASSERT_TRUE(reader);
    twStageWatch watch;
    const twSimFrameRequest four = file.frameRequest(4, 64, 36, PrPixelFormat_BGRA_4444_16u);
    watch.hold(4);
    ASSERT_EQ(reader->initiateRead(four), 0);
    watch.waitUntilHeld();
    twSimFrameResult pending = reader->getFrame(four);
    EXPECT_EQ(pending.result, 0x10000);
    EXPECT_FALSE(pending.frame);
    twSimFrameResult waiting = reader->continueToWait(four);
    EXPECT_EQ(waiting.result, 3);
    watch.open();
    twSimFrameResult ready = reader->waitForFrame(four);
    ASSERT_EQ(ready.result, 0);
    EXPECT_EQ(differenceFrom(ready.frame, expectedHostFrame(model, 4, 64, 36, PrPixelFormat_BGRA_4444_16u)), "");
    EXPECT_EQ(watch.count("read", 4), 1);
    EXPECT_EQ(reader->close(), 0);
}

TEST_F(ClipImportTest, ReaderShowsTheErrorFrameOfAFailedDecode) {
    startHost();
    RefClipModel model = smallClip();
    model.addFault("stage.read", twref::RefResult::Fail, 7);
    twSimFile& file = importClip(writeClip("broken.braw", model));
    std::unique_ptr<twSimAsyncReader> reader = file.createAsyncReader();
    ASSERT_TRUE(reader);
    const twSimFrameRequest seven = file.frameRequest(7, 64, 36, PrPixelFormat_BGRA_4444_32f);
    ASSERT_EQ(reader->initiateRead(seven), 0);
    twSimFrameResult got = reader->waitForFrame(seven);
    ASSERT_EQ(got.result, 0);
    int r = 0, g = 0, b = 0;
    ASSERT_TRUE(flatColour(got.frame, r, g, b));
    EXPECT_EQ(r, 128);
    EXPECT_EQ(g, 128);
    EXPECT_EQ(b, 0);
    EXPECT_EQ(host().cache().size(), 0u);
    ASSERT_EQ(host().events().all().size(), 1u);
    EXPECT_NE(host().events().all()[0].title.find("Frame #7 from broken.braw couldn't be decoded"), std::string::npos);
    EXPECT_EQ(reader->close(), 0);
}
