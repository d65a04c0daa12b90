// Several host threads at once, as during playback: asynchronous readers on one
// file, and the host's services under contention. Run under ThreadSanitizer.

#include "SimTestSupport.h"
#include "twSimAsyncReader.h"

#include <atomic>
#include <thread>
#include <vector>

class SimHostConcurrency : public SimHostTest {};

TEST_F(SimHostConcurrency, AsyncReadersServeSeveralHostThreads) {
    twSimHost& h = start();
    ASSERT_EQ(h.init(), imNoErr);
    auto file = h.importFile(clip(24, 12, 40));
    auto first = file->createAsyncReader();
    auto second = file->createAsyncReader();
    ASSERT_TRUE(first && second);

    constexpr int kThreads = 4;
    constexpr int kFrames = 40;
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            twSimAsyncReader& initiator = t % 2 ? *first : *second;
            twSimAsyncReader& collector = t % 2 ? *second : *first;
            // Each thread asks ahead for its frames, then collects them through
            // the other reader, while the other threads do the same.
            for (int f = t; f < kFrames; f += kThreads)
                initiator.initiateRead(file->frameRequest(f, 24, 12, PrPixelFormat_BGRA_4444_8u));
            for (int f = t; f < kFrames; f += kThreads) {
                twSimFrameResult r = collector.waitForFrame(file->frameRequest(f, 24, 12, PrPixelFormat_BGRA_4444_8u));
                if (r.result != aiNoError || r.frame.pixel(3, 5) != std::vector<unsigned char>{3, 5, static_cast<unsigned char>(f), 255})
                    ++wrong;
            }
        });
    }
    for (auto& t : threads) t.join();
    EXPECT_EQ(wrong.load(), 0);

    first->close();
    second->close();
    first.reset();
    second.reset();
    file.reset();
    h.shutdown();
    EXPECT_TRUE(h.leakReport().clean()) << h.leakReport().toString();
}

TEST_F(SimHostConcurrency, ServicesStayConsistentUnderContention) {
    twSimHost host;
    PlugMemoryFuncs* mem = host.stdParms()->piSuites->memFuncs;
    SPBasicSuite* basic = host.stdParms()->piSuites->utilFuncs->getSPBasicSuite();
    constexpr int kThreads = 6;
    constexpr int kRounds = 200;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            const void* raw = nullptr;
            basic->AcquireSuite(kPrSDKPPixCacheSuite, 6, &raw);
            const auto* cache = static_cast<const PrSDKPPixCacheSuite*>(raw);
            basic->AcquireSuite(kPrSDKPPixCreatorSuite, 1, &raw);
            const auto* creator = static_cast<const PrSDKPPixCreatorSuite*>(raw);
            basic->AcquireSuite(kPrSDKPPixSuite, 1, &raw);
            const auto* ppix = static_cast<const PrSDKPPixSuite*>(raw);
            for (int i = 0; i < kRounds; ++i) {
                char** handle = mem->newHandle(32);
                mem->lockHandle(handle);
                (*handle)[0] = static_cast<char>(i);
                mem->unlockHandle(handle);
                if (i % 50 == 0) host.memory().relocateUnlockedHandles();
                mem->disposeHandle(handle);

                // Every thread adds and looks up the same few keys.
                const prRect rect = {0, 0, 4, 4};
                PPixHand frame = nullptr;
                creator->CreatePPix(&frame, PrPPixBufferAccess_ReadWrite, PrPixelFormat_BGRA_4444_8u, &rect);
                char prefs[2] = {static_cast<char>(i % 3), 0};
                cache->AddFrameToCache(1, 0, frame, i % 5, prefs, 2);
                ppix->Dispose(frame);
                PPixHand found = nullptr;
                cache->GetFrameFromCache(1, 0, (i + t) % 5, 0, nullptr, &found, prefs, 2);
                if (found) ppix->Dispose(found);
            }
            basic->ReleaseSuite(kPrSDKPPixSuite, 1);
            basic->ReleaseSuite(kPrSDKPPixCreatorSuite, 1);
            basic->ReleaseSuite(kPrSDKPPixCacheSuite, 6);
        });
    }
    for (auto& t : threads) t.join();
    EXPECT_LE(host.cache().size(), 15u);  // 5 frames x 3 prefs, each replaced in place
    EXPECT_EQ(host.suites().acquireCount(kPrSDKPPixCacheSuite), kThreads);
    EXPECT_TRUE(host.leakReport().clean()) << host.leakReport().toString();
    host.cache().expireAll();
    EXPECT_EQ(host.frames().aliveCount(), 0u);
}
