// The entry as the host meets it: every selector's line and result, the format
// catalogue byte by byte, the colour space, and the exception barrier.

#include "ImporterTestSupport.h"

#include "_qvBRAW_Importer/PrivateData.h"

#include <cstdint>
#include <cstring>
#include <map>

namespace {

void* indexParam(int index) { return reinterpret_cast<void*>(static_cast<intptr_t>(index)); }

int32_t int32At(const void* record, size_t offset) {
    int32_t value;
    std::memcpy(&value, static_cast<const char*>(record) + offset, sizeof(value));
    return value;
}

// The result each known selector gives while no file is open. Handlers that
// need a clip answer as for a file that is not there.
const std::map<int, int> kResults = {
    {5, 3},   {8, 0},   {9, 0},   {12, 99}, {13, 0},  {14, 0},  {23, 0},  {24, 0},  {25, 1},  {27, 0},
    {28, 3},  {29, 3},  {30, 3},  {32, 3},  {33, 3},  {36, 101}, {37, 5}, {38, 0},  {39, 2},  {40, 3},
    {41, 3},  {42, 3},  {43, 0},  {44, 3},  {45, 5},  {46, 3},  {47, 99}, {48, 3},  {49, 3},  {50, 3},
    {51, 3},  {52, 0},  {53, 0},  {54, 0},  {55, 3},  {56, 3},  {57, 3},  {58, 3},  {59, 3},  {60, 3},
    {61, 3},  {62, 3},  {63, 3},  {64, 3},  {65, 37}, {66, 5},  {67, 3},  {68, 3},  {69, 3},  {70, 3},
    {71, 3},  {72, 3},  {73, 5},  {74, 3},  {75, 3},  {76, 0},  {77, 3},  {78, 3},  {79, 3},  {80, 3},
    {81, 3},  {82, 3},  {83, 3},  {84, 3},
};

const std::map<int, std::string> kNames = {
    {5, "imImportImage"},
    {8, "imQuietFile"},
    {9, "imCloseFile"},
    {12, "imAnalysis"},
    {13, "imDataRateAnalysis"},
    {14, "imGetIndFormat"},
    {23, "GetMetaData"},
    {24, "SetMetaData"},
    {25, "ImportAudio7"},
    {27, "imGetIndPixelFormat"},
    {28, "imGetSupports7"},
    {29, "imResetSequentialAudio"},
    {30, "imGetSequentialAudio"},
    {32, "imGetRollCrawlInfo"},
    {33, "imRollCrawlRenderPage"},
    {36, "imGetSupports8"},
    {37, "imGetInfo8"},
    {38, "imGetPrefs8"},
    {39, "imOpenFile8"},
    {40, "imSaveFile8"},
    {42, "imCalcSize8"},
    {43, "imCheckTrim8"},
    {44, "imTrimFile8"},
    {45, "imGetPreferredFrameSize"},
    {46, "imCreateAsyncImporter"},
    {47, "imGetSourceVideo"},
    {48, "imDeferredProcessing"},
    {49, "imGetPeakAudio"},
    {50, "imRetargetAccelerator"},
    {51, "imCopyFile"},
    {52, "imGetTimeInfo8"},
    {53, "imSetTimeInfo8"},
    {54, "imGetSubTypeNames"},
    {55, "imGetFileAttributes"},
    {56, "imQueryDestinationPath"},
    {57, "imQueryContentState"},
    {58, "imGetIndColorProfile"},
    {59, "imQueryInputFileList"},
    {61, "imInitiateAsyncClosedCaptionScan"},
    {62, "imGetNextClosedCaption"},
    {63, "imCompleteAsyncClosedCaptionScan"},
    {64, "imGetAudioChannelLayout"},
    {66, "imPerformSourceSettingsCommand"},
    {67, "imGetExtendedFormatInfo"},
    {68, "imGetDataStreamsInfo"},
    {69, "imGetDataStream"},
    {70, "imGetDataSample"},
    {71, "imGetSupportsPerInstancePrefs"},
    {72, "imGetInstancePrefs"},
    {73, "imGetIndColorSpace"},
    {74, "imGetDataStreamChunk"},
    {75, "imGetDataFileInfo"},
    {76, "imGetDataHierarchy"},
    {77, "imGetStreamInfo"},
    {78, "imGetStreamTemporalSamples"},
    {79, "imGetDataStreamVideoSyncTime"},
    {80, "imGetCurrentSystemState"},
    {81, "imGetInfo9"},
    {82, "imGetEmbeddedLUT"},
    {83, "imSelectClipFrameDescriptor2"},
    {84, "imGetColorSpaceFromOpaqueData"},
};

std::string expectedLine(int selector) {
    if (selector == 41) return "---- Selector - imDeleteFile8";
    if (selector == 60) return "---- Selector - imQueryStreamLabe";
    auto name = kNames.find(selector);
    if (name != kNames.end()) return "---- Selector - " + name->second + " ----";
    return "---- Selector - Unknown selector : " + std::to_string(selector) + " ----";
}

}  // namespace

