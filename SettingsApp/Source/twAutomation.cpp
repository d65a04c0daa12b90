#include "twAutomation.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDoubleSpinBox>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QMetaObject>
#include <QPointer>
#include <QSlider>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTabWidget>
#include <QTextStream>
#include <QTimer>

#include <cstdio>

namespace {

QStringList g_lines;
bool g_active = false;
int g_failures = 0;

void report(const QString& text) {
    std::fprintf(stderr, "Tarnwick: %s\n", text.toLocal8Bit().constData());
    std::fflush(stderr);
}

void fail(int line, const QString& text) {
    ++g_failures;
    report(QString("script line %1: %2").arg(line).arg(text));
}

QString shownValue(QWidget* w) {
    if (auto* box = qobject_cast<QComboBox*>(w)) return box->currentText();
    if (auto* box = qobject_cast<QCheckBox*>(w)) return box->isChecked() ? "true" : "false";
    if (auto* box = qobject_cast<QSpinBox*>(w)) return QString::number(box->value());
    if (auto* box = qobject_cast<QDoubleSpinBox*>(w)) return QString::number(box->value(), 'f', box->decimals());
    if (auto* box = qobject_cast<QLineEdit*>(w)) return box->text();
    if (auto* box = qobject_cast<QSlider*>(w)) return QString::number(box->value());
    if (auto* box = qobject_cast<QLabel*>(w)) return box->text();
    if (auto* list = qobject_cast<QListWidget*>(w)) return QString::number(list->currentRow());
    if (auto* tabs = qobject_cast<QTabWidget*>(w)) return QString::number(tabs->currentIndex());
    return QString();
}

bool sameValue(QWidget* w, const QString& expected) {
    const QString shown = shownValue(w);
    if (shown == expected) return true;
    bool a = false;
    bool b = false;
    const double x = shown.toDouble(&a);
    const double y = expected.toDouble(&b);
    return a && b && qAbs(x - y) < 1e-6;
}

// Sets a control as a user could: only enabled controls, only choices that
// may be chosen, numbers within the control's range.
bool setValue(QWidget* w, const QString& value, QString& why) {
    if (!w->isEnabled()) {
        why = "refused: " + w->objectName() + " cannot be changed here";
        return false;
    }
    if (auto* box = qobject_cast<QComboBox*>(w)) {
        int index = box->findText(value, Qt::MatchExactly);
        bool isIndex = false;
        if (index < 0) {
            index = value.toInt(&isIndex);
            if (!isIndex) index = -1;
        }
        if (index < 0 || index >= box->count()) {
            why = "no choice " + value + " in " + w->objectName();
            return false;
        }
        auto* model = qobject_cast<QStandardItemModel*>(box->model());
        if (model && model->item(index) && !model->item(index)->isEnabled()) {
            why = "refused: " + value + " cannot be chosen in " + w->objectName();
            return false;
        }
        box->setCurrentIndex(index);
        return true;
    }
    if (auto* box = qobject_cast<QCheckBox*>(w)) {
        box->setChecked(value == "true" || value == "1");
        return true;
    }
    bool ok = false;
    if (auto* box = qobject_cast<QSpinBox*>(w)) {
        const double number = value.toDouble(&ok);
        if (ok) box->setValue(static_cast<int>(qBound<double>(box->minimum(), number, box->maximum())));
    } else if (auto* box = qobject_cast<QDoubleSpinBox*>(w)) {
        const double number = value.toDouble(&ok);
        if (ok) box->setValue(number);
    } else if (auto* box = qobject_cast<QSlider*>(w)) {
        const int number = value.toInt(&ok);
        if (ok) box->setValue(number);
    } else if (auto* box = qobject_cast<QLineEdit*>(w)) {
        box->setText(value);
        ok = true;
    }
    if (!ok) why = "cannot set " + w->objectName() + " to " + value;
    return ok;
}

QWidget* activeWindowOf(QWidget* fallback) {
    QWidget* modal = QApplication::activeModalWidget();
    return modal ? modal : fallback;
}

void runScript(QPointer<QWidget> window) {
    int lineNumber = 0;
    for (const QString& raw : g_lines) {
        ++lineNumber;
        const QString line = raw.trimmed();
        if (line.isEmpty() || line.startsWith('#')) continue;
        if (window.isNull() || !window->isVisible()) {
            fail(lineNumber, "the window has closed before: " + line);
            break;
        }
        QWidget* root = activeWindowOf(window);
        const QString command = line.section(' ', 0, 0);
        const QString name = line.section(' ', 1, 1);
        const QString rest = line.section(' ', 2);
        QCoreApplication::processEvents();

        if (command == "open" || command == "grab" || command == "dump") {
            const QString path = line.section(' ', 1);
            if (command == "open") {
                if (!QMetaObject::invokeMethod(root, "openClip", Q_ARG(QString, path))) {
                    fail(lineNumber, "this window opens no clip");
                }
            } else if (command == "grab") {
                QMetaObject::invokeMethod(root, "refreshNow");
                if (!root->grab().save(path, "PNG")) fail(lineNumber, "cannot write " + path);
            } else {
                QFile file(path);
                if (!file.open(QIODevice::WriteOnly) || file.write(twAutomation::dumpControls(root)) < 0) {
                    fail(lineNumber, "cannot write " + path);
                }
            }
            continue;
        }
        if (command == "tab") {
            auto* tabs = root->findChild<QTabWidget*>("tabs");
            if (!tabs) {
                fail(lineNumber, "this window has no tabs");
            } else {
                tabs->setCurrentIndex(name.toInt());
            }
            continue;
        }
        if (command == "press") {
            if (auto* action = root->findChild<QAction*>(name)) {
                action->trigger();
                continue;
            }
        }
        QWidget* target = root->findChild<QWidget*>(name);
        if (!target) {
            fail(lineNumber, "no control named " + name);
            continue;
        }
        if (command == "set") {
            QString why;
            if (!setValue(target, rest, why)) {
                // A refused edit is what a user meets too: reported, not a failure.
                if (why.startsWith("refused")) {
                    report(QString("script line %1: %2").arg(lineNumber).arg(why));
                } else {
                    fail(lineNumber, why);
                }
            }
        } else if (command == "press") {
            auto* button = qobject_cast<QAbstractButton*>(target);
            if (!button || !button->isEnabled()) {
                fail(lineNumber, name + " is no button that can be pressed");
            } else {
                button->click();
            }
        } else if (command == "select") {
            auto* list = qobject_cast<QListWidget*>(target);
            if (!list) {
                fail(lineNumber, name + " is no list");
            } else {
                list->setCurrentRow(rest.toInt());
            }
        } else if (command == "expect") {
            if (!sameValue(target, rest)) {
                fail(lineNumber, name + " shows \"" + shownValue(target) + "\", expected \"" + rest + "\"");
            }
        } else {
            fail(lineNumber, "unknown command " + command);
        }
    }
    QCoreApplication::processEvents();
    if (!window.isNull() && window->isVisible()) {
        if (auto* dialog = qobject_cast<QDialog*>(window.data())) {
            dialog->reject();
        } else {
            window->close();
        }
    }
}

}  // namespace

