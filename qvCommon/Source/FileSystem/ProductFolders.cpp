#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <unistd.h>

#include "Config/qvConfig.h"
#include "FileSystem/qvFileSystem.h"
#include "FileSystem/qvUtf8Path.h"
#include "Platform/qvPlatformFiles.h"
#include "Platform/qvPlatformRoots.h"

namespace qvFileSystem {
namespace {

constexpr size_t kPathBufferSize = 1024;

// Joins `relative` below the folder that `parent` gives, creates it, and hands
// it out; a failure of `parent` comes back unchanged.
QvResult getOrCreateBelow(QvResult (*parent)(qvUtf8String&), const qvUtf8String& relative, qvUtf8String& out) {
    qvUtf8String folder;
    QvResult result = parent(folder);
    if (result.hasError) return result;
    folder = qvUtf8Path::Join(folder, relative);
    result = createDirectoryRecursively(folder);
    if (result.hasError) return result;
    out = folder;
    return QvResult();
}

bool endsWith(const std::string& text, const std::string& suffix) {
    return text.size() >= suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

}  // namespace

QvResult getUserHomeFolderFrom(bool hasPasswordEntry, const char* passwordFolder, const char* homeVariable,
                               qvUtf8String& out) {
    if (hasPasswordEntry) {
        if (!passwordFolder || !passwordFolder[0]) return QvResult("Impossible to get AppData folder from getpwuid");
        out = passwordFolder;
        return QvResult();
    }
    if (!homeVariable || !homeVariable[0]) return QvResult("Impossible to get AppData folder from HOME env var");
    out = homeVariable;
    return QvResult();
}

QvResult getUserHomeFolder(qvUtf8String& out) {
    const std::string& forced = qvPlatform::HomeFolderOverride();
    if (!forced.empty()) {
        out = forced;
        return QvResult();
    }
    std::string folder;
    const bool hasEntry = qvPlatform::PasswordHomeFolder(folder);
    return getUserHomeFolderFrom(hasEntry, folder.c_str(), getenv("HOME"), out);
}

QvResult getOrCreateQVAppDataFolder(qvUtf8String& out) {
    return getOrCreateBelow(getUserHomeFolder, qvProductFolders::kMakerFolder, out);
}

QvResult getOrCreateProductAppDataFolder(qvUtf8String& out) {
    return getOrCreateBelow(getOrCreateQVAppDataFolder, g_config.productFolderName, out);
}

QvResult getOrCreateProductLogFolder(qvUtf8String& out, const qvUtf8String& subfolder) {
    const qvUtf8String name = subfolder.Str().empty() ? qvUtf8String(qvProductFolders::kLogs) : subfolder;
    return getOrCreateBelow(getOrCreateProductAppDataFolder, name, out);
}

QvResult getOrCreateProductCacheFolder(qvUtf8String& out) {
    return getOrCreateBelow(getOrCreateProductAppDataFolder, qvProductFolders::kCache, out);
}

QvResult getOrCreateProductManualCacheFolder(qvUtf8String& out) {
    return getOrCreateBelow(getOrCreateProductAppDataFolder, qvProductFolders::kManualCache, out);
}

QvResult getIniFilepath(qvUtf8String& out) {
    qvUtf8String folder;
    QvResult result = getOrCreateProductAppDataFolder(folder);
    if (result.hasError) return result;
    out = qvUtf8Path::Join(folder, g_config.iniFileName);
    if (qvUtf8Path::IsFolder(out)) {
        result = removeFolderIfExists(out);
        if (result.hasError) return result;
    }
    if (!qvUtf8Path::Exists(out)) {
        // O_CREAT without O_TRUNC: a file that another thread creates meanwhile keeps its content.
        const int fd = open(out.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
        if (fd < 0) return QvResult("Impossible to open new Ini File");
        close(fd);
    }
    return QvResult();
}

QvResult getHostExeFolderPath(qvUtf8String& out) {
    char buffer[kPathBufferSize];
    if (!qvPlatform::ExecutablePath(buffer, sizeof(buffer))) return QvResult("Size too small for Executable path !");
    out = qvUtf8Path(qvUtf8String(buffer)).Parent();
    return QvResult();
}

QvResult getDiskPathFromFolder(const qvUtf8String& folder, qvUtf8String& out) {
    const std::string volumes = qvPlatform::SystemPath(qvProductFolders::kVolumes);
    const std::string& path = folder.Str();
    if (path.compare(0, volumes.size(), volumes) == 0) {
        const size_t slash = path.find('/', volumes.size());
        if (slash != std::string::npos) {
            out = path.substr(0, slash + 1);
            return QvResult();
        }
    }
    return QvResult("Impossible to get Disk Path from current Exe Path");
}

QvResult getCurrentExeDiskPath(qvUtf8String& out) {
    qvUtf8String folder;
    const QvResult result = getHostExeFolderPath(folder);
    if (result.hasError) return result;
    return getDiskPathFromFolder(folder, out);
}

QvResult getHostFolderPath(qvUtf8String& out, const qvUtf8String* start) {
    qvUtf8String from;
    if (start) {
        from = *start;
    } else {
        const QvResult result = getHostExeFolderPath(from);
        if (result.hasError) return result;
    }
    for (qvUtf8String folder = from; !folder.Str().empty(); folder = getParentFolder(folder)) {
        if (endsWith(getFilenameFromPath(folder, true).Str(), ".app")) {
            out = folder;
            return QvResult();
        }
    }
    return QvResult("Impossible to find Root Host Folder from Host Exe Path " + from);
}

QvResult getMediacoreFolderPath(qvUtf8String& out, qvUtf8String& report) {
    const qvUtf8String usual = qvPlatform::SystemPath(qvProductFolders::kMediaCore);
    if (qvUtf8Path::Exists(usual)) {
        report += "MediaCore in the normal location exists.\n";
        out = usual;
        return QvResult();
    }
    qvUtf8String disk;
    const QvResult result = getCurrentExeDiskPath(disk);
    if (result.hasError) return result;
    const qvUtf8String onDisk =
        qvUtf8Path::Join(qvUtf8Path::Join(disk, "Library/Application Support/Adobe"), "Common/Plug-ins/7.0/MediaCore");
    // Found there, `out` stays as it was: the install check reads an empty
    // `out` as "installed in a specific location".
    if (qvUtf8Path::Exists(onDisk)) return QvResult();
    report += "Mediacore in current Disk Path does not exist\n";
    return QvResult("Mediacore in current Disk Path does not exist");
}

QvResult getHostPlugInsFolderPath(std::vector<qvUtf8String>& out, qvUtf8String& report) {
    const qvUtf8String applications = qvPlatform::SystemPath(qvProductFolders::kApplications);
    if (!qvUtf8Path::Exists(applications)) {
        report += "All Applications OSX Path does not exist.\n";
        return QvResult();
    }
    std::vector<qvUtf8String> entries;
    readDirectory(applications, entries, false);
    for (const qvUtf8String& entry : entries) {
        if (!qvUtf8Path::IsFolder(entry)) {
            report += " - Found non folder location : " + entry + "\n";
            continue;
        }
        report += " - Found folder : " + entry + "\n";
        if (!entry.Includes("Premiere Pro") && !entry.Includes("Media Encoder") && !entry.Includes("After Effects")) {
            continue;
        }
        const qvUtf8String candidate =
            qvUtf8Path::Join(entry, getFilenameFromPath(entry, true) + ".app/Contents/Plug-Ins");
        if (qvUtf8Path::Exists(candidate)) {
            out.push_back(candidate);
        } else {
            report += "Application does not have Plug-Ins path in : " + candidate + "\n";
        }
    }
    return QvResult();
}

QvResult getDynamicLibPath(qvUtf8String& out, const char* bundleIdentifier) {
    char buffer[kPathBufferSize];
    switch (qvPlatform::LoadedLibraryPath(bundleIdentifier ? bundleIdentifier : "", buffer, sizeof(buffer))) {
        case qvPlatform::LibraryLookup::NotLoaded:
            return QvResult("GetDynamicLibPath - Impossible to get MainBundle");
        case qvPlatform::LibraryLookup::NoPath:
            return QvResult("GetDynamicLibPath - Impossible to get Url");
        case qvPlatform::LibraryLookup::Found:
            break;
    }
    out = buffer;
    return QvResult();
}

QvResult getCacheSpaceTaken(int64_t& total) {
    try {
        total = 0;
        QvResult (*const folders[])(qvUtf8String&) = {getOrCreateProductCacheFolder,
                                                      getOrCreateProductManualCacheFolder};
        for (auto getFolder : folders) {
            qvUtf8String folder;
            const QvResult result = getFolder(folder);
            if (result.hasError) return result;
            std::vector<qvUtf8String> entries;
            readDirectory(folder, entries, false);
            for (const qvUtf8String& entry : entries) total += getFileSize(entry);
        }
        return QvResult();
    } catch (const std::exception& error) {
        return QvResult(qvUtf8String("Error raised during getCacheSpaceTaken call : ") + error.what());
    } catch (...) {
        return QvResult("Unknown Error raised during getCacheSpaceTaken call");
    }
}

void openFileOrFolder(const qvUtf8String& path, bool force, bool reveal, bool) {
    const qvUtf8String parent = getParentFolder(path);
    if (!qvUtf8Path::Exists(path) && !qvUtf8Path::Exists(parent)) return;
    if (force || !reveal) {
        qvPlatform::OpenWithDesktop(path.Str());
        return;
    }
    // A desktop opener cannot select a file: showing the folder that holds it
    // is the nearest to revealing it.
    qvPlatform::OpenWithDesktop(parent.Str().empty() ? path.Str() : parent.Str());
}

}  // namespace qvFileSystem
