#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include "app/commandline.h"
#include "core/homelock.h"
#include "tests/support/fixturestore.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"
#include "tests/text/printedpage.h"
#include "store/pagepaths.h"

using namespace qmr;
using Action = CommandLineRequest::Action;

namespace {

struct Result
{
    int status = -1;
    QString out;
    QString err;
};

// Runs the program itself, with no display and a settings directory of its own.
Result runProgram(const QStringList& arguments, const QString& configDir)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove("DISPLAY");
    env.remove("WAYLAND_DISPLAY");
    env.remove("QT_QPA_PLATFORM");
    env.remove("QUILLMERE_HOME");
    env.insert("XDG_CONFIG_HOME", configDir);
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(QMR_APP_PATH), arguments);
    Result r;
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        return r;
    }
    r.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
    r.out = QString::fromUtf8(process.readAllStandardOutput());
    r.err = QString::fromUtf8(process.readAllStandardError());
    return r;
}

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
        row("home", {"--home", "/h"}, Action::Window, "/h||");
        row("home=", {"--home=/h"}, Action::Window, "/h||");
        row("the toolkit's own", {"-platform", "offscreen", "-reverse"}, Action::Window, "||");
        row("help", {"--help"}, Action::Help, "||", "quillmere [--home DIR] --export CABINET DIR");
        row("-h", {"-h"}, Action::Help, "||", "--import DIR");
        row("export", {"--export", "Home Papers", "/out"}, Action::Export, "|Home Papers|/out");
        row("export, home last", {"--export", "C", "/out", "--home", "/h"}, Action::Export,
            "/h|C|/out");
        row("import", {"--import", "/ex/C", "Target"}, Action::Import, "|Target|/ex/C");
        row("export needs two", {"--export", "C"}, Action::Error, "||",
            "--export needs a cabinet and a directory");
        row("import needs two", {"--import", "/ex"}, Action::Error, "||",
            "--import needs a directory and a cabinet");
        row("three values", {"--export", "C", "/a", "/b"}, Action::Error, "||", "--export needs");
        row("both", {"--export", "C", "/a", "--import", "/b"}, Action::Error, "||",
            "cannot be given together");
        row("find", {"--find", "gas bill"}, Action::Find, "||");
        row("read text", {"--home", "/h", "--read-text"}, Action::ReadText, "/h||");
        row("find with check", {"--find", "x", "--check"}, Action::Error, "||",
            "--find and --read-text go alone");
        row("find and read", {"--read-text", "--find", "x"}, Action::Error, "||", "go alone");
        row("stray argument", {"stray"}, Action::Error, "||", "Unexpected argument 'stray'.");
        row("home without its value", {"--home"}, Action::Error, "||",
            "Missing value after '--home'.");
    }
    void parse()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, action);
        QFETCH(QStringList, values);
        QFETCH(QString, message);
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
        QTemporaryDir config;
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
        const QString h = home.path();
        Result r = runProgram({"--home", h, "--check"}, config.path());
        QCOMPARE(r.status, 1);
        QVERIFY2(r.out.contains(QString("Page %1: its file is").arg(page)), qPrintable(r.out));
        QVERIFY2(r.out.contains(orphan + " belongs to no page"), qPrintable(r.out));
        QVERIFY2(r.out.contains("778.jpg.5eed1e55.qmrpart is left"), qPrintable(r.out));
        QVERIFY2(r.out.endsWith("3 problems found.\n"), qPrintable(r.out));
        QVERIFY(QFile::exists(orphan));

        r = runProgram({"--home", h, "--check", "--repair"}, config.path());
        QCOMPARE(r.status, 0);
        QVERIFY2(r.out.endsWith("3 problems found, 3 repaired.\n"), qPrintable(r.out));
        QVERIFY(!QFile::exists(orphan));
        r = runProgram({"--home", h, "--check"}, config.path());
        QCOMPARE(r.status, 0);
        QCOMPARE(r.out, QString("No problems found.\n"));
        QVERIFY(QFile::exists(home.file("Pages/0000000/%1.jpg").arg(page)));

        r = runProgram({"--home", h, "--repair"}, config.path());
        QCOMPARE(r.status, 2);
    }

    // Pages filed by a script are read by --read-text (the program's own worker reads them),
    // and --find names their documents and pages; a locked cabinet's pages stay out.
    void readTextThenFind()
    {
        test::TestHome home;
        QTemporaryDir config;
        {
            test::FixtureStore store(home.home());
            const PagePaths paths(home.home());
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
        const QString h = home.path();
        Result r = runProgram({"--home", h, "--read-text"}, config.path());
        QCOMPARE(r.status, 0);
        QVERIFY2(r.out.contains("Reading text: 3 of 3 pages\n"), qPrintable(r.out + r.err));
        QVERIFY2(r.out.endsWith("The text of every page is read.\n"), qPrintable(r.out));

        r = runProgram({"--home", h, "--find", "northwind"}, config.path());
        QCOMPARE(r.status, 0);
        QCOMPARE(r.out, QString("Home/Bills/Gas/Winter\t1\n"));
        r = runProgram({"--home", h, "--find", "\"water meter\" north*"}, config.path());
        QCOMPARE(r.out, QString());
        QCOMPARE(r.status, 1);
        r = runProgram({"--home", h, "--find", "METER"}, config.path());
        QCOMPARE(r.out, QString("Home/Bills/Gas/Winter\t2\n"));

        // Nothing new to read: done at once.
        r = runProgram({"--home", h, "--read-text"}, config.path());
        QCOMPARE(r.status, 0);
        QCOMPARE(r.out, QString("The text of every page is read.\n"));

        // The check finds the entries that disagree with the store: a page gone behind the
        // program's back, a file changed since it was read; a new page only waits.
        const PagePaths paths(home.home());
        {
            test::FixtureStore store(home.home());
            store.db().execute("DELETE FROM Page WHERE PageId = 3");
            QVERIFY(test::printedPage({"Water meter replaced"}).save(paths.pagePath(2, ""), "JPG"));
            const qint32 document =
                store.db().scalar("SELECT DocumentId FROM Page WHERE PageId = 1").toInt();
            store.page(document, 3);
        }
        // (The store's own lines about the sizes and the page's leftover files come first.)
        const QStringList textLines = {
            "Page text of page 3: the page is gone",
            "Page 2: its text was read from an earlier version of its file",
            "1 page waits for its text to be read."};
        r = runProgram({"--home", h, "--check"}, config.path());
        QCOMPARE(r.status, 1);
        for (const QString& line : textLines)
            QVERIFY2(r.out.contains(line + "\n"), qPrintable(r.out));
        r = runProgram({"--home", h, "--check", "--repair"}, config.path());
        QCOMPARE(r.status, 0);
        QVERIFY2(r.out.contains(textLines.at(0) + " (repaired)\n") &&
                     r.out.contains(textLines.at(1) + " (repaired)\n"),
                 qPrintable(r.out));
        r = runProgram({"--home", h, "--check"}, config.path());
        QCOMPARE(r.status, 0);
        QCOMPARE(r.out, QString("2 pages wait for their text to be read.\nNo problems found.\n"));
    }

    // Each way a batch run ends has its status: 0 done, 1 failed, 2 not understood.
    void exitStatuses()
    {
        test::TestHome home;
        QTemporaryDir config, out;
        {
            test::FixtureStore store(home.home());
            store.fillSample();
            store.cabinet("Target");
        }
        const QString h = home.path();
        Result r;
        const auto run = [&](const QStringList& arguments, int status) {
            r = runProgram(arguments, config.path());
            if (r.status != status)
                qWarning("status %d, not %d: %s", r.status, status, qPrintable(r.err));
            return r.status == status;
        };
        QVERIFY(run({"--help"}, 0) && r.out.startsWith("Usage: quillmere"));
        QVERIFY(run({"--version"}, 0) && r.out.startsWith("Quillmere "));
        QVERIFY(run({"--bogus"}, 2) && r.err.contains("Unknown option 'bogus'.") &&
                r.out.isEmpty());

        QVERIFY(run({"--home", out.filePath("nohome"), "--export", "Home Papers", out.path()}, 1));
        QVERIFY2(r.err.contains("There is no store in"), qPrintable(r.err));
        QVERIFY(!QFile::exists(out.filePath("nohome/qmr.mdb")));
        QVERIFY(run({"--home", h, "--export", "Home Papers", h + "/backup"}, 1));
        QVERIFY(r.err.contains("You cannot export a cabinet to a path within"));
        QVERIFY(run({"--home", h, "--export", "Home Papers", out.filePath("x")}, 0));
        QCOMPARE(r.out, "Export complete. 3 pages copied.\n");
        QVERIFY(QFile::exists(out.filePath("x/Home Papers/QMR.txt")));

        QVERIFY(run({"--home", h, "--import", out.filePath("x/Home Papers"), "Target"}, 0));
        QCOMPARE(r.out, "3 files imported.\r\n0 shortcuts created.\n");
        // Thumbnails are made without a window too.
        for (const int page : {4, 5, 6})
            QVERIFY2(QFile::exists(QString("%1/Thumbs/0000000/%2.jpg").arg(h).arg(page)),
                     qPrintable(QString::number(page)));
        QVERIFY(run({"--home", h, "--import", out.filePath("x"), "Target"}, 1));
        QVERIFY(r.err.contains("Missing QMR.TXT."));
        QVERIFY(run({"--home", h, "--import", out.filePath("x/Home Papers"), "Private"}, 1));
        QVERIFY(r.err.contains("has a password"));

        // A home that a running program holds is left alone, and the batch says why.
        const QStringList exportY{"--home", h, "--export", "Home Papers", out.filePath("y")};
        {
            HomeLock held(home.home());
            QVERIFY(held.acquire());
            QVERIFY(run(exportY, 1));
            QVERIFY2(r.err.contains(h), qPrintable(r.err));
            QVERIFY(!QFile::exists(out.filePath("y")));
        }
        QVERIFY(run(exportY, 0));
    }
};

QMR_TEST(TestCommandLine)
#include "testcommandline.moc"
