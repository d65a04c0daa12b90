// The install check runs on a thread of its own, started by imInit, while the
// host goes on calling the entry from several threads.

#include "ImporterTestSupport.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>
#include <vector>

namespace {

void* indexParam(int index) { return reinterpret_cast<void*>(static_cast<intptr_t>(index)); }

}  // namespace

class ImporterConcurrencyTest : public ImporterTest {
protected:
    // The install check thread is detached: its log line is the only sign that
    // it ran. Waits for it, however long the machine takes.
    bool waitForInstallCheckLine(LogLine& found) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(2);
        while (std::chrono::steady_clock::now() < deadline) {
            for (const LogLine& line : logLines()) {
                if (line.function == "checkInstallFolderPPro") {
                    found = line;
                    return true;
                }
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return false;
    }
};

TEST_F(ImporterConcurrencyTest, InstallCheckRunsDetachedAtLowPriorityBesideTheHostsThreads) {
    writeOptions("INFO");
    start();
    ASSERT_EQ(host().init(), imNoErr);

    // Host threads in the entry at once, while the check runs.
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([this, &wrong] {
            for (int i = 0; i < 50; ++i) {
                imIndFormatRec format{};
                imIndPixelFormatRec pixelFormat{};
                if (host().call(imGetIndFormat, indexParam(0), &format) != imNoErr) ++wrong;
                if (host().call(imGetIndPixelFormat, indexParam(i % 4), &pixelFormat) != (i % 4 < 3 ? 0 : 301)) ++wrong;
                if (host().call(200 + i, nullptr, nullptr) != imUnsupported) ++wrong;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong.load(), 0);

    LogLine check;
    ASSERT_TRUE(waitForInstallCheckLine(check));
    // A good install reports at INFO, from a thread that is not the host's.
    EXPECT_EQ(check.level, "INFO");
    std::string initThread;
    bool priorityReported = false;
    for (const LogLine& line : logLines()) {
        if (line.message == "---- Selector - imInit ----") initThread = line.thread;
        priorityReported |= line.message.rfind("Setting CheckInstallFolder priority : ", 0) == 0 ||
                            line.message.rfind("Error when setting CheckInstallFolder priority ", 0) == 0;
    }
    EXPECT_NE(check.thread, initThread);
    EXPECT_TRUE(priorityReported);
    EXPECT_EQ(selectorLines().size(), 1u + 4 * 50 * 3);

    ASSERT_EQ(host().shutdown(), imNoErr);
    EXPECT_TRUE(host().leakReport().clean()) << host().leakReport().toString();
}
