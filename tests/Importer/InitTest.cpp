// imInit as each host sees it: the promises in the host's record, the warnings
// about host versions and logging, the moves of earlier releases' files, the
// cache folder, and a clean host after imShutdown.

#include "ImporterTestSupport.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <fstream>

namespace {

twSimIdentity identity(csSDK_uint32 appCode, unsigned major, csSDK_int32 interfaceVersion = 23) {
    twSimIdentity id;
    id.appCode = appCode;
    id.major = major;
    id.interfaceVersion = interfaceVersion;
    return id;
}

int32_t int32At(const unsigned char* bytes, size_t offset) {
    int32_t value;
    std::memcpy(&value, bytes + offset, sizeof(value));
    return value;
}

bool exists(const std::string& path) {
    struct stat info;
    return lstat(path.c_str(), &info) == 0;
}

const char kNewVersionTitle[] = "BRAW - Tarnwick - New Adobe Version detected";
const char kOldVersionTitle[] = "BRAW - Tarnwick - Old Adobe CC Version Not Officially Supported";

}  // namespace

TEST_F(ImporterTest, InitWritesItsPromisesAtTheirBytesAndNothingElse) {
    struct Case {
        csSDK_uint32 app;
        csSDK_int32 interfaceVersion;
        bool audioConform;
        bool fileList;
    };
    const Case cases[] = {
        {kAppPremierePro, 23, true, false},
        {kAppAfterEffects, 5, false, true},
        {kAppMediaEncoder, 6, true, false},
    };
    for (const Case& c : cases) {
        start(identity(c.app, 24, c.interfaceVersion));
        unsigned char record[sizeof(imImportInfoRec)];
        std::memset(record, 0xA5, sizeof(record));
        ASSERT_EQ(host().call(imInit, record, nullptr), imNoErr);

        std::map<size_t, int32_t> written = {{8, 1},  {36, 1}, {40, 0}, {44, 0},  {48, 0},
                                             {64, 1}, {68, 1}, {92, 1}, {145, 1}, {52, 0x7FFFFFFF}};
        if (c.audioConform) written[72] = 1;
        if (c.fileList) written[100] = 1;
        std::vector<bool> mine(sizeof(record), false);
        for (const auto& field : written) {
            EXPECT_EQ(int32At(record, field.first), field.second) << "byte " << field.first << " app " << c.app;
            for (size_t i = 0; i < 4; ++i) mine[field.first + i] = true;
        }
        for (size_t at = 0; at < sizeof(record); ++at) {
            if (!mine[at]) {
                ASSERT_EQ(record[at], 0xA5) << "byte " << at << " app " << c.app;
            }
        }
        ASSERT_EQ(host().shutdown(), imNoErr);
        EXPECT_TRUE(host().leakReport().clean()) << host().leakReport().toString();
    }
}

TEST_F(ImporterTest, HostVersionGatesWarnOnlyPremiereAndMediaEncoderOutsideThirteenToTwentyFive) {
    const std::string newVersionText =
        std::string("This version of Tarnwick has not been tested with this new version of Adobe and could have "
                    "unwanted behavior. Please check if a Tarnwick update is available on ") +
        TW_DOWNLOAD_URL + " !";
    const std::string oldVersionText =
        "Tarnwick is not officially supported on this old version of Adobe CC. It can work but could have unwanted "
        "behavior... You need to update your Adobe application to have Tarnwick officially supported !";
    for (csSDK_uint32 app : {kAppPremierePro, kAppMediaEncoder, kAppAfterEffects}) {
        for (unsigned major : {12u, 13u, 25u, 26u}) {
            start(identity(app, major));
            ASSERT_EQ(host().init(), imNoErr);
            std::vector<std::string> expected;
            if (app != kAppAfterEffects && major == 26) expected = {"2|" + std::string(kNewVersionTitle) + "|" + newVersionText};
            if (app != kAppAfterEffects && major == 12) expected = {"2|" + std::string(kOldVersionTitle) + "|" + oldVersionText};
            EXPECT_EQ(events(), expected) << "app " << app << " major " << major;
            host().shutdown();
        }
    }

    // A host that cannot be identified stays unknown: no gate fires.
    start(identity(kAppPremierePro, 12));
    host().setFault(twSimFault::AppInfoFourCC, true);
    ASSERT_EQ(host().init(), imNoErr);
    EXPECT_TRUE(events().empty());

    // Without the error suite nothing is shown, and imInit still succeeds.
    start(identity(kAppPremierePro, 26));
    host().suites().setAvailable(kPrSDKErrorSuite, false);
    ASSERT_EQ(host().init(), imNoErr);
    EXPECT_TRUE(events().empty());
}

