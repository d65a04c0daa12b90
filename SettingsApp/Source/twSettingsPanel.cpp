#include "twSettingsPanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QVBoxLayout>

#include <cmath>
#include <cstring>

namespace {

QString fixed(const char* field, size_t size) { return QString::fromUtf8(field, static_cast<int>(strnlen(field, size))); }

struct Layout {
    const char* group;
    std::initializer_list<BRAW_Settings> settings;
};

const Layout kGroups[] = {
    {"Colour",
     {BRAW_SETTING_COLOR_SCIENCE, BRAW_SETTING_GAMUT, BRAW_SETTING_GAMUT_COMPRESSION, BRAW_SETTING_GAMMA}},
    {"Exposure and white balance",
     {BRAW_SETTING_ISO, BRAW_SETTING_EXPOSURE, BRAW_SETTING_HIGHLIGHT_RECOVERY, BRAW_SETTING_WB_PRESET,
      BRAW_SETTING_COLOR_TEMP, BRAW_SETTING_TINT}},
    {"Tone curve (Blackmagic Design Custom gamma)",
     {BRAW_SETTING_SATURATION, BRAW_SETTING_CONTRAST, BRAW_SETTING_MIDPOINT, BRAW_SETTING_HIGHLIGHTS,
      BRAW_SETTING_SHADOWS, BRAW_SETTING_WHITE_LEVEL, BRAW_SETTING_BLACK_LEVEL, BRAW_SETTING_USE_VIDEO_BLACK_LEVEL}},
    {"LUT", {BRAW_SETTING_LUT_ENABLED, BRAW_SETTING_LUT_MODE}},
};

bool isWholeNumber(BRAW_Settings id) { return id == BRAW_SETTING_COLOR_TEMP || id == BRAW_SETTING_TINT; }

}  // namespace

const char* twSettingsPanel::objectNameOf(BRAW_Settings id) {
    static const char* const names[BRAW_SETTINGS_COUNT] = {
        "colorScience", "gamut",    "gamutCompression", "iso",        "exposure",  "highlightRecovery",
        "lutEnabled",   "lutMode",  "wbPreset",         "colorTemp",  "tint",      "gamma",
        "saturation",   "contrast", "midpoint",         "highlights", "shadows",   "whiteLevel",
        "blackLevel",   "useVideoBlackLevel"};
    return names[static_cast<size_t>(id)];
}

twSettingsPanel::twSettingsPanel(QWidget* parent) : QWidget(parent) {
    makeControls();
    setLimits(twSettingLimits());
    setValues(twAttributes(), WB_PRESET_AS_SHOT);
}

void twSettingsPanel::makeControls() {
    auto* column = new QVBoxLayout(this);
    for (const Layout& layout : kGroups) {
        auto* group = new QGroupBox(tr(layout.group), this);
        auto* form = new QFormLayout(group);
        form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
        for (BRAW_Settings id : layout.settings) {
            const RAW_Setting_Info& info = s_brawSettingsInfosMap.at(id);
            QWidget* control = nullptr;
            if (info.kind == RAW_SETTING_KIND_LIST) {
                auto* box = new QComboBox(group);
                connect(box, qOverload<int>(&QComboBox::currentIndexChanged), this, [this, id] {
                    if (m_updating) return;
                    if (id == BRAW_SETTING_WB_PRESET) onWhiteBalancePresetChosen();
                    if (id == BRAW_SETTING_GAMMA) onGammaChosen();
                    emitChanged();
                });
                control = box;
            } else if (info.kind == RAW_SETTING_KIND_SWITCH) {
                auto* box = new QCheckBox(group);
                connect(box, &QCheckBox::toggled, this, [this] {
                    if (m_updating) return;
                    updateEnabledStates();
                    emitChanged();
                });
                control = box;
            } else if (isWholeNumber(id)) {
                auto* box = new QSpinBox(group);
                box->setKeyboardTracking(false);
                if (id == BRAW_SETTING_COLOR_TEMP) box->setSuffix(" K");
                connect(box, qOverload<int>(&QSpinBox::valueChanged), this, [this] {
                    if (m_updating) return;
                    onKelvinOrTintEdited();
                    emitChanged();
                });
                control = box;
            } else {
                auto* box = new QDoubleSpinBox(group);
                box->setKeyboardTracking(false);
                box->setDecimals(id == BRAW_SETTING_EXPOSURE ? 2 : 3);
                box->setSingleStep(id == BRAW_SETTING_EXPOSURE ? 0.1 : 0.01);
                if (id == BRAW_SETTING_EXPOSURE) box->setSuffix(" stops");
                connect(box, qOverload<double>(&QDoubleSpinBox::valueChanged), this, [this] {
                    if (!m_updating) emitChanged();
                });
                control = box;
            }
            control->setObjectName(objectNameOf(id));
            control->setAccessibleName(QString::fromStdString(info.name.Str()));
            form->addRow(QString::fromStdString(info.name.Str()), control);
            m_controls[static_cast<size_t>(id)] = control;
        }
        if (layout.settings.begin()[0] == BRAW_SETTING_SATURATION) m_toneCurveGroup = group;
        column->addWidget(group);
    }
    column->addStretch(1);
}

