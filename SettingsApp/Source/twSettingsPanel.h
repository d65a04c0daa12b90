#pragma once
// The 20 decode settings of a clip as controls, laid out as a colourist reads
// them: colour, exposure and white balance, the custom gamma's tone curve, the
// LUT. The choices and ranges are those of twSettingLimits, so a value outside
// them cannot be entered, and a setting the clip fixes cannot be changed.

#include "twSettingLimits.h"

#include "Manager/twAttributes.h"

#include <QWidget>

#include <array>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QGroupBox;
class QSpinBox;

class twSettingsPanel : public QWidget {
    Q_OBJECT
public:
    explicit twSettingsPanel(QWidget* parent = nullptr);

    // The choices, ranges and read-only flags; the values shown stay where
    // they can.
    void setLimits(const twSettingLimits& limits);
    const twSettingLimits& limits() const { return m_limits; }
    // Shows `attributes` and the white balance preset. `asShot` is what the
    // camera recorded, which the "AsShot" preset brings back.
    void setValues(const twAttributes& attributes, WB_Preset wbPreset);
    void setAsShot(const twFrameAttributes& asShot) { m_asShot = asShot; }
    // The settings shown, in use.
    twAttributes values() const;
    WB_Preset wbPreset() const;

    // The control of a setting, named by objectNameOf for automation.
    QWidget* control(BRAW_Settings id) const { return m_controls[static_cast<size_t>(id)]; }
    static const char* objectNameOf(BRAW_Settings id);

signals:
    // Any value changed by the user or by a preset applied.
    void changed();

private:
    QComboBox* combo(BRAW_Settings id) const;
    QDoubleSpinBox* number(BRAW_Settings id) const;
    QSpinBox* integer(BRAW_Settings id) const;
    QCheckBox* check(BRAW_Settings id) const;
    void makeControls();
    void fillChoices();
    // Shows `text` in a list control, adding it when the list lacks it so that
    // no value is lost by opening the panel.
    void showChoice(BRAW_Settings id, const QString& text);
    void updateEnabledStates();
    void onWhiteBalancePresetChosen();
    void onKelvinOrTintEdited();
    void onGammaChosen();
    void emitChanged();

    twSettingLimits m_limits;
    std::array<QWidget*, BRAW_SETTINGS_COUNT> m_controls{};
    QGroupBox* m_toneCurveGroup = nullptr;
    twFrameAttributes m_asShot;
    twAttributes m_shown;
    QString m_previousGamma;
    // Set while the panel itself writes into its controls.
    int m_updating = 0;
};
