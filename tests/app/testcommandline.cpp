#include "app/commandline.h"
#include "core/homelock.h"
#include "store/pagepaths.h"
#include "tests/app/apprun.h"
#include "tests/text/printedpage.h"

using namespace qmr;
using Action = CommandLineRequest::Action;

namespace {

// Batch runs of the program itself on one home, with no display.
struct Batch
{
    explicit Batch(const QString& h) : home(h) {}
    QString home;
    QTemporaryDir config;
    int status = -1;
    QString out, err;

    // Runs the program (on the home unless told otherwise); whether it exited with `expected`.
    bool run(const QStringList& arguments, int expected, bool onHome = true)
    {
        QProcess process;
        test::startProgram(process, config.path(),
                           (onHome ? QStringList{"--home", home} : QStringList()) + arguments,
                           false);
        if (!process.waitForFinished(60000)) {
            process.kill();
            process.waitForFinished();
        }
        status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
        out = QString::fromUtf8(process.readAllStandardOutput());
        err = QString::fromUtf8(process.readAllStandardError());
        if (status != expected)
            qWarning("status %d, not %d: %s", status, expected, qPrintable(out + err));
        return status == expected;
    }
};

} // namespace

class TestCommandLine : public QObject
{
    Q_OBJECT
private slots:
    // --version and an unknown option are read as exitStatuses runs them.
    void parse_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("action");
        QTest::addColumn<QStringList>("values"); // home, cabinet, directory
        QTest::addColumn<QString>("message");    // a part of it
        const auto row = [](const char* name, const QStringList& arguments, Action action,
                            const QString& values, const QString& message = {}) {
            QTest::newRow(name) << arguments << int(action) << values.split('|') << message;
        };
        row("nothing", {}, Action::Window, "||");
        row("home=", {"--home=/h"}, Action::Window, "/h||");
        row("the toolkit's own", {"-platform", "offscreen", "-reverse"}, Action::Window, "||");
        row("help", {"--help"}, Action::Help, "||", "quillmere [--home DIR] --export CABINET DIR");
        row("-h", {"-h"}, Action::Help, "||", "--import DIR");
        // Without --home the run's default home is taken later: none is read here.
        row("export", {"--export", "Home Papers", "/out"}, Action::Export, "|Home Papers|/out");
        row("import", {"--import", "/ex/C", "Target"}, Action::Import, "|Target|/ex/C");
        row("find", {"--find", "gas bill"}, Action::Find, "||");
        row("export, home last", {"--export", "C", "/out", "--home", "/h"}, Action::Export,
            "/h|C|/out");
        row("export needs two", {"--export", "C"}, Action::Error, "||",
            "--export needs a cabinet and a directory");
        row("import needs two", {"--import", "/ex"}, Action::Error, "||",
            "--import needs a directory and a cabinet");
        row("three values", {"--export", "C", "/a", "/b"}, Action::Error, "||", "--export needs");
        row("both", {"--export", "C", "/a", "--import", "/b"}, Action::Error, "||",
            "cannot be given together");
        row("find with check", {"--find", "x", "--check"}, Action::Error, "||",
            "--find and --read-text go alone");
        row("find and read", {"--read-text", "--find", "x"}, Action::Error, "||", "go alone");
        row("stray argument", {"stray"}, Action::Error, "||", "Unexpected argument 'stray'.");
        row("home without its value", {"--home"}, Action::Error, "||",
            "Missing value after '--home'.");
    }
    void parse()
    {
        const auto [arguments, action, values, message] =
            test::fetch<QStringList, int, QStringList, QString>("arguments", "action", "values",
                                                                "message");
        const CommandLineRequest r = CommandLine::parse(QStringList{"quillmere"} + arguments);
        QCOMPARE(int(r.action), action);
        QCOMPARE(QStringList({r.home, r.cabinet, r.directory}), values);
        QVERIFY2(r.message.contains(message), qPrintable(r.message));
    }

    // The check names each damage and exits 1; the repair mends it without losing a page, and
    // the next check exits 0.
    void checkAndRepair()
    {
        test::TestHome home;
        Batch b{home.path()};
        qint32 page = -1;
        {
            test::FixtureStore store(home.home());
            store.fillSample();
            page = store.db().scalar("SELECT MIN(PageId) FROM Page").toInt();
            store.db().execute("UPDATE Page SET FileSize = 1 WHERE PageId = ?", {page});
        }
        const QString orphan = home.file("Pages/0000000/777.jpg");
        QVERIFY(home.writeFile("Pages/0000000/777.jpg", "left by a killed run"));
        QVERIFY(home.writeFile("Pages/0000000/778.jpg.5eed1e55.qmrpart", "half"));
        QVERIFY(b.run({"--check"}, 1));
        QVERIFY2(b.out.contains(QString("Page %1: its file is").arg(page)), qPrintable(b.out));
        QVERIFY2(b.out.contains(orphan + " belongs to no page"), qPrintable(b.out));
        QVERIFY2(b.out.contains("778.jpg.5eed1e55.qmrpart is left"), qPrintable(b.out));
        QVERIFY2(b.out.endsWith("3 problems found.\n"), qPrintable(b.out));
        QVERIFY(QFile::exists(orphan));

        QVERIFY(b.run({"--check", "--repair"}, 0));
        QVERIFY2(b.out.endsWith("3 problems found, 3 repaired.\n"), qPrintable(b.out));
        QVERIFY(!QFile::exists(orphan));
        QVERIFY(b.run({"--check"}, 0));
        QCOMPARE(b.out, QString("No problems found.\n"));
        QVERIFY(QFile::exists(home.file("Pages/0000000/%1.jpg").arg(page)));
        QVERIFY(b.run({"--repair"}, 2));
    }

    // Pages filed by a script are read by --read-text (the program's own worker reads them),
    // and --find names their documents and pages; a locked cabinet's pages stay out.
    void readTextThenFind()
    {
        test::TestHome home;
        Batch b{home.path()};
        const PagePaths paths(home.home());
        {
            test::FixtureStore store(home.home());
            const auto file = [&](qint32 cabinet, const QString& document,
                                  const QStringList& pages) {
                const qint32 id =
                    store.document(store.folder(store.drawer(cabinet, "Bills"), "Gas"), document);
                for (int i = 0; i < pages.size(); ++i)
                    QVERIFY(test::printedPage({pages.at(i)})
                                .save(paths.pagePath(store.page(id, i + 1), ""), "JPG"));
            };
            file(store.cabinet("Home"), "Winter", {"Northwind heating invoice", "Water meter"});
            file(store.cabinet("Private", "secret"), "Loan", {"Northwind bank"});
        }
        QVERIFY(b.run({"--read-text"}, 0));
        QVERIFY2(b.out.contains("Reading text: 3 of 3 pages\n"), qPrintable(b.out + b.err));
        QVERIFY2(b.out.endsWith("The text of every page is read.\n"), qPrintable(b.out));

        QVERIFY(b.run({"--find", "northwind"}, 0));
        QCOMPARE(b.out, QString("Home/Bills/Gas/Winter\t1\n"));
        QVERIFY(b.run({"--find", "\"water meter\" north*"}, 1));
        QCOMPARE(b.out, QString());
        QVERIFY(b.run({"--find", "METER"}, 0));
        QCOMPARE(b.out, QString("Home/Bills/Gas/Winter\t2\n"));

        // Nothing new to read: done at once.
        QVERIFY(b.run({"--read-text"}, 0));
        QCOMPARE(b.out, QString("The text of every page is read.\n"));

        // The check finds the entries that disagree with the store: a page gone behind the
        // program's back, a file changed since it was read; a new page only waits.
        {
            test::FixtureStore store(home.home());
            store.db().execute("DELETE FROM Page WHERE PageId = 3");
            QVERIFY(test::printedPage({"Water meter replaced"}).save(paths.pagePath(2, ""), "JPG"));
            store.page(store.db().scalar("SELECT DocumentId FROM Page WHERE PageId = 1").toInt(),
                       3);
        }
        // (The store's own lines about the sizes and the page's leftover files come first.)
        const QStringList textLines = {
            "Page text of page 3: the page is gone",
            "Page 2: its text was read from an earlier version of its file",
            "1 page waits for its text to be read."};
        QVERIFY(b.run({"--check"}, 1));
        for (const QString& line : textLines)
            QVERIFY2(b.out.contains(line + "\n"), qPrintable(b.out));
        QVERIFY(b.run({"--check", "--repair"}, 0));
        QVERIFY2(b.out.contains(textLines.at(0) + " (repaired)\n") &&
                     b.out.contains(textLines.at(1) + " (repaired)\n"),
                 qPrintable(b.out));
        QVERIFY(b.run({"--check"}, 0));
        QCOMPARE(b.out, QString("2 pages wait for their text to be read.\nNo problems found.\n"));
    }

    // Each way a batch run ends has its status: 0 done, 1 failed, 2 not understood.
    void exitStatuses()
    {
        test::TestHome home;
        QTemporaryDir out;
        Batch b{home.path()};
        {
            test::FixtureStore store(home.home());
            store.fillSample();
            store.cabinet("Target");
        }
        const QString h = home.path();
        QVERIFY(b.run({"--help"}, 0, false) && b.out.startsWith("Usage: quillmere"));
        QVERIFY(b.run({"--version"}, 0, false) && b.out.startsWith("Quillmere "));
        QVERIFY(b.run({"--bogus"}, 2, false) && b.err.contains("Unknown option 'bogus'.") &&
                b.out.isEmpty());

        QVERIFY(b.run({"--home", out.filePath("nohome"), "--export", "Home Papers", out.path()}, 1,
                      false));
        QVERIFY2(b.err.contains("There is no store in"), qPrintable(b.err));
        QVERIFY(!QFile::exists(out.filePath("nohome/qmr.mdb")));
        QVERIFY(b.run({"--export", "Home Papers", out.filePath("x")}, 0));
        QCOMPARE(b.out, "Export complete. 3 pages copied.\n");
        QVERIFY(QFile::exists(out.filePath("x/Home Papers/QMR.txt")));

        QVERIFY(b.run({"--import", out.filePath("x/Home Papers"), "Target"}, 0));
        QCOMPARE(b.out, "3 files imported.\r\n0 shortcuts created.\n");
        // Thumbnails are made without a window too.
        for (const int page : {4, 5, 6})
            QVERIFY2(QFile::exists(QString("%1/Thumbs/0000000/%2.jpg").arg(h).arg(page)),
                     qPrintable(QString::number(page)));
        QVERIFY(b.run({"--import", out.filePath("x"), "Target"}, 1));
        QVERIFY(b.err.contains("Missing QMR.TXT."));

        // A home that a running program holds is left alone, and the batch says why.
        const QStringList exportY{"--export", "Home Papers", out.filePath("y")};
        {
            HomeLock held(home.home());
            QVERIFY(held.acquire());
            QVERIFY(b.run(exportY, 1));
            QVERIFY2(b.err.contains(h), qPrintable(b.err));
            QVERIFY(!QFile::exists(out.filePath("y")));
        }
        QVERIFY(b.run(exportY, 0));
    }
};

QMR_TEST(TestCommandLine)
#include "testcommandline.moc"
