// A sidecar changed while a clip is open reaches the next frames, whether the
// source settings effect sends its reload command or the host's prefs blob
// brings a greater sidecar reload count, while host threads keep asking for
// frames of the clip.

#include "ClipImportSupport.h"
#include "FrameTestSupport.h"
#include "SourceSettingsSupport.h"

#include "Writer/RefClipWriter.h"
#include "ThreadFailures.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <mutex>
#include <thread>

using SidecarReloadConcurrency = ClipImportTest;

namespace {

using twref::RefClipModel;

constexpr int kWidth = 48;
constexpr int kHeight = 28;
constexpr PrPixelFormat kFormat = PrPixelFormat_BGRA_4444_8u;
// Frames the busy threads ask for; later frames are first asked for after a change.
constexpr long long kBusyFrames = 6;
constexpr size_t kSidecarReloadCountOffset = 388;

RefClipModel withExposure(const RefClipModel& model, float exposure) {
    RefClipModel changed = model;
    changed.setFrameAttributeValue(twref::RefFrameAttr::Exposure, twref::RefValue::f32(exposure));
    return changed;
}

twref::RefSidecarSettings exposureSidecar(float exposure) {
    twref::RefSidecarSettings settings;
    settings.exposure = exposure;
    return settings;
}

using Failures = twtest::ThreadFailures;

}  // namespace

TEST_F(SidecarReloadConcurrency, ASidecarChangeReachesTheNextFramesWhileHostThreadsAskForFrames) {
    startHost();
    const RefClipModel model = twref::RefClipWriter::makeClip(kWidth, kHeight, 24.0f, 24);
    const std::string path = writeClip("busy.braw", model);
    twSimFile& file = importClip(path);
    ASSERT_EQ(file.infoResult(), imNoErr);

    const RefClipModel brighter = withExposure(model, 1.0f);
    const RefClipModel darker = withExposure(model, -1.0f);

    // Host threads ask for the first frames again and again; each picture they
    // get is the clip's as it was or as it is after the change, never anything else.
    std::atomic<bool> stop{false};
    std::atomic<int> delivered{0};
    Failures failures;
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&, t] {
            for (long long round = 0; !stop.load(); ++round) {
                const long long f = (round + t) % kBusyFrames;
                twSimFrameResult got = file.getSourceVideo(file.frameRequest(f, kWidth, kHeight, kFormat));
                if (got.result != 0) {
                    failures.add("frame " + std::to_string(f) + ": " + std::to_string(got.result));
                    continue;
                }
                const bool before = differenceFrom(got.frame, expectedHostFrame(model, f, kWidth, kHeight, kFormat))
                                        .empty();
                const bool after =
                    differenceFrom(got.frame, expectedHostFrame(brighter, f, kWidth, kHeight, kFormat)).empty();
                if (!before && !after) failures.add("frame " + std::to_string(f) + " is neither picture");
                ++delivered;
            }
        });
    }
    while (delivered.load() < 6) std::this_thread::yield();

    // The effect's way: the sidecar is written, then the reload command.
    ASSERT_TRUE(twref::RefClipWriter::writeSidecar(path, exposureSidecar(1.0f)));
    EffectRecord reload;
    reload.reloadSidecar = 1;
    EffectExchange command(reload);
    EXPECT_EQ(command.send(file), imNoErr);
    const int afterCommand = delivered.load();
    while (delivered.load() < afterCommand + 6) std::this_thread::yield();
    stop = true;
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(failures.list(), std::vector<std::string>());

    const long long next = kBusyFrames;
    {
        twSimFrameResult got = file.getSourceVideo(file.frameRequest(next, kWidth, kHeight, kFormat));
        ASSERT_EQ(got.result, 0);
        EXPECT_EQ(differenceFrom(got.frame, expectedHostFrame(brighter, next, kWidth, kHeight, kFormat)), "");
    }

    // The host's way: another sidecar, and a prefs blob that counts one more reload.
    ASSERT_TRUE(twref::RefClipWriter::writeSidecar(path, exposureSidecar(-1.0f)));
    ASSERT_EQ(file.prefsSize(), 396);
    std::vector<char> prefs(file.prefs(), file.prefs() + file.prefsSize());
    uint32_t count = 0;
    std::memcpy(&count, prefs.data() + kSidecarReloadCountOffset, sizeof(count));
    ++count;
    std::memcpy(prefs.data() + kSidecarReloadCountOffset, &count, sizeof(count));
    file.setPrefs(prefs.data(), prefs.size());
    {
        twSimFrameResult got = file.getSourceVideo(file.frameRequest(next + 1, kWidth, kHeight, kFormat));
        ASSERT_EQ(got.result, 0);
        EXPECT_EQ(differenceFrom(got.frame, expectedHostFrame(darker, next + 1, kWidth, kHeight, kFormat)), "");
    }
    finish();
}
