#include "twClipEditor.h"

#include "twAutomation.h"
#include "twClipSession.h"

#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QTimer>
#include <QVBoxLayout>

namespace {

const QSize kPreviewBox(640, 360);

// A form row whose field is a layout gets no buddy by itself: the label's
// shortcut would show as text and lead nowhere.
QLabel* labelFor(const QString& text, QWidget* buddy) {
    auto* label = new QLabel(text);
    label->setBuddy(buddy);
    return label;
}

}  // namespace

twClipEditor::twClipEditor(twClipSession& session, QWidget* parent)
    : QWidget(parent),
      m_session(session),
      m_panel(new twSettingsPanel),
      m_previewLabel(new QLabel),
      m_frame(new QSpinBox),
      m_presetList(new QComboBox),
      m_presetName(new QLineEdit),
      m_lutPath(new QLineEdit),
      m_previewTimer(new QTimer(this)) {
    auto* scroll = new QScrollArea;
    scroll->setWidget(m_panel);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setMinimumWidth(m_panel->sizeHint().width() + 24);

    m_previewLabel->setObjectName("preview");
    m_previewLabel->setMinimumSize(kPreviewBox);
    m_previewLabel->setAlignment(Qt::AlignCenter);
    m_previewLabel->setStyleSheet("background: #202020; color: #d0d0d0;");
    m_previewLabel->setWordWrap(true);

    m_frame->setObjectName("frame");
    m_frame->setAccessibleName(tr("Preview frame"));
    auto* frameRow = new QFormLayout;
    frameRow->addRow(tr("Preview &frame"), m_frame);

    auto* presets = new QGroupBox(tr("Presets"));
    auto* presetForm = new QFormLayout(presets);
    m_presetList->setObjectName("presetList");
    auto* apply = new QPushButton(tr("&Apply"));
    apply->setObjectName("applyPreset");
    auto* applyRow = new QHBoxLayout;
    applyRow->addWidget(m_presetList, 1);
    applyRow->addWidget(apply);
    presetForm->addRow(labelFor(tr("Pre&set"), m_presetList), applyRow);
    m_presetName->setObjectName("presetName");
    m_presetName->setPlaceholderText(tr("Name of a new preset"));
    auto* save = new QPushButton(tr("Save &as preset"));
    save->setObjectName("savePreset");
    auto* saveRow = new QHBoxLayout;
    saveRow->addWidget(m_presetName, 1);
    saveRow->addWidget(save);
    presetForm->addRow(labelFor(tr("&New preset"), m_presetName), saveRow);

    auto* lut = new QGroupBox(tr("LUT file"));
    auto* lutRow = new QHBoxLayout(lut);
    m_lutPath->setObjectName("lutFile");
    m_lutPath->setReadOnly(true);
    m_lutPath->setPlaceholderText(tr("No .cube file chosen"));
    auto* chooseLut = new QPushButton(tr("&Choose .cube..."));
    chooseLut->setObjectName("chooseLut");
    lutRow->addWidget(m_lutPath, 1);
    lutRow->addWidget(chooseLut);

    auto* reset = new QPushButton(tr("&Reset to the clip's settings"));
    reset->setObjectName("resetToClip");

    auto* right = new QVBoxLayout;
    right->addWidget(m_previewLabel, 1);
    right->addLayout(frameRow);
    right->addWidget(presets);
    right->addWidget(lut);
    right->addWidget(reset, 0, Qt::AlignLeft);

    auto* columns = new QHBoxLayout(this);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->addWidget(scroll, 0);
    columns->addLayout(right, 1);

    // Edits come in bursts (a held arrow key): the preview follows once they settle.
    m_previewTimer->setSingleShot(true);
    m_previewTimer->setInterval(120);
    connect(m_previewTimer, &QTimer::timeout, this, &twClipEditor::refreshNow);
    connect(m_panel, &twSettingsPanel::changed, this, &twClipEditor::onEdited);
    connect(m_frame, qOverload<int>(&QSpinBox::valueChanged), m_previewTimer, qOverload<>(&QTimer::start));
    connect(apply, &QPushButton::clicked, this, &twClipEditor::applyPreset);
    connect(save, &QPushButton::clicked, this, &twClipEditor::saveAsPreset);
    connect(m_presetName, &QLineEdit::returnPressed, this, &twClipEditor::saveAsPreset);
    connect(chooseLut, &QPushButton::clicked, this, &twClipEditor::chooseLut);
    connect(m_lutPath, &QLineEdit::textChanged, this, &twClipEditor::onLutChosen);
    connect(reset, &QPushButton::clicked, this, &twClipEditor::resetToClip);

    setTabOrder(m_frame, m_presetList);
    m_presets.load();
    fillPresetList();
}

