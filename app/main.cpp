#include <QApplication>
#include <cstdio>

#include "app/startup.h"
#include "core/settings.h"
#include "dialogs/boxprompter.h"
#include "dialogs/dialogchoosers.h"
#include "navigator/navwindow.h"

int main(int argc, char* argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY") &&
        qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        std::fprintf(stderr, "Quillmere needs a graphical display, and none is available here "
                             "(neither DISPLAY nor WAYLAND_DISPLAY is set).\n");
        return 2;
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillmere"));
    QApplication::setOrganizationName(QStringLiteral("QMR"));
    QApplication::setApplicationVersion(QStringLiteral(QMR_VERSION));

    qmr::Settings settings;
    qmr::BoxPrompter prompter;
    qmr::DialogChoosers choosers(settings);
    qmr::Startup startup(qmr::AppHome::fromArguments(QApplication::arguments()), settings, prompter,
                         choosers);
    if (!startup.start())
        return 1;
    prompter.setParent(startup.window());
    choosers.setParent(startup.window());
    QObject::connect(startup.window(), &qmr::NavWindow::exitRequested, &app,
                     [] { QApplication::exit(0); });
    return app.exec();
}
