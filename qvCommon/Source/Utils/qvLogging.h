#pragma once
// The process log. One logger, `g_logger`; every statement goes through QV_LOG,
// which costs one integer comparison and nothing else while its level is off.
//
// A line reads
//   <elapsed us>|<LEVEL>|<thread, 5 wide>|<file stem, 15 wide>| <function>|<message>
// and is appended to the log file by opening, writing and closing it, so that
// the lines written before a crash of the host survive it.

#include "Adobe/qvHost.h"
#include "String/qvUtf8String.h"
#include "Utils/qvResult.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <vector>

struct QvVersion;
class qvMutex;

// The numbers index QvLogging::loggingLevelStr; the texts are also what the
// options file's "logging" key holds.
enum QV_LOG_LVL : int32_t {
    QV_LOG_TRACE = 0,
    QV_LOG_DEBUG = 1,
    QV_LOG_INFO = 2,
    QV_LOG_WARN = 3,
    QV_LOG_ERR = 4,
    QV_LOG_DESACTIVATED = 5,
};

// Names the files and folders that belong in a support archive, by label.
using QvLogZipCollector = std::function<std::map<qvUtf8String, std::vector<qvUtf8String>>()>;

class QvLogging {
public:
    // "TRACE", "DEBUG", "INFO", "WARN", "ERR", "DESACTIVATED".
    static const std::vector<qvUtf8String> loggingLevelStr;

    QvLogging();
    ~QvLogging();
    QvLogging(const QvLogging&) = delete;
    QvLogging& operator=(const QvLogging&) = delete;

    // Switches file logging on into <log folder>/<fileName>. With
    // `forceNewSession`, or when the file does not exist yet, the previous file
    // becomes "<name>_lastSession.log" and a header starts the new one. Fails,
    // leaving logging as it was, only when no log folder can be had.
    QvResult activateFileLogging(QV_LOG_LVL level, const qvUtf8String& fileName, QV_APP_ENUM app,
                                 const qvUtf8String& version, QvLogZipCollector collector, bool forceNewSession);
    QvResult activateFileLogging(QV_LOG_LVL level, const qvUtf8String& fileName, QV_APP_ENUM app,
                                 const QvVersion& version, QvLogZipCollector collector, bool forceNewSession);
    void desactivateFileLogging();

    bool isLoggingActivated(QV_LOG_LVL level) const {
        return minLevel.load(std::memory_order_relaxed) <= static_cast<int32_t>(level);
    }

    // The one entry of every log statement (use QV_LOG, which tests the level
    // before it builds any text). Never fails towards the caller.
    void log(const qvUtf8String& message, QV_LOG_LVL level, const char* sourceFile, const char* functionName);

    // "<elapsed>|<LEVEL>|<thread>|<file>| "
    qvUtf8String getPrefix(QV_LOG_LVL level, const char* sourceFile) const;
    void logToFile(const qvUtf8String& line);
    void logToVisualConsole(const qvUtf8String& line);
    qvUtf8String getElapsedTimeStr() const;

    QvResult getLogFolder(qvUtf8String& out);
    // <product folder>/Final_Zip_To_Send, created when missing.
    QvResult getFinalLogFolder(qvUtf8String& out);
    void writeLogHeader(const qvUtf8String& hostAndVersion);
    // "x/Name.log" gives "x/Name_lastSession.log".
    static qvUtf8String getOldSessionFilepathFromCurrentOne(const qvUtf8String& path);
    // The machine report of the header, from "Architecture : " on.
    void getAllSystemInfo(std::ostream& stream);

    // The kernel thread id, padded with blanks to 5 characters (never cut).
    static qvUtf8String GetCurrentThreadIdStr();
    // The file's stem (after the last "/", before the last "."), padded with
    // blanks or cut to 15.
    static qvUtf8String GetPathFilename(const qvUtf8String& path);
    static qvUtf8String GetCurrentLCPUIdStr();
    static void LogCurrentProcessAffinity();

    void ioLock();
    void ioUnlock();

    // State, for the code that reports or collects the logs.
    QV_APP_ENUM getApp() const { return app; }
    qvUtf8String getLogFilePath();
    bool isFileLoggingOn() const { return fileLoggingOn.load(std::memory_order_relaxed); }
    QV_LOG_LVL getMinLevel() const { return static_cast<QV_LOG_LVL>(minLevel.load(std::memory_order_relaxed)); }
    const QvLogZipCollector& getLogZipCollector() const { return logZipCollector; }

private:
    QV_APP_ENUM app;
    qvUtf8String logFolder;
    qvUtf8String logFilePath;
    bool ioLockDisabled = false;
    std::mutex ioMutex;
    std::unique_ptr<std::ofstream> headerStream;
    // Read on every log statement of every thread without a lock.
    std::atomic<int32_t> minLevel{QV_LOG_DESACTIVATED};
    std::atomic<bool> fileLoggingOn{false};
    bool fileLoggingSuspended = false;
    bool consoleLoggingOn = false;
    // Steady-clock nanoseconds at which the session started; 0 before the first.
    std::atomic<int64_t> startTime{0};
    QvLogZipCollector logZipCollector;
};

extern QvLogging g_logger;

// A log statement: `QV_LOG(QV_LOG_INFO, "Opening clip " << id << " : " << path);`
// The text is only built, and memory only taken, when the level is on.
#define QV_LOG(level, text)                                                    \
    do {                                                                       \
        if (g_logger.isLoggingActivated(level)) {                              \
            std::ostringstream qvLogStream_;                                   \
            qvLogStream_ << text;                                              \
            g_logger.log(qvLogStream_.str(), (level), __FILE__, __func__);     \
        }                                                                      \
    } while (0)

// Takes `mutex` (a qvMutex or a std::mutex). When it is held elsewhere, logs at
// INFO that the caller waits, and then how long the wait lasted:
//   " MU<address> No try_lock <name> Will wait for it !"
//   " MU<address> <name> lock dt <n> us"
// The name is the mutex as written; QV_LOCK_TRACED_AS gives it another one,
// for the places whose log readers know a lock by a fixed name whatever the
// expression that reaches it ("m_bmClipMutex" through clip->m_bmClipMutex).
// Release with a plain unlock().
#define QV_LOCK_TRACED(mutex) QV_LOCK_TRACED_AS(mutex, #mutex)

#define QV_LOCK_TRACED_AS(mutex, name)                                         \
    do {                                                                       \
        if (!(mutex).try_lock()) {                                             \
            qvLockTracedWait((mutex), (name), __FILE__, __func__);             \
        }                                                                      \
    } while (0)

// The waiting half of QV_LOCK_TRACED.
void qvLockTracedWait(qvMutex& mutex, const char* expression, const char* sourceFile, const char* functionName);
void qvLockTracedWait(std::mutex& mutex, const char* expression, const char* sourceFile, const char* functionName);

// printf-style formatting of a wide format text into at most 1023 bytes.
qvUtf8String VariadicToQvString(const wchar_t* format, ...);
// The same, also printed to standard output with a line end.
qvUtf8String OutputLog(const wchar_t* format, ...);
qvUtf8String OutputLog(const qvUtf8String& text);
// Developer output; silent in this build and returns an empty text.
qvUtf8String OutputLogIfDevMode(const wchar_t* format, ...);
