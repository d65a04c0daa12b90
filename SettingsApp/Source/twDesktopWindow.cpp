#include "twDesktopWindow.h"

#include "twAutomation.h"
#include "twClipEditor.h"
#include "twPreferencesWindow.h"

#include "TW_Settings_Utils/LutUtility.h"
#include "TW_Settings_Utils/SidecarUtility.h"

#include <QAction>
#include <QCloseEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QStackedWidget>
#include <QStatusBar>

twDesktopWindow::twDesktopWindow(QWidget* parent)
    : QMainWindow(parent), m_pages(new QStackedWidget), m_welcome(new QLabel) {
    m_welcome->setObjectName("welcome");
    m_welcome->setAlignment(Qt::AlignCenter);
    m_welcome->setText(tr("<h2>Tarnwick</h2><p>Open a camera RAW clip (.braw) to edit the decode settings its "
                          "sidecar holds.</p><p>File &gt; Open Clip... (Ctrl+O)</p>"));
    m_pages->addWidget(m_welcome);
    setCentralWidget(m_pages);

    QMenu* file = menuBar()->addMenu(tr("&File"));
    QAction* open = file->addAction(tr("&Open Clip..."), this, &twDesktopWindow::chooseClip);
    open->setObjectName("openClip");
    open->setShortcut(QKeySequence::Open);
    m_saveAction = file->addAction(tr("&Save Settings to Sidecar"), this, &twDesktopWindow::save);
    m_saveAction->setObjectName("save");
    m_saveAction->setShortcut(QKeySequence::Save);
    m_saveAction->setEnabled(false);
    file->addSeparator();
    QAction* preferences = file->addAction(tr("&Preferences..."), this, &twDesktopWindow::showPreferences);
    preferences->setObjectName("preferences");
    preferences->setShortcut(QKeySequence::Preferences);
    file->addSeparator();
    QAction* quit = file->addAction(tr("&Quit"), this, &QWidget::close);
    quit->setObjectName("quit");
    quit->setShortcut(QKeySequence::Quit);

    statusBar()->showMessage(tr("No clip open"));
    updateTitle();
    resize(1180, 780);
}

twDesktopWindow::~twDesktopWindow() {
    // The editor refers to the session: it goes first.
    delete m_editor;
    m_editor = nullptr;
}

bool twDesktopWindow::openClip(const QString& path) {
    if (!keepUnsavedEdits()) return false;
    auto session = std::make_unique<twClipSession>();
    QString error;
    if (!session->openClip(path, error)) {
        twMessages::error(this, tr("Open Clip"), tr("The clip cannot be opened.\n\n%1").arg(error));
        return false;
    }
    delete m_editor;
    m_session = std::move(session);
    m_editor = new twClipEditor(*m_session);
    m_pages->addWidget(m_editor);
    m_pages->setCurrentWidget(m_editor);
    connect(m_editor, &twClipEditor::modifiedChanged, this, &twDesktopWindow::updateTitle);
    m_editor->start(m_session->clipAttributes(), WB_PRESET_AS_SHOT);
    m_saveAction->setEnabled(true);
    statusBar()->showMessage(tr("%1: %2 x %3, %4 frames")
                                 .arg(QFileInfo(path).fileName())
                                 .arg(m_session->clipWidth())
                                 .arg(m_session->clipHeight())
                                 .arg(m_session->frameCount()));
    updateTitle();
    return true;
}

bool twDesktopWindow::save() {
    if (!m_editor) return false;
    const QString sidecar = m_session->sidecarPath();
    const qvUtf8String sidecarPath(sidecar.toStdString());
    // The LUT first, so that the settings written after it select it.
    if (!m_editor->chosenLut().isEmpty()) {
        const QvResult added = LutUtility::addLUTToSidecar(sidecarPath, qvUtf8String(m_editor->chosenLut().toStdString()));
        if (added.hasError) {
            twMessages::error(this, tr("Save"), tr("The LUT could not be written into %1.\n\n%2")
                                                    .arg(sidecar, QString::fromStdString(added.toString().Str())));
            return false;
        }
    }
    if (SidecarUtility::writeSidecarFromPrefs(sidecarPath, m_editor->values()) != SidecarUtility::SIDECAR_OK) {
        twMessages::error(this, tr("Save"), tr("The settings could not be written into %1.").arg(sidecar));
        return false;
    }
    m_session->reloadSidecar();
    m_editor->setUnmodified();
    statusBar()->showMessage(tr("Saved to %1").arg(sidecar));
    updateTitle();
    m_editor->refreshNow();
    return true;
}

void twDesktopWindow::refreshNow() {
    if (m_editor) m_editor->refreshNow();
}

void twDesktopWindow::chooseClip() {
    const QString path = QFileDialog::getOpenFileName(this, tr("Open Clip"), QString(),
                                                      tr("Camera RAW clips (*.braw);;All files (*)"));
    if (!path.isEmpty()) openClip(path);
}

void twDesktopWindow::showPreferences() {
    twPreferencesWindow preferences(this);
    preferences.exec();
}

void twDesktopWindow::updateTitle() {
    QString title = tr("Tarnwick");
    if (m_session && m_session->hasClip()) {
        title = QFileInfo(m_session->clipPath()).fileName() + (m_editor && m_editor->isModified() ? " *" : "") +
                " - " + title;
    }
    setWindowTitle(title);
}

bool twDesktopWindow::keepUnsavedEdits() {
    if (!m_editor || !m_editor->isModified()) return true;
    // Unsaved edits are dropped only when the user says so; a script is never asked.
    return twMessages::ask(this, tr("Unsaved settings"),
                           tr("The settings of %1 have not been saved. Drop them?")
                               .arg(QFileInfo(m_session->clipPath()).fileName()),
                           true);
}

void twDesktopWindow::closeEvent(QCloseEvent* event) {
    if (keepUnsavedEdits()) {
        event->accept();
    } else {
        event->ignore();
    }
}
