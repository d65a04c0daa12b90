#pragma once
// The application on its own: open a clip, edit the settings its sidecar
// holds with the same editor as the popup, save them into the sidecar.

#include "twClipSession.h"

#include <QMainWindow>

#include <memory>

class QLabel;
class QStackedWidget;
class twClipEditor;

class twDesktopWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit twDesktopWindow(QWidget* parent = nullptr);
    ~twDesktopWindow() override;

public slots:
    // Opens `path`; a clip that can't be opened is said in words and the
    // window stays as it was. False then.
    bool openClip(const QString& path);
    // Writes the settings (and a chosen LUT) into the clip's sidecar.
    bool save();
    void refreshNow();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void chooseClip();
    void showPreferences();
    void updateTitle();
    bool keepUnsavedEdits();

    std::unique_ptr<twClipSession> m_session;
    twClipEditor* m_editor = nullptr;
    QStackedWidget* m_pages;
    QLabel* m_welcome;
    QAction* m_saveAction;
};
