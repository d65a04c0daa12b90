// Start-up housekeeping: the product's identity, the move away from earlier
// releases' folders, and the files named for a support archive.

#include "Common/twUtils.h"

#include "Config/qvConfig.h"
#include "Utils/qvLogging.h"
#include "ProductConfig.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <string>

namespace {

bool exists(const std::string& path) {
    struct stat info;
    return lstat(path.c_str(), &info) == 0;
}

class TwUtils : public ::testing::Test {
protected:
    void SetUp() override { twtest::UseProductConfig(); }
    void TearDown() override { g_logger.desactivateFileLogging(); }

    std::string maker() const { return m_roots.home() + "/Library/Application Support/Qervane"; }
    std::string product() const { return maker() + "/Tarnwick"; }
    std::string write(const std::string& homeRelative, const std::string& bytes = "x") const {
        return m_roots.folder().writeFile("home/" + homeRelative, bytes);
    }
    std::string folder(const std::string& homeRelative) const {
        return m_roots.folder().makeFolder("home/" + homeRelative);
    }
    // Everything logged at INFO and above from here on, read back by log().
    void logToFile() {
        ASSERT_TRUE(
            g_logger.activateFileLogging(QV_LOG_INFO, "utils.log", QV_APP_ENUM(), QvVersion(), nullptr, true).isOk());
    }
    std::string log() { return twtest::TempFolder::readFile(g_logger.getLogFilePath().Str()); }

    twtest::ScopedTestRoots m_roots;
};

}  // namespace

TEST(TwUtilsConfig, InitFillsTheProductsIdentity) {
    g_config = QvConfig();
    twUtils::initQvCommon();
    EXPECT_EQ(g_config.version.toString(), "3.3.9");
    EXPECT_EQ(g_config.buildNumber, 610);
    EXPECT_EQ(g_config.productName, "Tarnwick");
    EXPECT_EQ(g_config.productId, "Tarnwick");
    EXPECT_EQ(g_config.productFolderName, "Tarnwick");
    EXPECT_EQ(g_config.iniFileName, "Tarnwick_options.ini");
    EXPECT_EQ(g_config.cmdFileName, "Tarnwick_CmdFile.txt");
    EXPECT_FALSE(g_config.supportEmail.empty());
    EXPECT_FALSE(g_config.productUrl.empty());
    EXPECT_TRUE(g_config.logSubfolder.Empty());
}

TEST_F(TwUtils, WithoutOldFilesTheTransfersOnlyMakeTheNewPlaces) {
    EXPECT_TRUE(twUtils::transferOldIniOptionsFile().isOk());
    EXPECT_TRUE(twUtils::transferOldPresetFolder().isOk());
    twUtils::deleteOldFolders();
    EXPECT_TRUE(exists(product() + "/Tarnwick_options.ini"));
    EXPECT_TRUE(exists(product() + "/TW_Preset"));
    for (const char* old : {"/Tarnwick_options.ini", "/TW_Preset", "/TW_CACHE", "/Logs"}) {
        EXPECT_FALSE(exists(maker() + old)) << old;
    }
}

TEST_F(TwUtils, AnOldIniFileNeverReplacesTheNewOneAndStaysWhereItIs) {
    const std::string oldIni = write("Library/Application Support/Qervane/Tarnwick_options.ini", "[General]\nold=1\n");
    write("Library/Application Support/Qervane/Tarnwick/Tarnwick_options.ini", "[General]\nnew=1\n");
    logToFile();
    EXPECT_TRUE(twUtils::transferOldIniOptionsFile().isOk());
    EXPECT_EQ(twtest::TempFolder::readFile(oldIni), "[General]\nold=1\n");
    EXPECT_EQ(twtest::TempFolder::readFile(product() + "/Tarnwick_options.ini"), "[General]\nnew=1\n");
    const std::string text = log();
    EXPECT_NE(text.find("|Old Ini file path exists at " + oldIni + " : we need to move it to its new location at : " +
                        product() + "/Tarnwick_options.ini\n"),
              std::string::npos);
    EXPECT_NE(text.find("|New Ini file also exists - so we just remove the old ini file actually\n"), std::string::npos);
    // rmdir refuses a file: no success is claimed, and no failure reported.
    EXPECT_EQ(text.find("Old Ini file removed with success"), std::string::npos);
    EXPECT_EQ(text.find("|ERR|"), std::string::npos);

    // Even with no new file yet: asking for its path creates it first.
    std::remove((product() + "/Tarnwick_options.ini").c_str());
    EXPECT_TRUE(twUtils::transferOldIniOptionsFile().isOk());
    EXPECT_TRUE(exists(oldIni));
    EXPECT_EQ(twtest::TempFolder::readFile(product() + "/Tarnwick_options.ini"), "");
}

