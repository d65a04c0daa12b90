// The application's windows in process, headless: what the settings panel
// shows against the clip's panel data, the limits it holds edits to, settings
// the clip fixes, the preview following the edits, and that Cancel writes
// nothing while OK writes exactly the result.

#include "AppTestSupport.h"

#include "twClipEditor.h"
#include "twClipSession.h"
#include "twPreferencesWindow.h"
#include "twPresetSlots.h"
#include "twSettingsPanel.h"
#include "twSourceSettingsDialog.h"

#include "Common/TW_Debug_Options.h"
#include "TW_Settings_Utils/TW_Presets.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTabWidget>
#include <QtTest>

#include <cmath>

namespace {

QStringList itemsOf(QComboBox* box) {
    QStringList items;
    for (int i = 0; i < box->count(); ++i) items << box->itemText(i);
    return items;
}

bool choosable(QComboBox* box, const QString& text) {
    auto* model = qobject_cast<QStandardItemModel*>(box->model());
    const int index = box->findText(text);
    return index >= 0 && model->item(index)->isEnabled();
}

template <typename T>
T* control(const twSettingsPanel& panel, BRAW_Settings id) {
    T* widget = qobject_cast<T*>(panel.control(id));
    if (!widget) qFatal("control %d has not the expected type", static_cast<int>(id));
    return widget;
}

// Mean of the green channel: the chart's grey patches follow exposure.
double meanGreen(const QImage& image) {
    double sum = 0.0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) sum += qGreen(image.pixel(x, y));
    }
    return sum / (image.width() * image.height());
}

QByteArray fileBytes(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

}  // namespace

class SettingsPanelTest : public QObject {
    Q_OBJECT
private slots:
    void showsTheClipsValuesWithinItsLimits();
    void clipFactsReplaceTheVocabulary();
    void editsOutsideARangeAreImpossible();
    void settingsTheClipFixesCannotChange();
    void whiteBalancePresetsAndTheCustomCurve();
    void previewFollowsTheEdits();
    void presetsApplyOnlyTheirActiveSettings();
    void keyboardReachesEveryOpenSettingInOrder();
    void sourceSettingsCancelWritesNothingAndOkWritesTheResult();
    void preferencesCancelWritesNothingAndOkWritesOptionsAndPresets();
    void presetSlotsChangeOnlyOnApply();
};

