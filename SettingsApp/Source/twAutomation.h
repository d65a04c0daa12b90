#pragma once
// The application's own automation: a script of edits and button presses run
// against the window on screen, so that a test drives the very binary the
// plug-in starts, headless. One command a line; blank lines and lines starting
// with "#" are skipped. NAME is a control's object name.
//
//   set NAME VALUE     a list by its text (or its index), a switch by true/false,
//                      a number, a text field. A disabled control refuses the
//                      edit; a number outside the range is held at the limit,
//                      as typing it would be.
//   press NAME         clicks a button (or triggers a menu action)
//   select NAME ROW    chooses a row of a list
//   tab INDEX          shows a page of the window's tabs
//   open PATH          opens a clip (desktop window)
//   expect NAME VALUE  checks what a control shows; a mismatch fails the run
//   dump FILE          writes every named control's state as JSON
//   grab FILE          saves a picture of the window (PNG)
//
// Messages that would open a box go to standard error instead while a script
// runs. When the script ends with its window still open, the window is closed
// as Cancel would close it, so a run always ends.

#include <QString>
#include <QStringList>

class QWidget;

namespace twAutomation {

// Reads the script; false with `error` when it can't be read.
bool load(const QString& path, QString& error);
bool active();
// Runs the script against `window` once its event loop is running.
void runWhenShown(QWidget* window);
// Failed expectations and commands that could not run.
int failures();

// The JSON of every named control below `root`.
QByteArray dumpControls(QWidget* root);

}  // namespace twAutomation

namespace twMessages {

// An error the user must read: a box, or standard error while a script runs
// or when there is no screen to show it on. Always on standard error too.
void error(QWidget* parent, const QString& title, const QString& text);
// A question with a default answer; the default while a script runs.
bool ask(QWidget* parent, const QString& title, const QString& text, bool defaultAnswer);

}  // namespace twMessages
