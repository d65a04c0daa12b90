#include "Platform/qvPlatformFiles.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <link.h>
#include <pwd.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace qvPlatform {
namespace {

std::string& executableOverride() {
    static std::string s_path;
    return s_path;
}

std::atomic<DesktopLauncher>& desktopLauncher() {
    static std::atomic<DesktopLauncher> s_launcher{nullptr};
    return s_launcher;
}

bool copyTerminated(const char* text, size_t length, char* buffer, size_t bufferSize) {
    if (!buffer || length + 1 > bufferSize) return false;
    memcpy(buffer, text, length);
    buffer[length] = '\0';
    return true;
}

// Bundle identifiers of the product and the shared object each one stands for.
struct BundleAlias {
    const char* identifier;
    const char* fileName;
};
const BundleAlias kBundleAliases[] = {
    {"com.qervane.tarnwick.importer", "Tarnwick_Importer.so"},
};

bool fileNameMatches(const char* path, const std::string& name) {
    const char* slash = strrchr(path, '/');
    const std::string fileName = slash ? slash + 1 : path;
    if (fileName == name) return true;
    const std::string withExtension = name + ".so";
    return fileName.compare(0, withExtension.size(), withExtension) == 0;
}

struct LibrarySearch {
    std::string name;
    bool found = false;
    std::string path;
};

int visitLoadedObject(struct dl_phdr_info* info, size_t, void* data) {
    auto* search = static_cast<LibrarySearch*>(data);
    // The main program has no name here; it is not a library.
    if (!info->dlpi_name || !info->dlpi_name[0]) return 0;
    if (!fileNameMatches(info->dlpi_name, search->name)) return 0;
    search->found = true;
    search->path = info->dlpi_name;
    return 1;
}

void openWithXdgOpen(const std::string& target) {
    // The shell puts xdg-open in the background and ends at once, so the
    // opener is reaped here and its child belongs to init: no zombie, no thread.
    const char* argv[] = {"/bin/sh", "-c", "xdg-open \"$1\" >/dev/null 2>&1 &", "sh", target.c_str(), nullptr};
    pid_t pid = 0;
    if (posix_spawn(&pid, "/bin/sh", nullptr, nullptr, const_cast<char* const*>(argv), environ) != 0) return;
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
}

}  // namespace

bool ExecutablePath(char* buffer, size_t bufferSize) {
    const std::string& forced = executableOverride();
    if (!forced.empty()) return copyTerminated(forced.data(), forced.size(), buffer, bufferSize);
    if (!buffer || bufferSize == 0) return false;
    const ssize_t length = readlink("/proc/self/exe", buffer, bufferSize);
    // readlink does not terminate, and a full buffer may hide a longer path.
    if (length <= 0 || static_cast<size_t>(length) >= bufferSize) return false;
    buffer[length] = '\0';
    return true;
}

void SetExecutablePathOverride(const std::string& path) { executableOverride() = path; }

LibraryLookup LoadedLibraryPath(const std::string& name, char* buffer, size_t bufferSize) {
    if (name.empty()) return LibraryLookup::NotLoaded;
    LibrarySearch search;
    search.name = name;
    for (const BundleAlias& alias : kBundleAliases) {
        if (name == alias.identifier) search.name = alias.fileName;
    }
    dl_iterate_phdr(visitLoadedObject, &search);
    if (!search.found) return LibraryLookup::NotLoaded;
    if (search.path.empty() || !copyTerminated(search.path.data(), search.path.size(), buffer, bufferSize)) {
        return LibraryLookup::NoPath;
    }
    return LibraryLookup::Found;
}

bool PasswordHomeFolder(std::string& folder) {
    folder.clear();
    long size = sysconf(_SC_GETPW_R_SIZE_MAX);
    if (size <= 0) size = 16384;
    std::string buffer(static_cast<size_t>(size), '\0');
    struct passwd entry;
    struct passwd* found = nullptr;
    // The reentrant form: host threads may ask at the same time.
    while (getpwuid_r(getuid(), &entry, &buffer[0], buffer.size(), &found) == ERANGE && buffer.size() < (1u << 20)) {
        buffer.resize(buffer.size() * 2);
    }
    if (!found) return false;
    if (found->pw_dir) folder = found->pw_dir;
    return true;
}

void OpenWithDesktop(const std::string& target) {
    if (DesktopLauncher launcher = desktopLauncher().load()) {
        launcher(target);
        return;
    }
    openWithXdgOpen(target);
}

void SetDesktopLauncher(DesktopLauncher launcher) { desktopLauncher().store(launcher); }

}  // namespace qvPlatform
