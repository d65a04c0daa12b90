// The product's two settings windows, with the stand-in application installed
// where the plug-in looks for it.

#include "TW_Settings_Utils/RemoteHostPopup.h"

#include "FileSystem/qvFileSystem.h"
#include "Manager/twSettingsVocabulary.h"
#include "Platform/qvPlatformPopup.h"
#include "Platform/qvPlatformRoots.h"
#include "ProductConfig.h"
#include "SettingsAppStandIn.h"
#include "TW_Settings_Utils/TW_Presets.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

using twtest::readArguments;
using twtest::SettingsAppStandIn;

namespace {

int g_alertCount = 0;
void countAlert(const qvPlatform::AlertText&) { ++g_alertCount; }

bool sameBytes(const twAttributes& a, const twAttributes& b) { return std::memcmp(&a, &b, sizeof(a)) == 0; }

class SettingsPopup : public ::testing::Test {
protected:
    void SetUp() override {
        twtest::UseProductConfig();
        g_alertCount = 0;
        qvPlatform::SetAlertHandler(countAlert);
    }
    void TearDown() override { qvPlatform::SetAlertHandler(nullptr); }

    std::string cacheFile(const char* name) const {
        return m_roots.home() + "/Library/Application Support/Qervane/Tarnwick/Cache/" + name;
    }
    std::string scratch(const std::string& name) const { return m_roots.folder().join(name); }

    // A result preset the application would write: ISO 1600, 3200 K, exposure 1.5.
    std::string resultPreset() const {
        TW_Preset preset;
        twClipAttributes clip;
        twFrameAttributes frame;
        frame.iso = 1600;
        frame.kelvin = 3200;
        frame.exposure = 1.5f;
        preset.setValues(clip, frame, WB_PRESET_CUSTOM, std::vector<bool>(BRAW_SETTINGS_COUNT, true));
        const std::string path = scratch("edited.twPreset");
        EXPECT_TRUE(preset.save(qvUtf8String(path)).isOk());
        return path;
    }

    twtest::ScopedTestRoots m_roots;
    SettingsAppStandIn m_app{TW_POPUP_TEST_CHILD, qvPlatform::SystemPath(TW_DESKTOP_DEFAULT_PATH)};
};

}  // namespace

TEST_F(SettingsPopup, SourceSettingsGetTheClipAndBothPresetPathsAndTakeTheResult) {
    const std::string record = scratch("argv");
    m_app.script({"argv " + record, "result " + resultPreset(), "out json:{\"modified\":true}"});

    twAttributes attributes;
    bool modified = true;
    twOpenSourceSettingsPopup(PXC_HOST_AME, "com.qervane.tarnwick.importer", qvUtf8String("/clips/Day \"1\" é.braw"),
                              modified, attributes);

    const std::string input = cacheFile("sourceSettingsPopup_InputPreset.twPreset");
    const std::string result = cacheFile("sourceSettingsPopup_ResultPreset.twPreset");
    EXPECT_EQ(readArguments(record),
              (std::vector<std::string>{"-sourceSettingsPopup", "/clips/Day \"1\" é.braw", "0", input, result, "3"}));
    // Settings not in use are not handed over; the result file stays after the run.
    EXPECT_FALSE(std::filesystem::exists(input));
    EXPECT_TRUE(std::filesystem::exists(result));
    EXPECT_TRUE(modified);
    EXPECT_TRUE(attributes.useClipAndFrameAttributes);
    EXPECT_EQ(attributes.frame.iso, 1600u);
    EXPECT_EQ(attributes.frame.kelvin, 3200u);
    EXPECT_FLOAT_EQ(attributes.frame.exposure, 1.5f);
}

