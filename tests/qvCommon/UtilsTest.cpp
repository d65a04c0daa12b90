#include "Platform/qvPlatformFiles.h"
#include "Utils/qvUtils.h"

#include <future>
#include <sched.h>
#include <gtest/gtest.h>
#include <regex>
#include <thread>

namespace {

std::string timecode(int64_t frame, double fps, bool dropFrame) {
    return qvUtils::frameNumberToTimecode(frame, fps, dropFrame).Str();
}

std::string pretty(uint64_t size, int precision, int mode) {
    return qvUtils::getFileSizePretty(size, precision, mode).Str();
}

std::string sanitized(const std::string& name) { return qvUtils::sanitizeFileOrFolderNameForWindows(name).Str(); }

std::string lastOpened;
void recordOpen(const std::string& target) { lastOpened = target; }

}  // namespace

TEST(Utils, DropFrameTimecodeSkipsTwoFrameNumbersEachMinuteButTheTenth) {
    EXPECT_EQ(timecode(0, 29.97, true), "00:00:00;00");
    EXPECT_EQ(timecode(1799, 29.97, true), "00:00:59;29");
    EXPECT_EQ(timecode(1800, 29.97, true), "00:01:00;02");
    // The dropped numbers push the frame field into the next second.
    EXPECT_EQ(timecode(1828, 29.97, true), "00:01:01;00");
    EXPECT_EQ(timecode(3597, 29.97, true), "00:01:59;29");
    EXPECT_EQ(timecode(3598, 29.97, true), "00:02:00;02");
    // Every tenth minute keeps its first two numbers.
    EXPECT_EQ(timecode(17981, 29.97, true), "00:09:59;29");
    EXPECT_EQ(timecode(17982, 29.97, true), "00:10:00;00");
    EXPECT_EQ(timecode(107892, 29.97, true), "01:00:00;00");
    EXPECT_EQ(timecode(3600, 59.94, true), "00:01:00;04");
    EXPECT_EQ(timecode(3599, 59.94, true), "00:00:59;59");
}

TEST(Utils, NonDropTimecode) {
    EXPECT_EQ(timecode(1800, 29.97, false), "00:01:00:00");
    EXPECT_EQ(timecode(86399, 24.0, false), "00:59:59:23");
    EXPECT_EQ(timecode(86400, 24.0, false), "01:00:00:00");
    // Only 30 and 60 have a drop-frame form.
    EXPECT_EQ(timecode(1500, 25.0, true), "00:01:00:00");
    EXPECT_EQ(timecode(1439, 23.976, true), "00:00:59:23");
    // Hours do not wrap at 24 on the plain path.
    EXPECT_EQ(timecode(int64_t(24) * 3600 * 25, 24.0, false), "25:00:00:00");
    // Rates above 100 widen the frame field.
    EXPECT_EQ(timecode(110, 120.0, false), "00:00:00:110");
    EXPECT_EQ(timecode(1005, 1200.0, false), "00:00:00:1005");
    EXPECT_EQ(timecode(5, 0.0, false), "");
    EXPECT_EQ(timecode(5, 0.4, false), "");
}

TEST(Utils, FileSizeForPeopleComparesStrictly) {
    EXPECT_EQ(pretty(0, 2, 0), "0 B");
    EXPECT_EQ(pretty(1000, 2, 0), "1000 B");
    EXPECT_EQ(pretty(1001, 2, 0), "1.00 KB");
    EXPECT_EQ(pretty(1500000, 1, 0), "1.5 MB");
    EXPECT_EQ(pretty(2500000000ull, 2, 0), "2.50 GB");
    EXPECT_EQ(pretty(5000000000000ull, 0, 0), "5 TB");
    // Bit value 2 alone keeps the decimal set; any other bit selects the binary one.
    EXPECT_EQ(pretty(1500, 1, 2), "1.5 KB");
    EXPECT_EQ(pretty(1024, 1, 1), "1024 B");
    EXPECT_EQ(pretty(1536, 1, 1), "1.5 KB");
    EXPECT_EQ(pretty(1536, 1, 3), "1.5 KB");
    EXPECT_EQ(pretty(3ull * 1024 * 1024 * 1024, 2, 4), "3.00 GB");
}