TEST_F(ImporterTest, EverySelectorLogsItsLineAndGivesItsResult) {
    writeOptions("INFO");
    start();
    ASSERT_EQ(host().init(), imNoErr);

    std::vector<std::string> expectedLines = {"---- Selector - imInit ----"};
    std::vector<int> selectors;
    for (int selector = 2; selector <= 90; ++selector) selectors.push_back(selector);
    selectors.push_back(1000);
    selectors.push_back(-1);
    for (int selector : selectors) {
        imIndFormatRec format{};
        imIndPixelFormatRec pixelFormat{};
        ColorSpaceRec colorSpace{};
        void* param1 = nullptr;
        void* param2 = nullptr;
        if (selector == imGetIndFormat) param2 = &format;
        if (selector == imGetIndPixelFormat) param2 = &pixelFormat;
        if (selector == imGetIndColorSpace) {
            param1 = indexParam(1);
            param2 = &colorSpace;
        }
        auto known = kResults.find(selector);
        const int expected = known != kResults.end() ? known->second : imUnsupported;
        EXPECT_EQ(host().call(selector, param1, param2), expected) << "selector " << selector;
        // The frame descriptor is asked for so often that it is never logged.
        if (selector != imSelectClipFrameDescriptor) expectedLines.push_back(expectedLine(selector));
    }
    ASSERT_EQ(host().shutdown(), imNoErr);
    expectedLines.push_back("---- Selector - imShutdown ----");

    EXPECT_EQ(selectorLines(), expectedLines);
    for (const LogLine& line : logLines()) {
        if (line.message.rfind("---- Selector - ", 0) == 0) {
            EXPECT_EQ(line.level, "INFO") << line.message;
        }
    }
    EXPECT_TRUE(host().leakReport().clean()) << host().leakReport().toString();
}

TEST_F(ImporterTest, FormatCatalogueFillsTheRecordByteByByte) {
    start();
    ASSERT_EQ(host().init(), imNoErr);

    imIndFormatRec format;
    std::memset(&format, 0xCD, sizeof(format));
    ASSERT_EQ(host().call(imGetIndFormat, indexParam(0), &format), imNoErr);
    const auto* bytes = reinterpret_cast<const unsigned char*>(&format);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes), 4), "WARB");
    EXPECT_EQ(int32At(bytes, 4), 0xC008);
    EXPECT_EQ(int32At(bytes, 8), 1);
    EXPECT_STREQ(reinterpret_cast<const char*>(bytes + 12), "Blackmagic RAW with Tarnwick");
    EXPECT_STREQ(reinterpret_cast<const char*>(bytes + 268), "Blackmagic RAW");
    EXPECT_STREQ(reinterpret_cast<const char*>(bytes + 300), "braw");
    // The extension list ends in a zero: nothing of the host's filling is read as a second one.
    EXPECT_EQ(bytes[305], 0);
    EXPECT_EQ(int32At(bytes, 760), 1);
    // The alternate types in between are the host's.
    for (size_t at = 556; at < 760; ++at) {
        ASSERT_EQ(bytes[at], 0xCD) << at;
    }

    imIndFormatRec untouched;
    std::memset(&untouched, 0x5A, sizeof(untouched));
    imIndFormatRec second = untouched;
    EXPECT_EQ(host().call(imGetIndFormat, indexParam(1), &second), imBadFormatIndex);
    EXPECT_EQ(std::memcmp(&second, &untouched, sizeof(second)), 0);

    // 8-bit first: the host reads the order as the importer's preference.
    const uint32_t expected[] = {0x61726762, 0x61724742, 0x61726742};
    for (int index = 0; index < 3; ++index) {
        unsigned char record[sizeof(imIndPixelFormatRec)];
        std::memset(record, 0, sizeof(record));
        ASSERT_EQ(host().call(imGetIndPixelFormat, indexParam(index), record), imNoErr);
        EXPECT_EQ(static_cast<uint32_t>(int32At(record, 8)), expected[index]) << index;
    }
    imIndPixelFormatRec pixelFormat{};
    EXPECT_EQ(host().call(imGetIndPixelFormat, indexParam(3), &pixelFormat), imBadFormatIndex);
    EXPECT_EQ(host().formats().size(), 1u);
    EXPECT_EQ(host().pixelFormats().size(), 3u);
}