QComboBox* twSettingsPanel::combo(BRAW_Settings id) const { return static_cast<QComboBox*>(control(id)); }
QDoubleSpinBox* twSettingsPanel::number(BRAW_Settings id) const { return static_cast<QDoubleSpinBox*>(control(id)); }
QSpinBox* twSettingsPanel::integer(BRAW_Settings id) const { return static_cast<QSpinBox*>(control(id)); }
QCheckBox* twSettingsPanel::check(BRAW_Settings id) const { return static_cast<QCheckBox*>(control(id)); }

void twSettingsPanel::setLimits(const twSettingLimits& limits) {
    const twAttributes shown = values();
    const WB_Preset wb = wbPreset();
    ++m_updating;
    m_limits = limits;
    for (const auto& entry : s_brawSettingsInfosMap) {
        const BRAW_Settings id = entry.first;
        const twSettingLimit& limit = m_limits[id];
        if (limit.kind == RAW_SETTING_KIND_NUMBER) {
            if (isWholeNumber(id)) {
                integer(id)->setRange(static_cast<int>(std::ceil(limit.minimum)), static_cast<int>(std::floor(limit.maximum)));
            } else {
                number(id)->setRange(limit.minimum, limit.maximum);
            }
        }
        const QString hint = limit.readOnly ? tr("The clip fixes this setting: it cannot be changed.") : QString();
        control(id)->setToolTip(hint);
    }
    --m_updating;
    setValues(shown, wb);
}

void twSettingsPanel::fillChoices() {
    for (const auto& entry : s_brawSettingsInfosMap) {
        const twSettingLimit& limit = m_limits[entry.first];
        if (limit.kind != RAW_SETTING_KIND_LIST) continue;
        QComboBox* box = combo(entry.first);
        box->clear();
        for (size_t i = 0; i < limit.choices.size(); ++i) {
            box->addItem(QString::fromStdString(limit.choices[i]));
            auto* model = qobject_cast<QStandardItemModel*>(box->model());
            if (!limit.choiceEnabled[i] && model) model->item(static_cast<int>(i))->setEnabled(false);
        }
    }
}

void twSettingsPanel::showChoice(BRAW_Settings id, const QString& text) {
    QComboBox* box = combo(id);
    int index = box->findText(text, Qt::MatchExactly);
    if (index < 0 && !text.isEmpty()) {
        box->addItem(text);
        index = box->count() - 1;
    }
    box->setCurrentIndex(index);
}

