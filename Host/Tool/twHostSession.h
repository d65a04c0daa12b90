#pragma once
// What every command of tarnwick-host runs in: the plug-in loaded into a
// simulated host with imInit done, the program-wide options, and where to write.

#include "twSimHost.h"

#include <iosfwd>
#include <string>

// Exit codes.
constexpr int kExitOk = 0;
constexpr int kExitPluginFailure = 1;  // a selector failed, or the plug-in left something behind
constexpr int kExitUsage = 2;
constexpr int kExitLoad = 3;  // the plug-in could not be loaded or initialised

// The options that come before (or after) any command.
struct twHostCliOptions {
    std::string pluginPath;  // empty: the staged build next to the program
    twSimIdentity identity;
    std::string home;        // non-empty: the plug-in's home folder instead of the real one
    std::string systemRoot;  // non-empty: put in front of the plug-in's fixed system folders
    bool trace = false;
};

struct twHostSession {
    twSimHost& host;
    const twHostCliOptions& options;
    std::ostream& out;
    std::ostream& err;
    // The session's own lines (the clip imported, the selectors' results):
    // standard output, or the error stream for a command whose standard
    // output is data for another program.
    std::ostream& log;
};
