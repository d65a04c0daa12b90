#include "Utils/qvLogging.h"

#include "Config/qvConfig.h"
#include "FileSystem/qvFileSystem.h"
#include "FileSystem/qvUtf8Path.h"
#include "Platform/qvPlatformThread.h"
#include "Utils/qvMutex.h"
#include "Utils/qvSystemInfos.h"
#include "Utils/qvUtils.h"
#include "Utils/qvVersion.h"

#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

// Both are built before any other file's globals: a log statement anywhere must
// find the logger constructed (and off).
const std::vector<qvUtf8String> QvLogging::loggingLevelStr __attribute__((init_priority(1000))) = {
    qvUtf8String("TRACE"), qvUtf8String("DEBUG"), qvUtf8String("INFO"),
    qvUtf8String("WARN"),  qvUtf8String("ERR"),   qvUtf8String("DESACTIVATED")};

QvLogging g_logger __attribute__((init_priority(1001)));

namespace {

const char kRule[] = "--------------------------------------------------------------------\n";

int64_t steadyNowNano() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// Holds the logger's file lock for a scope, honouring ioLockDisabled.
class IoGuard {
public:
    explicit IoGuard(QvLogging& logger) : m_logger(logger) { m_logger.ioLock(); }
    ~IoGuard() { m_logger.ioUnlock(); }
    IoGuard(const IoGuard&) = delete;
    IoGuard& operator=(const IoGuard&) = delete;

private:
    QvLogging& m_logger;
};

const char* architectureWord() {
#if defined(__aarch64__) || defined(__arm64__)
    return "M1";
#else
    return "Intel";
#endif
}

}  // namespace

QvLogging::QvLogging() = default;
QvLogging::~QvLogging() = default;

QvResult QvLogging::activateFileLogging(QV_LOG_LVL level, const qvUtf8String& fileName, QV_APP_ENUM inApp,
                                        const QvVersion& version, QvLogZipCollector collector,
                                        bool forceNewSession) {
    return activateFileLogging(level, fileName, inApp, version.toString(), std::move(collector), forceNewSession);
}

QvResult QvLogging::activateFileLogging(QV_LOG_LVL level, const qvUtf8String& fileName, QV_APP_ENUM inApp,
                                        const qvUtf8String& version, QvLogZipCollector collector,
                                        bool forceNewSession) {
    qvUtf8String folder;
    QvResult res = getLogFolder(folder);
    // Without a folder the joined path would point at the root of the disk.
    if (res.hasError) return res;
    const qvUtf8String path = qvUtf8Path::Join(folder, fileName, qvUtf8Path::STYLE_MIXED);
    {
        IoGuard guard(*this);
        logFilePath = path;
    }

    app = inApp;
    logZipCollector.swap(collector);
    fileLoggingOn.store(true, std::memory_order_relaxed);
    minLevel.store(level, std::memory_order_relaxed);

    if (forceNewSession || !qvUtf8Path::Exists(path)) {
        writeLogHeader(inApp.toString() + " " + version);
    }
    startTime.store(steadyNowNano(), std::memory_order_relaxed);
    return QvResult();
}

void QvLogging::desactivateFileLogging() {
    fileLoggingOn.store(false, std::memory_order_relaxed);
    minLevel.store(QV_LOG_DESACTIVATED, std::memory_order_relaxed);
}

void QvLogging::log(const qvUtf8String& message, QV_LOG_LVL level, const char* sourceFile,
                    const char* functionName) {
    if (!isLoggingActivated(level)) return;
    try {
        std::string line = getPrefix(level, sourceFile).Str();
        line += functionName ? functionName : "";
        line += '|';
        line += message.Str();
        line += '\n';
        const qvUtf8String finished(line);
        if (fileLoggingOn.load(std::memory_order_relaxed) && !fileLoggingSuspended) logToFile(finished);
        if (consoleLoggingOn) logToVisualConsole(finished);
    } catch (...) {
        // A line that cannot be built (memory exhausted) is lost, never the caller.
    }
}

qvUtf8String QvLogging::getPrefix(QV_LOG_LVL level, const char* sourceFile) const {
    std::string prefix = getElapsedTimeStr().Str();
    prefix += '|';
    if (level >= 0 && static_cast<size_t>(level) < loggingLevelStr.size()) {
        prefix += loggingLevelStr[static_cast<size_t>(level)].Str();
    } else {
        prefix += std::to_string(static_cast<int>(level));
    }
    prefix += '|';
    prefix += GetCurrentThreadIdStr().Str();
    prefix += '|';
    prefix += GetPathFilename(qvUtf8String(sourceFile ? sourceFile : "")).Str();
    prefix += "| ";
    return qvUtf8String(prefix);
}

