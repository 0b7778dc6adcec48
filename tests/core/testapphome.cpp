#include <QFile>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>
#include <cerrno>
#include <cstring>

#include "core/apphome.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using qmr::test::columns;
using qmr::test::row;

class TestAppHome : public QObject
{
    Q_OBJECT
private slots:
    // Read before the command line is parsed (the help file is looked up there), so a
    // value that is not one of --home's must not be taken for the home.
    void fromArguments_data()
    {
        columns<QStringList, QString>({"arguments", "home"});
        row("--home DIR", QStringList{"--home", "/h"}, "/h");
        row("--home=DIR", QStringList{"--home=/h"}, "/h");
        row("--home last of several", QStringList{"--export", "C", "/out", "--home", "/h"}, "/h");
        row("other options only", QStringList{"--export", "C", "/out"}, "/env");
        row("--home without its value", QStringList{"--check", "--home"}, "/env");
    }
    void fromArguments()
    {
        auto [arguments, home] = test::fetch<QStringList, QString>("arguments", "home");
        const QByteArray saved = qgetenv("QUILLMERE_HOME");
        const auto restore = qScopeGuard([&] { qputenv("QUILLMERE_HOME", saved); });
        qputenv("QUILLMERE_HOME", "/env");
        QCOMPARE(AppHome::fromArguments(QStringList{"quillmere"} + arguments).path(), home);
    }

    void aFileInTheWayIsNamed()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath("in the way");
        QVERIFY(QFile(file).open(QIODevice::WriteOnly));
        const Attempt<> made = AppHome(file + "/home").ensureExists();
        QVERIFY(!made.ok());
        QCOMPARE(made.why(), QStringLiteral("%1 (%2)").arg(strerror(ENOTDIR), file));
    }
};

QMR_TEST(TestAppHome)
#include "testapphome.moc"
