#include "Popup/PopupClient.h"

#include "Config/qvConfig.h"
#include "Platform/qvPlatformPopup.h"
#include "Spawn/PosixPipe.h"
#include "Spawn/PosixSpawn.h"
#include "Utils/qvLogging.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <unistd.h>

namespace {

constexpr const char kJsonPrefix[] = "json:";
constexpr size_t kJsonPrefixSize = sizeof(kJsonPrefix) - 1;
// No real argument holds that many characters to escape; the bound keeps a
// runaway text from growing the command line without end.
constexpr int kMaxEscapes = 9999;

// Characters that keep a meaning for the shell inside quotation marks. The
// quotation mark ends the argument; the others would let a file name such as
// "Clip $1.braw" or one holding a backquote be read as shell syntax.
bool needsEscape(char c) { return c == '"' || c == '\\' || c == '$' || c == '`'; }

// `text` escaped for the inside of quotation marks. False when the escape bound
// was reached: `out` then holds the text as far as it could be escaped, and
// nothing unescaped after it, so that the rest can never be run as a command.
bool escapeForQuotes(const std::string& text, std::string& out) {
    out.clear();
    out.reserve(text.size() + 8);
    int escapes = 0;
    for (char c : text) {
        if (needsEscape(c)) {
            if (escapes == kMaxEscapes) return false;
            ++escapes;
            out += '\\';
        }
        out += c;
    }
    return true;
}

std::string quoted(const std::string& text) {
    std::string escaped;
    escapeForQuotes(text, escaped);
    return "\"" + escaped + "\"";
}

struct PopupSession {
    const std::string* input = nullptr;
};

// Hands the child its input once it runs, and closes its standard input so that
// a child that reads it to the end is not left waiting.
void SendJson(Spawn::Context& context) {
    auto* session = static_cast<PopupSession*>(context.userData);
    if (session && session->input && !session->input->empty()) {
        const int error = Spawn::Write(context, session->input->data(), session->input->size());
        if (error != 0) QV_LOG(QV_LOG_ERR, "Impossible to send Json to popup : error " << error);
    }
    if (context.inputPipe) context.inputPipe->CloseWriteEnd();
}

// Keeps the child's window in front of the host's while the host is the
// active application.
void Idle(Spawn::Context& context) {
    if (qvPlatform::IsCurrentApplicationActive()) qvPlatform::ActivateApplication(context.pid);
}

void LogSpawnReport(void*, const char* format, ...) {
    if (!g_logger.isLoggingActivated(QV_LOG_ERR)) return;
    char text[1024];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof(text), format, args);
    va_end(args);
    QV_LOG(QV_LOG_ERR, "Popup Spawn : " << text);
}

bool fileExists(const std::string& path) { return !path.empty() && access(path.c_str(), F_OK) == 0; }

std::string GetBinaryPathByName(const std::string& folder, const char* appBundleName, const char* binaryName) {
    const std::string path = folder + "/" + appBundleName + "/Contents/MacOS/" + binaryName;
    return fileExists(path) ? path : std::string();
}

std::string GetBinaryPathByBundleID(const char* folder, const char* appIdentifier) {
    for (const qvPlatform::BundleInfo& bundle : qvPlatform::BundlesInFolder(folder)) {
        if (bundle.identifier != appIdentifier || bundle.executable.empty()) continue;
        const std::string path = bundle.path + "/Contents/MacOS/" + bundle.executable;
        if (fileExists(path)) return path;
    }
    return std::string();
}

std::string parentFolder(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

}  // namespace