void twSettingsPanel::setValues(const twAttributes& attributes, WB_Preset wb) {
    ++m_updating;
    // The lists start again from the clip's choices: a value shown earlier that
    // they lack leaves with it.
    fillChoices();
    m_shown = attributes;
    const twClipAttributes& clip = attributes.clip;
    const twFrameAttributes& frame = attributes.frame;

    const std::vector<uint16_t>& generations = m_limits.colorScienceGenerations();
    int science = -1;
    for (size_t i = 0; i < generations.size(); ++i) {
        if (generations[i] == clip.colorScienceGen) science = static_cast<int>(i);
    }
    if (science >= 0) {
        combo(BRAW_SETTING_COLOR_SCIENCE)->setCurrentIndex(science);
    } else {
        showChoice(BRAW_SETTING_COLOR_SCIENCE, "Version " + QString::number(clip.colorScienceGen));
    }
    showChoice(BRAW_SETTING_GAMUT, fixed(clip.gamut, sizeof(clip.gamut)));
    check(BRAW_SETTING_GAMUT_COMPRESSION)->setChecked(clip.gamutCompression);
    showChoice(BRAW_SETTING_GAMMA, fixed(clip.gamma, sizeof(clip.gamma)));
    m_previousGamma = combo(BRAW_SETTING_GAMMA)->currentText();
    showChoice(BRAW_SETTING_ISO, QString::number(frame.iso));
    number(BRAW_SETTING_EXPOSURE)->setValue(frame.exposure);
    check(BRAW_SETTING_HIGHLIGHT_RECOVERY)->setChecked(clip.highlightRecovery);
    combo(BRAW_SETTING_WB_PRESET)->setCurrentIndex(static_cast<int>(wb < WB_PRESET_NONE ? wb : WB_PRESET_CUSTOM));
    integer(BRAW_SETTING_COLOR_TEMP)->setValue(static_cast<int>(frame.kelvin));
    integer(BRAW_SETTING_TINT)->setValue(frame.tint);

    const twGammaControlsValues& curve = clip.gammaControls;
    number(BRAW_SETTING_SATURATION)->setValue(curve.saturation);
    number(BRAW_SETTING_CONTRAST)->setValue(curve.contrast);
    number(BRAW_SETTING_MIDPOINT)->setValue(curve.midpoint);
    number(BRAW_SETTING_HIGHLIGHTS)->setValue(curve.highlights);
    number(BRAW_SETTING_SHADOWS)->setValue(curve.shadows);
    number(BRAW_SETTING_WHITE_LEVEL)->setValue(curve.whiteLevel);
    number(BRAW_SETTING_BLACK_LEVEL)->setValue(curve.blackLevel);
    check(BRAW_SETTING_USE_VIDEO_BLACK_LEVEL)->setChecked(curve.useVideoBlackLevel);

    const QString lut = fixed(clip.lutMode, sizeof(clip.lutMode));
    const bool lutOn = !lut.isEmpty() && lut != "Disabled";
    check(BRAW_SETTING_LUT_ENABLED)->setChecked(lutOn);
    if (lutOn) {
        showChoice(BRAW_SETTING_LUT_MODE, lut);
    } else {
        combo(BRAW_SETTING_LUT_MODE)->setCurrentIndex(0);
    }
    updateEnabledStates();
    --m_updating;
}

twAttributes twSettingsPanel::values() const {
    twAttributes out = m_shown;
    out.useClipAndFrameAttributes = true;
    twClipAttributes& clip = out.clip;
    twFrameAttributes& frame = out.frame;

    const int science = combo(BRAW_SETTING_COLOR_SCIENCE)->currentIndex();
    const std::vector<uint16_t>& generations = m_limits.colorScienceGenerations();
    if (science >= 0 && static_cast<size_t>(science) < generations.size()) {
        clip.colorScienceGen = generations[static_cast<size_t>(science)];
    }
    twCopyFixedText(clip.gamut, sizeof(clip.gamut), combo(BRAW_SETTING_GAMUT)->currentText().toStdString().c_str());
    clip.gamutCompression = check(BRAW_SETTING_GAMUT_COMPRESSION)->isChecked();
    twCopyFixedText(clip.gamma, sizeof(clip.gamma), combo(BRAW_SETTING_GAMMA)->currentText().toStdString().c_str());
    bool isoRead = false;
    const uint32_t iso = combo(BRAW_SETTING_ISO)->currentText().toUInt(&isoRead);
    if (isoRead) frame.iso = iso;
    frame.exposure = static_cast<float>(number(BRAW_SETTING_EXPOSURE)->value());
    clip.highlightRecovery = check(BRAW_SETTING_HIGHLIGHT_RECOVERY)->isChecked();
    frame.kelvin = static_cast<uint32_t>(integer(BRAW_SETTING_COLOR_TEMP)->value());
    frame.tint = static_cast<int16_t>(integer(BRAW_SETTING_TINT)->value());

    twGammaControlsValues& curve = clip.gammaControls;
    curve.saturation = static_cast<float>(number(BRAW_SETTING_SATURATION)->value());
    curve.contrast = static_cast<float>(number(BRAW_SETTING_CONTRAST)->value());
    curve.midpoint = static_cast<float>(number(BRAW_SETTING_MIDPOINT)->value());
    curve.highlights = static_cast<float>(number(BRAW_SETTING_HIGHLIGHTS)->value());
    curve.shadows = static_cast<float>(number(BRAW_SETTING_SHADOWS)->value());
    curve.whiteLevel = static_cast<float>(number(BRAW_SETTING_WHITE_LEVEL)->value());
    curve.blackLevel = static_cast<float>(number(BRAW_SETTING_BLACK_LEVEL)->value());
    curve.useVideoBlackLevel = check(BRAW_SETTING_USE_VIDEO_BLACK_LEVEL)->isChecked();

    const QString lut = check(BRAW_SETTING_LUT_ENABLED)->isChecked() ? combo(BRAW_SETTING_LUT_MODE)->currentText()
                                                                       : QString("Disabled");
    twCopyFixedText(clip.lutMode, sizeof(clip.lutMode), lut.toStdString().c_str());
    return out;
}

