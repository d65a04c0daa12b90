#include "twHostCli.h"

#include "twSimNames.h"

#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <iostream>
#include <sys/stat.h>

#ifndef TW_PLUGIN_RELATIVE_PATH
#define TW_PLUGIN_RELATIVE_PATH "MediaCore/Qervane Tarnwick/Tarnwick_Importer.bundle/Contents/Linux/Tarnwick_Importer.so"
#endif

namespace {

const char* const kProgram = "tarnwick-host";

bool TakesValue(const std::string& option) {
    return option == "--plugin" || option == "--app" || option == "--version" || option == "--interface" ||
           option == "--home" || option == "--system-root" || option == "--clip" || option == "--start" ||
           option == "--count";
}

bool ParseCount(const std::string& option, const std::string& value, long long& out, std::string& error) {
    char* end = nullptr;
    errno = 0;
    const long long v = std::strtoll(value.c_str(), &end, 10);
    if (value.empty() || *end != 0 || errno != 0 || v < 0) {
        error = "bad value '" + value + "' for " + option + " (expected a count of sample frames)";
        return false;
    }
    out = v;
    return true;
}

bool ApplyOption(const std::string& option, const std::string& value, twHostCliOptions& o, std::string& error) {
    if (option == "--plugin") {
        o.pluginPath = value;
    } else if (option == "--app") {
        if (!o.identity.setApp(value)) {
            error = "unknown application '" + value + "' (premiere, ame or aftereffects)";
            return false;
        }
    } else if (option == "--version") {
        if (!o.identity.setVersion(value)) {
            error = "bad version '" + value + "' (expected X.Y.Z)";
            return false;
        }
    } else if (option == "--interface") {
        char* end = nullptr;
        const long v = std::strtol(value.c_str(), &end, 10);
        if (value.empty() || *end != 0 || v < 1 || v > 1000) {
            error = "bad interface version '" + value + "'";
            return false;
        }
        o.identity.interfaceVersion = static_cast<csSDK_int32>(v);
    } else if (option == "--home") {
        o.home = value;
        o.useTestRoots = true;
    } else if (option == "--system-root") {
        o.systemRoot = value;
        o.useTestRoots = true;
    } else if (option == "--clip") {
        o.clip = value;
    } else if (option == "--start") {
        return ParseCount(option, value, o.audioStart, error);
    } else if (option == "--count") {
        o.hasAudioCount = true;
        return ParseCount(option, value, o.audioCount, error);
    }
    return true;
}

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

}  // namespace

bool twHostParseArguments(int argc, const char* const* argv, twHostCliOptions& o, std::string& error) {
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg == "-h" || arg == "--help") {
            o.help = true;
            continue;
        }
        if (arg == "--trace") {
            o.trace = true;
            continue;
        }
        if (arg.size() > 2 && arg.compare(0, 2, "--") == 0) {
            std::string value;
            const size_t eq = arg.find('=');
            const bool inlineValue = eq != std::string::npos;
            if (inlineValue) {
                value = arg.substr(eq + 1);
                arg = arg.substr(0, eq);
            }
            if (!TakesValue(arg)) {
                error = "unknown option '" + arg + "'";
                return false;
            }
            if (!inlineValue) {
                if (i + 1 >= argc) {
                    error = "option '" + arg + "' needs a value";
                    return false;
                }
                value = argv[++i];
            }
            if (!ApplyOption(arg, value, o, error)) return false;
            continue;
        }
        if (arg.size() > 1 && arg[0] == '-') {
            error = "unknown option '" + arg + "'";
            return false;
        }
        if (o.command.empty()) o.command = arg;
        else o.arguments.push_back(arg);
    }
    return true;
}

void twHostPrintHelp(std::ostream& out) {
    out << "Usage: " << kProgram << " [options] <command>\n"
        << "\n"
        << "Loads the Tarnwick importer plug-in into a simulated MediaCore host and drives\n"
        << "it the way a host application does: dlopen, imInit, the selectors of the\n"
        << "command, imShutdown. Afterwards the host reports what the plug-in left behind.\n"
        << "\n"
        << "Commands:\n";
    for (const auto& c : twHostCommands()) {
        std::string usage = c.usage;
        if (usage.size() < 28) usage.resize(28, ' ');
        out << "  " << usage << " " << c.summary << "\n";
    }
    out << "  " << std::string("help").append(24, ' ') << " " << "show this text\n"
        << "\n"
        << "Options:\n"
        << "  --plugin PATH        the importer plug-in; by default the staged build next to\n"
        << "                       this program:\n"
        << "                       ../stage/" << TW_PLUGIN_RELATIVE_PATH << "\n"
        << "  --app NAME           the host application: premiere (default), ame, aftereffects\n"
        << "  --version X.Y.Z      the host application's version (default 24.0.0)\n"
        << "  --interface N        the importer interface version handed to the plug-in\n"
        << "                       (default " << IMPORTMOD_VERSION << ")\n"
        << "  --home DIR           the home folder the plug-in uses instead of the real one\n"
        << "  --system-root DIR    a folder put in front of the plug-in's fixed system folders\n"
        << "  --start N            audio: the first sample frame to read (default 0)\n"
        << "  --count N            audio: how many sample frames to read (default: to the end)\n"
        << "  --trace              list every selector sent and its result\n"
        << "  -h, --help           show this text\n"
        << "\n"
        << "Exit codes: 0 success; 1 the plug-in failed or left memory, frames or suites\n"
        << "behind; 2 bad command line; 3 the plug-in could not be loaded or initialised.\n"
        << "\n"
        << "Examples:\n"
        << "  " << kProgram << " --app ame --version 24.1.0 --home /tmp/h catalogue\n"
        << "  " << kProgram << " --home /tmp/h info clip.braw\n"
        << "  " << kProgram << " --home /tmp/h audio clip.braw clip.wav --start 48000 --count 96000\n";
}

std::string twHostDefaultPluginPath() {
    const std::string folder = ExecutableFolder();
    const std::string staged = folder + "/../stage/" + TW_PLUGIN_RELATIVE_PATH;
    const std::string installed = folder + "/../" + TW_PLUGIN_RELATIVE_PATH;
    if (!IsFile(staged) && IsFile(installed)) return installed;
    return staged;
}

int twHostMain(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
    twHostCliOptions options;
    std::string error;
    if (!twHostParseArguments(argc, argv, options, error)) {
        err << kProgram << ": " << error << "\nTry '" << kProgram << " --help'.\n";
        return kExitUsage;
    }
    if (options.help || options.command == "help") {
        twHostPrintHelp(out);
        return kExitOk;
    }
    if (options.command.empty()) {
        err << kProgram << ": no command given\nTry '" << kProgram << " --help'.\n";
        return kExitUsage;
    }
    const twHostCommand* command = nullptr;
    for (const auto& c : twHostCommands())
        if (options.command == c.name) command = &c;
    if (!command) {
        err << kProgram << ": unknown command '" << options.command << "'\nTry '" << kProgram << " --help'.\n";
        return kExitUsage;
    }
    if (options.pluginPath.empty()) options.pluginPath = twHostDefaultPluginPath();

    twSimHostConfig config;
    config.identity = options.identity;
    config.useTestRoots = options.useTestRoots;
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

    twHostSession session{host, options, out, err};
    int code = command->run(session);

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
