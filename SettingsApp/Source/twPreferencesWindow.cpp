#include "twPreferencesWindow.h"

#include "twAppEnvironment.h"
#include "twAutomation.h"
#include "twClipSession.h"
#include "twDialogLayout.h"

#include "Config/qvConfig.h"
#include "Utils/qvLogging.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QTabWidget>
#include <QUrl>
#include <QVBoxLayout>

namespace {

QString text(const qvUtf8String& value) { return QString::fromStdString(value.Str()); }

QLabel* note(const QString& words) {
    auto* label = new QLabel(words);
    label->setWordWrap(true);
    label->setStyleSheet("color: palette(mid);");
    return label;
}

}  // namespace

twPreferencesWindow::twPreferencesWindow(QWidget* parent) : QDialog(parent), m_tabs(new QTabWidget) {
    setWindowTitle(tr("Tarnwick Preferences"));
    m_loaded = TWDebugOptions::getDebugOptions();
    m_presets.load();

    m_tabs->setObjectName("tabs");
    m_tabs->addTab(makeOptionsPage(), tr("&Options"));
    m_tabs->addTab(makePresetsPage(), tr("&Presets"));
    m_tabs->addTab(makeAboutPage(), tr("A&bout"));

    twLayOutOkCancelDialog(this, m_tabs);
    resize(760, 640);
}

QCheckBox* twPreferencesWindow::addOption(QFormLayout* form, const char* objectName, const QString& text,
                                          const QString& meaning, bool value) {
    auto* box = new QCheckBox(text);
    box->setObjectName(objectName);
    box->setChecked(value);
    box->setToolTip(meaning);
    form->addRow(box);
    form->addRow(note(meaning));
    return box;
}

QWidget* twPreferencesWindow::makeOptionsPage() {
    const TWDebugOptions& o = m_loaded;
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);

    auto* logging = new QGroupBox(tr("Log"));
    auto* loggingForm = new QFormLayout(logging);
    m_logging = new QComboBox;
    m_logging->setObjectName("loggingLevel");
    m_logging->addItem(tr("Off"), static_cast<int>(QV_LOG_DESACTIVATED));
    for (int level = QV_LOG_TRACE; level < QV_LOG_DESACTIVATED; ++level) {
        m_logging->addItem(text(QvLogging::loggingLevelStr[static_cast<size_t>(level)]), level);
    }
    m_logging->setCurrentIndex(m_logging->findData(static_cast<int>(o.loggingLevel)));
    loggingForm->addRow(tr("&Logging"), m_logging);
    loggingForm->addRow(note(tr("Any level but Off makes the importer write its log file, always at the INFO "
                                "level, in %1. Off writes no log.")
                                 .arg(twAppEnvironment::logFolder())));
    column->addWidget(logging);

    auto* importer = new QGroupBox(tr("Importer"));
    auto* importerForm = new QFormLayout(importer);
    addOption(importerForm, "importerIsFullyAsync", tr("Decode frames &asynchronously"),
              tr("The host's playback reads frames through the asynchronous reader, several at a time. Off, every "
                 "frame is decoded when the host asks for it."),
              o.importerIsFullyAsync);
    addOption(importerForm, "pproDisableTimecodeWarning", tr("Don't warn about a wrong start &timecode"),
              tr("Premiere Pro shows some 23.976 and 29.97 fps clips with a wrong start timecode; the importer "
                 "warns once per clip unless this is on."),
              o.pproDisableTimecodeWarning);
    addOption(importerForm, "pproAmeLowerPriority", tr("Lower the decoding &priority in Premiere Pro and Media Encoder"),
              tr("Kept for the host panels; the importer does not change its threads' priority by it."),
              o.pproAmeLowerPriority);
    addOption(importerForm, "gpuDecoding", tr("Hybrid &GPU/CPU decoding in Premiere Pro"),
              tr("Kept for the host panels; the importer decodes on the CPU."), o.gpuDecoding);
    addOption(importerForm, "pproDisableSourceSettingsPanel", tr("Disable the source settings &effect's panel"),
              tr("Read by the source settings effect in Premiere Pro."), o.pproDisableSourceSettingsPanel);
    addOption(importerForm, "enableCorrectXML", tr("Correct the &XML of exported projects"),
              tr("Kept for the host panels."), o.enableCorrectXML);
    column->addWidget(importer);

    auto* source = new QGroupBox(tr("New source mode"));
    auto* sourceForm = new QFormLayout(source);
    addOption(sourceForm, "alwaysSetNewSourceMode", tr("Always use the &new source mode"),
              tr("New clips get the source settings effect's new mode without a question."),
              o.alwaysSetNewSourceMode);
    addOption(sourceForm, "rememberAlwaysSetNewSourceMode", tr("&Remember the choice above"),
              tr("Off, the effect asks again in each session."), o.rememberAlwaysSetNewSourceMode);
    column->addWidget(source);

    auto* ae = new QGroupBox(tr("After Effects"));
    auto* aeForm = new QFormLayout(ae);
    addOption(aeForm, "aeLayerSettingsGPUEnabled", tr("Decode on the GP&U in the layer settings"),
              tr("The layer settings plug-in may then run the decoder on any pipeline the machine offers."),
              o.aeLayerSettingsGPUEnabled);
    addOption(aeForm, "pproImporterOnlyOneFrameWhenLayerSettings",
              tr("Importer decodes &one frame while the layer settings decode"),
              tr("Read by the layer settings plug-in."), o.pproImporterOnlyOneFrameWhenLayerSettings);
    addOption(aeForm, "aeLowerPriority", tr("Lower the decoding priorit&y in After Effects"),
              tr("Kept for the host panels."), o.aeLowerPriority);
    column->addWidget(ae);

    auto* app = new QGroupBox(tr("Application"));
    auto* appForm = new QFormLayout(app);
    addOption(appForm, "enableAutoUpdate", tr("Check for &updates"), tr("Kept for the host panels."),
              !o.disableAutoUpdate);
    m_desktopPath = new QLineEdit(text(o.brawDesktopFilepath));
    m_desktopPath->setObjectName("brawDesktopFilepath");
    m_desktopPath->setPlaceholderText(tr("Not set"));
    auto* browse = new QPushButton(tr("Bro&wse..."));
    connect(browse, &QPushButton::clicked, this, [this] {
        const QString path = QFileDialog::getOpenFileName(this, tr("Desktop application"), m_desktopPath->text());
        if (!path.isEmpty()) m_desktopPath->setText(path);
    });
    auto* pathRow = new QHBoxLayout;
    pathRow->addWidget(m_desktopPath, 1);
    pathRow->addWidget(browse);
    auto* pathLabel = new QLabel(tr("&Desktop application"));
    pathLabel->setBuddy(m_desktopPath);
    appForm->addRow(pathLabel, pathRow);
    column->addWidget(app);
    column->addStretch(1);

    auto* scroll = new QScrollArea;
    scroll->setWidget(page);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    return scroll;
}

