#pragma once
// A command of tarnwick-host. Every command lives in its own file under
// Commands/ and registers itself there, so adding one touches nothing else:
//
//   namespace {
//   class twFramesCommand final : public twHostCommand {
//   public:
//       void addOptions(CLI::App& command) override {
//           command.add_option("CLIP", m_clip, "the clip to read")->required();
//       }
//       int run(twHostSession& session) override { ... }
//   private:
//       std::string m_clip;
//   };
//   [[maybe_unused]] const bool registered = twHostRegisterCommand<twFramesCommand>(
//       "frames", "write raw pixels to standard output", 60);
//   }  // namespace
//
// The command's own options and arguments land in its members while the
// command line is parsed; run() is called once the plug-in is loaded and
// initialised, and only for the command that was asked for.

#include "twHostSession.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

class twHostCommand {
public:
    virtual ~twHostCommand() = default;
    // Declares the command's options and arguments on its sub-command.
    virtual void addOptions(CLI::App& command) = 0;
    // Does the work; returns the exit code (kExitOk, kExitPluginFailure, ...).
    virtual int run(twHostSession& session) = 0;
    // A command whose standard output is data for another program: the
    // session's own lines then go to the error stream.
    virtual bool writesDataToStandardOutput() const { return false; }
};

struct twHostCommandEntry {
    std::string name;
    std::string summary;  // one line for the program's --help
    int rank = 0;         // place in the program's --help, smallest first
    std::unique_ptr<twHostCommand> (*make)() = nullptr;
};

// Adds a command to the program; called from the command's own file while the
// program starts. Always true, so that the call can initialise a constant.
bool twHostRegisterCommandEntry(twHostCommandEntry entry);

template <class Command>
bool twHostRegisterCommand(const char* name, const char* summary, int rank) {
    return twHostRegisterCommandEntry(
        {name, summary, rank, []() -> std::unique_ptr<twHostCommand> { return std::make_unique<Command>(); }});
}

// A check for a whole number in [min, max] whose message says what the number
// is: `what` reads "a count of sample frames", "a frame number", ...
CLI::Validator twHostWholeNumber(long long min, long long max, const std::string& what);

// Every registered command, by rank.
std::vector<twHostCommandEntry> twHostRegisteredCommands();
