// The per-file record and the services around the selectors, called directly
// against the simulated host's tables.

#include "TempFolder.h"
#include "twSimHost.h"

#include "Config/qvConfig.h"
#include "Utils/qvLogging.h"
#include "_qvBRAW_Importer/PrivateData.h"
#include "_qvBRAW_Importer/Utils.h"

#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct SuiteCall {
    bool acquire;
    std::string name;
    int version;
    bool operator==(const SuiteCall& other) const {
        return acquire == other.acquire && name == other.name && version == other.version;
    }
};

std::ostream& operator<<(std::ostream& out, const SuiteCall& call) {
    return out << (call.acquire ? "acquire " : "release ") << call.name << " " << call.version;
}

std::string bugReportText() {
    return std::string("Please send us a bug report ! ") + TW_BUG_REPORT_URL + " You can contact us at " +
           TW_SUPPORT_EMAIL;
}

}  // namespace

class PrivateDataTest : public ::testing::Test {
protected:
    void start(const twSimHostConfig& config = twSimHostConfig()) {
        m_host.reset();
        m_host = std::make_unique<twSimHost>(config);
        m_handle = m_host->memory().newHandle(sizeof(TWI_PrivateData), true);
    }
    TWI_PrivateData* record() { return reinterpret_cast<TWI_PrivateData*>(*m_handle); }
    imStdParms* stdParms() { return m_host->stdParms(); }

    // The calls since `from`, without the error suite of message boxes.
    std::vector<SuiteCall> suiteCalls(size_t from = 0) {
        std::vector<SuiteCall> out;
        const std::vector<twSimSuiteCall> calls = m_host->suites().calls();
        for (size_t i = from; i < calls.size(); ++i) out.push_back({calls[i].acquire, calls[i].name, calls[i].version});
        return out;
    }
    std::vector<std::string> events() {
        std::vector<std::string> out;
        for (const twSimEvent& event : m_host->events().all()) {
            out.push_back(std::to_string(event.type) + "|" + event.title + "|" + event.description);
        }
        return out;
    }

    twtest::ScopedTestRoots m_roots;
    std::unique_ptr<twSimHost> m_host;
    char** m_handle = nullptr;
};

TEST_F(PrivateDataTest, SuitesComeInTheirOrderAndGoBackInTheirsWithTheCacheAsVersionEight) {
    start();
    ASSERT_EQ(TWI_PrivateData_AcquireSuites(stdParms(), record()), 0);
    PlugMemoryFuncs* const hostMemory = stdParms()->piSuites->memFuncs;
    EXPECT_EQ(record()->memFuncs, hostMemory);
    EXPECT_NE(record()->basicSuite, nullptr);
    EXPECT_EQ(record()->ticksPerSecond, twSimHostConfig().ticksPerSecond);
    const std::vector<SuiteCall> acquired = {
        {true, "MediaCore StringSuite", 1},          {true, "Premiere PPix Creator Suite", 1},
        {true, "Premiere PPix Cache Suite", 6},      {true, "Premiere PPix Suite", 1},
        {true, "MediaCore App Info Suite", 3},       {true, "MediaCore Application Settings Suite", 1},
        {true, "Premiere Time Suite", 1},            {true, "Premiere Error Suite", 3},
    };
    EXPECT_EQ(suiteCalls(), acquired);
    for (const void* suite : {static_cast<const void*>(record()->stringSuite), (const void*)record()->ppixCreatorSuite,
                              (const void*)record()->ppixCacheSuite, (const void*)record()->ppixSuite,
                              (const void*)record()->appInfoSuite, (const void*)record()->applicationSettingsSuite,
                              (const void*)record()->timeSuite, (const void*)record()->errorSuite}) {
        EXPECT_NE(suite, nullptr);
    }

    record()->filepath = new qvUtf8String("/clips/a.braw");
    record()->timecode = new qvUtf8String("01:00:00:00");
    TWI_PrivateData_Release(stdParms(), record());
    const std::vector<SuiteCall> released = {
        {false, "MediaCore StringSuite", 1},          {false, "Premiere PPix Creator Suite", 1},
        {false, "Premiere PPix Cache Suite", 8},      {false, "Premiere PPix Suite", 1},
        {false, "Premiere Time Suite", 1},            {false, "MediaCore App Info Suite", 3},
        {false, "MediaCore Application Settings Suite", 1}, {false, "Premiere Error Suite", 3},
    };
    EXPECT_EQ(suiteCalls(acquired.size()), released);
    EXPECT_EQ(record()->filepath, nullptr);
    EXPECT_EQ(record()->timecode, nullptr);
    EXPECT_EQ(m_host->diagnostics().count(twSimIssue::ReleaseVersionMismatch), 1u);
    EXPECT_TRUE(events().empty());

    m_host->memory().disposeHandle(m_handle);
    EXPECT_TRUE(m_host->leakReport().clean()) << m_host->leakReport().toString();
}

