// The install check runs on a thread of its own, started by imInit, while the
// host goes on calling the entry from several threads.

#include "ImporterTestSupport.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <sched.h>
#include <string>
#include <thread>
#include <vector>

namespace {

void* indexParam(int index) { return reinterpret_cast<void*>(static_cast<intptr_t>(index)); }

}  // namespace

class ImporterConcurrencyTest : public ImporterTest {
protected:
    // The install check thread is detached; imShutdown lets it finish, so after
    // it the thread's line is in the log if it ever ran.
    bool installCheckLine(LogLine& found) const {
        for (const LogLine& line : logLines()) {
            if (line.function == "checkInstallFolderPPro") {
                found = line;
                return true;
            }
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

    ASSERT_EQ(host().shutdown(), imNoErr);
    LogLine check;
    ASSERT_TRUE(installCheckLine(check));
    // A good install reports at INFO, from a thread that is not the host's.
    EXPECT_EQ(check.level, "INFO");
    std::string initThread;
    bool priorityReported = false;
    for (const LogLine& line : logLines()) {
        if (line.message == "---- Selector - imInit ----") initThread = line.thread;
        // The check thread is lowered into the idle class, unless it was over
        // before its priority could be set.
        priorityReported |=
            line.message == "Setting CheckInstallFolder priority : Thread with Policy " + std::to_string(SCHED_IDLE) +
                                " changed priority from 0 to 0" ||
            line.message.rfind("Error when setting CheckInstallFolder priority ", 0) == 0;
    }
    EXPECT_NE(check.thread, initThread);
    EXPECT_TRUE(priorityReported);
    EXPECT_EQ(selectorLines().size(), 1u + 4 * 50 * 3 + 1);
    EXPECT_TRUE(host().leakReport().clean()) << host().leakReport().toString();
}

TEST_F(ImporterConcurrencyTest, BrokenInstallIsShownFromTheCheckThread) {
    // A needed sibling of the importer is missing.
    std::filesystem::remove_all(m_root + "/Library/Application Support/Adobe/Common/Plug-ins/7.0/MediaCore/"
                                         "Qervane Tarnwick/Tarnwick_Layer_Settings.plugin");
    writeOptions("INFO");
    start();
    ASSERT_EQ(host().init(), imNoErr);

    const std::string broken =
        "3|BRAW - Tarnwick plugins aren't installed correctly, please try to re-install, or get a more precise "
        "diagnostic with the Tarnwick Desktop application.|";
    ASSERT_EQ(host().shutdown(), imNoErr);
    // The logging warning comes from imInit itself, the install box whenever
    // the check is done: either may come first.
    const std::vector<std::string> shown = events();
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_TRUE(shown[0] == broken || shown[1] == broken) << shown[0] << "\n" << shown[1];
    LogLine check;
    ASSERT_TRUE(installCheckLine(check));
    EXPECT_EQ(check.level, "ERR");
    EXPECT_EQ(host().suites().outstanding(kPrSDKErrorSuite), 0);
}

TEST_F(ImporterConcurrencyTest, CheckThatCannotSearchIsOnlyLogged) {
    std::filesystem::remove_all(m_root + "/Library");
    writeOptions("INFO");
    start();
    ASSERT_EQ(host().init(), imNoErr);
    ASSERT_EQ(host().shutdown(), imNoErr);
    LogLine check;
    ASSERT_TRUE(installCheckLine(check));
    EXPECT_EQ(check.level, "ERR");
    EXPECT_EQ(check.message.rfind("Error in CheckInstallFolder : ", 0), 0u) << check.message;
    ASSERT_EQ(events().size(), 1u);
    EXPECT_EQ(events()[0].rfind("2|BRAW - /!\\ Logs are enabled !", 0), 0u);
}
