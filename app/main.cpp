#include <QApplication>
#include <QCoreApplication>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "app/commandline.h"
#include "app/exitonsignal.h"
#include "app/startup.h"
#include "core/brokenpipes.h"
#include "core/imageloader.h"
#include "core/settings.h"
#include "dialogs/boxprompter.h"
#include "dialogs/dialogchoosers.h"
#include "help/helplocator.h"
#include "navigator/navwindow.h"
#include "text/textworker.h"

namespace {

// --help-file: names the help file that Help Topics would show and exits, so that an
// installation can be checked without a display.
int printHelpFile(int argc, char* argv[])
{
    QCoreApplication core(argc, argv);
    const QString path =
        qmr::HelpLocator::forRun(qmr::AppHome::fromArguments(QCoreApplication::arguments()))
            .locate();
    if (path.isEmpty()) {
        std::fprintf(stderr, "%s",
                     qPrintable(QCoreApplication::translate(
                         "qmr::Main", "Cannot find help file QMRHELP.TXT.\n")));
        return 1;
    }
    std::printf("%s\n", qPrintable(path));
    return 0;
}

void nameApplication()
{
    QCoreApplication::setApplicationName(QStringLiteral("Quillmere"));
    QCoreApplication::setOrganizationName(QStringLiteral("QMR"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QMR_VERSION));
}

} // namespace

int main(int argc, char* argv[])
{
    qmr::surviveBrokenPipes();
    // Likewise a write past the session's file size limit fails with EFBIG and is reported.
    std::signal(SIGXFSZ, SIG_IGN);
    // Page images up to a 600 dpi A3 colour scan open; larger ones are refused by name.
    qmr::ImageLoader::applyLimit();
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help-file") == 0)
            return printHelpFile(argc, argv);
        if (std::strcmp(argv[i], qmr::TextWorker::kOption) == 0)
            return qmr::TextWorker::run(argc, argv);
    }
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const qmr::CommandLineRequest request = qmr::CommandLine::parse(arguments);
    using Action = qmr::CommandLineRequest::Action;
    if (request.action != Action::Window) {
        // Help, the version, a usage error and the batch commands need no window.
        QCoreApplication app(argc, argv);
        nameApplication();
        if (request.action == Action::Export || request.action == Action::Import ||
            request.action == Action::Check || request.action == Action::Find ||
            request.action == Action::ReadText)
            return qmr::CommandLine::runBatch(request);
        return qmr::CommandLine::print(request);
    }

    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY") &&
        qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        std::fprintf(stderr, "%s",
                     qPrintable(QCoreApplication::translate(
                         "qmr::Main", "Quillmere needs a graphical display, and none is "
                                      "available here (neither DISPLAY nor WAYLAND_DISPLAY is "
                                      "set).\n")));
        return 2;
    }
    QApplication app(argc, argv);
    nameApplication();

    // Before the home is locked: a signal from here on ends the run as File > Exit does.
    qmr::ExitOnSignal exitOnSignal;
    qmr::Settings settings;
    qmr::BoxPrompter prompter;
    qmr::DialogChoosers choosers;
    qmr::Startup startup(
        qmr::CommandLine::homeOf(request), settings, prompter, choosers,
        {QCoreApplication::applicationFilePath(), QString::fromLatin1(qmr::TextWorker::kOption)});
    if (!startup.start())
        return 1;
    prompter.setParent(startup.window());
    choosers.setParent(startup.window());
    QObject::connect(startup.window(), &qmr::NavWindow::exitRequested, &app,
                     [] { QApplication::exit(0); });
    exitOnSignal.attach(startup.window());
    return app.exec();
}