TEST_F(SettingsPopup, SettingsInUseGoInAsAPresetOfEverySetting) {
    m_app.script({"out json:{\"modified\":false}"});
    twAttributes attributes;
    attributes.useClipAndFrameAttributes = true;
    attributes.frame.iso = 400;
    twCopyFixedText(attributes.clip.gamma, sizeof(attributes.clip.gamma), "Blackmagic Design Video");
    const twAttributes before = attributes;
    bool modified = true;
    twOpenSourceSettingsPopup(PXC_HOST_AE, "com.qervane.tarnwick.importer", qvUtf8String("/c.braw"), modified,
                              attributes);

    EXPECT_FALSE(modified);
    EXPECT_TRUE(sameBytes(attributes, before));  // no result file: nothing changes
    TW_Preset sent;
    ASSERT_TRUE(sent.load(qvUtf8String(cacheFile("sourceSettingsPopup_InputPreset.twPreset"))).isOk());
    EXPECT_TRUE(sent.m_active[BRAW_SETTING_ISO]);
    EXPECT_TRUE(sent.m_active[BRAW_SETTING_GAMMA]);
    EXPECT_EQ(sent.m_wbPreset, WB_PRESET_CUSTOM);
    EXPECT_EQ(sent.m_frameAttributes.iso, 400u);
    EXPECT_STREQ(sent.m_clipAttributes.gamma, "Blackmagic Design Video");
}

TEST_F(SettingsPopup, AnswerIsReadOnlyWhenAskedForAndStaleFilesAreRemovedFirst) {
    // Files of an earlier run must not be taken for this one's.
    const std::string stale = resultPreset();
    std::filesystem::create_directories(std::filesystem::path(cacheFile("x")).parent_path());
    std::filesystem::copy_file(stale, cacheFile("sourceSettingsPopup_ResultPreset.twPreset"));
    m_app.script({"out json:{\"modified\":true}"});

    twAttributes attributes;
    const twAttributes before = attributes;
    bool modified = false;
    twOpenSourceSettingsPopup(PXC_HOST_AE, "com.qervane.tarnwick.importer", qvUtf8String("/c.braw"), modified,
                              attributes);
    EXPECT_FALSE(modified);
    EXPECT_TRUE(sameBytes(attributes, before));
}

TEST_F(SettingsPopup, BrokenResultPresetOrMissingApplicationLeaveTheSettings) {
    const std::string broken = m_roots.folder().writeFile("broken.twPreset", "{\"iso\": ");
    m_app.script({"result " + broken, "out json:{\"modified\":true}"});
    twAttributes attributes;
    const twAttributes before = attributes;
    bool modified = true;
    twOpenSourceSettingsPopup(PXC_HOST_AE, "com.qervane.tarnwick.importer", qvUtf8String("/c.braw"), modified,
                              attributes);
    EXPECT_TRUE(sameBytes(attributes, before));
    EXPECT_EQ(g_alertCount, 0);

    std::filesystem::remove(m_app.path());
    twOpenSourceSettingsPopup(PXC_HOST_AE, "com.qervane.tarnwick.importer", qvUtf8String("/c.braw"), modified,
                              attributes);
    EXPECT_TRUE(sameBytes(attributes, before));
    EXPECT_EQ(g_alertCount, 1);
}

TEST_F(SettingsPopup, PreferencesWindowIsToldHostAndTab) {
    const std::string input = scratch("stdin");
    m_app.script({"stdin " + input, "out json:{\"modified\":true}"});
    bool modified = false;
    twHostOpenSettings_WithLogs(QV_APP_ENUM(QV_APP_ENUM::QV_APP_AE), 5, &modified, "com.qervane.tarnwick.importer");
    EXPECT_EQ(twtest::TempFolder::readFile(input), "{\"popup\":\"HostPopup\",\"host\":1,\"tab\":5,\"owner\":0}");
    EXPECT_TRUE(modified);

    m_app.script({"stdin " + input, "out json:{\"modified\":false}"});
    twHostOpenSettings_WithLogs(QV_APP_ENUM(QV_APP_ENUM::QV_APP_PREL), 0, &modified, "com.qervane.tarnwick.importer");
    EXPECT_EQ(twtest::TempFolder::readFile(input), "{\"popup\":\"HostPopup\",\"host\":0,\"tab\":0,\"owner\":0}");
    EXPECT_FALSE(modified);

    // An answer without the key leaves the caller's value; no caller value, no read.
    m_app.script({"out json:{}"});
    twHostOpenSettings_WithLogs(PXC_HOST_DESKTOP, 1, &modified, "com.qervane.tarnwick.importer");
    EXPECT_FALSE(modified);
    twHostOpenSettings_WithLogs(PXC_HOST_DESKTOP, 1, nullptr, "com.qervane.tarnwick.importer");
}
