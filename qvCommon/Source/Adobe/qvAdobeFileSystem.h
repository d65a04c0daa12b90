#pragma once
// Where the hosts keep their own crash reports, plug-in loading logs, panel
// logs and preferences, for a support archive. Each operation answers a map
// from the label a file gets inside the archive to its path; what does not
// exist is left out, and without a home folder every map is empty.

#include "Adobe/qvHost.h"
#include "String/qvUtf8String.h"

#include <map>

using QvLabelledPaths = std::map<qvUtf8String, qvUtf8String>;

class qvAdobeFileSystem {
public:
    // "All" for the system's diagnostic reports, then per host version the
    // crash reporter's completed ("<v>") and pending ("<v>/latest") folders.
    static QvLabelledPaths getAdobeCrashFolderPath(QV_APP_ENUM app);
    // "Plugin Loading.log" of each host version, labelled by the version.
    static QvLabelledPaths getAdobePluginLoadingFilePath(QV_APP_ENUM app);
    // The panel log, "CEP11"; Premiere Pro and After Effects only.
    static QvLabelledPaths getAdobePanelLogsPath(QV_APP_ENUM app);
    // After Effects keeps its preferences in the application data, Premiere Pro
    // and Media Encoder in the documents; other hosts have none here.
    static QvLabelledPaths getPreferencesFile(QV_APP_ENUM app);
    static QvLabelledPaths getPreferencesFileInAppData(QV_APP_ENUM app);
    static QvLabelledPaths getPreferencesFileInDocuments(QV_APP_ENUM app);
};
