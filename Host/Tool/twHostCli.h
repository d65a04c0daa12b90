#pragma once
// The command line of tarnwick-host: the program-wide options, a sub-command
// per registered command (twHostCommand.h), and the session the chosen command
// runs in (the plug-in loaded into a simulated host, imInit done, imShutdown
// and the host's report afterwards).

#include <iosfwd>
#include <string>

// The plug-in beside the program: the staged build tree first, then the
// installed layout.
std::string twHostDefaultPluginPath();
// Runs the whole program; returns the exit code.
int twHostMain(int argc, const char* const* argv, std::ostream& out, std::ostream& err);