TEST_F(ImporterTest, ColourSpaceIsBt709UnderTheRecordsLock) {
    start();
    ASSERT_EQ(host().init(), imNoErr);
    twSimMemory& memory = host().memory();

    // Beyond index 0 the answer comes without touching the private data at all.
    ColorSpaceRec beyond{};
    beyond.inPrivateData = reinterpret_cast<void*>(0x10);
    EXPECT_EQ(host().call(imGetIndColorSpace, indexParam(1), &beyond), imOtherErr);
    EXPECT_TRUE(host().diagnostics().misuse().empty());

    char** handle = memory.newHandle(sizeof(TWI_PrivateData), true);
    auto* record = reinterpret_cast<TWI_PrivateData*>(*handle);
    const void* stringSuite = nullptr;
    ASSERT_EQ(host().suites().acquire(kPrSDKStringSuite, kPrSDKStringSuiteVersion, &stringSuite), kSPNoError);
    record->stringSuite = static_cast<PrSDKStringSuite*>(const_cast<void*>(stringSuite));

    unsigned char raw[sizeof(ColorSpaceRec)];
    std::memset(raw, 0, sizeof(raw));
    std::memcpy(raw, &handle, sizeof(handle));
    EXPECT_EQ(host().call(imGetIndColorSpace, indexParam(0), raw), imNoErr);
    EXPECT_EQ(int32At(raw, 8), 5);
    PrSDKString name;
    std::memcpy(&name, raw + 32, sizeof(name));
    EXPECT_EQ(host().strings().textOrEmpty(name), "BT.709");
    EXPECT_EQ(memory.lockCount(handle), 0);

    host().strings().release(name);
    host().suites().release(kPrSDKStringSuite, kPrSDKStringSuiteVersion);
    memory.disposeHandle(handle);
    ASSERT_EQ(host().shutdown(), imNoErr);
    EXPECT_TRUE(host().leakReport().clean()) << host().leakReport().toString();
}

TEST_F(ImporterTest, BarrierTurnsAnExceptionIntoNinetyNineAndOneMessage) {
    writeOptions("INFO");
    start();
    ASSERT_EQ(host().init(), imNoErr);
    host().events().clear();

    // A handle of another size is another importer's: the record is refused.
    char** handle = host().memory().newHandle(sizeof(TWI_PrivateData) + 8, true);
    ColorSpaceRec colorSpace{};
    colorSpace.inPrivateData = handle;
    EXPECT_EQ(host().call(imGetIndColorSpace, indexParam(0), &colorSpace), malUnknownError);
    EXPECT_EQ(host().memory().lockCount(handle), 0);
    EXPECT_EQ(events(), std::vector<std::string>{"3|BRAW - Importer GetInfos Error|Wrong PrivateData Size ! - " +
                                                 bugReportText()});
    EXPECT_EQ(host().suites().outstanding(kPrSDKErrorSuite), 0);

    // Without the error suite the failure is silent, and the result the same.
    host().events().clear();
    host().suites().setAvailable(kPrSDKErrorSuite, false);
    EXPECT_EQ(host().call(imGetIndColorSpace, indexParam(0), &colorSpace), malUnknownError);
    EXPECT_TRUE(events().empty());
    host().suites().setAvailable(kPrSDKErrorSuite, true);

    ASSERT_EQ(host().shutdown(), imNoErr);
    host().memory().disposeHandle(handle);

    const std::vector<std::string> errors = errorMessages();
    const std::string size = std::to_string(sizeof(TWI_PrivateData) + 8);
    EXPECT_EQ(errors, (std::vector<std::string>{"Private Data Wrong Size ! " + size,
                                                "Error raised : Wrong PrivateData Size !",
                                                "Private Data Wrong Size ! " + size,
                                                "Error raised : Wrong PrivateData Size !"}));
    EXPECT_TRUE(host().diagnostics().misuse().empty());
}