qvUtf8String QvLogging::getElapsedTimeStr() const {
    const int64_t elapsedNano = steadyNowNano() - startTime.load(std::memory_order_relaxed);
    return qvUtf8String(std::to_string(elapsedNano / 1000));
}

void QvLogging::logToFile(const qvUtf8String& line) {
    IoGuard guard(*this);
    FILE* file = std::fopen(logFilePath.c_str(), "ab");
    if (!file) return;
    std::fwrite(line.c_str(), 1, line.Size(), file);
    std::fclose(file);
}

void QvLogging::logToVisualConsole(const qvUtf8String& line) {
    std::fwrite(line.c_str(), 1, line.Size(), stdout);
    std::fflush(stdout);
}

qvUtf8String QvLogging::getLogFilePath() {
    IoGuard guard(*this);
    return logFilePath;
}

QvResult QvLogging::getLogFolder(qvUtf8String& out) {
    // The folder is kept for the process, but one that was removed since (the
    // user emptied the application data, or the home folder changed) would
    // swallow every later line: it is then made again as the first time.
    if (!logFolder.Empty() && qvFileSystem::isFolderPath(logFolder)) {
        out = logFolder;
        return QvResult();
    }
    logFolder.Clear();
    QV_LOG(QV_LOG_INFO, "Log folder not set yet");
    qvUtf8String folder;
    QvResult res = qvFileSystem::getOrCreateProductLogFolder(folder, g_config.logSubfolder);
    if (res.hasError) {
        QV_LOG(QV_LOG_ERR, res.toString());
        out.Clear();
        return res;
    }
    QV_LOG(QV_LOG_INFO, "Log folder exists now");
    logFolder = folder;
    out = folder;
    return res;
}

QvResult QvLogging::getFinalLogFolder(qvUtf8String& out) {
    qvUtf8String appData;
    QvResult res = qvFileSystem::getOrCreateProductAppDataFolder(appData);
    if (res.hasError) {
        out.Clear();
        QV_LOG(QV_LOG_ERR, "Impossible to get or Create TW Cache Folder : " << res.toString());
        return res;
    }
    out = appData + qvUtf8Path::GetPathSeparator() + "Final_Zip_To_Send";
    if (qvFileSystem::doesFilepathExist(out)) return QvResult();
    res = qvFileSystem::createDirectory(out);
    if (res.hasError) QV_LOG(QV_LOG_ERR, "Impossible to create Final Log Zip Folder : " << res.toString());
    return res;
}

qvUtf8String QvLogging::getOldSessionFilepathFromCurrentOne(const qvUtf8String& path) {
    const size_t length = path.Length();
    qvUtf8String old = length > 4 ? path.Substr(0, length - 4) : qvUtf8String();
    old += "_lastSession.log";
    return old;
}

void QvLogging::writeLogHeader(const qvUtf8String& hostAndVersion) {
    if (fileLoggingSuspended) return;
    IoGuard guard(*this);
    try {
        if (qvUtf8Path::Exists(logFilePath)) {
            const qvUtf8String old = getOldSessionFilepathFromCurrentOne(logFilePath);
            qvFileSystem::removeFileIfExists(old);
            qvFileSystem::moveFile(logFilePath, old);
        }
        headerStream.reset(new std::ofstream(logFilePath.c_str(), std::ios::out | std::ios::trunc | std::ios::binary));
    } catch (...) {
        headerStream.reset();
        return;
    }
    std::ofstream& out = *headerStream;
    out << kRule;
    try {
        out << "Log creation DateTime : " << qvUtils::getCurrentDateTimeStr(0).Str() << "\n";
        out << "Host and version : " << hostAndVersion.Str() << "\n";
        out << g_config.productName << " version " << g_config.version.toString().Str() << " - BUILD "
            << g_config.buildNumber << "\n";
        getAllSystemInfo(out);
    } catch (...) {
        out << "!! Stopped : Error happened !!\n";
    }
    out << kRule;
    out.close();
    headerStream.reset();
}

void QvLogging::getAllSystemInfo(std::ostream& stream) {
    stream << "Architecture : " << architectureWord() << "\n";
    stream << "Hardware informations : \n";
    getSystemInfos(stream);
    getOSVersion(stream);
    getRamInformations(stream);
}

