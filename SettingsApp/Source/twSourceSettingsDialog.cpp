#include "twSourceSettingsDialog.h"

#include "twAppEnvironment.h"
#include "twAutomation.h"
#include "twDialogLayout.h"

#include "Manager/twSettingsVocabulary.h"
#include "TW_Settings_Utils/LutUtility.h"
#include "TW_Settings_Utils/TW_Presets.h"

#include <QFileInfo>

namespace {

QString hostName(int host) {
    switch (host) {
        case 1: return "After Effects";
        case 2: return "Premiere Pro";
        case 3: return "Media Encoder";
        case 4: return "Desktop";
        default: return QString();
    }
}

}  // namespace

twSourceSettingsDialog::twSourceSettingsDialog(twClipSession& session, int host, QWidget* parent)
    : QDialog(parent), m_editor(new twClipEditor(session)) {
    const QString clip = QFileInfo(session.clipPath()).fileName();
    const QString from = hostName(host);
    setWindowTitle(from.isEmpty() ? tr("%1 - Source Settings - Tarnwick").arg(clip)
                                  : tr("%1 - Source Settings for %2 - Tarnwick").arg(clip, from));
    twLayOutOkCancelDialog(this, m_editor);
    resize(1180, 760);
}

void twSourceSettingsDialog::initialValues(const twClipSession& session, const QString& inputPreset,
                                           twAttributes& attributes, WB_Preset& wb) {
    attributes = session.clipAttributes();
    wb = WB_PRESET_AS_SHOT;
    // No input preset means the importer had no settings of its own for the
    // clip: the clip's own settings stand.
    if (inputPreset.isEmpty() || !QFileInfo(inputPreset).isFile()) return;
    TW_Preset preset;
    if (preset.load(qvUtf8String(inputPreset.toStdString())).hasError) return;
    WB_Preset fromPreset = WB_PRESET_NONE;
    preset.getValues(attributes.clip, attributes.frame, fromPreset);
    if (fromPreset != WB_PRESET_NONE) wb = fromPreset;
}

QString twSourceSettingsDialog::writeResult(const twClipSession& session, const twClipEditor& editor,
                                            const QString& resultPreset) {
    twAttributes attributes = editor.values();
    if (!editor.chosenLut().isEmpty()) {
        const QvResult added = LutUtility::addLUTToSidecar(qvUtf8String(session.sidecarPath().toStdString()),
                                                           qvUtf8String(editor.chosenLut().toStdString()));
        if (added.hasError) return QString::fromStdString(added.toString().Str());
    }
    TW_Preset result;
    // Custom white balance: the preset then carries kelvin and tint as they are.
    result.setValues(attributes.clip, attributes.frame, WB_PRESET_CUSTOM,
                     std::vector<bool>(BRAW_SETTINGS_COUNT, true));
    const QvResult saved = result.save(qvUtf8String(resultPreset.toStdString()));
    if (saved.hasError) return QString::fromStdString(saved.toString().Str());
    return QString();
}

int twSourceSettingsDialog::run(const twAppArguments& arguments) {
    twClipSession session;
    QString error;
    if (!session.openClip(arguments.clipPath, error)) {
        twMessages::error(nullptr, QObject::tr("Tarnwick - Source Settings"),
                          QObject::tr("The clip cannot be opened.\n\n%1").arg(error));
        twAppEnvironment::printPopupAnswer(false);
        return 1;
    }
    twAttributes attributes;
    WB_Preset wb = WB_PRESET_AS_SHOT;
    initialValues(session, arguments.inputPresetPath, attributes, wb);

    twSourceSettingsDialog dialog(session, arguments.host);
    dialog.editor()->start(attributes, wb);
    twAutomation::runWhenShown(&dialog);
    bool modified = false;
    while (dialog.exec() == QDialog::Accepted) {
        const QString failure = writeResult(session, *dialog.editor(), arguments.resultPresetPath);
        if (failure.isEmpty()) {
            modified = true;
            break;
        }
        twMessages::error(&dialog, tr("Tarnwick - Source Settings"),
                          tr("The settings could not be handed back.\n\n%1").arg(failure));
        // The user keeps the edits and may try again or cancel; a script can't.
        if (twAutomation::active()) break;
    }
    twAppEnvironment::printPopupAnswer(modified);
    return 0;
}
