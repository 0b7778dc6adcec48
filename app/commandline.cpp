#include "app/commandline.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>
#include <cstdio>
#include <unistd.h>

#include "app/textbatch.h"
#include "core/homelock.h"
#include "core/quitsignals.h"
#include "core/settings.h"
#include "exchange/exchangebatch.h"
#include "filing/thumbnailmaker.h"
#include "store/schema.h"
#include "store/session.h"
#include "store/storecheck.h"
#include "store/storeerror.h"
#include "store/textindex.h"
#include "text/textindexcheck.h"
#include "text/textrecognizer.h"
#include "text/textworker.h"

namespace qmr {

namespace {

QString usage()
{
    return QCoreApplication::translate("qmr::CommandLine",
                                       "Usage: quillmere [--home DIR]\n"
                                       "       quillmere [--home DIR] --export CABINET DIR\n"
                                       "       quillmere [--home DIR] --import DIR CABINET\n"
                                       "       quillmere [--home DIR] --check [--repair]\n"
                                       "       quillmere [--home DIR] --find WORDS\n"
                                       "       quillmere [--home DIR] --read-text\n");
}

// Options that the toolkit reads for the window; they are accepted and left to it.
void addToolkitOptions(QCommandLineParser& parser)
{
    for (const char* name :
         {"platform", "platformpluginpath", "platformtheme", "plugin", "qwindowgeometry",
          "qwindowicon", "qwindowtitle", "style", "stylesheet", "display", "geometry", "session"}) {
        QCommandLineOption option(QLatin1String(name), QString(), QStringLiteral("value"));
        option.setFlags(QCommandLineOption::HiddenFromHelp);
        parser.addOption(option);
    }
    for (const char* name : {"reverse", "nograb", "dograb", "sync", "widgetcount"}) {
        QCommandLineOption option{QString(QLatin1String(name))};
        option.setFlags(QCommandLineOption::HiddenFromHelp);
        parser.addOption(option);
    }
}

} // namespace

CommandLineRequest CommandLine::parse(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.setApplicationDescription(
        tr("Files scanned paper and image files in cabinets, drawers, folders and documents.\n"
           "\n"
           "Without --export or --import the program opens its window. The two commands run\n"
           "without a window, for backups and scripts:\n"
           "  --export CABINET DIR  writes the cabinet to an exchange directory below DIR\n"
           "  --import DIR CABINET  merges the exchange directory DIR (the one that holds\n"
           "                        QMR.txt) into the cabinet\n"
           "  --check               checks the store and the page files against each other\n"
           "  --check --repair      also mends what can be mended, never removing a page\n"
           "  --find WORDS          prints the documents whose pages hold the words\n"
           "  --read-text           reads the text of every page not read yet\n"
           "They print a progress line and a report, and end with status 1 when something\n"
           "could not be done (or --check found a problem); a wrong command line ends with\n"
           "status 2."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption home(QStringLiteral("home"),
                                  tr("The directory that holds the store and the "
                                     "page files (default: $QUILLMERE_HOME, else "
                                     "$XDG_DATA_HOME/Quillmere)."),
                                  QStringLiteral("DIR"));
    const QCommandLineOption exportOption(
        QStringLiteral("export"),
        tr("Export the cabinet CABINET to the directory DIR, without a window."),
        QStringLiteral("CABINET"));
    const QCommandLineOption importOption(
        QStringLiteral("import"),
        tr("Import the exchange directory DIR into the cabinet CABINET, without a "
           "window."),
        QStringLiteral("DIR"));
    const QCommandLineOption checkOption(
        QStringLiteral("check"),
        tr("Check the store and its page files, without a window: one line per "
           "problem, and status 1 when there is any."));
    const QCommandLineOption repairOption(
        QStringLiteral("repair"),
        tr("With --check: remove files no page refers to and files left by "
           "copies that never ended, make thumbnails again, correct file sizes."));
    parser.addOption(home);
    parser.addOption(exportOption);
    parser.addOption(importOption);
    parser.addOption(checkOption);
    parser.addOption(repairOption);
    const QCommandLineOption findOption(
        QStringLiteral("find"),
        tr("Print the documents whose pages hold WORDS (\"a phrase\", a trailing * for a "
           "beginning), one a line with the numbers of those pages; status 1 when none."),
        QStringLiteral("WORDS"));
    const QCommandLineOption readTextOption(
        QStringLiteral("read-text"),
        tr("Read the text of every page whose text is not read yet, without a window."));
    parser.addOption(findOption);
    parser.addOption(readTextOption);
    parser.addPositionalArgument(QStringLiteral("DIR|CABINET"),
                                 tr("The second value of --export or --import."));
    addToolkitOptions(parser);

    CommandLineRequest request;
    const auto error = [&](const QString& message) {
        request.action = CommandLineRequest::Action::Error;
        request.message = message;
        return request;
    };
    if (!parser.parse(arguments))
        return error(parser.errorText());
    if (parser.isSet(help) || parser.isSet(QStringLiteral("help-all"))) {
        request.action = CommandLineRequest::Action::Help;
        // The parser's own usage line cannot say that the commands take two values.
        const QString text = parser.helpText();
        request.message =
            usage() + QLatin1Char('\n') + text.mid(text.indexOf(QLatin1Char('\n')) + 1);
        return request;
    }
    if (parser.isSet(version)) {
        request.action = CommandLineRequest::Action::Version;
        request.message = QStringLiteral("Quillmere %1").arg(QStringLiteral(QMR_VERSION));
        return request;
    }
    if (parser.values(home).size() > 1)
        return error(tr("--home is given more than once."));
    request.home = parser.value(home);
    const bool exporting = parser.isSet(exportOption);
    const bool importing = parser.isSet(importOption);
    const QStringList rest = parser.positionalArguments();
    if (parser.isSet(repairOption) && !parser.isSet(checkOption))
        return error(tr("--repair goes with --check."));
    const bool finding = parser.isSet(findOption);
    const bool reading = parser.isSet(readTextOption);
    if (finding || reading) {
        if (exporting || importing || parser.isSet(checkOption) || (finding && reading))
            return error(tr("--find and --read-text go alone, without --export, --import, "
                            "--check or each other."));
        if (!rest.isEmpty())
            return error(tr("Unexpected argument '%1'.").arg(rest.first()));
        request.action =
            finding ? CommandLineRequest::Action::Find : CommandLineRequest::Action::ReadText;
        request.words = parser.value(findOption);
        return request;
    }
    if (parser.isSet(checkOption)) {
        if (exporting || importing)
            return error(tr("--check cannot be given with --export or --import."));
        if (!rest.isEmpty())
            return error(tr("Unexpected argument '%1'.").arg(rest.first()));
        request.action = CommandLineRequest::Action::Check;
        request.repair = parser.isSet(repairOption);
        return request;
    }
    if (!exporting && !importing) {
        if (!rest.isEmpty())
            return error(tr("Unexpected argument '%1'.").arg(rest.first()));
        return request;
    }
    if (exporting && importing)
        return error(tr("--export and --import cannot be given together."));
    const QCommandLineOption& option = exporting ? exportOption : importOption;
    if (parser.values(option).size() > 1)
        return error(tr("--%1 is given more than once.")
                         .arg(exporting ? QStringLiteral("export") : QStringLiteral("import")));
    if (rest.size() != 1)
        return error(exporting ? tr("--export needs a cabinet and a directory: "
                                    "--export CABINET DIR.")
                               : tr("--import needs a directory and a cabinet: "
                                    "--import DIR CABINET."));
    if (exporting) {
        request.action = CommandLineRequest::Action::Export;
        request.cabinet = parser.value(exportOption);
        request.directory = rest.first();
    } else {
        request.action = CommandLineRequest::Action::Import;
        request.directory = parser.value(importOption);
        request.cabinet = rest.first();
    }
    return request;
}

int CommandLine::print(const CommandLineRequest& request)
{
    switch (request.action) {
    case CommandLineRequest::Action::Help:
    case CommandLineRequest::Action::Version: {
        QTextStream out(stdout);
        out << request.message;
        if (!request.message.endsWith(QLatin1Char('\n')))
            out << '\n';
        return 0;
    }
    case CommandLineRequest::Action::Error: {
        QTextStream err(stderr);
        err << "quillmere: " << request.message << '\n'
            << usage() << tr("Try 'quillmere --help' for more.\n");
        return kUsageError;
    }
    default:
        return 0;
    }
}

AppHome CommandLine::homeOf(const CommandLineRequest& request)
{
    return request.home.isEmpty() ? AppHome::fromArguments({}) : AppHome(request.home);
}

int CommandLine::runBatch(const CommandLineRequest& request)
{
    QTextStream out(stdout);
    QTextStream err(stderr);
    const AppHome home = homeOf(request);
    // A batch run never makes a store: there would be no cabinet in it to work on.
    if (!QFileInfo::exists(StoreSchema::storePath(home))) {
        err << "quillmere: "
            << tr("There is no store in %1; start the program once, or name its home with "
                  "--home DIR.\n")
                   .arg(home.path());
        return 1;
    }
    Settings settings;
    if (request.action == CommandLineRequest::Action::Find) {
        // Only reading: it may run beside the window, and needs no lock.
        Session session(home, settings);
        try {
            StoreSchema::openDatabase(session.db(), home);
        } catch (const StoreError& e) {
            err << "quillmere: " << e.message() << '\n';
            return 1;
        }
        return TextBatch(session, out, err).find(request.words);
    }
    // From here on a signal to quit stops the walk as Cancel would, and the lock goes with the
    // run.
    QuitSignals quit;
    // One run per home: the batch holds the lock the window takes, before the store is touched.
    HomeLock lock(home);
    if (!lock.acquire()) {
        err << "quillmere: " << lock.refusal() << '\n';
        return 1;
    }
    Session session(home, settings);
    try {
        StoreSchema::openDatabase(session.db(), home);
    } catch (const StoreError& e) {
        if (request.action == CommandLineRequest::Action::Check)
            out << tr("The store cannot be opened: ") << e.message() << '\n';
        err << "quillmere: " << e.message() << '\n';
        return 1;
    }
    if (request.action == CommandLineRequest::Action::Check) {
        StoreCheck check(session.db(), session.paths());
        check.setThumbnailMaker([&home](const QString& page, const QString& thumb) {
            return ThumbnailMaker::makeThumbnail(page, thumb, home.path());
        });
        const auto report = [&out](const QString& problem, bool repaired) {
            out << problem << (repaired ? tr(" (repaired)") : QString()) << '\n';
            out.flush();
        };
        StoreCheck::Summary summary = check.run(request.repair, report);
        // The index of the pages' text, when there is one: a check makes none.
        if (TextIndex index(home.path()); QFile::exists(index.path())) {
            try {
                // Only a repair sets a damaged index aside (to be made anew from the pages).
                if (request.repair)
                    index.open();
                else
                    index.openAsItIs();
                const TextIndexCheck::Result text = TextIndexCheck::run(
                    session.db(), session.paths(), index, request.repair, report);
                summary.problems += text.problems;
                summary.repaired += text.repaired;
                if (text.waiting == 1)
                    out << tr("1 page waits for its text to be read.") << '\n';
                else if (text.waiting > 1)
                    out << tr("%1 pages wait for their text to be read.").arg(text.waiting) << '\n';
            } catch (const StoreError& e) {
                report(tr("The page text index cannot be checked: %1").arg(e.message()), false);
                ++summary.problems;
            }
        }
        out << summary.text() << '\n';
        return summary.clean() ? 0 : 1;
    }
    if (request.action == CommandLineRequest::Action::ReadText)
        return TextBatch(session, out, err)
            .readText(TextRecognizer::chosenLanguages(settings.get(keys::OcrLanguages)),
                      {QCoreApplication::applicationFilePath(),
                       QString::fromLatin1(TextWorker::kOption)});
    ExchangeBatch batch(session, out, err, ::isatty(STDERR_FILENO) != 0);
    batch.setStopTest([&quit] { return quit.requested(); });
    return request.action == CommandLineRequest::Action::Export
               ? batch.exportCabinet(request.cabinet, request.directory)
               : batch.importCabinet(request.directory, request.cabinet);
}

} // namespace qmr
