#include "_qvBRAW_Importer/Utils.h"

#include "Adobe/qvAdobePPro.h"
#include "Common/TW_Debug_Options.h"
#include "Common/twCheckInstallFolder.h"
#include "Common/twDeployment.h"
#include "Common/twUtils.h"
#include "FileSystem/qvFileSystem.h"
#include "String/qvString.h"
#include "Utils/qvLogging.h"
#include "Utils/qvUtils.h"

#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <exception>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

// The error suite for one message, released when the message is out.
class ScopedErrorSuite {
public:
    explicit ScopedErrorSuite(const imStdParms* stdParms) : m_basic(TWI_GetBasicSuite(stdParms)) {
        if (!m_basic) return;
        const void* suite = nullptr;
        if (m_basic->AcquireSuite(kPrSDKErrorSuite, kPrSDKErrorSuiteVersion3, &suite) == kSPNoError) {
            m_acquired = true;
            m_suite = static_cast<const PrSDKErrorSuite3*>(suite);
        }
    }
    ~ScopedErrorSuite() {
        if (m_acquired) m_basic->ReleaseSuite(kPrSDKErrorSuite, kPrSDKErrorSuiteVersion3);
    }
    ScopedErrorSuite(const ScopedErrorSuite&) = delete;
    ScopedErrorSuite& operator=(const ScopedErrorSuite&) = delete;

    const PrSDKErrorSuite3* get() const { return m_suite; }

private:
    SPBasicSuite* m_basic;
    bool m_acquired = false;
    const PrSDKErrorSuite3* m_suite = nullptr;
};

constexpr size_t kMessageUnits = 256;

// The install checks under way. They run on their own thread, yet imShutdown
// lets them finish and then joins them: after it nothing of this importer runs
// on the host's behalf. Waiting for the check's end alone is not enough: its
// thread still has to wind down, at the lowest priority, and a host that exits
// right away would tear the module down under it.
class InstallCheckTracker {
public:
    void started() {
        std::lock_guard<std::mutex> lock(m_mutex);
        ++m_running;
    }
    void finished() {
        std::lock_guard<std::mutex> lock(m_mutex);
        --m_running;
        m_done.notify_all();
    }
    void adopt(std::thread&& thread) {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_threads.push_back(std::move(thread));
    }
    void waitForAll() {
        std::vector<std::thread> threads;
        {
            std::unique_lock<std::mutex> lock(m_mutex);
            m_done.wait(lock, [this] { return m_running == 0; });
            threads.swap(m_threads);
        }
        for (std::thread& thread : threads) thread.join();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_done;
    int m_running = 0;
    std::vector<std::thread> m_threads;
};

// Never destroyed: a check may still be finishing while the process exits.
InstallCheckTracker& installChecks() {
    static InstallCheckTracker* s_tracker = new InstallCheckTracker();
    return *s_tracker;
}

}  // namespace

SPBasicSuite* TWI_GetBasicSuite(const imStdParms* stdParms) {
    if (!stdParms || !stdParms->piSuites || !stdParms->piSuites->utilFuncs ||
        !stdParms->piSuites->utilFuncs->getSPBasicSuite) {
        return nullptr;
    }
    return stdParms->piSuites->utilFuncs->getSPBasicSuite();
}

