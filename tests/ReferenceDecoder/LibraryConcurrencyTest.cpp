// Many jobs of many clips in flight at once, FlushJobs from several threads
// and from inside a callback, callbacks that take their own locks, and
// releases that race the callbacks. Run under ThreadSanitizer.

#include "LibraryTestSupport.h"

#include "Render/RefChart.h"
#include "Writer/RefClipWriter.h"

#include <memory>
#include <thread>

using namespace twtest;
using twref::RefClipModel;

namespace {

struct LibraryConcurrency : ::testing::Test {
    RefLibrary lib;
    TempFolder folder;
    RecordingCallback callback;

    void TearDown() override { EXPECT_NO_LIVE_OBJECTS(lib); }
};

uint64_t frameShown(const FlowRequest& r)
{
    const auto sample = [&](float x, float y) {
        const uint32_t px = std::min(r.width - 1, uint32_t(x * float(r.width)));
        const uint32_t py = std::min(r.height - 1, uint32_t(y * float(r.height)));
        return float(r.pixels[(size_t(py) * r.width + px) * 4 + 1]);
    };
    uint64_t frame = UINT64_MAX;
    twref::RefChart::readFrameIndex(sample, false, false, frame);
    return frame;
}

}  // namespace

TEST_F(LibraryConcurrency, ManyJobsOfManyClipsFromManyThreads)
{
    constexpr int kClips = 4;
    constexpr int kFrames = 12;
    std::vector<std::string> paths;
    for (int c = 0; c < kClips; ++c) {
        RefClipModel model = smallClip(kFrames);
        model.addDelay("stage.decode", 2, c);  // some stages slower than others
        paths.push_back(writeClip(folder, "clip" + std::to_string(c) + ".braw", model));
    }
    {
        CodecSession session(lib, &callback);
        FlowDriver driver(session.codec.get(), callback);
        std::vector<Held<IBlackmagicRawClip>> clips(kClips);
        for (int c = 0; c < kClips; ++c)
            ASSERT_EQ(session.open(paths[size_t(c)], clips[size_t(c)]), S_OK);

        std::vector<std::unique_ptr<FlowRequest>> requests;
        for (int c = 0; c < kClips; ++c)
            for (int f = 0; f < kFrames; ++f) {
                auto r = std::make_unique<FlowRequest>();
                r->clip = clips[size_t(c)].get();
                r->frame = uint64_t(f);
                r->format = (f % 2) ? blackmagicRawResourceFormatBGRAU8 : blackmagicRawResourceFormatRGBAU8;
                requests.push_back(std::move(r));
            }
        // Four submitting threads, each then flushing while the others still submit.
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([&, t] {
                for (size_t i = size_t(t); i < requests.size(); i += 4)
                    driver.submit(*requests[i]);
                EXPECT_EQ(session.codec->FlushJobs(), S_OK);
            });
        for (std::thread& t : threads)
            t.join();
        ASSERT_EQ(session.codec->FlushJobs(), S_OK);
        for (const auto& r : requests) {
            ASSERT_TRUE(r->finished.load());
            ASSERT_EQ(r->processResult, S_OK) << r->frame;
            EXPECT_EQ(frameShown(*r), r->frame);
            driver.releaseBuffers(*r);
        }
    }
}

TEST_F(LibraryConcurrency, FlushJobsInsideACallbackWaitsForTheOtherJobs)
{
    RefClipModel model = smallClip(8);
    model.addDelay("stage.read", 20, 5);
    const std::string path = writeClip(folder, "inner.braw", model);
    {
        CodecSession session(lib, &callback);
        FlowDriver driver(session.codec.get(), callback);
        Held<IBlackmagicRawClip> clip;
        ASSERT_EQ(session.open(path, clip), S_OK);
        std::vector<std::unique_ptr<FlowRequest>> requests;
        for (uint64_t f = 0; f < 8; ++f) {
            requests.push_back(std::make_unique<FlowRequest>());
            requests.back()->clip = clip.get();
            requests.back()->frame = f;
        }
        // The first read callback flushes: when that returns, every other
        // request has gone all the way through.
        std::atomic<int> unfinishedAtFlush{-1};
        std::atomic<bool> flushed{false};
        auto driven = callback.onRead;
        callback.onRead = [&](IBlackmagicRawJob* job, HRESULT hr, IBlackmagicRawFrame* frame) {
            void* userData = nullptr;
            job->GetUserData(&userData);
            if (userData == requests[0].get() && !flushed.exchange(true)) {
                EXPECT_EQ(session.codec->FlushJobs(), S_OK);
                int unfinished = 0;
                for (size_t i = 1; i < requests.size(); ++i)
                    unfinished += requests[i]->finished.load() ? 0 : 1;
                unfinishedAtFlush = unfinished;
            }
            driven(job, hr, frame);
        };
        // The flushing request goes last, so that every other one is in
        // flight (or done) by the time its callback runs.
        for (size_t i = requests.size(); i-- > 0;)
            driver.submit(*requests[i]);
        ASSERT_EQ(session.codec->FlushJobs(), S_OK);
        EXPECT_EQ(unfinishedAtFlush.load(), 0);
        for (auto& r : requests) {
            EXPECT_EQ(r->processResult, S_OK);
            driver.releaseBuffers(*r);
        }
    }
}

// The caller's references may go before or after the callbacks, and the last
// release of the codec waits for its jobs.
TEST_F(LibraryConcurrency, ReleasesRaceTheCallbacks)
{
    const std::string path = writeClip(folder, "race.braw", smallClip(16));
    std::atomic<int> reads{0};
    std::atomic<int> framesKept{0};
    std::mutex keptMutex;
    std::vector<IBlackmagicRawFrame*> kept;
    callback.onRead = [&](IBlackmagicRawJob*, HRESULT hr, IBlackmagicRawFrame* frame) {
        if (SUCCEEDED(hr) && frame && (reads.fetch_add(1) % 2 == 0)) {
            frame->AddRef();  // kept past the callback
            std::lock_guard<std::mutex> lock(keptMutex);
            kept.push_back(frame);
            ++framesKept;
        }
    };
    {
        CodecSession session(lib, &callback);
        Held<IBlackmagicRawClip> clip;
        ASSERT_EQ(session.open(path, clip), S_OK);
        Held<IBlackmagicRawClipEx> clipEx;
        ASSERT_EQ(queryInto(clip.get(), IID_IBlackmagicRawClipEx, clipEx), S_OK);
        for (uint64_t f = 0; f < 16; ++f) {
            IBlackmagicRawJob* job = nullptr;
            ASSERT_EQ(clipEx->CreateJobReadFrame(f, nullptr, 0, &job), S_OK);
            ASSERT_EQ(job->Submit(), S_OK);
            job->Release();
        }
        clipEx.reset();
        clip.reset();  // jobs still hold what they need
        session.codec.reset();  // waits for them
        EXPECT_EQ(reads.load(), 16);
    }
    // Frames kept by the caller keep their clip's data; releasing them frees all.
    std::vector<IBlackmagicRawFrame*> frames;
    {
        std::lock_guard<std::mutex> lock(keptMutex);
        frames.swap(kept);
    }
    EXPECT_EQ(int(frames.size()), framesKept.load());
    for (IBlackmagicRawFrame* frame : frames) {
        uint64_t index = 99;
        EXPECT_EQ(frame->GetFrameIndex(&index), S_OK);
        EXPECT_LT(index, 16u);
        frame->Release();
    }
}
