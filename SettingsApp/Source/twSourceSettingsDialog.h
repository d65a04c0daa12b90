#pragma once
// The source-settings popup: a clip's decode settings as the plug-in hands
// them over in its input preset, edited with a live preview, and kept (OK,
// the result preset written) or dropped (Cancel, nothing written).

#include "twClipEditor.h"
#include "twClipSession.h"

#include <QDialog>

struct twAppArguments;

class twSourceSettingsDialog : public QDialog {
    Q_OBJECT
public:
    twSourceSettingsDialog(twClipSession& session, int host, QWidget* parent = nullptr);

    twClipEditor* editor() const { return m_editor; }
    // The settings the dialog starts from: the clip's own, with the input
    // preset's active settings over them when the file is there.
    static void initialValues(const twClipSession& session, const QString& inputPreset, twAttributes& attributes,
                              WB_Preset& wb);
    // The settings as a preset every setting of which is active, so that the
    // plug-in takes all of them, and the chosen LUT into the clip's sidecar.
    // An empty text, or the failure in words.
    static QString writeResult(const twClipSession& session, const twClipEditor& editor, const QString& resultPreset);

    // The whole popup: 0 when it ran (kept or cancelled), 1 when the clip
    // could not be shown. Prints the answer line in every case.
    static int run(const twAppArguments& arguments);

public slots:
    void refreshNow() { m_editor->refreshNow(); }

private:
    twClipEditor* m_editor;
};