namespace twAutomation {

bool load(const QString& path, QString& error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        error = "cannot read the script " + path;
        return false;
    }
    g_lines = QString::fromUtf8(file.readAll()).split('\n');
    g_active = true;
    return true;
}

bool active() { return g_active; }

void runWhenShown(QWidget* window) {
    if (!g_active) return;
    QPointer<QWidget> guarded(window);
    QTimer::singleShot(0, window, [guarded] { runScript(guarded); });
}

int failures() { return g_failures; }

QByteArray dumpControls(QWidget* root) {
    QJsonObject all;
    for (QWidget* w : root->findChildren<QWidget*>()) {
        const QString name = w->objectName();
        if (name.isEmpty() || name.startsWith("qt_")) continue;
        QJsonObject entry;
        entry["value"] = shownValue(w);
        entry["enabled"] = w->isEnabled();
        if (auto* box = qobject_cast<QComboBox*>(w)) {
            QJsonArray items;
            QJsonArray choosable;
            auto* model = qobject_cast<QStandardItemModel*>(box->model());
            for (int i = 0; i < box->count(); ++i) {
                items.append(box->itemText(i));
                choosable.append(!model || !model->item(i) || model->item(i)->isEnabled());
            }
            entry["items"] = items;
            entry["choosable"] = choosable;
        } else if (auto* box = qobject_cast<QSpinBox*>(w)) {
            entry["min"] = box->minimum();
            entry["max"] = box->maximum();
        } else if (auto* box = qobject_cast<QDoubleSpinBox*>(w)) {
            entry["min"] = box->minimum();
            entry["max"] = box->maximum();
        } else if (auto* list = qobject_cast<QListWidget*>(w)) {
            QJsonArray items;
            for (int i = 0; i < list->count(); ++i) items.append(list->item(i)->text());
            entry["items"] = items;
        }
        all[name] = entry;
    }
    return QJsonDocument(all).toJson();
}

}  // namespace twAutomation

namespace twMessages {

namespace {
bool noScreenForBoxes() {
    return twAutomation::active() || QGuiApplication::platformName() == "offscreen" ||
           QGuiApplication::platformName() == "minimal";
}
}  // namespace

void error(QWidget* parent, const QString& title, const QString& text) {
    report(title + ": " + text);
    if (!noScreenForBoxes()) QMessageBox::critical(parent, title, text);
}

bool ask(QWidget* parent, const QString& title, const QString& text, bool defaultAnswer) {
    if (noScreenForBoxes()) return defaultAnswer;
    const auto answer =
        QMessageBox::question(parent, title, text, QMessageBox::Yes | QMessageBox::No,
                              defaultAnswer ? QMessageBox::Yes : QMessageBox::No);
    return answer == QMessageBox::Yes;
}

}  // namespace twMessages