void SettingsPanelTest::showsTheClipsValuesWithinItsLimits() {
    twtest::AppTestRoots roots;
    twClipSession session;
    QString error;
    QVERIFY2(session.openClip(roots.writeClip("clip.braw"), error), qPrintable(error));

    twSettingsPanel panel;
    const std::shared_ptr<twSettingsInitData> data = session.panelData();
    const twSettingLimits limits(data.get());
    QVERIFY(limits.fromClip());
    panel.setLimits(limits);
    panel.setValues(session.clipAttributes(), WB_PRESET_AS_SHOT);

    // The clip's own lists and ranges, as the decoder library gave them.
    QStringList isos;
    for (uint32_t i = 0; i < data->isoCount; ++i) isos << QString::number(data->isoList[i]);
    QVERIFY(!isos.isEmpty());
    QCOMPARE(itemsOf(control<QComboBox>(panel, BRAW_SETTING_ISO)), isos);
    QCOMPARE(control<QComboBox>(panel, BRAW_SETTING_GAMMA)->count(), static_cast<int>(data->gammaCount));
    QCOMPARE(control<QSpinBox>(panel, BRAW_SETTING_COLOR_TEMP)->minimum(), static_cast<int>(data->colorTempMin));
    QCOMPARE(control<QSpinBox>(panel, BRAW_SETTING_COLOR_TEMP)->maximum(), static_cast<int>(data->colorTempMax));
    QCOMPARE(control<QSpinBox>(panel, BRAW_SETTING_TINT)->minimum(), static_cast<int>(data->tintMin));
    QCOMPARE(control<QComboBox>(panel, BRAW_SETTING_ISO)->currentText(), QString::number(data->attributes.frame.iso));

    for (const auto& entry : s_brawSettingsInfosMap) {
        const twSettingLimit& limit = limits[entry.first];
        const QString name = twSettingsPanel::objectNameOf(entry.first);
        QCOMPARE(panel.control(entry.first)->objectName(), name);
        if (limit.kind == RAW_SETTING_KIND_LIST) {
            QStringList expected;
            for (const std::string& choice : limit.choices) expected << QString::fromStdString(choice);
            const QStringList shown = itemsOf(control<QComboBox>(panel, entry.first));
            QCOMPARE(shown.mid(0, expected.size()), expected);
        } else if (auto* box = qobject_cast<QDoubleSpinBox*>(panel.control(entry.first))) {
            // To the decimals the field shows (the limits are floats widened).
            const double step = 0.5 * std::pow(10.0, -box->decimals());
            QVERIFY(qAbs(box->minimum() - limit.minimum) <= step);
            QVERIFY(qAbs(box->maximum() - limit.maximum) <= step);
        } else if (auto* box = qobject_cast<QSpinBox*>(panel.control(entry.first))) {
            QCOMPARE(box->minimum(), static_cast<int>(limit.minimum));
            QCOMPARE(box->maximum(), static_cast<int>(limit.maximum));
        }
        // The tone curve and the LUT mode also wait for their switch (the custom
        // gamma, the LUT); every other control is open unless the clip fixes it.
        const bool dependent = entry.first >= BRAW_SETTING_SATURATION || entry.first == BRAW_SETTING_LUT_MODE;
        if (limit.readOnly || !dependent) QCOMPARE(panel.control(entry.first)->isEnabled(), !limit.readOnly);
    }
    // What is shown is what the clip decodes with, to the last setting.
    QVERIFY(panel.values() == session.clipAttributes());
    QCOMPARE(std::string(panel.values().frame.timecode), std::string(session.clipAttributes().frame.timecode));
}

void SettingsPanelTest::clipFactsReplaceTheVocabulary() {
    const twSettingsInitData data = twtest::narrowClipData();
    twSettingsPanel panel;
    panel.setLimits(twSettingLimits(&data));
    twAttributes attributes = data.attributes;
    panel.setValues(attributes, WB_PRESET_CUSTOM);

    QCOMPARE(itemsOf(control<QComboBox>(panel, BRAW_SETTING_ISO)), QStringList({"400", "1600", "3200"}));
    QCOMPARE(control<QComboBox>(panel, BRAW_SETTING_ISO)->currentText(), QString("1600"));
    QCOMPARE(itemsOf(control<QComboBox>(panel, BRAW_SETTING_COLOR_SCIENCE)), QStringList({"Version 5"}));
    QCOMPARE(itemsOf(control<QComboBox>(panel, BRAW_SETTING_GAMUT)), QStringList({"Blackmagic Design", "Rec.709"}));
    QCOMPARE(control<QComboBox>(panel, BRAW_SETTING_GAMUT)->currentText(), QString("Rec.709"));
    QCOMPARE(control<QSpinBox>(panel, BRAW_SETTING_COLOR_TEMP)->minimum(), 2500);
    QCOMPARE(control<QSpinBox>(panel, BRAW_SETTING_COLOR_TEMP)->maximum(), 10000);
    QCOMPARE(control<QSpinBox>(panel, BRAW_SETTING_COLOR_TEMP)->value(), 4300);
    QCOMPARE(control<QSpinBox>(panel, BRAW_SETTING_TINT)->value(), -12);
    QCOMPARE(control<QDoubleSpinBox>(panel, BRAW_SETTING_EXPOSURE)->maximum(), 3.0);
    // A LUT the clip doesn't carry can't be chosen.
    QVERIFY(!choosable(control<QComboBox>(panel, BRAW_SETTING_LUT_MODE), "Embedded"));
    QVERIFY(choosable(control<QComboBox>(panel, BRAW_SETTING_LUT_MODE), "Sidecar"));

    // A value the clip's lists lack is shown rather than silently replaced.
    attributes.frame.iso = 640;
    panel.setValues(attributes, WB_PRESET_CUSTOM);
    QCOMPARE(control<QComboBox>(panel, BRAW_SETTING_ISO)->currentText(), QString("640"));
    QCOMPARE(panel.values().frame.iso, 640u);
}

