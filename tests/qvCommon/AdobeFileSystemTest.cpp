// Where the hosts keep their own files, as labelled for a support archive.

#include "Adobe/qvAdobeFileSystem.h"

#include "TempFolder.h"

#include <gtest/gtest.h>

namespace {

class AdobeFileSystem : public ::testing::Test {
protected:
    std::string home() const { return m_roots.home(); }
    std::string write(const std::string& homeRelative, const std::string& bytes = "x") const {
        return m_roots.folder().writeFile("home/" + homeRelative, bytes);
    }
    std::string folder(const std::string& homeRelative) const {
        return m_roots.folder().makeFolder("home/" + homeRelative);
    }
    static QvLabelledPaths paths(std::initializer_list<std::pair<const char*, std::string>> entries) {
        QvLabelledPaths out;
        for (const auto& entry : entries) out[qvUtf8String(entry.first)] = qvUtf8String(entry.second);
        return out;
    }

    twtest::ScopedTestRoots m_roots;
};

const QV_APP_ENUM kPPro(QV_APP_ENUM::QV_APP_PPRO);
const QV_APP_ENUM kAE(QV_APP_ENUM::QV_APP_AE);
const QV_APP_ENUM kAME(QV_APP_ENUM::QV_APP_AME);

}  // namespace

TEST_F(AdobeFileSystem, EmptyHomeGivesEmptyMaps) {
    for (QV_APP_ENUM app : {kPPro, kAE, kAME, QV_APP_ENUM(QV_APP_ENUM::QV_APP_DESKTOP)}) {
        EXPECT_TRUE(qvAdobeFileSystem::getAdobeCrashFolderPath(app).empty());
        EXPECT_TRUE(qvAdobeFileSystem::getAdobePluginLoadingFilePath(app).empty());
        EXPECT_TRUE(qvAdobeFileSystem::getAdobePanelLogsPath(app).empty());
        EXPECT_TRUE(qvAdobeFileSystem::getPreferencesFile(app).empty());
    }
}

TEST_F(AdobeFileSystem, CrashReportsNeedContent) {
    folder("Library/Logs/DiagnosticReports");
    folder("Library/Caches/Adobe/Premiere Pro/23.0/SentryIO-db/completed");
    write("Library/Caches/Adobe/Premiere Pro/24.0/SentryIO-db/completed/report");
    write("Library/Caches/Adobe/Premiere Pro/24.0/SentryIO-db/pending/report");
    write("Library/Caches/Adobe/Adobe Media Encoder/24.0/SentryIO-db/pending/report");
    const std::string caches = home() + "/Library/Caches/Adobe/";
    EXPECT_EQ(qvAdobeFileSystem::getAdobeCrashFolderPath(kPPro),
              paths({{"24.0", caches + "Premiere Pro/24.0/SentryIO-db/completed"},
                     {"24.0/latest", caches + "Premiere Pro/24.0/SentryIO-db/pending"}}));
    EXPECT_EQ(qvAdobeFileSystem::getAdobeCrashFolderPath(kAME),
              paths({{"24.0/latest", caches + "Adobe Media Encoder/24.0/SentryIO-db/pending"}}));

    write("Library/Logs/DiagnosticReports/host.crash");
    EXPECT_EQ(qvAdobeFileSystem::getAdobeCrashFolderPath(kAE),
              paths({{"All", home() + "/Library/Logs/DiagnosticReports"}}));
}

TEST_F(AdobeFileSystem, PluginLoadingLogsAndPanelLogs) {
    write("Library/Application Support/Adobe/Premiere Pro/24.0/Plugin Loading.log");
    folder("Library/Application Support/Adobe/Premiere Pro/23.0");
    EXPECT_EQ(qvAdobeFileSystem::getAdobePluginLoadingFilePath(kPPro),
              paths({{"24.0", home() + "/Library/Application Support/Adobe/Premiere Pro/24.0/Plugin Loading.log"}}));

    // Where a panel log usually lies is not where it is looked for.
    write("Library/Logs/CSXS/CEP11-PPRO.log");
    EXPECT_TRUE(qvAdobeFileSystem::getAdobePanelLogsPath(kPPro).empty());
    write("Library/Library/Logs/CSXS/CEP11-PPRO.log");
    write("Library/Library/Logs/CSXS/CEP11-AEFT.log");
    EXPECT_EQ(qvAdobeFileSystem::getAdobePanelLogsPath(kPPro),
              paths({{"CEP11", home() + "/Library/Library/Logs/CSXS/CEP11-PPRO.log"}}));
    EXPECT_EQ(qvAdobeFileSystem::getAdobePanelLogsPath(kAE),
              paths({{"CEP11", home() + "/Library/Library/Logs/CSXS/CEP11-AEFT.log"}}));
    EXPECT_TRUE(qvAdobeFileSystem::getAdobePanelLogsPath(kAME).empty());
}

TEST_F(AdobeFileSystem, PreferencesLieInTheApplicationDataOrTheDocumentsByHost) {
    write("Library/Preferences/Adobe/After Effects/24.0/Adobe After Effects 24.0 Prefs.txt");
    folder("Library/Preferences/Adobe/After Effects/23.0");
    EXPECT_EQ(qvAdobeFileSystem::getPreferencesFile(kAE),
              paths({{"24.0", home() + "/Library/Preferences/Adobe/After Effects/24.0/Adobe After Effects 24.0 Prefs.txt"}}));

    const std::string ppro = home() + "/Documents/Adobe/Premiere Pro/24.0";
    write("Documents/Adobe/Premiere Pro/24.0/Adobe Premiere Pro Prefs");
    write("Documents/Adobe/Premiere Pro/24.0/Profile-me/Adobe Premiere Pro Prefs");
    write("Documents/Adobe/Premiere Pro/24.0/Profiles/Adobe Premiere Pro Prefs");
    write("Documents/Adobe/Premiere Pro/24.0/Other/Adobe Premiere Pro Prefs");
    write("Documents/Adobe/Premiere Pro/24.0/Profile-file");
    EXPECT_EQ(qvAdobeFileSystem::getPreferencesFile(kPPro),
              paths({{"24.0", ppro + "/Adobe Premiere Pro Prefs"},
                     {"24.0-Profile-me", ppro + "/Profile-me/Adobe Premiere Pro Prefs"},
                     {"24.0-Profiles", ppro + "/Profiles/Adobe Premiere Pro Prefs"}}));

    // Media Encoder's folder is named by its full text, its file by its own name.
    write("Documents/Adobe/Adobe Media Encoder/24.0/Adobe Premiere Pro Prefs");
    EXPECT_TRUE(qvAdobeFileSystem::getPreferencesFile(kAME).empty());
    write("Documents/Adobe/Adobe Media Encoder/24.0/Adobe Media Encoder Prefs");
    EXPECT_EQ(qvAdobeFileSystem::getPreferencesFile(kAME),
              paths({{"24.0", home() + "/Documents/Adobe/Adobe Media Encoder/24.0/Adobe Media Encoder Prefs"}}));
    EXPECT_TRUE(qvAdobeFileSystem::getPreferencesFile(QV_APP_ENUM(QV_APP_ENUM::QV_APP_PREL)).empty());
}
