#include "Common/twUtils.h"

#include "Adobe/qvAdobeFileSystem.h"
#include "Common/twDeployment.h"
#include "Config/qvConfig.h"
#include "FileSystem/qvFileSystem.h"
#include "FileSystem/qvUtf8Path.h"
#include "Utils/qvLogging.h"

namespace twUtils {

namespace {

constexpr char kOldPresetFolder[] = "TW_Preset";
constexpr char kOldCacheFolder[] = "TW_CACHE";
constexpr char kOldLogFolder[] = "Logs/";

}  // namespace

void initQvCommon() {
    g_config.version = QvVersion(3, 3, 9, 0);
    g_config.buildNumber = 610;
    g_config.productName = "Tarnwick";
    g_config.supportEmail = twDeployment::supportEmail();
    g_config.productId = "Tarnwick";
    g_config.productUrl = twDeployment::productPageUrl();
    g_config.productFolderName = "Tarnwick";
    g_config.iniFileName = "Tarnwick_options.ini";
    g_config.cmdFileName = "Tarnwick_CmdFile.txt";
    g_config.logSubfolder = qvUtf8String();
}

QvResult getOrCreateTWPresetFolder(qvUtf8String& out) {
    qvUtf8String productFolder;
    QvResult res = qvFileSystem::getOrCreateProductAppDataFolder(productFolder);
    if (res.hasError) return res;
    out = productFolder + "/" + "TW_Preset";
    return qvFileSystem::createDirectory(out);
}

QvResult transferOldIniOptionsFile() {
    QvResult result;
    qvUtf8String makerFolder;
    qvUtf8String newPath;
    result = qvFileSystem::getOrCreateQVAppDataFolder(makerFolder);
    // Getting the new path creates an empty file there when there is none, so
    // from here on the new file always exists.
    if (!result.hasError) result = qvFileSystem::getIniFilepath(newPath);
    if (!result.hasError) {
        const qvUtf8String oldPath = makerFolder + "/" + g_config.iniFileName;
        if (!qvFileSystem::doesFilepathExist(oldPath)) return QvResult();
        QV_LOG(QV_LOG_INFO, "Old Ini file path exists at " << oldPath
                                << " : we need to move it to its new location at : " << newPath);
        if (qvFileSystem::doesFilepathExist(newPath)) {
            QV_LOG(QV_LOG_INFO, "New Ini file also exists - so we just remove the old ini file actually");
            // rmdir refuses a file: the old file stays, and that is no failure.
            if (!qvFileSystem::removeFolderIfExists(oldPath).hasError) {
                QV_LOG(QV_LOG_INFO, "Old Ini file removed with success");
            }
            return QvResult();
        }
        result = qvFileSystem::moveFile(oldPath, newPath);
        if (!result.hasError) {
            QV_LOG(QV_LOG_INFO, "Ini File moved with success");
            return result;
        }
    }
    QV_LOG(QV_LOG_ERR,
           "Something got wrong when trying to transfer Ini File from Old path to New Path : " << result.toString());
    return result;
}

QvResult transferOldPresetFolder() {
    QvResult result;
    qvUtf8String makerFolder;
    qvUtf8String newPath;
    result = qvFileSystem::getOrCreateQVAppDataFolder(makerFolder);
    if (!result.hasError) result = getOrCreateTWPresetFolder(newPath);
    if (!result.hasError) {
        const qvUtf8String oldPath = makerFolder + "/" + kOldPresetFolder;
        if (!qvFileSystem::doesFilepathExist(oldPath)) return QvResult();
        QV_LOG(QV_LOG_INFO, "Old Preset folder path exists at " << oldPath
                                << " : we need to move it to its new location at : " << newPath);
        if (qvFileSystem::doesFilepathExist(newPath)) {
            QV_LOG(QV_LOG_INFO, "New Presets folder also exists - so we just remove the old folder actually");
            // Only an empty old folder goes; one with presets in it stays put.
            if (!qvFileSystem::removeFolderIfExists(oldPath).hasError) {
                QV_LOG(QV_LOG_INFO, "Old Preset Folder removed with success");
            }
            return QvResult();
        }
        result = qvFileSystem::moveFolder(oldPath, newPath);
        if (!result.hasError) {
            QV_LOG(QV_LOG_INFO, "Preset Folder moved with success");
            return result;
        }
    }
    QV_LOG(QV_LOG_ERR, "Something got wrong when trying to transfer Preset Folder from Old path to New Path : "
                           << result.toString());
    return result;
}

void deleteOldFolders() {
    qvUtf8String makerFolder;
    const QvResult result = qvFileSystem::getOrCreateQVAppDataFolder(makerFolder);
    if (result.hasError) {
        QV_LOG(QV_LOG_ERR,
               "Folder Transition : Something got wrong when trying to get QV AppData Folder : " << result.toString());
        return;
    }
    const qvUtf8String oldCache = makerFolder + "/" + kOldCacheFolder;
    const qvUtf8String oldLogs = makerFolder + "/" + kOldLogFolder;

    // The texts of the two removals are crossed, and the second announcement
    // names the cache folder: support reads the logs with these very words.
    if (qvFileSystem::doesFilepathExist(oldCache)) {
        QV_LOG(QV_LOG_INFO, "Folder Transition : Folder exists and must be deleted : " << oldCache);
        const QvResult removed = qvFileSystem::removeFolderIfExists(oldCache);
        if (removed.hasError) {
            QV_LOG(QV_LOG_ERR, "Folder Transition : Impossible to remove Log folder : " << removed.toString());
        } else {
            QV_LOG(QV_LOG_INFO, "Old Log folder removed");
        }
    }
    if (qvFileSystem::doesFilepathExist(oldLogs)) {
        QV_LOG(QV_LOG_INFO, "Folder Transition : Folder exists and must be deleted : " << oldCache);
        const QvResult removed = qvFileSystem::removeFolderIfExists(oldLogs);
        if (removed.hasError) {
            QV_LOG(QV_LOG_ERR, "Folder Transition : Impossible to remove Cache folder : " << removed.toString());
        } else {
            QV_LOG(QV_LOG_INFO, "Old Cache folder removed");
        }
    }
}

std::map<qvUtf8String, std::vector<qvUtf8String>> getFilesOrFolderToAddInLogZip() {
    std::map<qvUtf8String, std::vector<qvUtf8String>> files;
    qvUtf8String presetFolder;
    if (!getOrCreateTWPresetFolder(presetFolder).hasError) files[qvUtf8String()].push_back(presetFolder);

    using Collector = QvLabelledPaths (*)(QV_APP_ENUM);
    const Collector collectors[] = {
        qvAdobeFileSystem::getAdobeCrashFolderPath,
        qvAdobeFileSystem::getAdobePluginLoadingFilePath,
        qvAdobeFileSystem::getAdobePanelLogsPath,
        qvAdobeFileSystem::getPreferencesFile,
    };
    const QV_APP_ENUM hosts[] = {QV_APP_ENUM::QV_APP_PPRO, QV_APP_ENUM::QV_APP_AE, QV_APP_ENUM::QV_APP_AME};
    for (QV_APP_ENUM host : hosts) {
        const qvUtf8String hostText = host.toString();
        for (Collector collect : collectors) {
            for (const auto& labelled : collect(host)) files[hostText + "/" + labelled.first].push_back(labelled.second);
        }
    }
    return files;
}

}  // namespace twUtils
