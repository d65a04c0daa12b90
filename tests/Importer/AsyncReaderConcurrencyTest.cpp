// Several host threads playing back at once, with a reader each, on one clip
// and on several: InitiateAsyncRead racing GetFrame of the same frames on
// other threads, cancels and flushes in between, and synchronous requests of
// the same file alongside. Every frame the host gets is the decoded picture.

#include "ClipImportSupport.h"
#include "FrameTestSupport.h"
#include "twSimAsyncReader.h"
#include "ThreadFailures.h"

#include <gtest/gtest.h>

#include <mutex>
#include <thread>

using AsyncReaderConcurrency = ClipImportTest;

namespace {

using twref::RefClipModel;

struct Clip {
    RefClipModel model;
    twSimFile* file = nullptr;
    std::vector<std::vector<unsigned char>> expected;  // per frame
};

using Failures = twtest::ThreadFailures;

constexpr int kWidth = 48;
constexpr int kHeight = 28;

void checkFrame(const Clip& clip, long long frame, twSimFrameResult& got, const std::string& who, Failures& failures) {
    if (got.result != 0) return failures.add(who + ": GetFrame " + std::to_string(got.result));
    const std::string difference = differenceFrom(got.frame, clip.expected[static_cast<size_t>(frame)]);
    if (!difference.empty()) failures.add(who + ": frame " + std::to_string(frame) + ": " + difference);
}

// A host playback thread: starts frames `ahead` in advance on its own reader,
// collects them, skips (cancels) every fifth, and flushes at the end of a pass.
void play(Clip& clip, int thread, int passes, Failures& failures) {
    std::unique_ptr<twSimAsyncReader> reader = clip.file->createAsyncReader();
    if (!reader) return failures.add("no reader");
    const std::string who = "thread " + std::to_string(thread);
    const auto frames = static_cast<long long>(clip.model.frameCount);
    const long long ahead = 3;
    for (int pass = 0; pass < passes; ++pass) {
        for (long long f = 0; f < std::min(ahead, frames); ++f)
            reader->initiateRead(clip.file->frameRequest(f, kWidth, kHeight, PrPixelFormat_BGRA_4444_8u));
        for (long long f = 0; f < frames; ++f) {
            if (f + ahead < frames)
                reader->initiateRead(clip.file->frameRequest(f + ahead, kWidth, kHeight, PrPixelFormat_BGRA_4444_8u));
            const twSimFrameRequest request = clip.file->frameRequest(f, kWidth, kHeight, PrPixelFormat_BGRA_4444_8u);
            if ((f + thread) % 5 == 4) {
                reader->cancelRead(request);
                continue;
            }
            twSimFrameResult got = reader->waitForFrame(request);
            checkFrame(clip, f, got, who, failures);
        }
        if (reader->flush() != 0) failures.add(who + ": flush");
    }
    reader->close();
}

// A thread that asks the same frames synchronously, as a host's export would.
void render(Clip& clip, Failures& failures) {
    for (long long f = static_cast<long long>(clip.model.frameCount) - 1; f >= 0; --f) {
        twSimFrameResult got =
            clip.file->getSourceVideo(clip.file->frameRequest(f, kWidth, kHeight, PrPixelFormat_BGRA_4444_8u));
        checkFrame(clip, f, got, "render", failures);
    }
}

}  // namespace

TEST_F(AsyncReaderConcurrency, ReadersOnOneClipAndOnSeveralClipsPlayAtOnce) {
    startHost();
    std::vector<Clip> clips(3);
    for (size_t c = 0; c < clips.size(); ++c) {
        clips[c].model.width = kWidth;
        clips[c].model.height = kHeight;
        clips[c].model.frameCount = 10;
        clips[c].file = &importClip(writeClip("clip" + std::to_string(c) + ".braw", clips[c].model));
        ASSERT_EQ(clips[c].file->infoResult(), imNoErr);
        for (uint64_t f = 0; f < clips[c].model.frameCount; ++f)
            clips[c].expected.push_back(expectedHostFrame(clips[c].model, f, kWidth, kHeight,
                                                          PrPixelFormat_BGRA_4444_8u));
    }
    Failures failures;
    std::vector<std::thread> threads;
    // Three readers on the first clip, one on each of the others, and a
    // synchronous renderer on the first.
    for (int t = 0; t < 3; ++t) threads.emplace_back([&, t] { play(clips[0], t, 2, failures); });
    threads.emplace_back([&] { play(clips[1], 3, 2, failures); });
    threads.emplace_back([&] { play(clips[2], 4, 2, failures); });
    threads.emplace_back([&] { render(clips[0], failures); });
    for (std::thread& t : threads) t.join();
    for (const std::string& failure : failures.list()) ADD_FAILURE() << failure;
    EXPECT_TRUE(host().diagnostics().misuse().empty());
}
