#include "Common/TW_Debug_Options.h"

#include "ProductConfig.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

class DebugOptions : public ::testing::Test {
protected:
    void SetUp() override { twtest::UseProductConfig(); }

    std::string productFolder() const { return m_roots.home() + "/Library/Application Support/Qervane/Tarnwick"; }
    std::string iniPath() const { return productFolder() + "/Tarnwick_options.ini"; }
    void writeIni(const std::string& text) const {
        m_roots.folder().writeFile("home/Library/Application Support/Qervane/Tarnwick/Tarnwick_options.ini", text);
    }
    TWDebugOptions loaded(const std::string& text) const {
        writeIni(text);
        TWDebugOptions options;
        options.load();
        return options;
    }

    twtest::ScopedTestRoots m_roots;
};

void expectDefaults(const TWDebugOptions& o) {
    EXPECT_FALSE(o.needToUpdate);
    EXPECT_EQ(o.loggingLevel, QV_LOG_DESACTIVATED);
    EXPECT_FALSE(o.gpuDecoding);
    ASSERT_EQ(o.presetsNames.size(), 20u);
    for (const qvUtf8String& name : o.presetsNames) EXPECT_EQ(name.Str(), "No Preset");
    EXPECT_FALSE(o.enableCorrectXML);
    EXPECT_TRUE(o.brawDesktopFilepath.Empty());
    EXPECT_FALSE(o.disableAutoUpdate);
    EXPECT_TRUE(o.importerIsFullyAsync);
    EXPECT_FALSE(o.pproAmeLowerPriority);
    EXPECT_FALSE(o.pproDisableTimecodeWarning);
    EXPECT_TRUE(o.pproImporterOnlyOneFrameWhenLayerSettings);
    EXPECT_FALSE(o.pproDisableSourceSettingsPanel);
    EXPECT_FALSE(o.rememberAlwaysSetNewSourceMode);
    EXPECT_FALSE(o.aeLowerPriority);
    EXPECT_TRUE(o.aeLayerSettingsGPUEnabled);
}

}  // namespace

TEST_F(DebugOptions, EmptyOrMissingFileGivesTheDefaults) {
    expectDefaults(loaded(""));
    expectDefaults(TWDebugOptions());
    // Loading makes the file and the preset folder exist.
    EXPECT_EQ(twtest::TempFolder::readFile(iniPath()), "");
    EXPECT_TRUE(std::filesystem::is_directory(productFolder() + "/TW_Preset"));
    expectDefaults(loaded("garbage without sections\n=\n[["));
}

TEST_F(DebugOptions, NamesIgnoreCaseValuesDoNot) {
    TWDebugOptions o = loaded("[GENERAL]\nLOGGING = INFO\nimportersyncmode2 = false\nENABLEAUTOUPDATE=false\n"
                              "[premierepro]\nLowerPriority = true\n");
    EXPECT_EQ(o.loggingLevel, QV_LOG_INFO);
    EXPECT_FALSE(o.importerIsFullyAsync);
    EXPECT_TRUE(o.disableAutoUpdate);
    EXPECT_TRUE(o.pproAmeLowerPriority);
    EXPECT_FALSE(o.aeLowerPriority);

    o = loaded("[General]\nlogging = info\nimporterSyncMode2 = yes\nenableAutoUpdate = true\n"
               "prproHybridGPUCPUDecoding = True\nenableCorrectXml = 1\n"
               "[AfterEffects]\naeLayerSettingsGPUEnabled3 = false\nImporterOnlyOneFrameWhenLayerSettings = false\n"
               "lowerPriority = true\n");
    EXPECT_EQ(o.loggingLevel, QV_LOG_DESACTIVATED);
    EXPECT_TRUE(o.importerIsFullyAsync);
    EXPECT_FALSE(o.disableAutoUpdate);
    EXPECT_FALSE(o.gpuDecoding);
    EXPECT_FALSE(o.enableCorrectXML);
    EXPECT_FALSE(o.aeLayerSettingsGPUEnabled);
    EXPECT_FALSE(o.pproImporterOnlyOneFrameWhenLayerSettings);
    EXPECT_TRUE(o.aeLowerPriority);
    EXPECT_FALSE(o.pproAmeLowerPriority);

    for (const char* level : {"TRACE", "DEBUG", "INFO", "WARN", "ERR", "DESACTIVATED"}) {
        o = loaded(std::string("[General]\nlogging=") + level + "\n");
        EXPECT_EQ(QvLogging::loggingLevelStr[o.loggingLevel].Str(), level);
    }
}

