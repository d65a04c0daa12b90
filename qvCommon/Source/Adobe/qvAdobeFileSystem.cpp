#include "Adobe/qvAdobeFileSystem.h"

#include "FileSystem/qvFileSystem.h"
#include "Utils/qvLogging.h"

#include <exception>
#include <vector>

namespace {

bool homeFolder(qvUtf8String& home) {
    const QvResult result = qvFileSystem::getUserHomeFolder(home);
    if (result.hasError) {
        QV_LOG(QV_LOG_ERR, "Impossible to get user Home folder path : " << result.toString());
        return false;
    }
    return true;
}

std::vector<qvUtf8String> entryNames(const qvUtf8String& folder) {
    std::vector<qvUtf8String> names;
    qvFileSystem::readDirectory(folder, names, true);
    return names;
}

bool existsAndNotEmpty(const qvUtf8String& path) {
    if (!qvFileSystem::doesFilepathExist(path)) return false;
    try {
        return !qvFileSystem::isFolderEmpty(path);
    } catch (const std::exception&) {
        // Gone between the two questions.
        return false;
    }
}

}  // namespace

QvLabelledPaths qvAdobeFileSystem::getAdobeCrashFolderPath(QV_APP_ENUM app) {
    QvLabelledPaths paths;
    qvUtf8String home;
    if (!homeFolder(home)) return paths;
    const qvUtf8String library = home + "/Library";
    if (!qvFileSystem::doesFilepathExist(library)) return paths;

    const qvUtf8String reports = library + "/Logs/DiagnosticReports";
    if (existsAndNotEmpty(reports)) paths[qvUtf8String("All")] = reports;

    const qvUtf8String caches = library + "/Caches/Adobe/" + app.toString();
    if (qvFileSystem::doesFilepathExist(caches)) {
        for (const qvUtf8String& version : entryNames(caches)) {
            const qvUtf8String entry = caches + "/" + version;
            const qvUtf8String completed = entry + "/SentryIO-db/completed";
            if (existsAndNotEmpty(completed)) paths[version] = completed;
            const qvUtf8String pending = entry + "/SentryIO-db/pending";
            if (existsAndNotEmpty(pending)) paths[version + "/latest"] = pending;
        }
    }
    return paths;
}

QvLabelledPaths qvAdobeFileSystem::getAdobePluginLoadingFilePath(QV_APP_ENUM app) {
    QvLabelledPaths paths;
    qvUtf8String home;
    if (!homeFolder(home)) return paths;
    const qvUtf8String support = home + "/Library/Application Support/Adobe/" + app.toString();
    for (const qvUtf8String& version : entryNames(support)) {
        const qvUtf8String log = support + "/" + version + "/" + "Plugin Loading.log";
        if (qvFileSystem::doesFilepathExist(log)) paths[version] = log;
    }
    return paths;
}

QvLabelledPaths qvAdobeFileSystem::getAdobePanelLogsPath(QV_APP_ENUM app) {
    QvLabelledPaths paths;
    const char* fileName = nullptr;
    if (app == QV_APP_ENUM::QV_APP_AE) fileName = "CEP11-AEFT.log";
    if (app == QV_APP_ENUM::QV_APP_PPRO) fileName = "CEP11-PPRO.log";
    if (!fileName) return paths;
    qvUtf8String home;
    if (!homeFolder(home)) return paths;
    // The doubled "Library" stays: the collector has always looked there.
    const qvUtf8String log = home + "/Library/Library/Logs/CSXS" + "/" + fileName;
    if (qvFileSystem::doesFilepathExist(log)) paths[qvUtf8String("CEP11")] = log;
    return paths;
}

QvLabelledPaths qvAdobeFileSystem::getPreferencesFile(QV_APP_ENUM app) {
    switch (static_cast<uint8_t>(app)) {
        case QV_APP_ENUM::QV_APP_AE: return getPreferencesFileInAppData(app);
        case QV_APP_ENUM::QV_APP_PPRO:
        case QV_APP_ENUM::QV_APP_AME: return getPreferencesFileInDocuments(app);
        default: return QvLabelledPaths();
    }
}

QvLabelledPaths qvAdobeFileSystem::getPreferencesFileInAppData(QV_APP_ENUM app) {
    QvLabelledPaths paths;
    qvUtf8String home;
    if (!homeFolder(home)) return paths;
    const qvUtf8String appText = app.toString();
    const qvUtf8String preferences = home + "/Library/Preferences/Adobe/" + appText;
    for (const qvUtf8String& version : entryNames(preferences)) {
        const qvUtf8String file = preferences + "/" + version + "/Adobe " + appText + " " + version + " Prefs.txt";
        if (qvFileSystem::doesFilepathExist(file)) paths[version] = file;
    }
    return paths;
}

QvLabelledPaths qvAdobeFileSystem::getPreferencesFileInDocuments(QV_APP_ENUM app) {
    QvLabelledPaths paths;
    qvUtf8String home;
    if (!homeFolder(home)) return paths;
    const char* fileName =
        app == QV_APP_ENUM::QV_APP_AME ? "Adobe Media Encoder Prefs" : "Adobe Premiere Pro Prefs";
    const qvUtf8String documents = home + "/Documents/Adobe/" + app.toString();
    for (const qvUtf8String& version : entryNames(documents)) {
        const qvUtf8String entry = documents + "/" + version;
        for (const qvUtf8String& profile : entryNames(entry)) {
            const qvUtf8String sub = entry + "/" + profile;
            if (!qvFileSystem::isFolderPath(sub) || profile.Left(7) != "Profile") continue;
            const qvUtf8String file = sub + "/" + fileName;
            if (qvFileSystem::doesFilepathExist(file)) paths[version + "-" + profile] = file;
        }
        const qvUtf8String file = entry + "/" + fileName;
        if (qvFileSystem::doesFilepathExist(file)) paths[version] = file;
    }
    return paths;
}