TEST(Utils, SmallTexts) {
    EXPECT_EQ(qvUtils::intToStringPadding(7, 3).Str(), "007");
    EXPECT_EQ(qvUtils::intToStringPadding(12345, 2).Str(), "12345");
    EXPECT_EQ(qvUtils::intToStringPadding(-5, 3).Str(), "-05");
    EXPECT_EQ(qvUtils::intToStringPadding(1, 99).Str(), std::string(98, '0') + "1");
    EXPECT_EQ(qvUtils::intToStringPadding(1, 100).Str(), "");

    EXPECT_EQ(qvUtils::getHRESULTerrorMessage(-2147467259).Str(), "-2147467259");
    EXPECT_EQ(qvUtils::getHRESULTerrorMessage(0).Str(), "0");

    EXPECT_TRUE(std::regex_match(qvUtils::getCurrentDateTimeStr(0).Str(),
                                 std::regex(R"(\d{4}-\d{2}-\d{2} \d{2}:\d{2}:\d{2})")));
    EXPECT_TRUE(std::regex_match(qvUtils::getCurrentDateTimeStr(1).Str(),
                                 std::regex(R"(\d{4}-\d{2}-\d{2}_\d{2}-\d{2}-\d{2})")));
    EXPECT_TRUE(std::regex_match(qvUtils::getCurrentDateTimeStr(2).Str(),
                                 std::regex(R"((Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) \d{2} - \d{2}h \d{2}m \d{2}s)")));
    EXPECT_EQ(qvUtils::getCurrentDateTimeStr(3).Str(), "");
    EXPECT_EQ(qvUtils::getCurrentDateTimeStr(-1).Str(), "");

    EXPECT_EQ(int_min(-3, 2), -3);
    EXPECT_EQ(u64_max(UINT64_MAX, 1), UINT64_MAX);
    EXPECT_EQ(s64_min(INT64_MIN, 0), INT64_MIN);
}

TEST(Utils, WindowsNamesAreSanitized) {
    EXPECT_EQ(sanitized("con"), "con");
    EXPECT_EQ(sanitized("CON"), "_CON");
    EXPECT_EQ(sanitized("COM1"), "_COM1");
    EXPECT_EQ(sanitized("LPT9"), "_LPT9");
    EXPECT_EQ(sanitized("LPT1.txt"), "LPT1.txt");
    // Forbidden characters go before the device names are compared.
    EXPECT_EQ(sanitized("C?ON"), "_CON");
    EXPECT_EQ(sanitized("a:b."), "ab");
    EXPECT_EQ(sanitized("<a>\"b\"/c\\d|e*f"), "abcdef");
    EXPECT_EQ(sanitized("tab\there\x1f"), "tabhere");
    EXPECT_EQ(sanitized("???"), "noName");
    EXPECT_EQ(sanitized(""), "noName");
    EXPECT_EQ(sanitized("name. . "), "name");
    // Dots alone end up empty: the "noName" rule came first.
    EXPECT_EQ(sanitized("..."), "");
    EXPECT_EQ(sanitized("Clip é 1"), "Clip é 1");
}

TEST(Utils, BrowserGoesToTheDesktopLauncher) {
    qvPlatform::SetDesktopLauncher(recordOpen);
    qvUtils::openURLInDefaultBrowser("https://example.invalid/page");
    EXPECT_EQ(lastOpened, "https://example.invalid/page");
    qvPlatform::SetDesktopLauncher(nullptr);
}

TEST(UtilsConcurrency, LowPriorityPutsAnOrdinaryThreadBehindTheOthers) {
    std::promise<void> lowered;
    std::shared_future<void> loweredDone = lowered.get_future().share();
    int policySeenInside = -1;
    std::thread worker([loweredDone, &policySeenInside] {
        loweredDone.wait();
        policySeenInside = sched_getscheduler(0);
    });

    const QvResult first = qvUtils::setThreadLowPriority(worker);
    const QvResult again = qvUtils::setThreadLowPriority(worker);
    lowered.set_value();
    worker.join();

    // The thread itself now runs in the idle class; the caller's own
    // scheduling is untouched.
    EXPECT_EQ(policySeenInside, SCHED_IDLE);
    EXPECT_EQ(sched_getscheduler(0), SCHED_OTHER);
    EXPECT_FALSE(first.hasError);
    EXPECT_TRUE(first.hasWarning);
    EXPECT_EQ(first.toString().Str(), "Thread with Policy " + std::to_string(SCHED_IDLE) + " changed priority from 0 to 0");
    EXPECT_EQ(again.toString().Str(), "Thread Policy : " + std::to_string(SCHED_IDLE) + " is already at min value : 0");
}
