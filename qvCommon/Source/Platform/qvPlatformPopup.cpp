#include "Platform/qvPlatformPopup.h"

#include "Platform/qvPlatformFiles.h"

#include <algorithm>
#include <cctype>
#include <atomic>
#include <cstdio>
#include <dirent.h>
#include <fstream>
#include <limits.h>
#include <sstream>
#include <sys/stat.h>

namespace qvPlatform {
namespace {

std::atomic<AlertHandler>& alertHandler() {
    static std::atomic<AlertHandler> s_handler{nullptr};
    return s_handler;
}

// The host's console is where a person running it looks for what went wrong.
void standardErrorAlert(const AlertText& alert) {
    std::fprintf(stderr, "%s\n%s\n%s%s[%s]\n", alert.title.c_str(), alert.message.c_str(), alert.information.c_str(),
                 alert.information.empty() ? "" : "\n", alert.button.c_str());
    std::fflush(stderr);
}

// The text of the <string> element that follows <key>name</key> in a property
// list; empty when there is none. Property lists that bundles carry are flat
// enough for this: the keys asked for hold plain strings.
std::string plistString(const std::string& plist, const std::string& name) {
    const std::string key = "<key>" + name + "</key>";
    const size_t at = plist.find(key);
    if (at == std::string::npos) return std::string();
    const size_t open = plist.find("<string>", at + key.size());
    if (open == std::string::npos) return std::string();
    // Only blanks may separate the key from its value.
    for (size_t i = at + key.size(); i < open; ++i) {
        if (!std::isspace(static_cast<unsigned char>(plist[i]))) return std::string();
    }
    const size_t begin = open + 8;
    const size_t end = plist.find("</string>", begin);
    if (end == std::string::npos) return std::string();
    return plist.substr(begin, end - begin);
}

bool isDirectory(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

}  // namespace

void ShowModalAlert(const AlertText& alert) {
    const AlertHandler handler = alertHandler().load();
    (handler ? handler : standardErrorAlert)(alert);
}

void SetAlertHandler(AlertHandler handler) { alertHandler() = handler; }

bool HostMainWindowOrigin(double&, double&) { return false; }

bool IsCurrentApplicationActive() { return false; }

void ActivateApplication(pid_t) {}

void ActivateCurrentApplication() {}

bool LoadedBundlePath(const std::string& bundleIdentifier, std::string& bundlePath) {
    char buffer[PATH_MAX];
    if (LoadedLibraryPath(bundleIdentifier, buffer, sizeof(buffer)) != LibraryLookup::Found) return false;
    const std::string executable(buffer);
    const size_t contents = executable.rfind("/Contents/");
    if (contents == std::string::npos || contents == 0) return false;
    bundlePath = executable.substr(0, contents);
    return true;
}

std::vector<BundleInfo> BundlesInFolder(const std::string& folder) {
    std::vector<BundleInfo> bundles;
    DIR* dir = opendir(folder.c_str());
    if (!dir) return bundles;
    while (const dirent* entry = readdir(dir)) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..") continue;
        const std::string path = folder + "/" + name;
        if (!isDirectory(path)) continue;
        std::ifstream file(path + "/Contents/Info.plist", std::ios::binary);
        if (!file) continue;
        std::ostringstream text;
        text << file.rdbuf();
        BundleInfo info;
        info.path = path;
        info.identifier = plistString(text.str(), "CFBundleIdentifier");
        info.executable = plistString(text.str(), "CFBundleExecutable");
        bundles.push_back(info);
    }
    closedir(dir);
    std::sort(bundles.begin(), bundles.end(),
              [](const BundleInfo& a, const BundleInfo& b) { return a.path < b.path; });
    return bundles;
}

}  // namespace qvPlatform