QvResult getHostAndVersion(imStdParms* stdParms, QV_APP_ENUM& app, QvVersion& version) {
    SPBasicSuite* basic = TWI_GetBasicSuite(stdParms);
    if (!basic) return QvResult("Impossible to get BasicSuite");
    const void* suite = nullptr;
    if (basic->AcquireSuite(kPrSDKAppInfoSuite, kPrSDKAppInfoSuiteVersion, &suite) != kSPNoError || !suite) {
        return QvResult("Impossible to get AppInfoSuite");
    }
    const auto* appInfo = static_cast<const PrSDKAppInfoSuite*>(suite);
    QvResult result;
    csSDK_uint32 fourCC = 0;
    if (appInfo->GetAppInfo(PrSDKAppInfoSuite::kAppInfo_AppFourCC, &fourCC) != suiteError_NoError) {
        result = QvResult("Impossible to get AppFourCC from AppVersionSuite");
    } else {
        app = getAppEnumFromAppFour(fourCC);
        PrSDKAppInfoSuite::VersionInfo info{};
        if (appInfo->GetAppInfo(PrSDKAppInfoSuite::kAppInfo_Version, &info) != suiteError_NoError) {
            result = QvResult("Impossible to get Version from AppVersionSuite");
        } else {
            version = QvVersion(static_cast<uint8_t>(info.major), static_cast<uint8_t>(info.minor),
                                static_cast<uint8_t>(info.patch), 0);
        }
    }
    basic->ReleaseSuite(kPrSDKAppInfoSuite, kPrSDKAppInfoSuiteVersion);
    return result;
}

PXC_HOST GetHostPP_(PrSDKAppInfoSuite* appInfoSuite) {
    if (!appInfoSuite) return PXC_HOST_UNKNOWN;
    csSDK_uint32 fourCC = 0;
    if (appInfoSuite->GetAppInfo(PrSDKAppInfoSuite::kAppInfo_AppFourCC, &fourCC) != suiteError_NoError) {
        return PXC_HOST_UNKNOWN;
    }
    switch (fourCC) {
        case kAppMediaEncoder: return PXC_HOST_AME;
        case kAppPremierePro:
        case kAppPremiereElements: return PXC_HOST_PPRO;
        case kAppAfterEffects: return PXC_HOST_AE;
        default: return PXC_HOST_UNKNOWN;
    }
}

void activateLogsIfNeeded(imStdParms* stdParms) {
    if (debugOptions.loggingLevel == QV_LOG_DESACTIVATED) {
        g_logger.desactivateFileLogging();
        return;
    }
    QV_APP_ENUM app;
    QvVersion version;
    getHostAndVersion(stdParms, app, version);
    const qvUtf8String fileName = qvUtf8String("Tarnwick_Importer_") + app.toString() + ".log";
    // Level 2 whatever the option says below 5: the option only switches.
    g_logger.activateFileLogging(QV_LOG_INFO, fileName, app, version, twUtils::getFilesOrFolderToAddInLogZip, true);
    QV_LOG(QV_LOG_INFO, debugOptions.to_string());
}

void UpdateLogs(imStdParms* stdParms, bool displayInstallProblem) {
    activateLogsIfNeeded(stdParms);
    if (!displayInstallProblem && !g_logger.isLoggingActivated(QV_LOG_INFO)) return;
    installChecks().started();
    std::thread check;
    try {
        check = std::thread([stdParms, displayInstallProblem] {
            checkInstallFolderPPro(stdParms, displayInstallProblem);
            installChecks().finished();
        });
    } catch (...) {
        installChecks().finished();
        throw;
    }
    const QvResult priority = qvUtils::setThreadLowPriority(check);
    if (priority.hasError) {
        QV_LOG(QV_LOG_ERR, "Error when setting CheckInstallFolder priority " << priority.toString());
    } else if (priority.message[0] != '\0') {
        QV_LOG(QV_LOG_INFO, "Setting CheckInstallFolder priority : " << priority.toString());
    }
    installChecks().adopt(std::move(check));
}

void TWI_WaitForInstallChecks() { installChecks().waitForAll(); }

void checkInstallFolderPPro(imStdParms* stdParms, bool displayInstallProblem) {
    try {
        QV_LOG_LVL level = QV_LOG_INFO;
        qvUtf8String report;
        qvUtf8String details;
        const QvResult result = twCheckInstall::checkInstallFolder(level, report, details);
        if (result.hasError) {
            QV_LOG(QV_LOG_ERR, "Error in CheckInstallFolder : " << result.toString());
            return;
        }
        QV_LOG(level, details);
        if (displayInstallProblem && level == QV_LOG_ERR) {
            ScopedErrorSuite errorSuite(stdParms);
            // The whole sentence stands in the title, within the title's limit.
            displayMsgToTheUserFromSuite(errorSuite.get(),
                                         "Tarnwick plugins aren't installed correctly, please try to re-install, or "
                                         "get a more precise diagnostic with the Tarnwick Desktop application.",
                                         qvUtf8String(), 3, false);
        }
    } catch (const std::exception& error) {
        QV_LOG(QV_LOG_ERR, "Error happened while checking Install folder" << error.what());
    } catch (...) {
        QV_LOG(QV_LOG_ERR, "Unknown Error happened while checking Install folder");
    }
}

