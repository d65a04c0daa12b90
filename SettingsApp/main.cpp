// Tarnwick: the companion settings application of the importer plug-in.

#include "twAppEnvironment.h"
#include "twAutomation.h"
#include "twDesktopWindow.h"
#include "twPreferencesWindow.h"
#include "twSourceSettingsDialog.h"

#include <QApplication>

#include <cstdio>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName("Tarnwick");
    QApplication::setOrganizationName("Qervane");

    const twAppArguments arguments = twAppArguments::parse(QApplication::arguments().mid(1));
    if (arguments.mode == twAppArguments::Mode::Help) {
        std::fputs(twAppEnvironment::usage(), stdout);
        return 0;
    }
    if (arguments.mode == twAppArguments::Mode::Invalid) {
        std::fprintf(stderr, "Tarnwick: %s\n\n%s", arguments.error.toLocal8Bit().constData(),
                     twAppEnvironment::usage());
        return 2;
    }
    if (!arguments.scriptPath.isEmpty()) {
        QString error;
        if (!twAutomation::load(arguments.scriptPath, error)) {
            std::fprintf(stderr, "Tarnwick: %s\n", error.toLocal8Bit().constData());
            return 2;
        }
    }
    twAppEnvironment::initialise(arguments);

    int result = 0;
    switch (arguments.mode) {
        case twAppArguments::Mode::PreferencesPopup:
            result = twPreferencesWindow::run(twAppEnvironment::readHostJson());
            break;
        case twAppArguments::Mode::SourceSettingsPopup:
            result = twSourceSettingsDialog::run(arguments);
            break;
        default: {
            twDesktopWindow window;
            window.show();
            if (!arguments.desktopClip.isEmpty()) window.openClip(arguments.desktopClip);
            twAutomation::runWhenShown(&window);
            result = app.exec();
            break;
        }
    }
    // A script whose checks failed fails the run, for the tests that drive it.
    return result != 0 ? result : (twAutomation::failures() > 0 ? 3 : 0);
}