qvUtf8String QvLogging::GetCurrentThreadIdStr() {
    std::string id = std::to_string(qvPlatform::CurrentKernelThreadId());
    if (id.size() < 5) id.append(5 - id.size(), ' ');
    return qvUtf8String(id);
}

qvUtf8String QvLogging::GetPathFilename(const qvUtf8String& path) {
    // "/" and "." never occur inside a multi-byte sequence: byte search is safe.
    std::string stem = path.Str();
    const size_t slash = stem.rfind('/');
    if (slash != std::string::npos) stem.erase(0, slash + 1);
    const size_t dot = stem.rfind('.');
    if (dot != std::string::npos) stem.erase(dot);
    qvUtf8String field(stem);
    if (field.Size() >= 16) return field.Substr(0, 15);
    stem.append(15 - stem.size(), ' ');
    return qvUtf8String(stem);
}

qvUtf8String QvLogging::GetCurrentLCPUIdStr() { return qvUtf8String("~"); }

void QvLogging::LogCurrentProcessAffinity() {}

void QvLogging::ioLock() {
    if (!ioLockDisabled) ioMutex.lock();
}

void QvLogging::ioUnlock() {
    if (!ioLockDisabled) ioMutex.unlock();
}

namespace {

template <typename Mutex>
void lockTracedWait(Mutex& mutex, const char* expression, const char* sourceFile, const char* functionName,
                    void (*lockIt)(Mutex&)) {
    const uintptr_t address = reinterpret_cast<uintptr_t>(&mutex);
    if (g_logger.isLoggingActivated(QV_LOG_INFO)) {
        std::ostringstream text;
        text << " MU" << address << " No try_lock " << expression << " Will wait for it !";
        g_logger.log(text.str(), QV_LOG_INFO, sourceFile, functionName);
    }
    const auto before = std::chrono::steady_clock::now();
    lockIt(mutex);
    const auto after = std::chrono::steady_clock::now();
    if (g_logger.isLoggingActivated(QV_LOG_INFO)) {
        std::ostringstream text;
        text << " MU" << address << " " << expression << " lock dt "
             << std::chrono::duration_cast<std::chrono::microseconds>(after - before).count() << " us";
        g_logger.log(text.str(), QV_LOG_INFO, sourceFile, functionName);
    }
}

}  // namespace

void qvLockTracedWait(qvMutex& mutex, const char* expression, const char* sourceFile, const char* functionName) {
    lockTracedWait<qvMutex>(mutex, expression, sourceFile, functionName, [](qvMutex& m) { m.lock(""); });
}

void qvLockTracedWait(std::mutex& mutex, const char* expression, const char* sourceFile, const char* functionName) {
    lockTracedWait<std::mutex>(mutex, expression, sourceFile, functionName, [](std::mutex& m) { m.lock(); });
}

namespace {

qvUtf8String formatWide(const wchar_t* format, va_list args) {
    char narrowFormat[1024] = {0};
    if (!format) return qvUtf8String();
    const size_t converted = std::wcstombs(narrowFormat, format, sizeof(narrowFormat) - 1);
    if (converted == static_cast<size_t>(-1)) return qvUtf8String();
    narrowFormat[sizeof(narrowFormat) - 1] = '\0';
    char result[1024] = {0};
#if defined(__clang__) || defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#endif
    const int written = std::vsnprintf(result, sizeof(result), narrowFormat, args);
#if defined(__clang__) || defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
    if (written < 0) return qvUtf8String();
    return qvUtf8String(result);
}

}  // namespace

qvUtf8String VariadicToQvString(const wchar_t* format, ...) {
    va_list args;
    va_start(args, format);
    qvUtf8String text = formatWide(format, args);
    va_end(args);
    return text;
}

qvUtf8String OutputLog(const wchar_t* format, ...) {
    va_list args;
    va_start(args, format);
    qvUtf8String text = formatWide(format, args);
    va_end(args);
    std::fputs(text.c_str(), stdout);
    std::fputs("\n", stdout);
    return text;
}

qvUtf8String OutputLog(const qvUtf8String& text) {
    std::fputs(text.c_str(), stdout);
    std::fputs("\n", stdout);
    return text;
}

qvUtf8String OutputLogIfDevMode(const wchar_t* format, ...) { return qvUtf8String(); }