QWidget* twPreferencesWindow::makePresetsPage() {
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->addWidget(note(tr("Presets are partial sets of decode settings, applied to a clip from its source "
                              "settings. A new preset holds the default settings; save a clip's settings as a "
                              "preset from its source settings.")));
    m_presetList = new QListWidget;
    m_presetList->setObjectName("presetList");
    column->addWidget(m_presetList, 1);

    auto* form = new QFormLayout;
    m_presetName = new QLineEdit;
    m_presetName->setObjectName("presetName");
    m_presetName->setPlaceholderText(tr("Name"));
    form->addRow(tr("&Name"), m_presetName);
    column->addLayout(form);

    auto* row = new QHBoxLayout;
    auto* create = new QPushButton(tr("&New"));
    create->setObjectName("presetNew");
    auto* rename = new QPushButton(tr("&Rename"));
    rename->setObjectName("presetRename");
    auto* remove = new QPushButton(tr("&Delete"));
    remove->setObjectName("presetDelete");
    row->addWidget(create);
    row->addWidget(rename);
    row->addWidget(remove);
    row->addStretch(1);
    column->addLayout(row);

    connect(create, &QPushButton::clicked, this, &twPreferencesWindow::createPreset);
    connect(rename, &QPushButton::clicked, this, &twPreferencesWindow::renamePreset);
    connect(remove, &QPushButton::clicked, this, &twPreferencesWindow::deletePreset);
    connect(m_presetList, &QListWidget::currentRowChanged, this, [this, rename, remove](int row) {
        const bool used = m_presets.isUsed(row);
        rename->setEnabled(used);
        remove->setEnabled(used);
        if (used) m_presetName->setText(text(m_presets.preset(row).m_name));
    });
    fillPresetList();
    m_presetList->setCurrentRow(0);
    return page;
}

QWidget* twPreferencesWindow::makeAboutPage() {
    auto* page = new QWidget;
    auto* form = new QFormLayout(page);
    auto* product = new QLabel(QString("<b>Tarnwick</b> %1 (build %2)")
                                   .arg(text(g_config.version.toString()))
                                   .arg(g_config.buildNumber));
    product->setObjectName("aboutVersion");
    form->addRow(tr("Version"), product);

    twClipSession decoder;
    QString error;
    QString library;
    if (decoder.startDecoder(error)) {
        library = tr("Found: %1\nVersion %2").arg(decoder.libraryPath(), decoder.libraryVersion());
    } else if (!decoder.libraryPath().isEmpty()) {
        library = tr("Found at %1, but not usable: %2").arg(decoder.libraryPath(), error);
    } else {
        library = tr("Not found. %1").arg(error);
    }
    auto* libraryLabel = new QLabel(library);
    libraryLabel->setObjectName("aboutDecoder");
    libraryLabel->setWordWrap(true);
    libraryLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    form->addRow(tr("Decoder library"), libraryLabel);

    const QString logs = twAppEnvironment::logFolder();
    auto* logLabel = new QLabel(logs);
    logLabel->setObjectName("aboutLogFolder");
    logLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* open = new QPushButton(tr("Open the log &folder"));
    open->setObjectName("openLogFolder");
    connect(open, &QPushButton::clicked, this, [logs] { QDesktopServices::openUrl(QUrl::fromLocalFile(logs)); });
    form->addRow(tr("Log folder"), logLabel);
    form->addRow(QString(), open);
    return page;
}