namespace Popup {

std::string GetServerBinaryPath(const char* bundleIdentifier, const char* appIdentifier, const char* appBundleName,
                                const char* binaryName, const char* installFolder, const char* defaultPath) {
    std::string bundle;
    if (bundleIdentifier && qvPlatform::LoadedBundlePath(bundleIdentifier, bundle)) {
        const std::string found = GetBinaryPathByName(parentFolder(bundle), appBundleName, binaryName);
        if (!found.empty()) return found;
    }
    if (installFolder) {
        std::string found = GetBinaryPathByName(installFolder, appBundleName, binaryName);
        if (!found.empty()) return found;
        if (appIdentifier) found = GetBinaryPathByBundleID(installFolder, appIdentifier);
        if (!found.empty()) return found;
    }
    return defaultPath ? defaultPath : std::string();
}

QvResult RemotePopup(const char* title, const std::string& binaryPath, const std::string& json, QV_JSON& result) {
    QV_JSON request;
    if (request.readJSONStr(qvUtf8String(json)) != QV_JSON_OK || !request.document.IsObject()) {
        request.initEmptyJSON(true);
    }
    double x = 0;
    double y = 0;
    if (qvPlatform::HostMainWindowOrigin(x, y)) {
        request.addIntToObject(request.document, "X", static_cast<int>(std::trunc(x)));
        request.addIntToObject(request.document, "Y", static_cast<int>(std::trunc(y)));
    }
    request.addIntToObject(request.document, "owner", 0);
    const std::string input = request.generateJsonFinalString().Str();

    std::string stdOut;
    const QvResult launched = LaunchPopup(title, binaryPath, "-popup", input, stdOut);
    if (launched.hasError) return launched;
    return ParseStdOutResult(stdOut, result);
}

std::string QuoteArguments(const std::vector<qvUtf8String>& args) {
    std::string line;
    for (const qvUtf8String& arg : args) {
        std::string escaped;
        if (!escapeForQuotes(arg.Str(), escaped)) {
            QV_LOG(QV_LOG_ERR, "whileSecurityIndex Error !! Initial arg is : " << arg.Str());
        }
        if (!line.empty()) line += ' ';
        line += '"' + escaped + '"';
    }
    return line;
}

QvResult RemotePopupWithArgs(const char* title, const qvUtf8String& binaryPath, const std::vector<qvUtf8String>& args,
                             qvUtf8String& stdOut) {
    const std::string line = QuoteArguments(args);
    QV_LOG(QV_LOG_INFO, "Final Cmd Args Line : " << line);
    std::string output;
    const QvResult launched = LaunchPopup(title, binaryPath.Str(), line, std::string(), output);
    if (launched.hasError) return launched;
    stdOut = qvUtf8String(output);
    return QvResult();
}

QvResult ParseStdOutResult(const std::string& stdOut, QV_JSON& result) {
    size_t start = 0;
    std::string line;
    bool found = false;
    while (start < stdOut.size()) {
        size_t end = stdOut.find('\n', start);
        if (end == std::string::npos) end = stdOut.size();
        if (stdOut.compare(start, kJsonPrefixSize, kJsonPrefix) == 0) {
            line = stdOut.substr(start, end - start);
            found = true;
            break;
        }
        start = end + 1;
    }
    if (!found) return QvResult(qvUtf8String("Json prefix not found in stdOut"));

    std::string text;
    text.reserve(line.size());
    for (char c : line) {
        if (c != '\r' && c != '\n') text += c;
    }
    text.erase(0, kJsonPrefixSize);
    if (result.readJSONStr(qvUtf8String(text)) != QV_JSON_OK) {
        QV_LOG(QV_LOG_ERR, "Json StdOut Impossible to parse : " << text);
        return QvResult(qvUtf8String("Json StdOut Impossible to Parse !"));
    }
    return QvResult();
}

}  // namespace Popup

QvResult LaunchPopup(const char* title, const std::string& binaryPath, const std::string& args,
                     const std::string& input, std::string& stdOut) {
    if (access(binaryPath.c_str(), F_OK) != 0) {
        qvPlatform::AlertText alert;
        alert.title = title ? title : "";
        alert.message =
            "Error : unable to locate our application. Please reinstall our software to make the plugins work "
            "properly. You can redownload our plugins from our website";
        alert.information = g_config.productUrl;
        alert.button = "OK";
        qvPlatform::ShowModalAlert(alert);
        return QvResult(qvUtf8String("Application or Plugin impossible to locate at : " + binaryPath));
    }

    const std::string command = quoted(binaryPath) + " " + args;
    PopupSession session;
    session.input = &input;
    Spawn::Context context;
    context.userData = &session;
    context.logCallback = LogSpawnReport;
    context.flags = Spawn::FLAG_IDLE_POLL;
    context.onStarted = SendJson;
    context.onIdle = Idle;
    const int exitCode = Spawn::Spawn(command, nullptr, stdOut, context);
    QV_LOG(QV_LOG_INFO, "Popup ended with code " << exitCode);

    qvPlatform::ActivateCurrentApplication();
    return QvResult();
}
