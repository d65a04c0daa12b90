// The staged application as the plug-in starts it: its exact arguments, the
// host's JSON on standard input, the "json:" answer line, the result preset,
// the options file, the sidecar; driven by its own script hook, headless.

#include "AppTestSupport.h"

#include "Common/TW_Debug_Options.h"
#include "Manager/twSettingsVocabulary.h"
#include "TW_Settings_Utils/SidecarUtility.h"
#include "TW_Settings_Utils/TW_Presets.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QtTest>

namespace {

struct Run {
    int exitCode = -1;
    QString out;
    QString err;
    // The last line of standard output.
    QString answer() const { return out.trimmed().section('\n', -1); }
};

// Runs the staged binary with `args`, the test's roots and `script` through
// the environment, `input` on standard input. A run that doesn't end within a
// minute is killed and fails the test: a popup must never hang its host.
Run runApp(const twtest::AppTestRoots& roots, const QStringList& args, const QString& script,
           const QByteArray& input = QByteArray(), bool keepInputOpen = false) {
    const QString scriptPath = roots.path("script.txt");
    QFile file(scriptPath);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) qFatal("cannot write the script");
    file.write(script.toUtf8());
    file.close();

    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    environment.insert("TARNWICK_HOME", QString::fromStdString(roots.roots().home()));
    environment.insert("TARNWICK_SYSTEM_ROOT", QString::fromStdString(roots.roots().systemRoot()));
    environment.insert("TARNWICK_SCRIPT", scriptPath);
    process.setProcessEnvironment(environment);
    process.start(TW_SETTINGS_APP, args);
    process.write(input);
    if (!keepInputOpen) process.closeWriteChannel();
    Run run;
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        run.err = "the application did not end";
        return run;
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

QStringList sourceSettingsArgs(const QString& clip, const twtest::AppTestRoots& roots) {
    return {"-sourceSettingsPopup", clip, "0", roots.path("input.twPreset"), roots.path("result.twPreset"), "2"};
}

}  // namespace

class SettingsAppProtocolTest : public QObject {
    Q_OBJECT
private slots:
    void sourceSettingsOkHandsTheEditsBack();
    void sourceSettingsCancelWritesNothing();
    void settingsTheClipFixesStayAsTheClipHasThem();
    void aClipThatCannotBeOpenedIsSaidAndAnswered();
    void preferencesOpenAtTheHostsTabAndWriteTheOptions();
    void desktopModeSavesTheSidecar();
};

void SettingsAppProtocolTest::sourceSettingsOkHandsTheEditsBack() {
    twtest::AppTestRoots roots;
    const QString clip = roots.writeClip("clip with \"quotes\" and blanks é.braw");
    // The importer's settings going in: every setting active, as it writes them.
    TW_Preset input;
    twFrameAttributes frame;
    frame.iso = 400;
    frame.exposure = 1.5f;
    frame.kelvin = 3200;
    input.setValues(twClipAttributes(), frame, WB_PRESET_CUSTOM, std::vector<bool>(BRAW_SETTINGS_COUNT, true));
    QVERIFY(!input.save(qvUtf8String(roots.path("input.twPreset").toStdString())).hasError);

    const Run run = runApp(roots, sourceSettingsArgs(clip, roots),
                           "expect iso 400\n"
                           "expect exposure 1.50\n"
                           "expect colorTemp 3200\n"
                           "set exposure 2.25\n"
                           "set exposure 99\n"
                           "expect exposure 5.00\n"
                           "set gamma Blackmagic Design Custom\n"
                           "set contrast 0.7\n"
                           "set wbPreset Tungsten\n"
                           "press ok\n");
    QVERIFY2(run.exitCode == 0, qPrintable(run.err));
    QCOMPARE(run.answer(), QString("json:{\"modified\":true}"));

    TW_Preset result;
    QVERIFY(!result.load(qvUtf8String(roots.path("result.twPreset").toStdString())).hasError);
    twClipAttributes clipOut;
    twFrameAttributes frameOut;
    WB_Preset wb = WB_PRESET_NONE;
    result.getValues(clipOut, frameOut, wb);
    QCOMPARE(frameOut.iso, 400u);
    QCOMPARE(frameOut.exposure, 5.0f);
    QCOMPARE(frameOut.kelvin, 2850u);
    QCOMPARE(std::string(clipOut.gamma), std::string(TW_CUSTOM_GAMMA_NAME));
    QCOMPARE(clipOut.gammaControls.contrast, 0.7f);
    // The popup hands settings back; the clip's own files stay as they were.
    QVERIFY(!QFile::exists(roots.path("clip with \"quotes\" and blanks é.sidecar")));
}