TEST_F(PrivateDataTest, RefusedSuiteIsShownAndStopsTheSuitesAfterIt) {
    start();
    m_host->suites().setAvailable(kPrSDKPPixSuite, false);
    EXPECT_EQ(TWI_PrivateData_AcquireSuites(stdParms(), record()), static_cast<int>(0x80000000u));
    EXPECT_EQ(events(), std::vector<std::string>{"3|BRAW - Importer GetInfos Error|Impossible to get \"Premiere PPix "
                                                 "Suite\" - " +
                                                 bugReportText()});
    EXPECT_NE(record()->ppixCacheSuite, nullptr);
    EXPECT_EQ(record()->ppixSuite, nullptr);
    EXPECT_EQ(record()->appInfoSuite, nullptr);
    EXPECT_EQ(record()->timeSuite, nullptr);
    EXPECT_EQ(m_host->suites().acquireCount(kPrSDKAppInfoSuite), 0);
    EXPECT_EQ(m_host->suites().acquireCount(kPrSDKTimeSuite), 0);
    // The message's own error suite went back at once.
    EXPECT_EQ(m_host->suites().outstanding(kPrSDKErrorSuite), 0);
}

TEST_F(PrivateDataTest, TickRateFailureOrZeroIsShownWithTheSuitesCode) {
    start();
    m_host->setFault(twSimFault::TicksPerSecond, true);
    EXPECT_EQ(TWI_PrivateData_AcquireSuites(stdParms(), record()), suiteError_Fail);
    const std::string shown =
        "3|BRAW - Importer GetInfos Error|Impossible to get TicksPerSeconds from TimeSuite - " + bugReportText();
    EXPECT_EQ(events(), std::vector<std::string>{shown});
    TWI_PrivateData_Release(stdParms(), record());
    m_host->memory().disposeHandle(m_handle);

    // A rate of 0 with a successful call is shown too, yet reported as success.
    twSimHostConfig config;
    config.ticksPerSecond = 0;
    start(config);
    EXPECT_EQ(TWI_PrivateData_AcquireSuites(stdParms(), record()), 0);
    EXPECT_EQ(record()->ticksPerSecond, 0);
    EXPECT_EQ(events(), std::vector<std::string>{shown});
    TWI_PrivateData_Release(stdParms(), record());
}

TEST_F(PrivateDataTest, NoBasicSuiteGivesNinetyNineWithNothingShown) {
    start();
    // A host whose utility table has no basic suite to give.
    PlugUtilFuncs utilities = *stdParms()->piSuites->utilFuncs;
    utilities.getSPBasicSuite = []() -> SPBasicSuite* { return nullptr; };
    piSuites suites = *stdParms()->piSuites;
    suites.utilFuncs = &utilities;
    imStdParms parms = *stdParms();
    parms.piSuites = &suites;
    EXPECT_EQ(TWI_PrivateData_AcquireSuites(&parms, record()), 99);
    EXPECT_EQ(record()->basicSuite, nullptr);
    EXPECT_TRUE(events().empty());
    EXPECT_TRUE(suiteCalls().empty());

    // Releasing such a record touches nothing, its strings included.
    record()->filepath = new qvUtf8String("kept");
    TWI_PrivateData_Release(&parms, record());
    ASSERT_NE(record()->filepath, nullptr);
    EXPECT_EQ(*record()->filepath, "kept");
    delete record()->filepath;
    EXPECT_TRUE(suiteCalls().empty());
}

