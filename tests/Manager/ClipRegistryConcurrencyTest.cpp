// Host threads importing several clips at once: new files added while known
// ones are looked up, read, closed and reopened by the others. Numbers stay
// dense and distinct, every path keeps its one number, and the locks are taken
// in their one order (the registry's before a clip's).

#include "ManagerTestSupport.h"

#include "Manager/twSettingsInitData.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <thread>

namespace {

class ClipRegistryConcurrency : public twtest::ManagerTest {};

constexpr int kThreads = 4;
constexpr int kNewPerThread = 2;
constexpr int kRounds = 12;

}  // namespace

TEST_F(ClipRegistryConcurrency, ThreadsAddLookUpReadAndCloseClipsOfSeveralFilesAtOnce) {
    const std::vector<std::string> shared = {writeClip("shared0.braw", smallModel()),
                                             writeClip("shared1.braw", smallModel())};
    std::vector<uint64_t> sharedIds(shared.size());
    for (size_t i = 0; i < shared.size(); ++i) ASSERT_EQ(m_manager->AddClip(shared[i], sharedIds[i]), 0);

    std::vector<std::vector<std::string>> fresh(kThreads);
    for (int t = 0; t < kThreads; ++t) {
        for (int n = 0; n < kNewPerThread; ++n) {
            fresh[t].push_back(writeClip("fresh" + std::to_string(t) + "_" + std::to_string(n) + ".braw", smallModel()));
        }
    }
    std::vector<std::vector<uint64_t>> freshIds(kThreads, std::vector<uint64_t>(kNewPerThread, UINT64_MAX));

    qvBRAW_Manager& manager = *m_manager;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int round = 0; round < kRounds; ++round) {
                if (round < kNewPerThread) {
                    bool wasKnown = true;
                    EXPECT_EQ(manager.AddClipIfNew(fresh[t][round], freshIds[t][round], &wasKnown), 0);
                    EXPECT_FALSE(wasKnown);
                }
                const size_t s = static_cast<size_t>(t + round) % shared.size();
                uint64_t id = UINT64_MAX;
                bool wasKnown = false;
                EXPECT_EQ(manager.AddClipIfNew(shared[s], id, &wasKnown), 0);
                EXPECT_TRUE(wasKnown);
                EXPECT_EQ(id, sharedIds[s]);

                const std::shared_ptr<qvBRAW_Clip> clip = manager.GetClip(id);
                ASSERT_NE(clip, nullptr);
                // What a closing thread leaves may be empty; it must never be wrong.
                const qvUtf8String timecode = clip->getTimecodeForFrame(1);
                EXPECT_TRUE(timecode.Empty() || timecode.Str() == "01:00:00:01") << timecode.Str();
                bool dropFrame = false;
                clip->getTimecodeFrames(dropFrame, true);
                clip->getClipMetadata("camera_type", true);
                qvBRAW_MetadataList list;
                clip->getAudioMetadata(list);
                clip->doesNeedToBeReloaded();

                bool generated = false;
                std::shared_ptr<twSettingsInitData> data;
                manager.getAllDataFromClip(generated, id, true, data, true);

                for (int n = 0; n < kNewPerThread && n <= round; ++n) {
                    uint64_t found = UINT64_MAX;
                    std::shared_ptr<qvBRAW_Clip> own;
                    EXPECT_TRUE(manager.GetClipIDFromFilepath(fresh[t][n], found, own));
                    EXPECT_EQ(found, freshIds[t][n]);
                }
                if ((round + t) % 3 == 0) manager.CloseClip(id);
                if ((round + t) % 3 == 1) manager.reloadClipIfNeeded(id);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();

    const uint64_t total = shared.size() + kThreads * kNewPerThread;
    ASSERT_EQ(manager.GetClipsCount(), total);
    std::set<uint64_t> numbers(sharedIds.begin(), sharedIds.end());
    for (const auto& ids : freshIds) numbers.insert(ids.begin(), ids.end());
    EXPECT_EQ(numbers.size(), total);
    EXPECT_EQ(*numbers.rbegin(), total - 1);
    for (uint64_t id = 0; id < total; ++id) {
        const std::shared_ptr<qvBRAW_Clip> clip = manager.GetClip(id);
        ASSERT_NE(clip, nullptr);
        EXPECT_EQ(clip->m_ID, id);
        uint64_t again = UINT64_MAX;
        EXPECT_EQ(manager.AddClipIfNew(clip->m_path, again, nullptr), 0);
        EXPECT_EQ(again, id);
        EXPECT_TRUE(clip->m_opened);
        EXPECT_NE(clip->m_BM, nullptr);
    }
}

TEST_F(ClipRegistryConcurrency, AWaitForAClipIsLoggedUnderTheClipLockName) {
    uint64_t id = UINT64_MAX;
    ASSERT_EQ(m_manager->AddClip(writeClip("held.braw", smallModel()), id), 0);
    const std::shared_ptr<qvBRAW_Clip> clip = m_manager->GetClip(id);
    ASSERT_NE(clip, nullptr);
    const std::string address = std::to_string(reinterpret_cast<uintptr_t>(&clip->m_bmClipMutex));
    const std::string waiting = " MU" + address + " No try_lock m_bmClipMutex Will wait for it !";

    // The registry looks the clip up while another thread holds the clip.
    clip->m_bmClipMutex.lock();
    std::thread lookUp([this, id] { EXPECT_NE(m_manager->GetClip(id), nullptr); });
    while (logText().find(waiting) == std::string::npos) std::this_thread::yield();
    clip->m_bmClipMutex.unlock();
    lookUp.join();

    const std::vector<std::string> lines = messages("INFO");
    const std::string waited = " MU" + address + " m_bmClipMutex lock dt ";
    EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [&](const std::string& m) { return m == waiting; }));
    EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [&](const std::string& m) {
        return m.rfind(waited, 0) == 0 && m.size() > waited.size() + 3 && m.compare(m.size() - 3, 3, " us") == 0;
    })) << logText();
}