WB_Preset twSettingsPanel::wbPreset() const {
    const int index = combo(BRAW_SETTING_WB_PRESET)->currentIndex();
    return index >= 0 && index < static_cast<int>(WB_PRESET_NONE) ? static_cast<WB_Preset>(index) : WB_PRESET_CUSTOM;
}

void twSettingsPanel::updateEnabledStates() {
    for (const auto& entry : s_brawSettingsInfosMap) {
        control(entry.first)->setEnabled(!m_limits[entry.first].readOnly);
    }
    // The tone curve acts only under the custom gamma; elsewhere it would change
    // nothing in the picture.
    m_toneCurveGroup->setEnabled(combo(BRAW_SETTING_GAMMA)->currentText() == TW_CUSTOM_GAMMA_NAME);
    control(BRAW_SETTING_LUT_MODE)
        ->setEnabled(check(BRAW_SETTING_LUT_ENABLED)->isChecked() && !m_limits[BRAW_SETTING_LUT_MODE].readOnly);
}

void twSettingsPanel::onWhiteBalancePresetChosen() {
    const WB_Preset preset = wbPreset();
    ++m_updating;
    if (preset == WB_PRESET_AS_SHOT) {
        integer(BRAW_SETTING_COLOR_TEMP)->setValue(static_cast<int>(m_asShot.kelvin));
        integer(BRAW_SETTING_TINT)->setValue(m_asShot.tint);
    } else if (preset != WB_PRESET_CUSTOM) {
        const WB_PresetInfo& info = s_whiteBalancePresetVector[static_cast<size_t>(preset)];
        integer(BRAW_SETTING_COLOR_TEMP)->setValue(static_cast<int>(info.kelvin));
        integer(BRAW_SETTING_TINT)->setValue(info.tint);
    }
    --m_updating;
}

void twSettingsPanel::onKelvinOrTintEdited() {
    // A hand-made white balance is no longer the preset's.
    ++m_updating;
    combo(BRAW_SETTING_WB_PRESET)->setCurrentIndex(WB_PRESET_CUSTOM);
    --m_updating;
}

void twSettingsPanel::onGammaChosen() {
    const QString gamma = combo(BRAW_SETTING_GAMMA)->currentText();
    if (gamma == TW_CUSTOM_GAMMA_NAME && m_previousGamma != gamma) {
        // A custom curve starts from the curve of the gamma it replaces.
        twGammaControlsValues curve;
        const twAttributes current = values();
        if (m_limits.toneCurveOf(current.clip.colorScienceGen, m_previousGamma.toStdString(), curve)) {
            twAttributes withCurve = current;
            withCurve.clip.gammaControls = curve;
            const WB_Preset wb = wbPreset();
            setValues(withCurve, wb);
        }
    }
    m_previousGamma = gamma;
    updateEnabledStates();
}

void twSettingsPanel::emitChanged() { emit changed(); }
