// Host threads flushing their own queues at once while another enters new
// requests: each flush takes only its own finished requests, cancels its own
// unfinished ones, and leaves the others' alone.

#include "ManagerTestSupport.h"

#include <thread>

TEST(ManagerConcurrency, FlushesOfSeveralQueuesAtOnceTakeOnlyTheirOwnRequests) {
    twtest::ScopedTestRoots roots;
    twtest::installDecoder(qvBRAW_Instance::fixedLibraryFolder().Str());
    auto* instance = new qvBRAW_Instance(QV_PLUGIN_IMPORTER);
    instance->init();
    auto manager = std::make_unique<qvBRAW_Manager>();
    ASSERT_EQ(manager->init(instance), 0);

    constexpr uint64_t kQueues = 4;
    constexpr int kPerKind = 25;
    std::vector<std::shared_ptr<twtest::TestRequest>> unfinished;
    for (uint64_t queue = 1; queue <= kQueues; ++queue) {
        for (int i = 0; i < kPerKind; ++i) {
            manager->m_queue.push_back(std::make_shared<twtest::TestRequest>(queue, 0, i, true));
            unfinished.push_back(std::make_shared<twtest::TestRequest>(queue, 0, i, false));
            manager->m_queue.push_back(unfinished.back());
        }
    }

    std::vector<std::thread> threads;
    for (uint64_t queue = 1; queue <= kQueues; ++queue) {
        threads.emplace_back([&manager, queue] { EXPECT_EQ(manager->FlushQueue(static_cast<uint32_t>(queue)), 0); });
    }
    // Another reader's requests keep arriving meanwhile, the way requests enter.
    threads.emplace_back([&manager] {
        for (int i = 0; i < kPerKind; ++i) {
            auto request = std::make_shared<twtest::TestRequest>(9, 1, i, true);
            manager->m_queueMutex.lock();
            manager->m_queue.push_back(request);
            manager->m_queueMutex.unlock();
        }
    });
    for (std::thread& thread : threads) thread.join();

    size_t ofOtherReader = 0;
    for (const auto& request : manager->m_queue) {
        if (request->m_queueID == 9) {
            ++ofOtherReader;
            EXPECT_FALSE(request->m_cancelled);
        } else {
            EXPECT_FALSE(request->m_finished);
        }
    }
    EXPECT_EQ(ofOtherReader, static_cast<size_t>(kPerKind));
    EXPECT_EQ(manager->m_queue.size(), unfinished.size() + kPerKind);
    for (const auto& request : unfinished) EXPECT_TRUE(request->m_cancelled);

    manager.reset();
    EXPECT_DECODER_CLEAN();
}
