// The effect's time conversions against a time suite of known figures.

#include "_qvBRAW_Importer/SourceSettings.h"

#include <gtest/gtest.h>

namespace {

constexpr PrTime kTicksPerSecond = 254016000000LL;
bool g_failTicksPerSecond = false;
bool g_failTicksPerFrame = false;

prSuiteError ticksPerSecond(PrTime* out) {
    if (g_failTicksPerSecond) return suiteError_Fail;
    *out = kTicksPerSecond;
    return suiteError_NoError;
}

prSuiteError ticksPerFrame(PrVideoFrameRates rate, PrTime* out) {
    if (g_failTicksPerFrame) return suiteError_Fail;
    switch (rate) {
        case kVideoFrameRate_24Drop: *out = kTicksPerSecond / 24000 * 1001; break;
        case kVideoFrameRate_PAL: *out = kTicksPerSecond / 25; break;
        default: *out = 1000; break;
    }
    return suiteError_NoError;
}

PrSDKTimeSuite g_suite = {ticksPerSecond, ticksPerFrame, nullptr};

class TimeConversion : public ::testing::Test {
protected:
    void SetUp() override { g_failTicksPerSecond = g_failTicksPerFrame = false; }
};

std::string ticksOf(PrVideoFrameRates rate, const std::string& timecode, QvResult* result = nullptr) {
    qvUtf8String out("untouched");
    const QvResult r = convertTimecodeToTicks(out, &g_suite, rate, timecode);
    if (result) *result = r;
    return out.Str();
}

}  // namespace

TEST_F(TimeConversion, TimecodeCountsNominalSecondsAndThenFrames) {
    EXPECT_EQ(ticksOf(kVideoFrameRate_PAL, "01:00:00:00"), std::to_string(3600 * kTicksPerSecond));
    EXPECT_EQ(ticksOf(kVideoFrameRate_24Drop, "01:00:00:00"), std::to_string(3600 * kTicksPerSecond / 1000 * 1001));
    EXPECT_EQ(ticksOf(kVideoFrameRate_PAL, "00:01:02:10"),
              std::to_string(62 * kTicksPerSecond + 10 * (kTicksPerSecond / 25)));
    // The slowed clock for every x/1.001 rate, with the suite's frame length.
    EXPECT_EQ(ticksOf(kVideoFrameRate_NTSC_HD, "00:00:10:03"), std::to_string(10 * kTicksPerSecond / 1000 * 1001 + 3000));
    EXPECT_EQ(ticksOf(kVideoFrameRate_NTSC, "00:00:01:00"), std::to_string(kTicksPerSecond / 1000 * 1001));
}

TEST_F(TimeConversion, BadTextAndSuiteFailuresLeaveTheTicksAlone) {
    QvResult result;
    EXPECT_EQ(ticksOf(kVideoFrameRate_PAL, "aa:00:00:00", &result), "untouched");
    EXPECT_EQ(result.toString().Str(), "convertTimecodeToTicks - TimeCode Str has not the good syntax");
    EXPECT_EQ(ticksOf(kVideoFrameRate_PAL, "01:00", &result), "untouched");
    EXPECT_EQ(result.toString().Str(), "convertTimecodeToTicks - TimeCode Str has not the good syntax");

    g_failTicksPerSecond = true;
    EXPECT_EQ(ticksOf(kVideoFrameRate_PAL, "01:00:00:00", &result), "untouched");
    EXPECT_EQ(result.toString().Str(),
              "convertTimecodeToTicks - Error when trying to get TicksPerSecond from Time Suite");
    g_failTicksPerSecond = false;
    g_failTicksPerFrame = true;
    EXPECT_EQ(ticksOf(kVideoFrameRate_PAL, "01:00:00:00", &result), "untouched");
    EXPECT_EQ(result.toString().Str(),
              "convertTimecodeToTicks - Error when trying to get TicksPerVideoFrame from Time Suite");

    qvUtf8String out;
    EXPECT_TRUE(convertTimecodeToTicks(out, nullptr, kVideoFrameRate_PAL, "01:00:00:00").hasError);
}

TEST_F(TimeConversion, FrameRatesMapToTheHostsValues) {
    struct Case {
        float rate;
        PrVideoFrameRates expected;
    };
    const Case cases[] = {
        {24.0f, kVideoFrameRate_24},          {25.004f, kVideoFrameRate_PAL},
        {30.0f, kVideoFrameRate_30},          {50.0f, kVideoFrameRate_PAL_HD},
        {59.995f, kVideoFrameRate_60},        {24000.0f / 1001.0f, kVideoFrameRate_24Drop},
        {30000.0f / 1001.0f, kVideoFrameRate_NTSC}, {60000.0f / 1001.0f, kVideoFrameRate_NTSC_HD},
    };
    for (const Case& c : cases) {
        PrVideoFrameRates out = kVideoFrameRate_Max;
        EXPECT_TRUE(convertFrameRate(out, c.rate).isOk()) << c.rate;
        EXPECT_EQ(out, c.expected) << c.rate;
    }

    // Rates the host has no value for are left as they were.
    PrVideoFrameRates out = kVideoFrameRate_PAL;
    EXPECT_TRUE(convertFrameRate(out, 48.0f).isOk());
    EXPECT_TRUE(convertFrameRate(out, 120000.0f / 1001.0f).isOk());
    EXPECT_EQ(out, kVideoFrameRate_PAL);

    // Neither whole nor x/1.001, or x/1.001 of a rate that has no such form.
    const QvResult odd = convertFrameRate(out, 24.5f);
    EXPECT_EQ(odd.toString().Str(), "FrameRate 24.5is Impossible");
    EXPECT_EQ(convertFrameRate(out, 25000.0f / 1001.0f).toString().Str(), "FrameRate 24.975is Impossible");
    EXPECT_EQ(out, kVideoFrameRate_PAL);
}