void twClipEditor::start(const twAttributes& attributes, WB_Preset wb) {
    m_panel->setLimits(twSettingLimits(m_session.panelData().get()));
    m_panel->setAsShot(m_session.clipAttributes().frame);
    m_panel->setValues(attributes, wb);
    m_frame->setRange(0, static_cast<int>(qMax<uint64_t>(1, m_session.frameCount()) - 1));
    m_lutPath->clear();
    m_chosenLut.clear();
    m_modified = false;
    refreshNow();
}

void twClipEditor::refreshNow() {
    m_previewTimer->stop();
    if (!m_session.hasClip()) return;
    m_previewError.clear();
    m_preview = m_session.decodeFrame(static_cast<uint64_t>(m_frame->value()), m_panel->values(), kPreviewBox,
                                      m_previewError);
    if (m_preview.isNull()) {
        m_previewLabel->setPixmap(QPixmap());
        m_previewLabel->setText(m_previewError);
    } else {
        m_previewLabel->setPixmap(QPixmap::fromImage(m_preview));
    }
}

void twClipEditor::fillPresetList() {
    m_presetList->clear();
    for (int slot : m_presets.usedSlots()) {
        m_presetList->addItem(QString::fromStdString(m_presets.preset(slot).getDisplayedName().Str()), slot);
    }
    m_presetList->setEnabled(m_presetList->count() > 0);
}

void twClipEditor::applyPreset() {
    if (m_presetList->currentIndex() < 0) return;
    const int slot = m_presetList->currentData().toInt();
    twAttributes attributes = m_panel->values();
    WB_Preset wb = m_panel->wbPreset();
    // Only the preset's active settings change; the clip keeps the others.
    m_presets.preset(slot).getValues(attributes.clip, attributes.frame, wb);
    m_panel->setValues(attributes, wb);
    onEdited();
}

void twClipEditor::saveAsPreset() {
    const QString name = m_presetName->text().trimmed();
    if (name.isEmpty()) {
        twMessages::error(this, tr("Preset"), tr("Give the new preset a name first."));
        return;
    }
    const twAttributes attributes = m_panel->values();
    const int slot = m_presets.create(name, attributes.clip, attributes.frame, m_panel->wbPreset());
    if (slot < 0) {
        twMessages::error(this, tr("Preset"),
                          tr("All %1 preset places are used: delete one in the preferences first.")
                              .arg(twPresetSlots::kCount));
        return;
    }
    const QString failure = m_presets.apply();
    if (!failure.isEmpty()) {
        twMessages::error(this, tr("Preset"), tr("The preset could not be saved: %1").arg(failure));
        m_presets.load();
    }
    m_presetName->clear();
    fillPresetList();
    m_presetList->setCurrentIndex(m_presetList->findData(slot));
}

void twClipEditor::chooseLut() {
    const QString path = QFileDialog::getOpenFileName(this, tr("Choose a LUT"), QFileInfo(m_session.clipPath()).path(),
                                                      tr("Cube LUTs (*.cube);;All files (*)"));
    if (!path.isEmpty()) m_lutPath->setText(path);
}

void twClipEditor::onLutChosen(const QString& path) {
    if (path.isEmpty() || path == m_chosenLut) return;
    m_chosenLut = path;
    // The LUT reaches the picture through the sidecar, once the result is kept.
    twAttributes attributes = m_panel->values();
    twCopyFixedText(attributes.clip.lutMode, sizeof(attributes.clip.lutMode), "Sidecar");
    m_panel->setValues(attributes, m_panel->wbPreset());
    onEdited();
}

void twClipEditor::resetToClip() {
    m_panel->setValues(m_session.clipAttributes(), WB_PRESET_AS_SHOT);
    m_lutPath->clear();
    m_chosenLut.clear();
    onEdited();
}

void twClipEditor::onEdited() {
    m_modified = true;
    emit modifiedChanged();
    m_previewTimer->start();
}
