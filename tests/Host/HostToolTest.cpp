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
    for (const char* part : {"Usage: tarnwick-host", "catalogue", "info", "audio", "--plugin PATH", "--app NAME",
                             "--version X.Y.Z", "--home DIR", "--system-root DIR", "Exit codes"})
        EXPECT_TRUE(Contains(help.output, part)) << part;
    EXPECT_EQ(Tool("help", folder).output, help.output);

    // A command's help holds its own options, not the program's nor another command's.
    const ToolRun info = Tool("info --help", folder);
    EXPECT_EQ(info.exitCode, 0);
    EXPECT_TRUE(Contains(info.output, "Usage: tarnwick-host info [OPTIONS] CLIP")) << info.output;
    for (const char* foreign : {"--plugin", "--start", "--clip FILE", "Subcommands"})
        EXPECT_FALSE(Contains(info.output, foreign)) << foreign << "\n" << info.output;
    const ToolRun audio = Tool("audio --help", folder);
    for (const char* own : {"CLIP", "OUT.wav", "--start N", "--count N"})
        EXPECT_TRUE(Contains(audio.output, own)) << own << "\n" << audio.output;
    EXPECT_EQ(Tool("help audio", folder).output, audio.output);
    EXPECT_TRUE(Contains(Tool("catalogue -h", folder).output, "--clip FILE"));

    // Each mistake is named, with the help to read next.
    const struct {
        const char* arguments;
        const char* message;
    } bad[] = {
        {"", "no command given\nTry 'tarnwick-host --help'."},
        {"--bogus catalogue", "Try 'tarnwick-host catalogue --help'."},
        {"--app photoshop catalogue", "unknown application 'photoshop'"},
        {"--version 1.x catalogue", "bad version '1.x'"},
        {"--interface zero catalogue", "bad value 'zero'"},
        {"catalogue --plugin", "--plugin"},
        {"frobnicate", "unknown command 'frobnicate'\nTry 'tarnwick-host --help'."},
        {"help frobnicate", "unknown command 'frobnicate'"},
        {"info", "CLIP is required\nTry 'tarnwick-host info --help'."},
        {"info a.braw b.braw", "unexpected 'b.braw'"},
        {"audio a.braw b.wav --count x", "--count: bad value 'x'"},
        {"audio a.braw b.wav --start -3", "--start: bad value '-3'"},
        {"audio a.braw", "OUT is required"},
    };
    for (const auto& b : bad) {
        const ToolRun run = Tool(b.arguments, folder);
        EXPECT_EQ(run.exitCode, 2) << b.arguments;
        EXPECT_TRUE(Contains(run.output, std::string("tarnwick-host: ")) && Contains(run.output, b.message))
            << b.arguments << ": " << run.output;
        // Nothing is loaded for a command line that is wrong.
        EXPECT_FALSE(Contains(run.output, "imInit")) << b.arguments;
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