void SettingsAppProtocolTest::sourceSettingsCancelWritesNothing() {
    twtest::AppTestRoots roots;
    const QString clip = roots.writeClip("clip.braw");
    const Run cancelled = runApp(roots, sourceSettingsArgs(clip, roots), "set exposure 1\npress cancel\n");
    QVERIFY2(cancelled.exitCode == 0, qPrintable(cancelled.err));
    QCOMPARE(cancelled.answer(), QString("json:{\"modified\":false}"));
    QVERIFY(!QFile::exists(roots.path("result.twPreset")));
    QVERIFY(!QFile::exists(roots.path("clip.sidecar")));

    // A script that ends with the window open ends as Cancel does.
    const Run unfinished = runApp(roots, sourceSettingsArgs(clip, roots), "set exposure 1\n");
    QCOMPARE(unfinished.answer(), QString("json:{\"modified\":false}"));
    QVERIFY(!QFile::exists(roots.path("result.twPreset")));
}

void SettingsAppProtocolTest::settingsTheClipFixesStayAsTheClipHasThem() {
    twtest::AppTestRoots roots;
    const QString clip = roots.writeClip("fixed.braw", [](twref::RefClipModel& model) {
        model.frameAttribute(twref::RefFrameAttr::ISO)->readOnly = true;
        model.setFrameAttributeValue(twref::RefFrameAttr::ISO, twref::RefValue::u32(640));
    });
    const Run run = runApp(roots, sourceSettingsArgs(clip, roots),
                           "expect iso 640\nset iso 1600\nexpect iso 640\nset exposure -1\npress ok\n");
    QVERIFY2(run.exitCode == 0, qPrintable(run.err));
    QVERIFY2(run.err.contains("refused: iso"), qPrintable(run.err));
    TW_Preset result;
    QVERIFY(!result.load(qvUtf8String(roots.path("result.twPreset").toStdString())).hasError);
    twClipAttributes clipOut;
    twFrameAttributes frameOut;
    WB_Preset wb = WB_PRESET_NONE;
    result.getValues(clipOut, frameOut, wb);
    QCOMPARE(frameOut.iso, 640u);
    QCOMPARE(frameOut.exposure, -1.0f);
}

void SettingsAppProtocolTest::aClipThatCannotBeOpenedIsSaidAndAnswered() {
    twtest::AppTestRoots roots;
    QFile notAClip(roots.path("notes.braw"));
    QVERIFY(notAClip.open(QIODevice::WriteOnly));
    notAClip.write("just text");
    notAClip.close();
    for (const QString& clip : {roots.path("notes.braw"), roots.path("missing.braw")}) {
        const Run run = runApp(roots, sourceSettingsArgs(clip, roots), "press ok\n");
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.answer(), QString("json:{\"modified\":false}"));
        QVERIFY2(run.err.contains("The clip cannot be opened"), qPrintable(run.err));
        QVERIFY(!QFile::exists(roots.path("result.twPreset")));
    }
}

void SettingsAppProtocolTest::preferencesOpenAtTheHostsTabAndWriteTheOptions() {
    twtest::AppTestRoots roots;
    const QByteArray host = R"({"popup":"HostPopup","host":2,"tab":2,"X":100,"Y":40,"owner":0})";

    // The launcher may keep the pipe open once the JSON is written.
    const Run cancelled =
        runApp(roots, {"-popup"}, "expect tabs 2\ntab 0\nset loggingLevel INFO\npress cancel\n", host, true);
    QVERIFY2(cancelled.exitCode == 0, qPrintable(cancelled.err));
    QCOMPARE(cancelled.answer(), QString("json:{\"modified\":false}"));
    TWDebugOptions options;
    options.load();
    QCOMPARE(options.loggingLevel, QV_LOG_DESACTIVATED);

    const Run kept = runApp(roots, {"-popup"},
                            "tab 0\n"
                            "set loggingLevel INFO\n"
                            "set pproDisableTimecodeWarning true\n"
                            "tab 1\n"
                            "set presetName Day for night\n"
                            "press presetNew\n"
                            "expect presetList 0\n"
                            "press ok\n",
                            host);
    QVERIFY2(kept.exitCode == 0, qPrintable(kept.err));
    QCOMPARE(kept.answer(), QString("json:{\"modified\":true}"));
    options.load();
    QCOMPARE(options.loggingLevel, QV_LOG_INFO);
    QVERIFY(options.pproDisableTimecodeWarning);
    TW_Preset preset;
    QVERIFY(!TW_Preset::fromSlot(0, preset).hasError);
    QVERIFY(!preset.load().hasError);
    QCOMPARE(QString::fromStdString(preset.m_name.Str()), QString("Day for night"));
}

void SettingsAppProtocolTest::desktopModeSavesTheSidecar() {
    twtest::AppTestRoots roots;
    const QString clip = roots.writeClip("clip.braw");
    const Run run = runApp(roots, {}, "open " + clip + "\nset exposure 1.25\nset iso 1600\npress save\npress quit\n");
    QVERIFY2(run.exitCode == 0, qPrintable(run.err));
    twAttributes saved;
    QCOMPARE(SidecarUtility::fillPrefsFromSidecar(qvUtf8String(roots.path("clip.sidecar").toStdString()), saved),
             SidecarUtility::SIDECAR_OK);
    QCOMPARE(saved.frame.exposure, 1.25f);
    QCOMPARE(saved.frame.iso, 1600u);
}

QTEST_GUILESS_MAIN(SettingsAppProtocolTest)
#include "ProtocolTest.moc"