TEST_F(PrivateDataTest, LockPinsTheHandleAndAlwaysGivesItBack) {
    start();
    twSimMemory& memory = m_host->memory();

    TWI_PrivateData* seen = nullptr;
    EXPECT_EQ(TWI_PrivateData_LockExecute(stdParms(), m_handle,
                                          [&](TWI_PrivateData* privateData) {
                                              seen = privateData;
                                              return memory.lockCount(m_handle) == 1 ? 7 : -1;
                                          }),
              7);
    EXPECT_EQ(seen, record());
    EXPECT_EQ(memory.lockCount(m_handle), 0);

    // An exception goes on, with the handle unlocked behind it.
    EXPECT_THROW(TWI_PrivateData_LockExecute(stdParms(), m_handle,
                                             [](TWI_PrivateData*) -> int { throw std::logic_error("inside"); }),
                 std::logic_error);
    EXPECT_EQ(memory.lockCount(m_handle), 0);
    memory.lockHandle(m_handle);
    EXPECT_THROW(TWI_PrivateData_LockExecute(stdParms(), m_handle,
                                             [](TWI_PrivateData*) -> int { throw std::logic_error("inside"); }),
                 std::logic_error);
    EXPECT_EQ(memory.lockCount(m_handle), 1);
    memory.unlockHandle(m_handle);

    // A record of another size is refused before it is pinned.
    char** other = memory.newHandle(sizeof(TWI_PrivateData) - 1, true);
    TWI_PrivateData* out = reinterpret_cast<TWI_PrivateData*>(0x1);
    try {
        TWI_PrivateData_Lock(stdParms(), other, &out);
        ADD_FAILURE() << "a wrong size was accepted";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "Wrong PrivateData Size !");
    }
    EXPECT_EQ(out, reinterpret_cast<TWI_PrivateData*>(0x1));
    EXPECT_EQ(memory.lockCount(other), 0);

    // Without the host's memory functions nothing is touched.
    imStdParms bare = *stdParms();
    bare.piSuites = nullptr;
    EXPECT_EQ(TWI_PrivateData_Lock(&bare, other, &out), 0);
    EXPECT_EQ(out, reinterpret_cast<TWI_PrivateData*>(0x1));

    memory.disposeHandle(other);
    memory.disposeHandle(m_handle);
    EXPECT_TRUE(m_host->leakReport().clean()) << m_host->leakReport().toString();
}

TEST_F(PrivateDataTest, HostAndVersionComeFromTheAppInfoSuiteAndFailStepByStep) {
    start();
    QV_APP_ENUM app;
    QvVersion version;
    ASSERT_TRUE(getHostAndVersion(stdParms(), app, version).isOk());
    EXPECT_EQ(app, QV_APP_ENUM::QV_APP_PPRO);
    EXPECT_EQ(version.toString(), "24.0.0");

    m_host->setFault(twSimFault::AppInfoVersion, true);
    QV_APP_ENUM app2;
    QvVersion version2(1, 2, 3, 0);
    EXPECT_EQ(getHostAndVersion(stdParms(), app2, version2).toString(), "Impossible to get Version from AppVersionSuite");
    EXPECT_EQ(app2, QV_APP_ENUM::QV_APP_PPRO);
    EXPECT_EQ(version2.toString(), "1.2.3");

    m_host->setFault(twSimFault::AppInfoFourCC, true);
    QV_APP_ENUM app3(QV_APP_ENUM::QV_APP_DESKTOP);
    EXPECT_EQ(getHostAndVersion(stdParms(), app3, version2).toString(), "Impossible to get AppFourCC from AppVersionSuite");
    EXPECT_EQ(app3, QV_APP_ENUM::QV_APP_DESKTOP);

    m_host->suites().setAvailable(kPrSDKAppInfoSuite, false);
    EXPECT_EQ(getHostAndVersion(stdParms(), app3, version2).toString(), "Impossible to get AppInfoSuite");
    EXPECT_EQ(getHostAndVersion(nullptr, app3, version2).toString(), "Impossible to get BasicSuite");
    EXPECT_EQ(m_host->suites().outstanding(kPrSDKAppInfoSuite), 0);

    // The settings side's narrower host, by application code.
    const std::pair<csSDK_uint32, PXC_HOST> codes[] = {
        {kAppMediaEncoder, PXC_HOST_AME}, {kAppPremierePro, PXC_HOST_PPRO}, {kAppPremiereElements, PXC_HOST_PPRO},
        {kAppAfterEffects, PXC_HOST_AE},  {kAppAudition, PXC_HOST_UNKNOWN}, {0x44534B54, PXC_HOST_UNKNOWN},
    };
    for (const auto& code : codes) {
        twSimHostConfig config;
        config.identity.appCode = code.first;
        start(config);
        const void* suite = nullptr;
        ASSERT_EQ(m_host->suites().acquire(kPrSDKAppInfoSuite, 3, &suite), kSPNoError);
        EXPECT_EQ(GetHostPP_(static_cast<PrSDKAppInfoSuite*>(const_cast<void*>(suite))), code.second) << code.first;
        m_host->suites().release(kPrSDKAppInfoSuite, 3);
    }
    EXPECT_EQ(GetHostPP_(nullptr), PXC_HOST_UNKNOWN);
}

