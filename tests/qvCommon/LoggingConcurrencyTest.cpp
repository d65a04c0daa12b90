#include "Utils/qvLogging.h"

#include "LogTestSupport.h"
#include "ProductConfig.h"
#include "TempFolder.h"
#include "Utils/qvMutex.h"
#include "Utils/qvStats.h"

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace {

class LoggingConcurrency : public ::testing::Test {
protected:
    void SetUp() override {
        twtest::UseProductConfig();
        const QvResult res = g_logger.activateFileLogging(QV_LOG_INFO, "Tarnwick_Importer_Premiere Pro.log",
                                                          QV_APP_ENUM::QV_APP_PPRO, "25.1.0", QvLogZipCollector(),
                                                          true);
        ASSERT_FALSE(res.hasError) << res.toString().Str();
    }
    void TearDown() override { g_logger.desactivateFileLogging(); }

    std::string logText() const {
        return twtest::TempFolder::readFile(m_roots.home() +
                                            "/Library/Application Support/Qervane/Tarnwick/Logs/"
                                            "Tarnwick_Importer_Premiere Pro.log");
    }

    // Waits until the log shows `needle`: the other thread has reached that point.
    void waitForLogText(const std::string& needle) const {
        while (logText().find(needle) == std::string::npos) std::this_thread::yield();
    }

    twtest::ScopedTestRoots m_roots;
};

}  // namespace

TEST_F(LoggingConcurrency, LinesOfManyThreadsNeverInterleave) {
    constexpr int kThreads = 6;
    constexpr int kLines = 150;
    std::atomic<bool> go{false};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t, &go] {
            while (!go.load()) std::this_thread::yield();
            const std::string filler(200, static_cast<char>('a' + t));
            for (int i = 0; i < kLines; ++i) QV_LOG(QV_LOG_INFO, "writer " << t << " line " << i << " " << filler);
        });
    }
    go = true;
    for (std::thread& th : threads) th.join();

    std::map<int, int> nextLineOfWriter;
    std::map<std::string, int> writerOfThreadField;
    for (const twtest::LogLine& line : twtest::LinesWith(logText(), "writer ")) {
        int writer = -1;
        int index = -1;
        char filler[256] = {0};
        ASSERT_EQ(std::sscanf(line.message.c_str(), "writer %d line %d %255s", &writer, &index, filler), 3)
            << line.message;
        ASSERT_EQ(std::string(filler), std::string(200, static_cast<char>('a' + writer)));
        // Lines of one thread keep their order, and each thread has its own id.
        EXPECT_EQ(index, nextLineOfWriter[writer]++);
        auto known = writerOfThreadField.emplace(line.thread, writer);
        EXPECT_EQ(known.first->second, writer);
        EXPECT_EQ(line.level, "INFO");
    }
    ASSERT_EQ(nextLineOfWriter.size(), static_cast<size_t>(kThreads));
    for (const auto& entry : nextLineOfWriter) EXPECT_EQ(entry.second, kLines);
}

TEST_F(LoggingConcurrency, ContendedTracedLockReportsWaitAndDuration) {
    qvMutex queueMutex("QueueMutex");
    std::mutex clipsMutex;
    queueMutex.lock("");
    clipsMutex.lock();

    std::atomic<bool> acquired{false};
    std::thread waiter([&] {
        QV_LOCK_TRACED(queueMutex);
        QV_LOCK_TRACED(clipsMutex);
        acquired = true;
        clipsMutex.unlock();
        queueMutex.unlock();
    });
    const std::string queueAddress = std::to_string(reinterpret_cast<uintptr_t>(&queueMutex));
    const std::string clipsAddress = std::to_string(reinterpret_cast<uintptr_t>(&clipsMutex));

    waitForLogText(" MU" + queueAddress + " No try_lock queueMutex Will wait for it !");
    EXPECT_FALSE(acquired);
    queueMutex.unlock();
    waitForLogText(" MU" + clipsAddress + " No try_lock clipsMutex Will wait for it !");
    EXPECT_FALSE(acquired);
    clipsMutex.unlock();
    waiter.join();
    EXPECT_TRUE(acquired);

    const std::string text = logText();
    for (const std::string expected : {"queueMutex", "clipsMutex"}) {
        const std::string& address = expected == std::string("queueMutex") ? queueAddress : clipsAddress;
        const std::vector<twtest::LogLine> waited = twtest::LinesWith(text, " MU" + address + " " + expected + " lock dt ");
        ASSERT_EQ(waited.size(), 1u) << expected;
        EXPECT_EQ(waited[0].level, "INFO");
        EXPECT_EQ(waited[0].file, "LoggingConcurre");
        EXPECT_EQ(waited[0].function, "operator()");
        const std::string prefix = " MU" + address + " " + expected + " lock dt ";
        const std::string rest = waited[0].message.substr(prefix.size());
        ASSERT_GT(rest.size(), 3u);
        EXPECT_EQ(rest.substr(rest.size() - 3), " us");
        for (char c : rest.substr(0, rest.size() - 3)) EXPECT_TRUE(std::isdigit(static_cast<unsigned char>(c)));
    }
}

TEST(StatsConcurrency, ThreadSafeStatisticsCountEverySample) {
    qvStats stats;
    stats.start(true);
    constexpr int kThreads = 4;
    constexpr uint64_t kSamples = 2000;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&stats] {
            for (uint64_t i = 1; i <= kSamples; ++i) stats.addStat(i);
        });
    }
    for (std::thread& th : threads) th.join();
    stats.finish();
    EXPECT_EQ(stats.count, kThreads * kSamples);
    EXPECT_EQ(stats.sum, kThreads * kSamples * (kSamples + 1) / 2);
    EXPECT_EQ(stats.min, 1u);
    EXPECT_EQ(stats.max, kSamples);
    EXPECT_DOUBLE_EQ(stats.mean, (kSamples + 1) / 2.0);
}