TEST_F(ImporterTest, LoggingOnWarnsAndWritesTheHostsLogWhileOffWritesNothing) {
    writeOptions("DESACTIVATED");
    start();
    ASSERT_EQ(host().init(), imNoErr);
    EXPECT_TRUE(events().empty());
    host().shutdown();
    EXPECT_FALSE(exists(productFolder() + "/Logs/Tarnwick_Importer_Premiere Pro.log"));

    writeOptions("WARN");
    start(twSimIdentity::MediaEncoder());
    ASSERT_EQ(host().init(), imNoErr);
    EXPECT_EQ(events(), std::vector<std::string>{
                            "2|BRAW - /!\\ Logs are enabled ! Disable this to increase Tarnwick's speed after "
                            "sending us the bug report|Unless if you are reproducing an issue to send Logs to "
                            "Tarnwick developers, you should disable Logs because they reduce a lot decoding speed !"});
    host().shutdown();
    // Whatever level below 5 the option names, the log runs at INFO.
    const std::vector<std::string> lines = selectorLines("Adobe Media Encoder");
    EXPECT_EQ(lines, (std::vector<std::string>{"---- Selector - imInit ----", "---- Selector - imShutdown ----"}));
    bool optionsLogged = false;
    for (const LogLine& line : logLines("Adobe Media Encoder")) {
        optionsLogged |= line.message.rfind("Tarnwick_options.ini Content : ", 0) == 0;
    }
    EXPECT_TRUE(optionsLogged);
}

TEST_F(ImporterTest, PremiereProEmptiesTheCacheFolderAndMediaEncoderLeavesIt) {
    const std::string cached = m_folder.writeFile("home/Library/Application Support/Qervane/Tarnwick/Cache/frame.bin", "x");

    start(twSimIdentity::MediaEncoder());
    ASSERT_EQ(host().init(), imNoErr);
    EXPECT_TRUE(exists(cached));
    host().shutdown();

    start(twSimIdentity::AfterEffects());
    ASSERT_EQ(host().init(), imNoErr);
    EXPECT_TRUE(exists(cached));
    host().shutdown();

    start(twSimIdentity::PremierePro());
    ASSERT_EQ(host().init(), imNoErr);
    EXPECT_FALSE(exists(cached));
    EXPECT_TRUE(exists(productFolder() + "/Cache"));
    EXPECT_TRUE(events().empty());
}

TEST_F(ImporterTest, FailedIniTransferIsShownAndTheStartGoesOn) {
    // An ini "file" that is a folder with something in it can be neither
    // removed nor replaced.
    m_folder.writeFile("home/Library/Application Support/Qervane/Tarnwick/Tarnwick_options.ini/keep", "x");
    start();
    ASSERT_EQ(host().init(), imNoErr);
    EXPECT_EQ(events(), std::vector<std::string>{"3|BRAW - Error transferring Ini File|The Tarnwick Ini File changed "
                                                 "its location and an error happened during transfer - " +
                                                 bugReportText()});
    EXPECT_TRUE(exists(productFolder() + "/TW_Preset"));
}

TEST_F(ImporterTest, FailedPresetTransferIsShownThenLoggedOnceTheLogIsOn) {
    writeOptions("INFO");
    m_folder.writeFile("home/Library/Application Support/Qervane/TW_Preset/mine.twPreset", "{}");
    // A new preset place that points nowhere takes neither the move nor a folder.
    ASSERT_EQ(symlink((m_folder.path() + "/nowhere").c_str(), (productFolder() + "/TW_Preset").c_str()), 0);
    start();
    ASSERT_EQ(host().init(), imNoErr);
    const std::vector<std::string> shown = events();
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0], "3|BRAW - Error transferring TW Presets|The Tarnwick Presets changed their location and an "
                        "error happened during transfer - " +
                            bugReportText());
    EXPECT_EQ(shown[1].rfind("2|BRAW - /!\\ Logs are enabled !", 0), 0u);
    EXPECT_TRUE(exists(makerFolder() + "/TW_Preset/mine.twPreset"));
    host().shutdown();

    const std::vector<std::string> errors = errorMessages();
    EXPECT_EQ(errors, std::vector<std::string>{"Error while transfering Ini File : Impossible to open input stream"});
}