TEST_F(DebugOptions, PresetNamesOfBothOlderForms) {
    const std::string seventy(70, 'n');
    TWDebugOptions o = loaded("[General]\npresetsName0 = #1 - Sunset\npresetsName1 = #1 - Sunset\n"
                              "presetsName2 = " + seventy + "\npresetsName3 = No Preset 4\n"
                              "presetsName4 = Untitled Preset\npresetsName5 = a|b\npresetsName19 = last\n");
    EXPECT_TRUE(o.needToUpdate);
    EXPECT_EQ(o.presetsNames[0].Str(), "Sunset");
    EXPECT_EQ(o.presetsNames[1].Str(), "#1 - Sunset");
    EXPECT_EQ(o.presetsNames[2].Str(), std::string(64, 'n'));
    EXPECT_EQ(o.presetsNames[3].Str(), "No Preset");
    EXPECT_EQ(o.presetsNames[4].Str(), "No Preset");
    EXPECT_EQ(o.presetsNames[5].Str(), "ab");
    EXPECT_EQ(o.presetsNames[19].Str(), "last");
    // The prefix alone is no name to cut.
    o = loaded("[General]\npresetsName0 = #1 - \n");
    EXPECT_EQ(o.presetsNames[0].Str(), "#1 -");

    o = loaded("[General]\npresetsNames = #1 - Day|Night||#4 - Dusk|#4 - Wrong\n");
    EXPECT_TRUE(o.needToUpdate);
    EXPECT_EQ(o.presetsNames[0].Str(), "Day");
    EXPECT_EQ(o.presetsNames[1].Str(), "Night");
    EXPECT_EQ(o.presetsNames[2].Str(), "No Preset");
    EXPECT_EQ(o.presetsNames[3].Str(), "Dusk");
    EXPECT_EQ(o.presetsNames[4].Str(), "#4 - Wrong");
    EXPECT_EQ(o.presetsNames[5].Str(), "No Preset");

    const std::vector<qvUtf8String> prefixed = o.getPresetNamesWithPrefix();
    ASSERT_EQ(prefixed.size(), 20u);
    EXPECT_EQ(prefixed[0].Str(), "#1 - Day");
    EXPECT_EQ(prefixed[19].Str(), "#20 - No Preset");

    EXPECT_FALSE(loaded("[General]\nlogging = INFO\n").needToUpdate);
}

