// tarnwick-host as a person runs it: a separate process, its output, its exit code.

#include "HostToolSupport.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using twtest::Contains;
using twtest::Quote;
using twtest::ToolRun;

// Runs the tool with a temporary HOME, so that nothing reaches the real one.
ToolRun Tool(const std::string& arguments, const twtest::TempFolder& folder) {
    return twtest::RunTool(folder.path(), arguments);
}

}  // namespace

TEST(HostTool, HelpAndBadCommandLines) {
    twtest::TempFolder folder;
    const ToolRun help = Tool("--help", folder);
    EXPECT_EQ(help.exitCode, 0);
    for (const char* part : {"Usage: tarnwick-host", "catalogue", "--plugin PATH", "--app NAME", "--version X.Y.Z",
                             "--home DIR", "--system-root DIR", "Exit codes"})
        EXPECT_TRUE(Contains(help.output, part)) << part;
    EXPECT_EQ(Tool("help", folder).output, help.output);

    for (const char* bad : {"", "--bogus catalogue", "--app photoshop catalogue", "--version 1.x catalogue",
                            "--interface zero catalogue", "catalogue --plugin", "frobnicate"}) {
        const ToolRun run = Tool(bad, folder);
        EXPECT_EQ(run.exitCode, 2) << bad;
        EXPECT_TRUE(Contains(run.output, "Try 'tarnwick-host --help'")) << bad << ": " << run.output;
    }
}

TEST(HostTool, CatalogueOfATestPlugin) {
    twtest::TempFolder folder;
    const std::string clip = folder.writeFile("c.twtest", "twtest 16 8 3");
    const std::string home = folder.makeFolder("home");
    const std::string root = folder.makeFolder("root");
    const ToolRun run = Tool("--plugin " + Quote(TW_SIM_TEST_PLUGIN) +
                             " --app aftereffects --version 23.1.0 --home " + Quote(home) + " --system-root " +
                             Quote(root) + " catalogue --clip " + Quote(clip) + " --trace",
                         folder);
    EXPECT_EQ(run.exitCode, 0) << run.output;
    for (const char* part : {"Host: After Effects 23.1.0 ('FXTC'), interface 23", "imInit: 0", "\"Simulator test clip\"",
                             "extensions: twtest twt", "1. BGRA_4444_8u 'bgra'", "3. BGRA_4444_16u 'Bgra'",
                             "predefined \"BT.709\"", "imShutdown: 0", "imOpenFile8 -> 0", "imGetInfo8 -> 0"})
        EXPECT_TRUE(Contains(run.output, part)) << part << "\n" << run.output;
}

TEST(HostTool, PluginThatCannotBeLoaded) {
    twtest::TempFolder folder;
    const ToolRun missing = Tool("--plugin " + Quote(folder.join("nothing.so")) + " catalogue", folder);
    EXPECT_EQ(missing.exitCode, 3);
    EXPECT_TRUE(Contains(missing.output, "nothing.so")) << missing.output;

    // Without --plugin the staged product beside the program is used (present
    // or not in this build).
    const ToolRun staged = Tool("--home " + Quote(folder.makeFolder("h")) + " --system-root " +
                                Quote(folder.makeFolder("r")) + " catalogue",
                            folder);
    EXPECT_TRUE(Contains(staged.output,
                         "/stage/MediaCore/Qervane Tarnwick/Tarnwick_Importer.bundle/Contents/Linux/Tarnwick_Importer.so"))
        << staged.output;
}