void SettingsPanelTest::editsOutsideARangeAreImpossible() {
    const twSettingsInitData data = twtest::narrowClipData();
    twSettingsPanel panel;
    panel.setLimits(twSettingLimits(&data));
    panel.setValues(data.attributes, WB_PRESET_CUSTOM);
    panel.show();

    // Typed by the user: the field refuses what the range can't hold.
    auto* kelvin = control<QSpinBox>(panel, BRAW_SETTING_COLOR_TEMP);
    kelvin->setFocus();
    kelvin->selectAll();
    QTest::keyClicks(kelvin, "60000");
    QTest::keyClick(kelvin, Qt::Key_Return);
    QVERIFY(kelvin->value() >= 2500 && kelvin->value() <= 10000);
    QVERIFY(panel.values().frame.kelvin <= 10000u);

    auto* exposure = control<QDoubleSpinBox>(panel, BRAW_SETTING_EXPOSURE);
    exposure->setValue(4.5);
    QCOMPARE(panel.values().frame.exposure, 3.0f);
    exposure->setValue(-40.0);
    QCOMPARE(panel.values().frame.exposure, -3.0f);
    for (int i = 0; i < 100; ++i) QTest::keyClick(control<QSpinBox>(panel, BRAW_SETTING_TINT), Qt::Key_Up);
    QCOMPARE(panel.values().frame.tint, static_cast<int16_t>(50));

    // Lists take no text of their own.
    QVERIFY(!control<QComboBox>(panel, BRAW_SETTING_ISO)->isEditable());
    QVERIFY(!control<QComboBox>(panel, BRAW_SETTING_GAMMA)->isEditable());
}

void SettingsPanelTest::settingsTheClipFixesCannotChange() {
    twSettingsInitData data = twtest::narrowClipData();
    data.isoIsReadOnly = true;
    data.colorTempIsReadOnly = true;
    data.tintIsReadOnly = true;
    data.highlightRecoveryIsReadOnly = true;
    twSettingsPanel panel;
    panel.setLimits(twSettingLimits(&data));
    panel.setValues(data.attributes, WB_PRESET_CUSTOM);
    panel.show();

    for (BRAW_Settings id : {BRAW_SETTING_ISO, BRAW_SETTING_COLOR_TEMP, BRAW_SETTING_TINT, BRAW_SETTING_WB_PRESET,
                             BRAW_SETTING_HIGHLIGHT_RECOVERY}) {
        QVERIFY2(!panel.control(id)->isEnabled(), twSettingsPanel::objectNameOf(id));
    }
    QVERIFY(panel.control(BRAW_SETTING_EXPOSURE)->isEnabled());
    // Neither keys nor clicks reach a fixed setting.
    QTest::keyClick(panel.control(BRAW_SETTING_ISO), Qt::Key_Down);
    QTest::keyClick(panel.control(BRAW_SETTING_COLOR_TEMP), Qt::Key_Up);
    QTest::mouseClick(panel.control(BRAW_SETTING_HIGHLIGHT_RECOVERY), Qt::LeftButton);
    const twAttributes shown = panel.values();
    QCOMPARE(shown.frame.iso, 1600u);
    QCOMPARE(shown.frame.kelvin, 4300u);
    QCOMPARE(shown.frame.tint, static_cast<int16_t>(-12));
    QCOMPARE(shown.clip.highlightRecovery, false);
}