TEST_F(DebugOptions, ExportRoundTripsWhatItKnowsAndDropsTheRest) {
    TWDebugOptions o;
    o.loggingLevel = QV_LOG_WARN;
    o.gpuDecoding = true;
    o.importerIsFullyAsync = false;
    o.disableAutoUpdate = true;
    o.brawDesktopFilepath = "/Applications/Tarnwick.app";
    o.pproDisableTimecodeWarning = true;
    o.alwaysSetNewSourceMode = true;
    o.aeLayerSettingsGPUEnabled = false;
    o.presetsNames[0] = "Kept only in memory";
    writeIni("[General]\nunknownKey = 1\n[Other]\nx = y\n");
    o.exportToFile();

    EXPECT_EQ(twtest::TempFolder::readFile(iniPath()),
              "[General]\n"
              "logging = WARN\n"
              "prproHybridGPUCPUDecoding = true\n"
              "importerSyncMode2 = false\n"
              "enableCorrectXml = false\n"
              "enableAutoUpdate = false\n"
              "brawDesktopFilepath = /Applications/Tarnwick.app\n"
              "\n\n"
              "[PremierePro]\n"
              "lowerPriority = false\n"
              "pproDisableTimecodeWarning = true\n"
              "pproDisableSourceSettingsPanel = false\n"
              "rememberAlwaysSetNewSourceMode = false\n"
              "alwaysSetNewSourceMode = true\n"
              "\n\n"
              "[AfterEffects]\n"
              "lowerPriority = false\n"
              "ImporterOnlyOneFrameWhenLayerSettings = true\n"
              "aeLayerSettingsGPUEnabled3 = false\n");

    TWDebugOptions back;
    back.load();
    EXPECT_EQ(back.loggingLevel, QV_LOG_WARN);
    EXPECT_TRUE(back.gpuDecoding);
    EXPECT_FALSE(back.importerIsFullyAsync);
    EXPECT_TRUE(back.disableAutoUpdate);
    EXPECT_EQ(back.brawDesktopFilepath.Str(), "/Applications/Tarnwick.app");
    EXPECT_TRUE(back.pproDisableTimecodeWarning);
    EXPECT_TRUE(back.alwaysSetNewSourceMode);
    EXPECT_FALSE(back.aeLayerSettingsGPUEnabled);
    EXPECT_EQ(back.presetsNames[0].Str(), "No Preset");
    EXPECT_FALSE(back.needToUpdate);
}

TEST_F(DebugOptions, ResetKeepsTheRememberedSourceMode) {
    TWDebugOptions o = loaded("[PremierePro]\nalwaysSetNewSourceMode = true\nlowerPriority = true\n");
    EXPECT_TRUE(o.alwaysSetNewSourceMode);
    writeIni("[General]\n");
    o.load();
    EXPECT_TRUE(o.alwaysSetNewSourceMode);
    EXPECT_FALSE(o.pproAmeLowerPriority);
}

TEST_F(DebugOptions, ReportListsThePrintedFields) {
    TWDebugOptions o = loaded("[General]\nlogging = ERR\nbrawDesktopFilepath = /x/y\n");
    EXPECT_EQ(o.to_string().Str(),
              "Tarnwick_options.ini Content : \n"
              "    - needToUpdate : 0\n"
              "    - loggingLevel : 4\n"
              "    - gpuDecoding : 0\n"
              "    - enableCorrectXML : 0\n"
              "    - brawDesktopFilepath : /x/y\n"
              "    - disableAutoUpdate : 0\n"
              "    - importerIsFullyAsync : 1\n"
              "    - pproAmeLowerPriority : 0\n"
              "    - pproDisableTimecodeWarning : 0\n"
              "    - pproImporterOnlyOneFrameWhenLayerSettings : 1\n"
              "    - pproDisableSourceSettingsPanel : 0\n"
              "    - rememberAlwaysSetNewSourceMode : 0\n"
              "    - aeLowerPriority : 0\n"
              "    - aeLayerSettingsGPUEnabled : 1\n");
    EXPECT_EQ(TWDebugOptions::boolToIniStr(true).Str(), "true");
    EXPECT_EQ(TWDebugOptions::boolToIniStr(false).Str(), "false");
}

TEST_F(DebugOptions, GlobalOptionsThroughTheStaticEntries) {
    writeIni("[General]\nlogging = INFO\n");
    EXPECT_EQ(&TWDebugOptions::getDebugOptions(), &debugOptions);
    TWDebugOptions::loadDebugOptions();
    EXPECT_EQ(debugOptions.loggingLevel, QV_LOG_INFO);
    debugOptions.loggingLevel = QV_LOG_TRACE;
    TWDebugOptions::exportDebugOptions();
    TWDebugOptions::loadDebugOptions();
    EXPECT_EQ(debugOptions.loggingLevel, QV_LOG_TRACE);
}