TEST_F(PrivateDataTest, MessagesCarryThePrefixTheBugReportAndAtMost255Units) {
    start();
    displayMsgToTheUser(stdParms(), "Title", "Text", 3, true);
    displayMsgToTheUser(stdParms(), "Été", "ü", 2, false);
    displayMsgToTheUser(stdParms(), std::string(400, 'x'), std::string(300, 'y'), 3, false);
    displayMsgToTheUserFromSuite(nullptr, "nobody", "sees this", 3, false);
    const std::vector<twSimEvent> shown = m_host->events().all();
    ASSERT_EQ(shown.size(), 3u);
    EXPECT_EQ(shown[0].type, 3u);
    EXPECT_EQ(shown[0].title, "BRAW - Title");
    EXPECT_EQ(shown[0].description, "Text - " + bugReportText());
    EXPECT_EQ(shown[1].type, 2u);
    EXPECT_EQ(shown[1].title, "BRAW - Été");
    EXPECT_EQ(shown[1].description, "ü");
    EXPECT_EQ(shown[2].title, "BRAW - " + std::string(255 - 7, 'x'));
    EXPECT_EQ(shown[2].description, std::string(255, 'y'));
    EXPECT_EQ(m_host->suites().outstanding(kPrSDKErrorSuite), 0);
}

TEST_F(PrivateDataTest, FileTestWritesItsFindingsToTheLog) {
    start();
    g_config.productFolderName = "Tarnwick";
    twtest::TempFolder files;
    const std::string existing = files.writeFile("clip.braw", "x");
    ASSERT_TRUE(g_logger.activateFileLogging(QV_LOG_INFO, "files.log", QV_APP_ENUM(), QvVersion(), nullptr, true).isOk());
    const std::u16string good(existing.begin(), existing.end());
    LogsTestsOnFile(reinterpret_cast<const unsigned short*>(good.c_str()), good.size());
    const std::string missingPath = files.join("gone.braw");
    const std::u16string missing(missingPath.begin(), missingPath.end());
    LogsTestsOnFile(reinterpret_cast<const unsigned short*>(missing.c_str()), missing.size());
    const std::string log = twtest::TempFolder::readFile(g_logger.getLogFilePath().Str());
    g_logger.desactivateFileLogging();

    for (const std::string& text :
         {std::string("|Filepath Test :\n"), std::string("|  - Filepath : ") + existing + "\n", std::string("|  - Exists : True\n"),
          std::string("|  - Readable : True\n"), std::string("|  - Test wfopen : OK\n"),
          std::string("|  - Exists : False\n"), std::string("|  - Test wfopen : #2 - No such file or directory\n")}) {
        EXPECT_NE(log.find(text), std::string::npos) << text;
    }
    EXPECT_NE(log.find("|WARN|"), std::string::npos);
}