void SettingsPanelTest::whiteBalancePresetsAndTheCustomCurve() {
    const twSettingsInitData data = twtest::narrowClipData();
    twSettingsPanel panel;
    panel.setLimits(twSettingLimits(&data));
    panel.setAsShot(data.attributes.frame);
    panel.setValues(data.attributes, WB_PRESET_AS_SHOT);
    QSignalSpy changes(&panel, &twSettingsPanel::changed);

    control<QComboBox>(panel, BRAW_SETTING_WB_PRESET)->setCurrentText("Tungsten");
    QCOMPARE(panel.values().frame.kelvin, 2850u);
    QCOMPARE(panel.values().frame.tint, static_cast<int16_t>(0));
    control<QSpinBox>(panel, BRAW_SETTING_TINT)->setValue(7);
    QCOMPARE(panel.wbPreset(), WB_PRESET_CUSTOM);
    control<QComboBox>(panel, BRAW_SETTING_WB_PRESET)->setCurrentText("AsShot");
    QCOMPARE(panel.values().frame.kelvin, 4300u);
    QCOMPARE(panel.values().frame.tint, static_cast<int16_t>(-12));
    QVERIFY(changes.count() >= 3);

    // The curve acts under the custom gamma only, and starts from the curve of
    // the gamma it replaces.
    QWidget* saturation = panel.control(BRAW_SETTING_SATURATION);
    QVERIFY(!saturation->isEnabledTo(&panel));
    control<QComboBox>(panel, BRAW_SETTING_GAMMA)->setCurrentText(TW_CUSTOM_GAMMA_NAME);
    QVERIFY(saturation->isEnabledTo(&panel));
    QCOMPARE(panel.values().clip.gammaControls.saturation, 1.5f);
    QCOMPARE(panel.values().clip.gammaControls.contrast, 1.25f);
}

void SettingsPanelTest::previewFollowsTheEdits() {
    twtest::AppTestRoots roots;
    twClipSession session;
    QString error;
    QVERIFY2(session.openClip(roots.writeClip("clip.braw"), error), qPrintable(error));
    twClipEditor editor(session);
    editor.start(session.clipAttributes(), WB_PRESET_AS_SHOT);
    QVERIFY2(!editor.previewImage().isNull(), qPrintable(editor.previewError()));
    const double before = meanGreen(editor.previewImage());

    control<QDoubleSpinBox>(*editor.panel(), BRAW_SETTING_EXPOSURE)->setValue(2.0);
    editor.refreshNow();
    QVERIFY2(!editor.previewImage().isNull(), qPrintable(editor.previewError()));
    QVERIFY(meanGreen(editor.previewImage()) > before + 10.0);
    QVERIFY(editor.isModified());
}

void SettingsPanelTest::presetsApplyOnlyTheirActiveSettings() {
    twtest::AppTestRoots roots;
    twClipSession session;
    QString error;
    QVERIFY2(session.openClip(roots.writeClip("clip.braw"), error), qPrintable(error));
    const twAttributes clip = session.clipAttributes();

    TW_Preset preset;
    QVERIFY(!TW_Preset::fromSlot(2, preset).hasError);
    preset.setName(qvUtf8String("Push one stop"));
    twFrameAttributes frame = clip.frame;
    frame.exposure = 1.0f;
    frame.kelvin = 2000;
    std::vector<bool> active(BRAW_SETTINGS_COUNT, false);
    active[BRAW_SETTING_EXPOSURE] = true;
    preset.setValues(clip.clip, frame, WB_PRESET_NONE, active);
    QVERIFY(!preset.save().hasError);

    twClipEditor editor(session);
    editor.start(clip, WB_PRESET_AS_SHOT);
    auto* list = editor.findChild<QComboBox*>("presetList");
    QCOMPARE(itemsOf(list), QStringList({"#3 - Push one stop"}));
    editor.findChild<QPushButton*>("applyPreset")->click();
    QCOMPARE(editor.values().frame.exposure, 1.0f);
    QCOMPARE(editor.values().frame.kelvin, clip.frame.kelvin);
    QVERIFY(editor.values().clip == clip.clip);
    QVERIFY(editor.isModified());
}

