#pragma once
// The command line of tarnwick-host: options, the command table, and the
// session every command runs in (the plug-in loaded into a simulated host,
// imInit done, imShutdown and the host's report afterwards).

#include "twSimHost.h"

#include <iosfwd>
#include <string>
#include <vector>

// Exit codes.
constexpr int kExitOk = 0;
constexpr int kExitPluginFailure = 1;  // a selector failed, or the plug-in left something behind
constexpr int kExitUsage = 2;
constexpr int kExitLoad = 3;  // the plug-in could not be loaded or initialised

struct twHostCliOptions {
    std::string command;
    std::vector<std::string> arguments;  // the command's own words
    std::string pluginPath;              // empty: the staged build next to the program
    twSimIdentity identity;
    bool useTestRoots = false;
    std::string home;
    std::string systemRoot;
    std::string clip;
    // The range of sample frames the audio command reads: from audioStart,
    // audioCount of them, or to the end of the clip without a count.
    long long audioStart = 0;
    bool hasAudioCount = false;
    long long audioCount = 0;
    bool trace = false;
    bool help = false;
};

// Per-command context: the host, the options, and where to write.
struct twHostSession {
    twSimHost& host;
    const twHostCliOptions& options;
    std::ostream& out;
    std::ostream& err;
};

struct twHostCommand {
    const char* name;
    const char* usage;    // "catalogue [--clip FILE]"
    const char* summary;  // one line for --help
    int (*run)(twHostSession& session);
};

// Every command the program knows (twHostCommands.cpp).
const std::vector<twHostCommand>& twHostCommands();

// Parses argv; false with a message in `error` on a bad command line.
bool twHostParseArguments(int argc, const char* const* argv, twHostCliOptions& options, std::string& error);
void twHostPrintHelp(std::ostream& out);
// The plug-in beside the program: the staged build tree first, then the
// installed layout.
std::string twHostDefaultPluginPath();
// Runs the whole program; returns the exit code.
int twHostMain(int argc, const char* const* argv, std::ostream& out, std::ostream& err);