void twPreferencesWindow::showTab(int tab) {
    m_tabs->setCurrentIndex(tab >= TabOptions && tab <= TabAbout ? tab : TabOptions);
}

TWDebugOptions twPreferencesWindow::shownOptions() const {
    TWDebugOptions o = m_loaded;
    o.loggingLevel = static_cast<QV_LOG_LVL>(m_logging->currentData().toInt());
    auto checked = [this](const char* name) { return findChild<QCheckBox*>(name)->isChecked(); };
    o.importerIsFullyAsync = checked("importerIsFullyAsync");
    o.pproDisableTimecodeWarning = checked("pproDisableTimecodeWarning");
    o.pproAmeLowerPriority = checked("pproAmeLowerPriority");
    o.gpuDecoding = checked("gpuDecoding");
    o.pproDisableSourceSettingsPanel = checked("pproDisableSourceSettingsPanel");
    o.enableCorrectXML = checked("enableCorrectXML");
    o.alwaysSetNewSourceMode = checked("alwaysSetNewSourceMode");
    o.rememberAlwaysSetNewSourceMode = checked("rememberAlwaysSetNewSourceMode");
    o.aeLayerSettingsGPUEnabled = checked("aeLayerSettingsGPUEnabled");
    o.pproImporterOnlyOneFrameWhenLayerSettings = checked("pproImporterOnlyOneFrameWhenLayerSettings");
    o.aeLowerPriority = checked("aeLowerPriority");
    o.disableAutoUpdate = !checked("enableAutoUpdate");
    o.brawDesktopFilepath = qvUtf8String(m_desktopPath->text().trimmed().toStdString());
    return o;
}

void twPreferencesWindow::fillPresetList() {
    const int row = m_presetList->currentRow();
    m_presetList->clear();
    m_presetList->addItems(m_presets.displayedNames());
    m_presetList->setCurrentRow(row < 0 ? 0 : row);
}

int twPreferencesWindow::selectedSlot() const { return m_presetList->currentRow(); }

void twPreferencesWindow::createPreset() {
    const int slot = m_presets.create(m_presetName->text(), twClipAttributes(), twFrameAttributes(), WB_PRESET_AS_SHOT);
    if (slot < 0) {
        twMessages::error(this, tr("Presets"),
                          m_presetName->text().trimmed().isEmpty()
                              ? tr("Give the new preset a name first.")
                              : tr("All %1 preset places are used: delete one first.").arg(twPresetSlots::kCount));
        return;
    }
    fillPresetList();
    m_presetList->setCurrentRow(slot);
}

void twPreferencesWindow::renamePreset() {
    if (!m_presets.rename(selectedSlot(), m_presetName->text())) {
        twMessages::error(this, tr("Presets"), tr("Choose a preset and give it a name first."));
        return;
    }
    fillPresetList();
}

void twPreferencesWindow::deletePreset() {
    if (!m_presets.remove(selectedSlot())) return;
    m_presetName->clear();
    fillPresetList();
}

bool twPreferencesWindow::save() {
    const TWDebugOptions shown = shownOptions();
    const bool optionsChanged = shown.to_string().Str() != m_loaded.to_string().Str() ||
                                shown.alwaysSetNewSourceMode != m_loaded.alwaysSetNewSourceMode;
    if (optionsChanged) {
        TWDebugOptions::getDebugOptions() = shown;
        TWDebugOptions::exportDebugOptions();
    }
    const bool presetsChanged = m_presets.hasChanges();
    const QString failure = m_presets.apply();
    if (!failure.isEmpty()) {
        twMessages::error(this, tr("Presets"), tr("The presets could not all be saved: %1").arg(failure));
    }
    m_modified = optionsChanged || presetsChanged;
    return failure.isEmpty();
}

void twPreferencesWindow::done(int result) {
    if (result == QDialog::Accepted) save();
    QDialog::done(result);
}

int twPreferencesWindow::run(const QByteArray& hostJson) {
    const QJsonObject host = QJsonDocument::fromJson(hostJson).object();
    twPreferencesWindow window;
    window.showTab(host.value("tab").toInt(TabOptions));
    if (host.contains("X") && host.contains("Y")) {
        // Near the host's main window rather than wherever the system puts it.
        window.move(host.value("X").toInt() + 80, host.value("Y").toInt() + 80);
    }
    twAutomation::runWhenShown(&window);
    window.exec();
    twAppEnvironment::printPopupAnswer(window.modified());
    return 0;
}