TEST_F(ImporterTest, OldReleasesFilesMoveOrStayAndOldEmptyFoldersGo) {
    const std::string oldIni = m_folder.writeFile("home/Library/Application Support/Qervane/Tarnwick_options.ini",
                                                  "[General]\nlogging=INFO\n");
    m_folder.makeFolder("home/Library/Application Support/Qervane/TW_Preset");
    m_folder.makeFolder("home/Library/Application Support/Qervane/TW_CACHE");
    m_folder.makeFolder("home/Library/Application Support/Qervane/Logs");
    start();
    ASSERT_EQ(host().init(), imNoErr);
    // The old ini file is never read nor moved over the new one.
    EXPECT_TRUE(exists(oldIni));
    EXPECT_TRUE(events().empty());
    EXPECT_FALSE(exists(makerFolder() + "/TW_Preset"));
    EXPECT_FALSE(exists(makerFolder() + "/TW_CACHE"));
    EXPECT_FALSE(exists(makerFolder() + "/Logs"));
    EXPECT_TRUE(exists(productFolder() + "/TW_Preset"));
    host().shutdown();
    EXPECT_TRUE(host().leakReport().clean()) << host().leakReport().toString();
}

TEST_F(ImporterTest, CacheThatCannotBeEmptiedIsOnlyLogged) {
    writeOptions("INFO");
    m_folder.writeFile("home/Library/Application Support/Qervane/Tarnwick/Cache", "not a folder");
    start();
    ASSERT_EQ(host().init(), imNoErr);
    host().shutdown();
    const std::vector<std::string> shown = events();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].rfind("2|BRAW - /!\\ Logs are enabled !", 0), 0u);
    EXPECT_EQ(errorMessages(),
              std::vector<std::string>{"Impossible to clear Cache : cleanFolder - FolderPath input is not a folder"});
}

TEST_F(ImporterTest, StartUpStepsRunInTheirOrder) {
    // Every step leaves a trace: a failed preset move, logging on, a host too
    // new, and a cache that cannot be emptied.
    writeOptions("INFO");
    m_folder.writeFile("home/Library/Application Support/Qervane/TW_Preset/mine.twPreset", "{}");
    ASSERT_EQ(symlink((m_folder.path() + "/nowhere").c_str(), (productFolder() + "/TW_Preset").c_str()), 0);
    m_folder.writeFile("home/Library/Application Support/Qervane/Tarnwick/Cache", "not a folder");
    start(identity(kAppPremierePro, 26));
    ASSERT_EQ(host().init(), imNoErr);
    host().shutdown();

    // The boxes: the move (step 4), the log warning (6), the version gate (9).
    const std::vector<std::string> shown = events();
    ASSERT_EQ(shown.size(), 3u);
    EXPECT_NE(shown[0].find("|BRAW - Error transferring TW Presets|"), std::string::npos) << shown[0];
    EXPECT_NE(shown[1].find("|BRAW - /!\\ Logs are enabled !"), std::string::npos) << shown[1];
    EXPECT_NE(shown[2].find(kNewVersionTitle), std::string::npos) << shown[2];

    // The log: the options and the install check's thread (step 5, lowered
    // or already over), the move's error (7), the selector line (8), the
    // cache (10), then the decoder library (13) and the manager's codec.
    const std::vector<std::string> steps = {"Tarnwick_options.ini Content : ",
                                            "CheckInstallFolder priority ",
                                            "Error while transfering Ini File : ",
                                            "---- Selector - imInit ----",
                                            "Impossible to clear Cache : ",
                                            "Succeeded in creating IBlackmagicRawFactory with this path ",
                                            "Initializing Pipeline"};
    std::vector<size_t> firstLine(steps.size(), SIZE_MAX);
    const std::vector<LogLine> lines = logLines();
    for (size_t n = 0; n < lines.size(); ++n)
        for (size_t s = 0; s < steps.size(); ++s)
            if (firstLine[s] == SIZE_MAX && lines[n].message.find(steps[s]) != std::string::npos) firstLine[s] = n;
    for (size_t s = 0; s < steps.size(); ++s) {
        EXPECT_NE(firstLine[s], SIZE_MAX) << steps[s];
        if (s > 0) {
            EXPECT_LT(firstLine[s - 1], firstLine[s]) << steps[s - 1] << " / " << steps[s];
        }
    }
}
