#include "twAppEnvironment.h"

#include "Common/TW_Debug_Options.h"
#include "Common/twUtils.h"
#include "FileSystem/qvFileSystem.h"
#include "Platform/qvPlatformRoots.h"

#include <QJsonDocument>
#include <QJsonParseError>
#include <QProcessEnvironment>

#include <cerrno>
#include <cstdio>

#include <unistd.h>

twAppArguments twAppArguments::parse(const QStringList& args) {
    twAppArguments out;
    const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    out.home = environment.value("TARNWICK_HOME");
    out.systemRoot = environment.value("TARNWICK_SYSTEM_ROOT");
    out.scriptPath = environment.value("TARNWICK_SCRIPT");

    QStringList rest;
    for (int i = 0; i < args.size(); ++i) {
        const QString& arg = args[i];
        QString* target = arg == "--home" ? &out.home
                          : arg == "--system-root" ? &out.systemRoot
                          : arg == "--script" ? &out.scriptPath
                                              : nullptr;
        if (target) {
            if (i + 1 >= args.size()) {
                out.mode = Mode::Invalid;
                out.error = arg + " needs a value";
                return out;
            }
            *target = args[++i];
        } else if (arg == "-h" || arg == "--help") {
            out.mode = Mode::Help;
            return out;
        } else {
            rest << arg;
        }
    }

    if (rest.isEmpty()) return out;
    if (rest[0] == "-popup") {
        out.mode = Mode::PreferencesPopup;
        if (rest.size() != 1) {
            out.mode = Mode::Invalid;
            out.error = "-popup takes no further argument: the host's JSON comes on standard input";
        }
        return out;
    }
    if (rest[0] == "-sourceSettingsPopup") {
        // CLIP 0 INPUT RESULT HOST; the "0" is a fixed placeholder of the plug-in.
        if (rest.size() != 6) {
            out.mode = Mode::Invalid;
            out.error = "-sourceSettingsPopup needs CLIP 0 INPUT_PRESET RESULT_PRESET HOST";
            return out;
        }
        out.mode = Mode::SourceSettingsPopup;
        out.clipPath = rest[1];
        out.inputPresetPath = rest[3];
        out.resultPresetPath = rest[4];
        bool ok = false;
        out.host = rest[5].toInt(&ok);
        if (!ok) out.host = 0;
        return out;
    }
    if (rest.size() == 1 && !rest[0].startsWith('-')) {
        out.desktopClip = rest[0];
        return out;
    }
    out.mode = Mode::Invalid;
    out.error = "unknown arguments: " + rest.join(' ');
    return out;
}

namespace twAppEnvironment {

void initialise(const twAppArguments& arguments) {
    if (!arguments.home.isEmpty()) qvPlatform::SetHomeFolderOverride(arguments.home.toStdString());
    if (!arguments.systemRoot.isEmpty()) qvPlatform::SetSystemRootOverride(arguments.systemRoot.toStdString());
    twUtils::initQvCommon();
    TWDebugOptions::loadDebugOptions();
}

QString logFolder() {
    qvUtf8String home;
    if (qvFileSystem::getUserHomeFolder(home).hasError) return QString();
    return QString::fromStdString(home.Str()) + qvProductFolders::kMakerFolder + "/Tarnwick/" +
           qvProductFolders::kLogs;
}

QByteArray readHostJson() {
    QByteArray text;
    if (isatty(STDIN_FILENO)) return text;
    char buffer[4096];
    for (;;) {
        const ssize_t count = ::read(STDIN_FILENO, buffer, sizeof(buffer));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        text.append(buffer, static_cast<int>(count));
        QJsonParseError error;
        QJsonDocument::fromJson(text, &error);
        if (error.error == QJsonParseError::NoError) break;
    }
    return text;
}

void printPopupAnswer(bool modified) {
    std::printf("json:{\"modified\":%s}\n", modified ? "true" : "false");
    std::fflush(stdout);
}

const char* usage() {
    return "Usage: Tarnwick [CLIP]\n"
           "       Tarnwick -popup                    (the host's JSON on standard input)\n"
           "       Tarnwick -sourceSettingsPopup CLIP 0 INPUT_PRESET RESULT_PRESET HOST\n"
           "\n"
           "Without arguments, or with a clip, a desktop editor of a clip's sidecar settings.\n"
           "With -popup, the preferences window; with -sourceSettingsPopup, a clip's decode\n"
           "settings for the plug-in. A popup answers with one line json:{\"modified\":...}.\n"
           "\n"
           "Options (also from TARNWICK_HOME, TARNWICK_SYSTEM_ROOT, TARNWICK_SCRIPT):\n"
           "  --home DIR          home folder of the product's folders\n"
           "  --system-root DIR   root in front of the fixed system folders\n"
           "  --script FILE       run a script of edits and presses once the window shows\n";
}

}  // namespace twAppEnvironment