TEST_F(TwUtils, AnOldPresetFolderGoesOnlyWhenEmpty) {
    const std::string preset = write("Library/Application Support/Qervane/TW_Preset/mine.twPreset", "{}");
    logToFile();
    EXPECT_TRUE(twUtils::transferOldPresetFolder().isOk());
    EXPECT_TRUE(exists(preset));
    EXPECT_FALSE(exists(product() + "/TW_Preset/mine.twPreset"));
    EXPECT_EQ(log().find("Old Preset Folder removed with success"), std::string::npos);

    std::remove(preset.c_str());
    EXPECT_TRUE(twUtils::transferOldPresetFolder().isOk());
    EXPECT_FALSE(exists(maker() + "/TW_Preset"));
    const std::string text = log();
    EXPECT_NE(text.find("|New Presets folder also exists - so we just remove the old folder actually\n"),
              std::string::npos);
    EXPECT_NE(text.find("|Old Preset Folder removed with success\n"), std::string::npos);
}

TEST_F(TwUtils, FailedTransfersReportTheirCause) {
    // The product folder is a file: neither new place can be made.
    write("Library/Application Support/Qervane/Tarnwick");
    EXPECT_EQ(twUtils::transferOldIniOptionsFile().toString(), "Impossible to open new Ini File");
    EXPECT_EQ(twUtils::transferOldPresetFolder().toString(),
              "Impossible to create Directory at : " + product() + "/TW_Preset (error 20)");
}

TEST_F(TwUtils, OldCacheAndLogFoldersGoWhenEmptyWithTheirTextsCrossed) {
    const std::string oldCache = folder("Library/Application Support/Qervane/TW_CACHE");
    folder("Library/Application Support/Qervane/Logs");
    const std::string kept = write("Library/Application Support/Qervane/Logs/old.log");
    // Logging goes to another folder than the old "Logs" under test.
    g_config.logSubfolder = "NewLogs";
    logToFile();
    twUtils::deleteOldFolders();
    EXPECT_FALSE(exists(oldCache));
    EXPECT_TRUE(exists(kept));
    const std::string text = log();
    // The cache folder's removal speaks of the log folder, and the other way round;
    // both announcements name the cache folder.
    EXPECT_NE(text.find("|Folder Transition : Folder exists and must be deleted : " + oldCache + "\n"),
              std::string::npos);
    EXPECT_NE(text.find("|Old Log folder removed\n"), std::string::npos);
    EXPECT_NE(text.find("|ERR|"), std::string::npos);
    EXPECT_NE(text.find("|Folder Transition : Impossible to remove Cache folder : Impossible to remove Directory at : " +
                        maker() + "/Logs/"),
              std::string::npos);
    EXPECT_EQ(text.find("Old Cache folder removed"), std::string::npos);
    size_t announcements = 0;
    for (size_t at = text.find("must be deleted : " + oldCache + "\n"); at != std::string::npos;
         at = text.find("must be deleted : " + oldCache + "\n", at + 1)) {
        ++announcements;
    }
    EXPECT_EQ(announcements, 2u);
}

TEST_F(TwUtils, SupportArchiveListsPresetsAtTheRootAndEachHostsFilesUnderItsName) {
    write("Library/Application Support/Adobe/Premiere Pro/24.0/Plugin Loading.log");
    write("Library/Application Support/Adobe/After Effects/24.0/Plugin Loading.log");
    write("Library/Logs/DiagnosticReports/crash.ips");
    write("Documents/Adobe/Adobe Media Encoder/24.0/Adobe Media Encoder Prefs");
    write("Library/Preferences/Adobe/After Effects/24.0/Adobe After Effects 24.0 Prefs.txt");

    const auto files = twUtils::getFilesOrFolderToAddInLogZip();
    const std::string home = m_roots.home();
    const std::map<qvUtf8String, std::vector<qvUtf8String>> expected = {
        {qvUtf8String(""), {qvUtf8String(product() + "/TW_Preset")}},
        {qvUtf8String("Premiere Pro/All"), {qvUtf8String(home + "/Library/Logs/DiagnosticReports")}},
        {qvUtf8String("Premiere Pro/24.0"),
         {qvUtf8String(home + "/Library/Application Support/Adobe/Premiere Pro/24.0/Plugin Loading.log")}},
        {qvUtf8String("After Effects/All"), {qvUtf8String(home + "/Library/Logs/DiagnosticReports")}},
        {qvUtf8String("After Effects/24.0"),
         {qvUtf8String(home + "/Library/Application Support/Adobe/After Effects/24.0/Plugin Loading.log"),
          qvUtf8String(home + "/Library/Preferences/Adobe/After Effects/24.0/Adobe After Effects 24.0 Prefs.txt")}},
        {qvUtf8String("Adobe Media Encoder/All"), {qvUtf8String(home + "/Library/Logs/DiagnosticReports")}},
        {qvUtf8String("Adobe Media Encoder/24.0"),
         {qvUtf8String(home + "/Documents/Adobe/Adobe Media Encoder/24.0/Adobe Media Encoder Prefs")}},
    };
    EXPECT_EQ(files, expected);
}
