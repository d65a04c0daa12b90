#pragma once
// What the application is asked to do, taken from its command line, and the
// process-wide set-up that every mode shares: the product's identity, the
// folders it works in and the options file.
//
// The plug-in starts the application with fixed arguments, so the facilities a
// test or an automation needs also come through the environment:
//   TARNWICK_HOME         the home folder the product's folders are found under
//   TARNWICK_SYSTEM_ROOT  a root put in front of the fixed system folders
//   TARNWICK_SCRIPT       a script of edits and button presses (twAutomation.h)
// The options --home, --system-root and --script do the same and win.

#include <QString>
#include <QStringList>

struct twAppArguments {
    enum class Mode { Desktop, PreferencesPopup, SourceSettingsPopup, Help, Invalid };

    Mode mode = Mode::Desktop;
    // Source-settings popup: the clip, the preset going in and the one to write.
    QString clipPath;
    QString inputPresetPath;
    QString resultPresetPath;
    int host = 0;
    // Desktop mode: a clip to open at once (optional).
    QString desktopClip;
    QString home;
    QString systemRoot;
    QString scriptPath;
    QString error;

    // `args` without the program name.
    static twAppArguments parse(const QStringList& args);
};

namespace twAppEnvironment {

// Roots, the product's identity and the options file, in that order.
void initialise(const twAppArguments& arguments);

// The folder logs go to (not created here).
QString logFolder();

// The host's JSON from standard input: read until it forms a whole JSON
// document or the input ends, so that a launcher that keeps the pipe open
// doesn't hold the window back. Nothing is read from a terminal.
QByteArray readHostJson();

// The one answer line of a popup, on standard output.
void printPopupAnswer(bool modified);

// The usage text.
const char* usage();

}  // namespace twAppEnvironment