void SettingsPanelTest::keyboardReachesEveryOpenSettingInOrder() {
    twSettingsPanel panel;
    panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
    panel.control(BRAW_SETTING_COLOR_SCIENCE)->setFocus();
    QStringList reached;
    for (int i = 0; i < 12; ++i) {
        reached << QApplication::focusWidget()->objectName();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    // The tone curve waits for the custom gamma and the LUT mode for the LUT:
    // Tab passes them by.
    QCOMPARE(reached, QStringList({"colorScience", "gamut", "gamutCompression", "gamma", "iso", "exposure",
                                   "highlightRecovery", "wbPreset", "colorTemp", "tint", "lutEnabled",
                                   "colorScience"}));
}

void SettingsPanelTest::sourceSettingsCancelWritesNothingAndOkWritesTheResult() {
    twtest::AppTestRoots roots;
    const QString clip = roots.writeClip("clip.braw");
    const QString result = roots.path("result.twPreset");
    twClipSession session;
    QString error;
    QVERIFY2(session.openClip(clip, error), qPrintable(error));

    // The input preset's active settings over the clip's own.
    TW_Preset input;
    twClipAttributes clipIn = session.clipAttributes().clip;
    twFrameAttributes frameIn = session.clipAttributes().frame;
    frameIn.iso = 400;
    frameIn.exposure = 1.5f;
    std::vector<bool> active(BRAW_SETTINGS_COUNT, false);
    active[BRAW_SETTING_ISO] = true;
    active[BRAW_SETTING_EXPOSURE] = true;
    input.setValues(clipIn, frameIn, WB_PRESET_NONE, active);
    QVERIFY(!input.save(qvUtf8String(roots.path("input.twPreset").toStdString())).hasError);
    twAttributes start;
    WB_Preset wb = WB_PRESET_NONE;
    twSourceSettingsDialog::initialValues(session, roots.path("input.twPreset"), start, wb);
    QCOMPARE(start.frame.iso, 400u);
    QCOMPARE(start.frame.exposure, 1.5f);
    QCOMPARE(start.frame.kelvin, session.clipAttributes().frame.kelvin);

    {
        twSourceSettingsDialog dialog(session, 2);
        dialog.editor()->start(start, wb);
        control<QDoubleSpinBox>(*dialog.editor()->panel(), BRAW_SETTING_EXPOSURE)->setValue(-1.0);
        dialog.findChild<QLineEdit*>("lutFile")->setText(roots.path("missing.cube"));
        dialog.findChild<QPushButton*>("cancel")->click();
        QCOMPARE(dialog.result(), static_cast<int>(QDialog::Rejected));
    }
    QVERIFY(!QFile::exists(result));
    QVERIFY(!QFile::exists(session.sidecarPath()));

    twSourceSettingsDialog dialog(session, 2);
    dialog.editor()->start(start, wb);
    control<QDoubleSpinBox>(*dialog.editor()->panel(), BRAW_SETTING_EXPOSURE)->setValue(-1.0);
    control<QComboBox>(*dialog.editor()->panel(), BRAW_SETTING_GAMMA)->setCurrentText(TW_CUSTOM_GAMMA_NAME);
    control<QDoubleSpinBox>(*dialog.editor()->panel(), BRAW_SETTING_CONTRAST)->setValue(0.75);
    QFile cube(roots.path("grade.cube"));
    QVERIFY(cube.open(QIODevice::WriteOnly));
    cube.write("TITLE \"Grade\"\nLUT_3D_SIZE 2\n0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n1 1 1\n");
    cube.close();
    dialog.findChild<QLineEdit*>("lutFile")->setText(roots.path("grade.cube"));
    QCOMPARE(std::string(dialog.editor()->values().clip.lutMode), std::string("Sidecar"));
    QVERIFY(twSourceSettingsDialog::writeResult(session, *dialog.editor(), result).isEmpty());
    // The LUT reaches the decoder library through the clip's sidecar.
    QVERIFY(fileBytes(session.sidecarPath()).contains("post_3dlut_sidecar_data"));

    // The plug-in applies the result onto its own settings: every one arrives.
    TW_Preset back;
    QVERIFY(!back.load(qvUtf8String(result.toStdString())).hasError);
    twAttributes applied;
    WB_Preset appliedWb = WB_PRESET_NONE;
    back.getValues(applied.clip, applied.frame, appliedWb);
    applied.useClipAndFrameAttributes = true;
    QVERIFY(applied == dialog.editor()->values());
    QCOMPARE(applied.frame.iso, 400u);
    QCOMPARE(applied.frame.exposure, -1.0f);
    QCOMPARE(applied.clip.gammaControls.contrast, 0.75f);
}

void SettingsPanelTest::preferencesCancelWritesNothingAndOkWritesOptionsAndPresets() {
    twtest::AppTestRoots roots;
    const QByteArray iniBefore = fileBytes(roots.iniPath());
    const QString presetFolder = QString::fromStdString(roots.roots().home()) +
                                 "/Library/Application Support/Qervane/Tarnwick/TW_Preset";
    {
        twPreferencesWindow window;
        window.showTab(twPreferencesWindow::TabPresets);
        window.findChild<QComboBox*>("loggingLevel")->setCurrentText("INFO");
        window.findChild<QLineEdit*>("presetName")->setText("Night exterior");
        window.findChild<QPushButton*>("presetNew")->click();
        QCOMPARE(window.findChild<QListWidget*>("presetList")->item(0)->text(), QString("#1 - Night exterior"));
        window.findChild<QPushButton*>("cancel")->click();
        QVERIFY(!window.modified());
    }
    QCOMPARE(fileBytes(roots.iniPath()), iniBefore);
    QVERIFY(QDir(presetFolder).entryList(QDir::Files).isEmpty());

    twPreferencesWindow window;
    window.showTab(99);
    QCOMPARE(window.findChild<QTabWidget*>("tabs")->currentIndex(), 0);
    window.findChild<QComboBox*>("loggingLevel")->setCurrentText("INFO");
    window.findChild<QCheckBox*>("pproDisableTimecodeWarning")->setChecked(true);
    window.findChild<QCheckBox*>("importerIsFullyAsync")->setChecked(false);
    window.findChild<QLineEdit*>("presetName")->setText("Night exterior");
    window.findChild<QPushButton*>("presetNew")->click();
    window.findChild<QPushButton*>("ok")->click();
    QVERIFY(window.modified());

    // As the plug-in reads the file again after the popup.
    TWDebugOptions reread;
    reread.load();
    QCOMPARE(reread.loggingLevel, QV_LOG_INFO);
    QVERIFY(reread.pproDisableTimecodeWarning);
    QVERIFY(!reread.importerIsFullyAsync);
    TW_Preset preset;
    QVERIFY(!TW_Preset::fromSlot(0, preset).hasError);
    QVERIFY(!preset.load().hasError);
    QCOMPARE(QString::fromStdString(preset.getDisplayedName().Str()), QString("#1 - Night exterior"));
}

void SettingsPanelTest::presetSlotsChangeOnlyOnApply() {
    twtest::AppTestRoots roots;
    twPresetSlots presets;
    presets.load();
    QCOMPARE(presets.create("", twClipAttributes(), twFrameAttributes(), WB_PRESET_AS_SHOT), -1);
    QCOMPARE(presets.create("A", twClipAttributes(), twFrameAttributes(), WB_PRESET_AS_SHOT), 0);
    QCOMPARE(presets.create("B", twClipAttributes(), twFrameAttributes(), WB_PRESET_AS_SHOT), 1);
    QVERIFY(presets.apply().isEmpty());

    QVERIFY(presets.rename(1, "B2"));
    QVERIFY(presets.remove(0));
    QVERIFY(!presets.rename(0, "gone"));
    twPresetSlots onDisk;
    onDisk.load();
    QCOMPARE(onDisk.displayedNames().mid(0, 2), QStringList({"#1 - A", "#2 - B"}));

    QVERIFY(presets.apply().isEmpty());
    onDisk.load();
    QCOMPARE(onDisk.displayedNames().mid(0, 2), QStringList({"#1 - No Preset", "#2 - B2"}));
    // The freed place is the next one taken.
    QCOMPARE(presets.create("C", twClipAttributes(), twFrameAttributes(), WB_PRESET_AS_SHOT), 0);
}

QTEST_MAIN(SettingsPanelTest)
#include "PanelTest.moc"
