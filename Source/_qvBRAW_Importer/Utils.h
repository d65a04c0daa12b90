#pragma once
// The importer's services around the selectors: who the host is, the log and
// the install check, and the one route by which anything reaches the user.

#include "Adobe/qvHost.h"
#include "MediaCoreSDK.h"
#include "String/qvUtf8String.h"
#include "Utils/qvResult.h"
#include "Utils/qvVersion.h"

#include <cstddef>

// The host's basic suite through stdParms; null when the host gives none.
SPBasicSuite* TWI_GetBasicSuite(const imStdParms* stdParms);

// Application and version from the App Info suite. Each failure is an error
// result and leaves what was not yet read as it was.
QvResult getHostAndVersion(imStdParms* stdParms, QV_APP_ENUM& app, QvVersion& version);
// The settings side's host: Media Encoder 3, Premiere Pro and Elements 2,
// After Effects 1, else 0.
PXC_HOST GetHostPP_(PrSDKAppInfoSuite* appInfoSuite);

// Switches the log file on or off by the options, then (with `displayInstallProblem`,
// or when the log is on) starts the install check on a detached low-priority thread.
void UpdateLogs(imStdParms* stdParms, bool displayInstallProblem);
void activateLogsIfNeeded(imStdParms* stdParms);
// The body of the install check thread: logs the verdict, and shows a box for a
// broken install when asked to.
void checkInstallFolderPPro(imStdParms* stdParms, bool displayInstallProblem);
// Returns once no install check is running any more.
void TWI_WaitForInstallChecks();

// Posts an event through the host's Error suite: "BRAW - " before the title,
// and the bug-report request after the text when asked. Severity 2 is a
// warning, 3 an error. Without the suite nothing is shown, and nobody is told.
void displayMsgToTheUser(const imStdParms* stdParms, const qvUtf8String& title, const qvUtf8String& text,
                         unsigned severity, bool addBugReportText);
void displayMsgToTheUserFromSuite(const PrSDKErrorSuite3* errorSuite, const qvUtf8String& title,
                                  const qvUtf8String& text, unsigned severity, bool addBugReportText);
// "Please send us a bug report ! <page> You can contact us at <address>"
qvUtf8String getBugReportText();

// A companion file of a clip: the clip's path less its last 4 characters, then
// `extension` ("braw2", "sidecar"). The rule holds whatever the path ends with.
qvUtf8String TWI_CompanionPath(const qvUtf8String& clipPath, const char* extension);

// The host's UTF-16 path as UTF-8. Reads unit by unit (a path may sit at an odd
// offset of a packed record) and stops at the terminator or at `maxUnits`.
qvUtf8String TWI_PathFromUtf16(const void* utf16Path, size_t maxUnits);

// A diagnostic of the path the host asks to open, into the log only.
void LogsTestsOnFile(const unsigned short* utf16Path, size_t size);
