// tarnwick-host settings, run as a person runs it: the panel of a clip, and
// changes through its sidecar that keep what the product doesn't own.

#include "HostToolSupport.h"
#include "TempFolder.h"

#include "Writer/RefClipWriter.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

namespace {

using twtest::Contains;
using twtest::Quote;
using twtest::ToolRun;

std::string readFile(const std::string& path) {
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

bool exists(const std::string& path) { return std::ifstream(path).good(); }

class HostToolSettings : public ::testing::Test {
protected:
    HostToolSettings() : m_home(m_folder.makeFolder("home")), m_root(m_folder.makeFolder("root")) {
        m_clip = m_folder.join("A001.braw");
        m_sidecar = m_folder.join("A001.sidecar");
        EXPECT_TRUE(twref::RefClipWriter::write(m_clip, twref::RefClipWriter::makeClip(64, 36, 24.0f, 2)));
    }

    ToolRun settings(const std::string& arguments) const {
        return twtest::RunToolSeparately(m_folder.path(), "--home " + Quote(m_home) + " --system-root " +
                                                              Quote(m_root) + " settings " + Quote(m_clip) + " " +
                                                              arguments);
    }

    twtest::TempFolder m_folder;
    std::string m_home;
    std::string m_root;
    std::string m_clip;
    std::string m_sidecar;
};

}  // namespace

TEST_F(HostToolSettings, ThePanelIsShownForAPersonOrAsTheJsonThePanelsRead) {
    const ToolRun readable = settings("");
    ASSERT_EQ(readable.exitCode, 0) << readable.output << readable.errors;
    for (const char* line : {"  Colour science: Version 5\n", "  Gamma: Blackmagic Design Film\n", "  ISO: 800\n",
                             "  White balance: 5600 K, tint 0\n", "  Colour sciences: Version 4, Version 5\n",
                             "  Gamuts (14):\n", "    Blackmagic Design Film  [tone curve: Version 4, Version 5]\n",
                             "  Tint: -150 to 150\n", "  Contrast: 0.002 to 1.998\n",
                             "LUTs: embedded no, sidecar no\n", "Timecode: 01:00:00:00 (frame 86400, non-drop)\n"}) {
        EXPECT_TRUE(Contains(readable.output, line)) << line << readable.output;
    }

    const ToolRun json = settings("--json");
    ASSERT_EQ(json.exitCode, 0) << json.errors;
    EXPECT_TRUE(Contains(json.output, "{\"filepath\":\"" + m_clip + "\",\"isoList\":[100,125,")) << json.output;
    EXPECT_TRUE(Contains(json.output, "\"cameraMetadata\":{\"colorScience\":5,\"gamut\":\"Blackmagic Design\","))
        << json.output;
    EXPECT_FALSE(exists(m_sidecar)) << "showing writes nothing";
}

TEST_F(HostToolSettings, ChangesGoToTheSidecarKeepingForeignMembersAndTheClipDecodesWithThem) {
    {
        std::ofstream(m_sidecar) << "{\"reel\": \"A001\", \"camera_notes\": [1, 2]}";
    }
    const ToolRun set = settings("--set iso=1600 --set exposure=0.5 --set gamma=" +
                                 Quote("Blackmagic Design Custom") + " --set contrast=1.25");
    ASSERT_EQ(set.exitCode, 0) << set.output << set.errors;
    EXPECT_TRUE(Contains(set.output, "Reloaded the clip's sidecar (imPerformSourceSettingsCommand 0)"));
    const std::string sidecar = readFile(m_sidecar);
    EXPECT_TRUE(Contains(sidecar, "\"reel\": \"A001\"")) << sidecar;
    EXPECT_TRUE(Contains(sidecar, "\"camera_notes\"")) << sidecar;
    EXPECT_TRUE(Contains(sidecar, "\"iso\": {\n        \"01:00:00:00\": 1600")) << sidecar;
    EXPECT_TRUE(Contains(sidecar, "\"viewing_gamma\": \"Blackmagic Design Custom\"")) << sidecar;
    EXPECT_TRUE(Contains(sidecar, "\"tone_curve_contrast\": 1.25")) << sidecar;

    // The library reads the sidecar at opening: the panel now shows the change.
    const ToolRun shown = settings("");
    EXPECT_TRUE(Contains(shown.output, "  ISO: 1600\n")) << shown.output;
    EXPECT_TRUE(Contains(shown.output, "  Exposure: 0.5\n")) << shown.output;
    EXPECT_TRUE(Contains(shown.output, "Sidecar: attached\n")) << shown.output;

    // Reset takes this product's keys out again and leaves the others.
    const ToolRun reset = settings("--reset");
    ASSERT_EQ(reset.exitCode, 0) << reset.errors;
    const std::string after = readFile(m_sidecar);
    EXPECT_TRUE(Contains(after, "\"reel\": \"A001\"")) << after;
    EXPECT_TRUE(Contains(after, "\"camera_notes\"")) << after;
    EXPECT_FALSE(Contains(after, "iso")) << after;
    EXPECT_FALSE(Contains(after, "tw_")) << after;
    EXPECT_FALSE(Contains(after, "viewing_gamma")) << after;
}

TEST_F(HostToolSettings, ValuesOutsideThePanelsRangesAreRefusedAndNothingIsWritten) {
    ToolRun refused = settings("--set exposure=7");
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_TRUE(Contains(refused.errors, "--set exposure=7: outside the range this clip offers, -5 to 5")) << refused.errors;
    EXPECT_TRUE(Contains(refused.errors, "nothing was written"));
    EXPECT_FALSE(exists(m_sidecar));

    {
        std::ofstream(m_sidecar) << "{\"reel\": \"A001\"}";
    }
    refused = settings("--set iso=1600 --set kelvin=1000 --set iso=1700 --set gamut=Nowhere --set speed=3");
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_TRUE(Contains(refused.errors, "--set kelvin=1000: outside the range this clip offers, 2000 to 50000"));
    EXPECT_TRUE(Contains(refused.errors, "--set iso=1700: not an ISO this clip offers (100, 125,"));
    EXPECT_TRUE(Contains(refused.errors, "--set gamut=Nowhere: not one this clip offers (Blackmagic Design, Rec.709,"));
    EXPECT_TRUE(Contains(refused.errors, "--set speed=3: not KEY=VALUE with a known key"));
    EXPECT_EQ(readFile(m_sidecar), "{\"reel\": \"A001\"}") << "one bad value keeps the good ones out too";
}

TEST_F(HostToolSettings, ALutAndAPresetAreWrittenThroughTheSettingsLibrary) {
    const std::string cube = m_folder.join("Look.cube");
    {
        std::ofstream(cube) << "TITLE \"Look\"\nLUT_3D_SIZE 2\n0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n1 1 1\n";
    }
    const std::string preset = m_folder.join("Warm.twPreset");
    {
        std::ofstream(preset) << "{\"tw_exposure_active\": 1, \"exposure\": {\"00:00:00:00\": 1.25}, "
                                 "\"tw_iso_active\": 0, \"iso\": {\"00:00:00:00\": 3200}}";
    }
    const ToolRun changed = settings("--lut " + Quote(cube) + " --preset " + Quote(preset));
    ASSERT_EQ(changed.exitCode, 0) << changed.output << changed.errors;
    const std::string sidecar = readFile(m_sidecar);
    EXPECT_TRUE(Contains(sidecar, "\"post_3dlut_mode\": \"Sidecar\"")) << sidecar;
    EXPECT_TRUE(Contains(sidecar, "\"post_3dlut_sidecar_name\": \"Look.cube\"")) << sidecar;
    EXPECT_TRUE(Contains(sidecar, "\"01:00:00:00\": 1.25")) << sidecar;
    EXPECT_TRUE(Contains(sidecar, "\"iso\": {\n        \"01:00:00:00\": 800")) << "an inactive preset value stays";

    const ToolRun shown = settings("");
    EXPECT_TRUE(Contains(shown.output, "LUTs: embedded no, sidecar yes\n")) << shown.output;
    EXPECT_TRUE(Contains(shown.output, "  LUT mode: Sidecar\n")) << shown.output;

    // Nothing but this product's keys: the whole file goes.
    const ToolRun reset = settings("--reset");
    ASSERT_EQ(reset.exitCode, 0) << reset.errors;
    EXPECT_FALSE(exists(m_sidecar));
}
