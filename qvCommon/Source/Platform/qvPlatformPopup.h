#pragma once
// What a settings popup needs of the desktop around it: a modal alert for the
// user, the host's main window, bringing an application to the front, and the
// application bundles installed in a folder.
//
// On this platform the plug-in has no toolkit of its own inside the host: the
// alert goes to an alert handler (by default the process's standard error, the
// host's console), and the window services answer "no window" and do nothing,
// since nothing in the host process owns a window we could read or raise.

#include <string>
#include <sys/types.h>
#include <vector>

namespace qvPlatform {

struct AlertText {
    std::string title;
    std::string message;
    std::string information;  // a second line, e.g. a web address
    std::string button;
};

// Shows the alert and returns once the user has answered it.
void ShowModalAlert(const AlertText& alert);

// Replaces where alerts go, so that a host or a test sees them. Null restores
// the standard-error alert.
using AlertHandler = void (*)(const AlertText& alert);
void SetAlertHandler(AlertHandler handler);

// The origin of the host's main window on screen. False when there is none.
bool HostMainWindowOrigin(double& x, double& y);

// Whether the host process is the application in front.
bool IsCurrentApplicationActive();
// Brings the process `pid` to the front, or the host itself.
void ActivateApplication(pid_t pid);
void ActivateCurrentApplication();

// The folder of an application bundle ("<folder>/Name.app") that is loaded in
// this process under `bundleIdentifier`: the bundle is the part of its
// executable's path in front of "/Contents/". False when no such bundle is
// loaded.
bool LoadedBundlePath(const std::string& bundleIdentifier, std::string& bundlePath);

struct BundleInfo {
    std::string path;        // the bundle's folder
    std::string identifier;  // CFBundleIdentifier of Contents/Info.plist
    std::string executable;  // CFBundleExecutable of the same file
};

// The bundles directly inside `folder` that describe themselves with a
// Contents/Info.plist, in file-name order.
std::vector<BundleInfo> BundlesInFolder(const std::string& folder);

}  // namespace qvPlatform
