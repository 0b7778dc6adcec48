#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include "app/commandline.h"
#include "core/homelock.h"
#include "tests/support/fixturestore.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

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
    void parse_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("action");
        QTest::addColumn<QString>("home");
        QTest::addColumn<QString>("cabinet");
        QTest::addColumn<QString>("directory");
        QTest::addColumn<QString>("message"); // a part of it
        const int window = int(Action::Window), help = int(Action::Help),
                  version = int(Action::Version), exporting = int(Action::Export),
                  importing = int(Action::Import), error = int(Action::Error);
        QTest::newRow("nothing") << QStringList{} << window << ""
                                 << ""
                                 << ""
                                 << "";
        QTest::newRow("home") << QStringList{"--home", "/h"} << window << "/h"
                              << ""
                              << ""
                              << "";
        QTest::newRow("home=") << QStringList{"--home=/h"} << window << "/h"
                               << ""
                               << ""
                               << "";
        QTest::newRow("the toolkit's own")
            << QStringList{"-platform", "offscreen", "-reverse"} << window << ""
            << ""
            << ""
            << "";
        QTest::newRow("help") << QStringList{"--help"} << help << ""
                              << ""
                              << ""
                              << "quillmere [--home DIR] --export CABINET DIR";
        QTest::newRow("-h") << QStringList{"-h"} << help << ""
                            << ""
                            << ""
                            << "--import DIR";
        QTest::newRow("version") << QStringList{"--version"} << version << ""
                                 << ""
                                 << ""
                                 << "Quillmere ";
        QTest::newRow("export") << QStringList{"--export", "Home Papers", "/out"} << exporting << ""
                                << "Home Papers"
                                << "/out"
                                << "";
        QTest::newRow("export, home last")
            << QStringList{"--export", "C", "/out", "--home", "/h"} << exporting << "/h"
            << "C"
            << "/out"
            << "";
        QTest::newRow("import") << QStringList{"--import", "/ex/C", "Target"} << importing << ""
                                << "Target"
                                << "/ex/C"
                                << "";
        QTest::newRow("unknown option") << QStringList{"--bogus"} << error << ""
                                        << ""
                                        << ""
                                        << "Unknown option 'bogus'.";
        QTest::newRow("export needs two") << QStringList{"--export", "C"} << error << ""
                                          << ""
                                          << ""
                                          << "--export needs a cabinet and a directory";
        QTest::newRow("import needs two") << QStringList{"--import", "/ex"} << error << ""
                                          << ""
                                          << ""
                                          << "--import needs a directory and a cabinet";
        QTest::newRow("three values") << QStringList{"--export", "C", "/a", "/b"} << error << ""
                                      << ""
                                      << ""
                                      << "--export needs";
        QTest::newRow("both") << QStringList{"--export", "C", "/a", "--import", "/b"} << error << ""
                              << ""
                              << ""
                              << "cannot be given together";
        QTest::newRow("stray argument") << QStringList{"stray"} << error << ""
                                        << ""
                                        << ""
                                        << "Unexpected argument 'stray'.";
        QTest::newRow("home without its value") << QStringList{"--home"} << error << ""
                                                << ""
                                                << ""
                                                << "Missing value after '--home'.";
    }
    void parse()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, action);
        QFETCH(QString, home);
        QFETCH(QString, cabinet);
        QFETCH(QString, directory);
        QFETCH(QString, message);
        const CommandLineRequest r = CommandLine::parse(QStringList{"quillmere"} + arguments);
        QCOMPARE(int(r.action), action);
        QCOMPARE(r.home, home);
        QCOMPARE(r.cabinet, cabinet);
        QCOMPARE(r.directory, directory);
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
        Result r = runProgram({"--help"}, config.path());
        QCOMPARE(r.status, 0);
        QVERIFY(r.out.startsWith("Usage: quillmere"));
        r = runProgram({"--version"}, config.path());
        QCOMPARE(r.status, 0);
        QVERIFY(r.out.startsWith("Quillmere "));
        r = runProgram({"--bogus"}, config.path());
        QCOMPARE(r.status, 2);
        QVERIFY(r.err.contains("Unknown option 'bogus'."));
        QVERIFY(r.out.isEmpty());

        r = runProgram({"--home", out.filePath("nohome"), "--export", "Home Papers", out.path()},
                       config.path());
        QCOMPARE(r.status, 1);
        QVERIFY2(r.err.contains("There is no store in"), qPrintable(r.err));
        QVERIFY(!QFile::exists(out.filePath("nohome/qmr.mdb")));

        r = runProgram({"--home", h, "--export", "Home Papers", h + "/backup"}, config.path());
        QCOMPARE(r.status, 1);
        QVERIFY(r.err.contains("You cannot export a cabinet to a path within"));

        r = runProgram({"--home", h, "--export", "Home Papers", out.filePath("x")}, config.path());
        QCOMPARE(r.status, 0);
        QCOMPARE(r.out, "Export complete. 3 pages copied.\n");
        QVERIFY(QFile::exists(out.filePath("x/Home Papers/QMR.txt")));

        r = runProgram({"--home", h, "--import", out.filePath("x/Home Papers"), "Target"},
                       config.path());
        QCOMPARE(r.status, 0);
        QCOMPARE(r.out, "3 files imported.\r\n0 shortcuts created.\n");
        // Thumbnails are made without a window too.
        for (const int page : {4, 5, 6})
            QVERIFY2(QFile::exists(QString("%1/Thumbs/0000000/%2.jpg").arg(h).arg(page)),
                     qPrintable(QString::number(page)));

        r = runProgram({"--home", h, "--import", out.filePath("x"), "Target"}, config.path());
        QCOMPARE(r.status, 1);
        QVERIFY(r.err.contains("Missing QMR.TXT."));

        r = runProgram({"--home", h, "--import", out.filePath("x/Home Papers"), "Private"},
                       config.path());
        QCOMPARE(r.status, 1);
        QVERIFY(r.err.contains("has a password"));

        // A home that a running program holds is left alone, and the batch says why.
        {
            HomeLock held(home.home());
            QVERIFY(held.acquire());
            r = runProgram({"--home", h, "--export", "Home Papers", out.filePath("y")},
                           config.path());
            QCOMPARE(r.status, 1);
            QVERIFY2(r.err.contains(h), qPrintable(r.err));
            QVERIFY(!QFile::exists(out.filePath("y")));
        }
        r = runProgram({"--home", h, "--export", "Home Papers", out.filePath("y")}, config.path());
        QCOMPARE(r.status, 0);
    }
};

QMR_TEST(TestCommandLine)
#include "testcommandline.moc"
