#include "Utils/qvChrono.h"
#include "Utils/qvStats.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdint>

TEST(Stats, EmptyStatisticsHaveTheFixedTextAndNegativeFigures) {
    qvStats stats;
    stats.start(false);
    EXPECT_EQ(stats.toString(1.0, true).Str(), " No stat recorded ");
    stats.finish();
    EXPECT_EQ(stats.mean, -1.0);
    EXPECT_EQ(stats.stdDev, -1.0);
    EXPECT_EQ(stats.min, UINT64_MAX);
    EXPECT_EQ(stats.max, UINT64_MAX);
}

TEST(Stats, FiguresFollowTheIntegerFormula) {
    qvStats stats;
    stats.start(false);
    stats.addStat(2);
    stats.addStat(1);
    stats.finish();
    // (5 - 9 / 2) / 2 with the division truncated: sqrt(0.5), not sqrt(0.25).
    EXPECT_DOUBLE_EQ(stats.stdDev, std::sqrt(0.5));
    EXPECT_DOUBLE_EQ(stats.mean, 1.5);
    // Rounded half away from zero.
    EXPECT_EQ(stats.toString(1.0, true).Str(), "[1 ; 2 \xC2\xB1 1 ; 2 ] #2");

    // finish acts once: later samples change the sums, not the figures.
    stats.addStat(100);
    stats.finish();
    EXPECT_DOUBLE_EQ(stats.mean, 1.5);
    EXPECT_EQ(stats.count, 3u);
    EXPECT_EQ(stats.max, 100u);

    stats.start(false);
    for (uint64_t x : {1000u, 2000u, 3000u}) stats.addStat(x);
    stats.finish();
    EXPECT_EQ(stats.toString(0.001, false).Str(), "[1.000000 ; 2.000000 \xC2\xB1 0.816497 ; 3.000000 ] #3");
    EXPECT_EQ(stats.toString(0.001, true).Str(), "[1 ; 2 \xC2\xB1 1 ; 3 ] #3");
}

TEST(Stats, ZeroSampleIsAValueAndSquaresWrap) {
    qvStats stats;
    stats.start(false);
    stats.addStat(0);
    stats.addStat(5);
    EXPECT_EQ(stats.min, 0u);
    EXPECT_EQ(stats.max, 5u);

    // A sample whose square overflows wraps silently; nothing traps.
    stats.start(false);
    stats.addStat(UINT64_C(1) << 33);
    stats.addStat(UINT64_C(1) << 33);
    stats.finish();
    EXPECT_EQ(stats.sumOfSquares, 0u);
    EXPECT_EQ(stats.count, 2u);
}

TEST(Chrono, StoppedWatchReadsZeroAndResetRestartsTheSpan) {
    using std::chrono::steady_clock;
    qvChrono chrono;
    EXPECT_TRUE(chrono.stopped);
    EXPECT_EQ(chrono.getLatestSpanNano(false), 0);
    EXPECT_EQ(chrono.getLatestSpanMicro(false), 0);
    // A reset moves the start even while the watch is stopped.
    EXPECT_EQ(chrono.getLatestSpanNano(true), 0);
    EXPECT_NE(chrono.lastTime, steady_clock::time_point{});

    chrono.start();
    EXPECT_FALSE(chrono.stopped);
    // A start put five seconds back: the span is at least that, in each unit,
    // and reading without reset leaves the start where it is.
    const steady_clock::time_point started = steady_clock::now() - std::chrono::seconds(5);
    chrono.lastTime = started;
    const int64_t nano = chrono.getLatestSpanNano(false);
    EXPECT_GE(nano, INT64_C(5000000000));
    EXPECT_EQ(chrono.lastTime, started);
    const int64_t micro = chrono.getLatestSpanMicro(true);
    EXPECT_GE(micro, nano / 1000);
    EXPECT_LT(micro, nano);
    // The reset starts the next span now: it no longer holds the five seconds.
    EXPECT_GE(chrono.lastTime, started + std::chrono::seconds(5));
    EXPECT_LT(chrono.getLatestSpanNano(false), nano);
}
