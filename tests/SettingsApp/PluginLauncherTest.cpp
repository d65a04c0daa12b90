// The plug-in's own launcher starting the real application where an install
// holds it: the arguments, the host's JSON and the answer line as the two ends
// really exchange them, a clip name with quotation marks, blanks and non-ASCII
// characters included. The application is driven by its script hook, which it
// reads from the environment the launcher passes on.

#include "AppTestSupport.h"

#include "Common/TW_Debug_Options.h"
#include "Platform/qvPlatformRoots.h"
#include "TW_Settings_Utils/RemoteHostPopup.h"

#include <QFile>
#include <QtTest>

#include <cstring>
#include <filesystem>

namespace {

// The staged application, linked where the plug-in finds an installed one.
void installApplication() {
    const std::filesystem::path target = qvPlatform::SystemPath(TW_DESKTOP_DEFAULT_PATH);
    std::filesystem::create_directories(target.parent_path());
    std::filesystem::create_symlink(TW_SETTINGS_APP, target);
}

void useScript(const twtest::AppTestRoots& roots, const QString& script) {
    const QString path = roots.path("script.txt");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) qFatal("cannot write the script");
    file.write(script.toUtf8());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("TARNWICK_HOME", QByteArray::fromStdString(roots.roots().home()));
    qputenv("TARNWICK_SYSTEM_ROOT", QByteArray::fromStdString(roots.roots().systemRoot()));
    qputenv("TARNWICK_SCRIPT", path.toUtf8());
}

}  // namespace

class PluginLauncherTest : public QObject {
    Q_OBJECT
private slots:
    void sourceSettingsEditsReachTheImportersSettings();
    void preferencesChangesAreReportedAndReadAgain();
};

void PluginLauncherTest::sourceSettingsEditsReachTheImportersSettings() {
    twtest::AppTestRoots roots;
    installApplication();
    const qvUtf8String clip(roots.writeClip("Day \"1\" é take 2.braw").toStdString());

    twAttributes attributes;
    attributes.useClipAndFrameAttributes = true;
    attributes.frame.iso = 400;
    useScript(roots, "expect iso 400\nset exposure 1.75\nset highlightRecovery true\npress ok\n");
    bool modified = true;
    twOpenSourceSettingsPopup(PXC_HOST_AME, "com.qervane.tarnwick.importer", clip, modified, attributes);
    QVERIFY(modified);
    QCOMPARE(attributes.frame.iso, 400u);
    QCOMPARE(attributes.frame.exposure, 1.75f);
    QVERIFY(attributes.clip.highlightRecovery);

    // Cancel: the importer's settings stay as they are.
    const twAttributes before = attributes;
    useScript(roots, "set exposure -2\npress cancel\n");
    modified = true;
    twOpenSourceSettingsPopup(PXC_HOST_AME, "com.qervane.tarnwick.importer", clip, modified, attributes);
    QVERIFY(!modified);
    QVERIFY(std::memcmp(&before, &attributes, sizeof(attributes)) == 0);
}

void PluginLauncherTest::preferencesChangesAreReportedAndReadAgain() {
    twtest::AppTestRoots roots;
    installApplication();
    useScript(roots, "expect tabs 1\ntab 0\nset loggingLevel WARN\nset importerIsFullyAsync false\npress ok\n");
    bool modified = false;
    twHostOpenSettings_WithLogs(PXC_HOST_PPRO, 1, &modified, "com.qervane.tarnwick.importer");
    QVERIFY(modified);
    TWDebugOptions::loadDebugOptions();
    QCOMPARE(TWDebugOptions::getDebugOptions().loggingLevel, QV_LOG_WARN);
    QVERIFY(!TWDebugOptions::getDebugOptions().importerIsFullyAsync);

    useScript(roots, "set loggingLevel Off\npress cancel\n");
    modified = true;
    twHostOpenSettings_WithLogs(PXC_HOST_PPRO, 0, &modified, "com.qervane.tarnwick.importer");
    QVERIFY(!modified);
    TWDebugOptions::loadDebugOptions();
    QCOMPARE(TWDebugOptions::getDebugOptions().loggingLevel, QV_LOG_WARN);
}

QTEST_GUILESS_MAIN(PluginLauncherTest)
#include "PluginLauncherTest.moc"
