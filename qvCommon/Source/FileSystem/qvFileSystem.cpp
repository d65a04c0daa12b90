#include "FileSystem/qvFileSystem.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

#include "FileSystem/qvUtf8Path.h"

namespace qvFileSystem {
namespace {

constexpr int kMaxRemoveDepth = 51;
constexpr int kMaxSearchDepth = 20;
constexpr const char kWritableProbeName[] = "MossbaleTempFile_CheckWritableFolder.txt";

std::atomic<RenameFunction>& renameFunction() {
    static std::atomic<RenameFunction> s_rename{nullptr};
    return s_rename;
}

qvUtf8String withTrailingSeparator(const qvUtf8String& folder) {
    return qvUtf8Path(folder, qvUtf8Path::FLAG_ADD_BACKSLASH).Str();
}

bool isSymbolicLink(const qvUtf8String& path) {
    struct stat info;
    return lstat(path.c_str(), &info) == 0 && S_ISLNK(info.st_mode);
}

}  // namespace

bool isFolderPath(const qvUtf8String& path) { return qvUtf8Path::IsFolder(path); }

bool doesFilepathExist(const qvUtf8String& path) { return qvUtf8Path::Exists(path); }

bool isFolderEmpty(const qvUtf8String& path) { return std::filesystem::is_empty(std::filesystem::path(path.Str())); }

bool isFileReadable(const qvUtf8String& path) { return qvUtf8Path::Access(path, qvUtf8Path::OPEN_READ); }

bool isFolderWritable(const qvUtf8String& path) {
    const qvUtf8String probe = path + "/" + kWritableProbeName;
    {
        std::ofstream out(probe.Str(), std::ios::out);
        if (out.is_open()) {
            out << "Temp";
            out.close();
        }
    }
    const bool writable = qvUtf8Path::Exists(probe);
    removeFileIfExists(probe);
    return writable;
}

int64_t getFileSize(const qvUtf8String& path) {
    struct stat info;
    if (stat(path.c_str(), &info) != 0) return -1;
    return static_cast<int64_t>(info.st_size);
}

qvUtf8String getParentFolder(const qvUtf8String& path) { return qvUtf8Path(path).Parent(); }

qvUtf8String getFilenameFromPath(const qvUtf8String& path, bool withExtension) {
    return qvUtf8Path(path).Filename(withExtension || qvUtf8Path::IsFolder(path));
}

qvUtf8String getFilepathExtension(const qvUtf8String& path, bool toLower) {
    qvUtf8String extension = qvUtf8Path(path).Extension();
    if (toLower) extension.ToLowerCase();
    return extension;
}

bool extensionIsBraw(const qvUtf8String& path) { return getFilepathExtension(path, true) == "braw"; }

void readDirectory(const qvUtf8String& path, std::vector<qvUtf8String>& out, bool namesOnly) {
    out.clear();
    DIR* folder = opendir(path.c_str());
    if (!folder) return;
    const qvUtf8String prefix = namesOnly ? qvUtf8String() : withTrailingSeparator(path);
    while (const dirent* entry = readdir(folder)) {
        if (strcmp(entry->d_name, ".") == 0 || strcmp(entry->d_name, "..") == 0) continue;
        out.push_back(prefix + entry->d_name);
    }
    closedir(folder);
}

void searchPathFromFinalenameInDirectoryRecursively(const qvUtf8String& folder,
                                                    const std::vector<qvUtf8String>& names,
                                                    std::vector<std::vector<qvUtf8String>>& found, int depth) {
    if (depth > kMaxSearchDepth) return;
    std::vector<qvUtf8String> entries;
    readDirectory(folder, entries, true);
    const qvUtf8String prefix = withTrailingSeparator(folder);
    for (const qvUtf8String& entry : entries) {
        const qvUtf8String fullPath = prefix + entry;
        for (size_t i = 0; i < names.size(); ++i) {
            if (entry == names[i]) found.at(i).push_back(fullPath);
        }
        // A match that is a folder is searched as well: a bundle may hold another.
        if (qvUtf8Path::IsFolder(fullPath)) {
            searchPathFromFinalenameInDirectoryRecursively(fullPath, names, found, depth + 1);
        }
    }
}

void getStream(std::ofstream& stream, const qvUtf8String& path, std::ios_base::openmode mode) {
    std::ofstream opened(path.Str(), mode | std::ios_base::out);
    stream.swap(opened);
}

void getStream(std::ifstream& stream, const qvUtf8String& path, std::ios_base::openmode mode) {
    std::ifstream opened(path.Str(), mode | std::ios_base::in);
    stream.swap(opened);
}

FILE* openFile(const qvUtf8String& path, const char* mode) { return fopen(path.c_str(), mode); }

std::string loadFile(const qvUtf8String& path, bool* ok) {
    if (ok) *ok = false;
    if (!qvUtf8Path::Exists(path) || qvUtf8Path::IsFolder(path)) return std::string();
    std::ifstream in(path.Str(), std::ios::in | std::ios::binary);
    if (!in.is_open()) return std::string();
    std::string bytes;
    // One allocation for the usual case; the loop below still reads a file
    // that grows meanwhile.
    const int64_t expected = getFileSize(path);
    if (expected > 0) bytes.reserve(static_cast<size_t>(expected));
    char chunk[65536];
    while (in.read(chunk, sizeof(chunk)) || in.gcount() > 0) {
        bytes.append(chunk, static_cast<size_t>(in.gcount()));
    }
    if (in.bad()) return std::string();
    if (ok) *ok = true;
    return bytes;
}

QvResult storeFile(const qvUtf8String& path, const std::string& bytes) {
    std::ofstream out(path.Str(), std::ios::out | std::ios::binary | std::ios::trunc);
    if (!out.is_open()) return QvResult("Can't open output file stream");
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (out.fail()) return QvResult("Can't write output file stream");
    return QvResult();
}

QvResult removeFileIfExists(const qvUtf8String& path) {
    struct stat info;
    // lstat: a link whose target is gone is still a file to remove.
    if (lstat(path.c_str(), &info) != 0) return QvResult();
    if (::remove(path.c_str()) != 0) return QvResult("Impossible to remove file " + path);
    return QvResult();
}

QvResult moveFile(const qvUtf8String& from, const qvUtf8String& to) {
    RenameFunction renameStep = renameFunction().load();
    if (!renameStep) renameStep = ::rename;
    if (renameStep(from.c_str(), to.c_str()) == 0) return QvResult();

    // rename cannot cross volumes: copy, then remove the source, and undo the
    // copy if the source stays, so that no half-move is left behind. The
    // outcome of the fallback is the answer; rename's own failure only says
    // that the fallback was needed.
    QvResult result = copyFile(from, to);
    if (result.hasError) return result;
    result = removeFileIfExists(from);
    if (result.hasError) {
        removeFileIfExists(to);
        return result;
    }
    return QvResult();
}

QvResult copyFile(const qvUtf8String& from, const qvUtf8String& to) {
    // A folder opens as a stream here but has no bytes to give.
    std::ifstream in;
    if (!qvUtf8Path::IsFolder(from)) in.open(from.Str(), std::ios::in | std::ios::binary);
    if (!in.is_open()) return QvResult("Impossible to open input stream");
    std::ofstream out(to.Str(), std::ios::out | std::ios::binary | std::ios::trunc);
    if (!out.is_open()) return QvResult("Impossible to open output stream");
    char chunk[65536];
    while (in.read(chunk, sizeof(chunk)) || in.gcount() > 0) {
        if (!out.write(chunk, in.gcount())) break;
    }
    const bool readFailed = in.bad();
    out.close();
    if (readFailed || out.fail()) return QvResult("Impossible to write output stream");
    return QvResult();
}

QvResult createDirectory(const qvUtf8String& path) {
    qvUtf8String folder = qvUtf8Path(path, qvUtf8Path::FLAG_REMOVE_BACKSLASH).Str();
    if (folder.Str().empty() && !path.Str().empty()) folder = "/";
    if (mkdir(folder.c_str(), 0755) == 0 || errno == EEXIST) return QvResult();
    const int error = errno;
    qvUtf8String message = "Impossible to create Directory at : " + folder;
    if (error == EACCES) {
        message += " - Privilege Access Error";
    } else {
        message += " (error " + std::to_string(error) + ")";
    }
    return QvResult(message);
}

QvResult createDirectoryRecursively(const qvUtf8String& path) {
    const std::string folder =
        qvUtf8Path(path, qvUtf8Path::FLAG_POSIX | qvUtf8Path::FLAG_REMOVE_BACKSLASH).Str().Str();
    for (size_t slash = folder.find('/', 1); slash != std::string::npos; slash = folder.find('/', slash + 1)) {
        const QvResult result = createDirectory(qvUtf8String(folder.substr(0, slash)));
        if (result.hasError) return result;
    }
    return createDirectory(qvUtf8String(folder));
}

QvResult removeFolderIfExists(const qvUtf8String& path) {
    if (rmdir(path.c_str()) == 0) return QvResult();
    return QvResult("Impossible to remove Directory at : " + path + " : " + strerror(errno));
}

QvResult moveFolder(const qvUtf8String& from, const qvUtf8String& to) {
    if (qvUtf8Path::Exists(to)) return QvResult("Impossible to move folder because destination already exist : " + to);
    if (!qvUtf8Path::Exists(from)) {
        return QvResult("Impossible to move folder because inFolder does not exist : " + from);
    }
    return moveFile(from, to);
}

QvResult cleanFolder(const qvUtf8String& path) {
    if (!qvUtf8Path::Exists(path)) return QvResult();
    if (!qvUtf8Path::IsFolder(path)) return QvResult("cleanFolder - FolderPath input is not a folder");
    return removeFolderRecursif(path, 0, false);
}

QvResult removeFolderRecursif(const qvUtf8String& path, int depth, bool removeSelf) {
    if (depth >= kMaxRemoveDepth) return QvResult("removeFolderRecursif - Max Depth Reached");
    std::vector<qvUtf8String> entries;
    readDirectory(path, entries, false);
    for (const qvUtf8String& entry : entries) {
        // A link to a folder is removed as a link: following it would empty a
        // folder that lies outside the one being cleaned.
        const QvResult result = qvUtf8Path::IsFolder(entry) && !isSymbolicLink(entry)
                                    ? removeFolderRecursif(entry, depth + 1, true)
                                    : removeFileIfExists(entry);
        if (result.hasError) return result;
    }
    if (removeSelf) return removeFolderIfExists(path);
    return QvResult();
}

void setRenameFunction(RenameFunction rename) { renameFunction().store(rename); }

}  // namespace qvFileSystem
