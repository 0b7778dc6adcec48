#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include "core/partfile.h"
#include "coreharness.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using namespace qmr::test;

namespace {

QStringList partsIn(const QString& dir)
{
    return QDir(dir).entryList({QStringLiteral("*.qmrpart")}, QDir::Files | QDir::System);
}

} // namespace

class TestPartFile : public QObject
{
    Q_OBJECT

private slots:
    void placing_data()
    {
        // standing: "", "file" or "link"
        columns<QString, bool, bool>({"standing", "replace", "placed"});
        row("a free place, kept", "", false, true);
        row("a free place, replaced", "", true, true);
        row("a file, kept", "file", false, false);
        row("a file, replaced", "file", true, true);
        row("a link, kept", "link", false, false);
        row("a link, replaced", "link", true, true);
    }

    // What stands at the target is replaced only when asked, a link among it never written
    // through, and a refused placing leaves the file aside for a second try.
    void placing()
    {
        auto [standing, replace, placed] =
            test::fetch<QString, bool, bool>("standing", "replace", "placed");
        QTemporaryDir dir;
        const QString target = dir.filePath("page.jpg");
        const QString outside = dir.filePath("outside.txt");
        QVERIFY(writeFile(outside, "secret"));
        if (standing == "file")
            QVERIFY(writeFile(target, "old"));
        else if (standing == "link")
            QVERIFY(QFile::link(outside, target));

        PartFile part(target);
        QVERIFY2(part.open(), qPrintable(part.errorString()));
        QVERIFY(part.partPath().startsWith(target + '.'));
        QVERIFY(part.write("n", 1)); // a write of one byte as well
        QVERIFY(part.write("ew", 2));
        const PartFile::Placed result =
            part.place(replace ? PartFile::Placing::Replace : PartFile::Placing::NoReplace, false);
        QCOMPARE(readFile(outside), QByteArray("secret"));
        if (placed) {
            QCOMPARE(result, PartFile::Placed::Done);
            QVERIFY(!QFileInfo(target).isSymLink());
            QCOMPARE(readFile(target), QByteArray("new"));
            QVERIFY(partsIn(dir.path()).isEmpty());
            return;
        }
        QCOMPARE(result, PartFile::Placed::TargetExists);
        QCOMPARE(part.error(), EEXIST);
        QCOMPARE(partsIn(dir.path()).size(), 1);
        // The one standing there is dealt with; the same contents then take their place.
        QVERIFY(QFile::remove(target));
        QCOMPARE(part.place(PartFile::Placing::NoReplace, false), PartFile::Placed::Done);
        QCOMPARE(readFile(target), QByteArray("new"));
        QVERIFY(partsIn(dir.path()).isEmpty());
    }

    // A part that is given up, or whose writer fails, leaves nothing behind.
    void nothingIsLeftBehindAndNoNameIsTaken()
    {
        QTemporaryDir dir;
        const QString target = dir.filePath("page.jpg");
        {
            PartFile dropped(target);
            QVERIFY(dropped.open());
            QVERIFY(dropped.write("half", 4));
        }
        PartFile failed(target);
        QVERIFY(failed.open());
        failed.fail(ENOSPC);
        QCOMPARE(failed.place(PartFile::Placing::Replace), PartFile::Placed::Failed);
        QCOMPARE(failed.error(), ENOSPC);
        QVERIFY(QDir(dir.path()).entryList(QDir::Files | QDir::System).isEmpty());

        // A rename that fails (the name is a directory's) takes the written part away at once.
        QVERIFY(QDir(dir.path()).mkpath("taken/inside"));
        PartFile refused(dir.filePath("taken"));
        QVERIFY(refused.open());
        QVERIFY(refused.write("whole", 5));
        QCOMPARE(refused.place(PartFile::Placing::Replace), PartFile::Placed::Failed);
        QVERIFY(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden | QDir::System).isEmpty());

        PartFile nowhere(dir.filePath("no/such/dir/page.jpg"));
        QVERIFY(!nowhere.open());
        QCOMPARE(nowhere.error(), ENOENT);
        // Where the file system cannot rename without replacing, a hard link does the same; a
        // taken name is refused either way.
        const QString from = dir.filePath("a");
        const QString to = dir.filePath("b");
        QVERIFY(writeFile(from, "a"));
        QVERIFY(writeFile(to, "b"));
        QVERIFY(!PartFile::renameNoReplace(from, to));
        QCOMPARE(errno, EEXIST);
        QCOMPARE(readFile(to), QByteArray("b"));
        QVERIFY(QFile::remove(to));
        QVERIFY(PartFile::renameNoReplace(from, to));
        QCOMPARE(readFile(to), QByteArray("a"));
        QVERIFY(!QFile::exists(from));
    }
};

QMR_TEST(TestPartFile)
#include "testpartfile.moc"