qvUtf8String getBugReportText() {
    return qvUtf8String("Please send us a bug report ! ") + twDeployment::bugReportUrl() +
           " You can contact us at " + twDeployment::supportEmail();
}

void displayMsgToTheUser(const imStdParms* stdParms, const qvUtf8String& title, const qvUtf8String& text,
                         unsigned severity, bool addBugReportText) {
    ScopedErrorSuite errorSuite(stdParms);
    if (errorSuite.get()) displayMsgToTheUserFromSuite(errorSuite.get(), title, text, severity, addBugReportText);
}

void displayMsgToTheUserFromSuite(const PrSDKErrorSuite3* errorSuite, const qvUtf8String& title,
                                  const qvUtf8String& text, unsigned severity, bool addBugReportText) {
    if (!errorSuite || !errorSuite->SetEventStringUnicode) return;
    const qvUtf8String fullTitle = qvUtf8String("BRAW - ") + title;
    const qvUtf8String fullText = addBugReportText ? text + " - " + getBugReportText() : text;
    std::vector<char16_t> titleUnits = qvString::WstringToUtf16z(fullTitle.ToWstring(), kMessageUnits);
    std::vector<char16_t> textUnits = qvString::WstringToUtf16z(fullText.ToWstring(), kMessageUnits);
    errorSuite->SetEventStringUnicode(severity, reinterpret_cast<prUTF16Char*>(titleUnits.data()),
                                      reinterpret_cast<prUTF16Char*>(textUnits.data()));
}

void LogsTestsOnFile(const unsigned short* utf16Path, size_t size) {
    std::u16string units;
    if (utf16Path) {
        for (size_t i = 0; i < size && utf16Path[i] != 0; ++i) units.push_back(static_cast<char16_t>(utf16Path[i]));
    }
    const qvUtf8String path(units);
    const char* const yesNo[] = {"False", "True"};
    QV_LOG(QV_LOG_INFO, "Filepath Test :");
    QV_LOG(QV_LOG_INFO, "  - Filepath : " << path);
    QV_LOG(QV_LOG_INFO, "  - Exists : " << yesNo[qvFileSystem::doesFilepathExist(path)]);
    QV_LOG(QV_LOG_INFO, "  - Readable : " << yesNo[qvFileSystem::isFileReadable(path)]);
    FILE* file = qvFileSystem::openFile(path, "rb");
    if (!file) {
        const int error = errno;
        QV_LOG(QV_LOG_WARN, "  - Test wfopen : #" << error << " - " << strerror(error));
        return;
    }
    QV_LOG(QV_LOG_INFO, "  - Test wfopen : OK");
    if (fclose(file) != 0) QV_LOG(QV_LOG_INFO, "  - File wasn't properly closed !");
}

qvUtf8String TWI_CompanionPath(const qvUtf8String& clipPath, const char* extension) {
    const size_t length = clipPath.Length();
    const qvUtf8String stem = length > 4 ? clipPath.Substr(0, length - 4) : qvUtf8String();
    return stem + extension;
}

qvUtf8String TWI_PathFromUtf16(const void* utf16Path, size_t maxUnits) {
    std::u16string units;
    if (utf16Path) {
        const auto* bytes = static_cast<const unsigned char*>(utf16Path);
        for (size_t i = 0; i < maxUnits; ++i) {
            const char16_t unit = static_cast<char16_t>(bytes[2 * i] | (bytes[2 * i + 1] << 8));
            if (unit == 0) break;
            units.push_back(unit);
        }
    }
    return qvUtf8String(qvString::Utf16ToWstring(units));
}
