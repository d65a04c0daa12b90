#pragma once
// The preferences window the hosts open: the options of "Tarnwick_options.ini",
// the list of presets, and what the product knows about itself. OK writes the
// options and the preset changes; Cancel writes nothing.

#include "Common/TW_Debug_Options.h"
#include "twPresetSlots.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;
class QTabWidget;

class twPreferencesWindow : public QDialog {
    Q_OBJECT
public:
    // The pages, by the tab number a host passes.
    enum Tab { TabOptions = 0, TabPresets = 1, TabAbout = 2 };

    explicit twPreferencesWindow(QWidget* parent = nullptr);

    // An unknown tab number shows the options.
    void showTab(int tab);
    // Whether OK wrote the options or changed the presets.
    bool modified() const { return m_modified; }
    // The options as the controls show them.
    TWDebugOptions shownOptions() const;

    // The whole popup: reads the host's JSON, shows the window, prints the
    // answer line. 0.
    static int run(const QByteArray& hostJson);

public slots:
    void refreshNow() {}

protected:
    void done(int result) override;

private:
    QWidget* makeOptionsPage();
    QWidget* makePresetsPage();
    QWidget* makeAboutPage();
    QCheckBox* addOption(class QFormLayout* form, const char* objectName, const QString& text, const QString& meaning,
                         bool value);
    void fillPresetList();
    int selectedSlot() const;
    void createPreset();
    void renamePreset();
    void deletePreset();
    bool save();

    QTabWidget* m_tabs;
    TWDebugOptions m_loaded;
    QComboBox* m_logging = nullptr;
    QLineEdit* m_desktopPath = nullptr;
    QListWidget* m_presetList = nullptr;
    QLineEdit* m_presetName = nullptr;
    twPresetSlots m_presets;
    bool m_modified = false;
};
