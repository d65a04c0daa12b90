#pragma once
// The client side of a settings popup: a companion application started as a
// child process, told what to show by its command line and a JSON text on its
// standard input, answering with one line "json:{...}" on its standard output.
// Every call is modal for the calling thread: it returns once the child ended.

#include "String/qvUtf8String.h"
#include "Utils/qvJSON.h"
#include "Utils/qvResult.h"

#include <string>
#include <vector>

namespace Popup {

// The application's binary, the first of: beside the loaded bundle
// `bundleIdentifier` (appBundleName/Contents/MacOS/binaryName); the same in
// `installFolder`; the bundle of `installFolder` whose identifier is
// `appIdentifier`; `defaultPath`, whether it exists or not.
std::string GetServerBinaryPath(const char* bundleIdentifier, const char* appIdentifier, const char* appBundleName,
                                const char* binaryName, const char* installFolder, const char* defaultPath);

// Runs the binary with "-popup" and `json` on its standard input (completed
// with the host window's origin when known, and "owner"), and reads its answer.
QvResult RemotePopup(const char* title, const std::string& binaryPath, const std::string& json, QV_JSON& result);

// Runs the binary with `args`, each put in quotation marks, and hands back
// what it printed.
QvResult RemotePopupWithArgs(const char* title, const qvUtf8String& binaryPath, const std::vector<qvUtf8String>& args,
                             qvUtf8String& stdOut);

// Reads the answer: the first line starting with "json:", parsed.
QvResult ParseStdOutResult(const std::string& stdOut, QV_JSON& result);

// The command-line text of `args`: each in quotation marks, joined by blanks.
std::string QuoteArguments(const std::vector<qvUtf8String>& args);

}  // namespace Popup

// Runs `binaryPath` with the command-line text `args` (already quoted), writes
// `input` to its standard input and closes it, and gathers its output into
// `stdOut`. A binary that is not there is told to the user with an alert and
// gives a failure; the child's own exit code is not a failure.
QvResult LaunchPopup(const char* title, const std::string& binaryPath, const std::string& args,
                     const std::string& input, std::string& stdOut);
