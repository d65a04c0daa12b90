#pragma once
// One clip's settings being edited: the settings panel, a preview of the
// clip's frame decoded with the settings as they stand, the presets to apply
// or to save the settings as, and the choice of a .cube LUT. Used by the
// source-settings popup and by the desktop window alike; writing the result is
// the caller's business, so nothing leaves the editor by itself.

#include "twPresetSlots.h"
#include "twSettingsPanel.h"

#include <QString>
#include <QWidget>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QTimer;
class twClipSession;

class twClipEditor : public QWidget {
    Q_OBJECT
public:
    explicit twClipEditor(twClipSession& session, QWidget* parent = nullptr);

    // Shows the open clip of the session with `attributes` and `wb`.
    void start(const twAttributes& attributes, WB_Preset wb);
    twAttributes values() const { return m_panel->values(); }
    WB_Preset wbPreset() const { return m_panel->wbPreset(); }
    twSettingsPanel* panel() const { return m_panel; }
    // The .cube the user chose, to go into the clip's sidecar when the result
    // is written; empty when none was chosen.
    QString chosenLut() const { return m_chosenLut; }
    bool isModified() const { return m_modified; }
    void setUnmodified() { m_modified = false; }
    // The preview as last decoded.
    QImage previewImage() const { return m_preview; }
    QString previewError() const { return m_previewError; }
    // The presets saved while editing, written when the caller keeps the result.
    twPresetSlots& presetSlots() { return m_presets; }

public slots:
    // Decodes the preview now rather than once the edits settle.
    void refreshNow();

signals:
    void modifiedChanged();

private:
    void fillPresetList();
    void applyPreset();
    void saveAsPreset();
    void chooseLut();
    void onLutChosen(const QString& path);
    void resetToClip();
    void onEdited();

    twClipSession& m_session;
    twSettingsPanel* m_panel;
    QLabel* m_previewLabel;
    QSpinBox* m_frame;
    QComboBox* m_presetList;
    QLineEdit* m_presetName;
    QLineEdit* m_lutPath;
    QTimer* m_previewTimer;
    twPresetSlots m_presets;
    QImage m_preview;
    QString m_previewError;
    QString m_chosenLut;
    bool m_modified = false;
};
