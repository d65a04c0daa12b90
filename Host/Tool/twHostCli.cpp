#include "twHostCli.h"

#include "twHostCommand.h"
#include "twSimNames.h"

#include <unistd.h>

#include <climits>
#include <iostream>
#include <sstream>
#include <sys/stat.h>

#ifndef TW_PLUGIN_RELATIVE_PATH
#define TW_PLUGIN_RELATIVE_PATH "MediaCore/Qervane Tarnwick/Tarnwick_Importer.bundle/Contents/Linux/Tarnwick_Importer.so"
#endif

namespace {

const char* const kProgram = "tarnwick-host";

bool IsFile(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

std::string ExecutableFolder() {
    char buffer[PATH_MAX];
    const ssize_t n = readlink("/proc/self/exe", buffer, sizeof(buffer) - 1);
    if (n <= 0) return ".";
    const std::string exe(buffer, static_cast<size_t>(n));
    const size_t slash = exe.rfind('/');
    return slash == std::string::npos ? std::string(".") : exe.substr(0, slash);
}

void PrintTrace(const twSimHost& host, std::ostream& out) {
    for (const auto& r : host.callLog())
        out << "  " << (r.async ? twSimAsyncSelectorName(r.selector) : twSimSelectorName(r.selector)) << " -> "
            << r.result << "\n";
}

void PrintEvents(const twSimHost& host, std::ostream& out) {
    twSimHost& h = const_cast<twSimHost&>(host);
    for (const auto& e : h.events().all()) {
        const char* kind = e.type == 3 ? "error" : e.type == 2 ? "warning" : "info";
        out << "event [" << kind << "] " << e.title;
        if (!e.description.empty()) out << ": " << e.description;
        out << "\n";
    }
}

std::string Footer() {
    std::ostringstream s;
    s << "Commands have their own options: " << kProgram << " COMMAND --help (or " << kProgram
      << " help COMMAND).\n"
      << "Without --plugin the staged build next to this program is used:\n"
      << "  ../stage/" << TW_PLUGIN_RELATIVE_PATH << "\n"
      << "\n"
      << "Exit codes: 0 success; 1 the plug-in failed or left memory, frames or suites\n"
      << "behind; 2 bad command line; 3 the plug-in could not be loaded or initialised.\n"
      << "\n"
      << "Examples:\n"
      << "  " << kProgram << " --app ame --version 24.1.0 --home /tmp/h catalogue\n"
      << "  " << kProgram << " --home /tmp/h info clip.braw\n"
      << "  " << kProgram << " --home /tmp/h audio clip.braw clip.wav --start 48000 --count 96000";
    return s.str();
}

// The options every command shares. The values are checked as they are read,
// so a bad one is reported with the command line's other mistakes.
void AddProgramOptions(CLI::App& app, twHostCliOptions& o) {
    app.add_option("--plugin", o.pluginPath, "the importer plug-in (default: the staged build, see below)")
        ->type_name("PATH");
    app.add_option_function<std::string>(
           "--app",
           [&o](const std::string& name) {
               if (!o.identity.setApp(name))
                   throw CLI::ValidationError("--app", "unknown application '" + name + "' (premiere, ame or aftereffects)");
           },
           "the host application: premiere (default), ame, aftereffects")
        ->type_name("NAME");
    app.add_option_function<std::string>(
           "--version",
           [&o](const std::string& text) {
               if (!o.identity.setVersion(text))
                   throw CLI::ValidationError("--version", "bad version '" + text + "' (expected X.Y.Z)");
           },
           "the host application's version (default 24.0.0)")
        ->type_name("X.Y.Z");
    app.add_option("--interface", o.identity.interfaceVersion,
                   "the importer interface version handed to the plug-in (default " +
                       std::to_string(IMPORTMOD_VERSION) + ")")
        ->type_name("N")
        ->check(twHostWholeNumber(1, 1000, "a version from 1 to 1000"));
    app.add_option("--home", o.home, "the home folder the plug-in uses instead of the real one")->type_name("DIR");
    app.add_option("--system-root", o.systemRoot, "a folder put in front of the plug-in's fixed system folders")
        ->type_name("DIR");
    app.add_flag("--trace", o.trace, "list every selector sent and its result");
}

struct CommandSlot {
    CLI::App* app;
    std::unique_ptr<twHostCommand> command;
};

void PrintUsageError(std::ostream& err, const std::string& message, const CLI::App* command) {
    err << kProgram << ": " << message << "\nTry '" << kProgram << " "
        << (command ? command->get_name() + " " : std::string()) << "--help'.\n";
}

// The plug-in loaded, initialised, the command run, shut down, and the host's
// report of what was left behind.
int RunSession(twHostCliOptions& options, twHostCommand& command, std::ostream& data, std::ostream& err) {
    std::ostream& out = command.writesDataToStandardOutput() ? err : data;
    if (options.pluginPath.empty()) options.pluginPath = twHostDefaultPluginPath();
    twSimHostConfig config;
    config.identity = options.identity;
    config.useTestRoots = !options.home.empty() || !options.systemRoot.empty();
    config.testHome = options.home;
    config.testSystemRoot = options.systemRoot;
    twSimHost host(config);
    try {
        host.loadPlugin(options.pluginPath);
    } catch (const std::exception& e) {
        err << kProgram << ": " << e.what() << "\n";
        return kExitLoad;
    }
    out << "Host: " << options.identity.describe() << "\n";
    out << "Plug-in: " << options.pluginPath << "\n";
    const csSDK_int32 initResult = host.init();
    out << "imInit: " << initResult << "\n";
    if (!host.initialized()) {
        PrintEvents(host, err);
        err << kProgram << ": imInit failed with " << initResult << "\n";
        return kExitLoad;
    }

    twHostSession session{host, options, data, err, out};
    int code = command.run(session);

    const csSDK_int32 shutdownResult = host.shutdown();
    out << "imShutdown: " << shutdownResult << "\n";
    PrintEvents(host, out);
    if (options.trace) {
        out << "Selectors:\n";
        PrintTrace(host, out);
    }
    const twSimLeakReport report = host.leakReport();
    if (!report.clean()) {
        err << "The plug-in left things behind:\n" << report.toString();
        if (code == kExitOk) code = kExitPluginFailure;
    }
    return code;
}

}  // namespace

std::string twHostDefaultPluginPath() {
    const std::string folder = ExecutableFolder();
    const std::string staged = folder + "/../stage/" + TW_PLUGIN_RELATIVE_PATH;
    const std::string installed = folder + "/../" + TW_PLUGIN_RELATIVE_PATH;
    if (!IsFile(staged) && IsFile(installed)) return installed;
    return staged;
}

int twHostMain(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
    twHostCliOptions options;
    CLI::App app("Loads the Tarnwick importer plug-in into a simulated MediaCore host and drives\n"
                 "it the way a host application does: dlopen, imInit, the selectors of the\n"
                 "command, imShutdown. Afterwards the host reports what the plug-in left behind.",
                 kProgram);
    // The program's options may also follow the command and its arguments.
    app.fallthrough();
    app.footer(Footer());
    AddProgramOptions(app, options);

    const std::string commandFooter =
        std::string("The program's own options may come before or after the command: see ") + kProgram + " --help.";
    std::vector<CommandSlot> commands;
    for (const twHostCommandEntry& entry : twHostRegisteredCommands()) {
        CommandSlot slot{app.add_subcommand(entry.name, entry.summary), entry.make()};
        slot.app->footer(commandFooter);
        slot.command->addOptions(*slot.app);
        commands.push_back(std::move(slot));
    }
    CLI::App* help = app.add_subcommand("help", "show this text, or a command's own with help COMMAND");
    std::string helpTopic;
    help->add_option("COMMAND", helpTopic, "the command to explain");
    help->footer("");
    // One command a run; this also makes the word after "help" its topic
    // rather than a second command.
    app.require_subcommand(0, 1);
    // A word left over once every command has taken its arguments is reported
    // below, in words that name it.
    app.allow_extras();

    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        // The help of the command it follows, if any.
        out << app.help();
        return kExitOk;
    } catch (const CLI::ParseError& e) {
        const auto chosen = app.get_subcommands();
        PrintUsageError(err, e.what(), chosen.empty() || chosen.front() == help ? nullptr : chosen.front());
        return kExitUsage;
    }

    if (help->parsed()) {
        if (helpTopic.empty()) {
            out << app.get_formatter()->make_help(&app, kProgram, CLI::AppFormatMode::Normal);
            return kExitOk;
        }
        for (const CommandSlot& slot : commands) {
            if (slot.app->get_name() == helpTopic) {
                out << slot.app->help(kProgram);
                return kExitOk;
            }
        }
        PrintUsageError(err, "unknown command '" + helpTopic + "'", nullptr);
        return kExitUsage;
    }
    CommandSlot* chosen = nullptr;
    for (CommandSlot& slot : commands)
        if (slot.app->parsed()) chosen = &slot;
    const std::vector<std::string> extras = app.remaining();
    if (!extras.empty()) {
        if (!chosen) {
            PrintUsageError(err, "unknown command '" + extras.front() + "'", nullptr);
        } else {
            std::string words;
            for (const auto& e : extras) words += (words.empty() ? "'" : ", '") + e + "'";
            PrintUsageError(err, "unexpected " + words + " after the command's arguments", chosen->app);
        }
        return kExitUsage;
    }
    if (chosen) return RunSession(options, *chosen->command, out, err);
    PrintUsageError(err, "no command given", nullptr);
    return kExitUsage;
}
