// tarnwick-host's prefs and preferences commands, with the real plug-in and
// decoder library installed in a host's plug-in folder and the tests' stand-in
// application beside them, where the plug-in finds it from its own bundle.

#include "HostToolSupport.h"
#include "SettingsAppStandIn.h"
#include "TempFolder.h"

#include "Writer/RefClipWriter.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

using twtest::Contains;
using twtest::Quote;
using twtest::ToolRun;

class HostToolPopup : public ::testing::Test {
protected:
    HostToolPopup() : m_home(m_folder.makeFolder("home")), m_root(m_folder.makeFolder("root")) {
        namespace fs = std::filesystem;
        fs::create_directories(fs::path(m_plugin).parent_path());
        fs::copy_file(TW_IMPORTER_PLUGIN, m_plugin);
        fs::copy_file(TW_REF_DECODER_LIBRARY, m_product + "/libBlackmagicRawAPI.so");
    }

    ToolRun run(const std::string& arguments) const {
        return twtest::RunToolSeparately(m_folder.path(), "--home " + Quote(m_home) + " --system-root " +
                                                              Quote(m_root) + " --plugin " + Quote(m_plugin) + " " +
                                                              arguments);
    }

    twtest::TempFolder m_folder;
    std::string m_home;
    std::string m_root;
    std::string m_product = m_folder.join("Host.app/Contents/Plug-Ins/Qervane Tarnwick");
    std::string m_plugin = m_product + "/Tarnwick_Importer.bundle/Contents/Linux/Tarnwick_Importer.so";
    twtest::SettingsAppStandIn m_app{TW_POPUP_TEST_CHILD, m_product + "/Tarnwick.app/Contents/MacOS/Tarnwick"};
};

}  // namespace

TEST_F(HostToolPopup, PrefsShowsTheSettingsTheWindowLeftInTheBlob) {
    const std::string clip = m_folder.join("clip.braw");
    ASSERT_TRUE(twref::RefClipWriter::write(clip, twref::RefClipModel()));
    const std::string preset = m_folder.writeFile("edit.twPreset", "{\"iso\": 3200}");
    m_app.script({"result " + preset, "out json:{\"modified\":false}"});

    const ToolRun ae = run("--app aftereffects prefs " + Quote(clip));
    EXPECT_EQ(ae.exitCode, 0) << ae.output << ae.errors;
    EXPECT_TRUE(Contains(ae.output, "imGetPrefs8: 0\n")) << ae.output;
    EXPECT_TRUE(Contains(ae.output, "  In use: yes\n")) << ae.output;
    EXPECT_TRUE(Contains(ae.output, "  ISO: 3200\n")) << ae.output;

    // Premiere Pro opens no window there, and says so.
    const ToolRun ppro = run("prefs " + Quote(clip));
    EXPECT_EQ(ppro.exitCode, 0) << ppro.errors;
    EXPECT_TRUE(Contains(ppro.output, "--app aftereffects")) << ppro.output;
    EXPECT_TRUE(Contains(ppro.output, "  ISO: 800\n")) << ppro.output;
}

TEST_F(HostToolPopup, PreferencesOpensTheWindowAtItsTab) {
    const std::string input = m_folder.join("stdin");
    m_app.script({"stdin " + input, "out json:{\"modified\":true}"});
    const ToolRun r = run("--app ame preferences --tab 3");
    EXPECT_EQ(r.exitCode, 0) << r.output << r.errors;
    EXPECT_EQ(twtest::TempFolder::readFile(input), "{\"popup\":\"HostPopup\",\"host\":3,\"tab\":3,\"owner\":0}");
    EXPECT_TRUE(Contains(r.output, "Options changed: yes\n")) << r.output;

    std::filesystem::remove(m_app.path());
    const ToolRun missing = run("preferences");
    EXPECT_EQ(missing.exitCode, 0) << missing.errors;
    EXPECT_TRUE(Contains(missing.errors, "Error : unable to locate our application.")) << missing.errors;
    EXPECT_TRUE(Contains(missing.output, "Options changed: no\n")) << missing.output;
}
