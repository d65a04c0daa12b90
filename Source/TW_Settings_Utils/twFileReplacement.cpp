#include "TW_Settings_Utils/twFileReplacement.h"

#include "FileSystem/qvFileSystem.h"
#include "Utils/qvLogging.h"

#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace {

std::atomic<unsigned> s_replacementCounter{0};

// A link stays a link: the file it points to is what gets replaced.
qvUtf8String resolveLink(const qvUtf8String& path) {
    struct stat info;
    if (lstat(path.c_str(), &info) != 0 || !S_ISLNK(info.st_mode)) return path;
    char resolved[PATH_MAX];
    if (!realpath(path.c_str(), resolved)) return path;
    return qvUtf8String(resolved);
}

}  // namespace

twFileReplacement::twFileReplacement(const qvUtf8String& path, const qvUtf8String& tag)
    : m_targetPath(resolveLink(path)) {
    qvUtf8String folder = qvFileSystem::getParentFolder(m_targetPath);
    const qvUtf8String prefix = folder.Empty() ? qvUtf8String() : folder + "/";
    // Hidden, and unique per process and call, so that two writers never share one.
    m_tempPath = prefix + "." + qvFileSystem::getFilenameFromPath(m_targetPath, true) + "." + tag + "-" +
                 std::to_string(static_cast<long>(getpid())) + "-" +
                 std::to_string(s_replacementCounter.fetch_add(1)) + ".tmp";
}

twFileReplacement::~twFileReplacement() {
    if (!m_committed) ::unlink(m_tempPath.c_str());
}

QvResult twFileReplacement::commit() {
    struct stat target;
    if (stat(m_targetPath.c_str(), &target) == 0 && S_ISREG(target.st_mode)) {
        // A rename would replace a file the user made read-only; writing into
        // it would not, so neither does this.
        if (::access(m_targetPath.c_str(), W_OK) != 0) {
            ::unlink(m_tempPath.c_str());
            m_committed = true;
            QV_LOG(QV_LOG_ERR, "Not replacing " << m_targetPath << " : the file is read-only");
            return QvResult("Impossible to replace " + m_targetPath + " : the file is read-only");
        }
        ::chmod(m_tempPath.c_str(), target.st_mode & 07777);
    }
    if (::rename(m_tempPath.c_str(), m_targetPath.c_str()) != 0) {
        const int error = errno;
        ::unlink(m_tempPath.c_str());
        m_committed = true;
        QV_LOG(QV_LOG_ERR, "Impossible to replace " << m_targetPath << " : " << std::strerror(error));
        return QvResult("Impossible to replace " + m_targetPath + " : " + std::strerror(error));
    }
    m_committed = true;
    return QvResult();
}

QvResult twFileReplacement::replaceWith(const std::string& bytes) {
    const QvResult stored = qvFileSystem::storeFile(m_tempPath, bytes);
    if (stored.hasError) return stored;
    return commit();
}
