#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <unistd.h>

#include "store/deletion.h"
#include "store/pagepaths.h"
#include "store/storeerror.h"
#include "tests/support/fixturestore.h"
#include "tests/support/recordingprogress.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"
#include "tests/support/datarow.h"

using qmr::test::row;
using namespace qmr;
using qmr::test::columns;
using test::RecordingProgress;

namespace {

bool writeFile(const QString& path)
{
    PagePaths::ensurePathExists(path);
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write("x") == 1;
}

// The store of FixtureStore::fillSample() (cabinet 1 with drawers 1 and 2, folders 1..3,
// documents 1..3 and pages 1..3 with files; cabinet 2 with drawer 3 and folder 4 and no
// pages), and in document 2 a shortcut page (4) with a thumbnail beside its file, and a page
// (5) whose files were never made.
struct DeletionStore
{
    test::TestHome home;
    QTemporaryDir outside;
    std::unique_ptr<test::FixtureStore> store;
    std::unique_ptr<PagePaths> paths;
    QString shortcutFile;

    DeletionStore()
    {
        store = std::make_unique<test::FixtureStore>(home.home());
        store->fillSample();
        paths = std::make_unique<PagePaths>(home.home());
        shortcutFile = outside.filePath("letters/reply.pdf");
        writeFile(shortcutFile);
        store->db().execute("INSERT INTO Page (DocumentId, PageNumber, Filename, ShortcutYN, "
                            "Filetype) VALUES (2, 0, ?, 'Y', 'pdf')",
                            {shortcutFile});
        writeFile(paths->thumbPath(4, shortcutFile));
        store->pageRow(2, 1);
    }
    Database& db() { return store->db(); }
    Deletion deletion() { return Deletion(db(), *paths); }
    RecordingProgress recorded;
    int count(const char* table)
    {
        return db().scalar(QString("SELECT COUNT(*) FROM %1").arg(table)).toInt();
    }
    QString counts()
    {
        QStringList counts;
        for (const char* table : {"Cabinet", "Drawer", "Folder", "Document", "Page"})
            counts << QString::number(count(table));
        return counts.join('/');
    }
    // Page ids whose image and thumbnail files are both on disk.
    QList<int> pagesWithFiles()
    {
        QList<int> ids;
        for (int id = 1; id <= 3; ++id)
            if (QFile::exists(paths->computedPagePath(id)) &&
                QFile::exists(paths->computedThumbPath(id)))
                ids << id;
        return ids;
    }
};

} // namespace

class TestDeletion : public QObject
{
    Q_OBJECT
private slots:
    void everyLevel_data()
    {
        columns<int, int>({"level", "id"});
        QTest::addColumn<QString>("counts"); // cabinets/drawers/folders/documents/pages left
        columns<QList<int>, QStringList>({"filesLeft", "progress"});
        const QString files = "Delete page files";
        row("cabinet", 0, 1, "1/1/1/0/0", QList<int>{},
            QStringList{"start Delete cabinet 1..8", "Delete drawer", files, files, files, files,
                        "Delete drawer", files, "Delete drawers in cabinet", "Delete cabinet"});
        row("cabinet without pages", 0, 2, "1/2/3/3/5", QList<int>{1, 2, 3},
            QStringList{"start Delete cabinet 1..3", "Delete drawer", "Delete drawers in cabinet",
                        "Delete cabinet"});
        row("drawer", 1, 1, "2/2/2/1/1", QList<int>{3},
            QStringList{"start Delete drawer 1..7", files, files, files, files, "Delete drawer",
                        "Delete drawer"});
        row("drawer without pages", 1, 3, "2/2/3/3/5", QList<int>{1, 2, 3},
            QStringList{"start Delete drawer 1..3", "Delete drawer", "Delete drawer"});
        row("folder", 2, 1, "2/3/3/1/1", QList<int>{3},
            QStringList{"start Delete folder 1..6", files, files, files, files, "Delete folder",
                        "Delete folder"});
        row("document", 3, 1, "2/3/4/2/3", QList<int>{3},
            QStringList{"start Delete document 1..4", files, files, "Delete pages",
                        "Delete document"});
        row("page", 4, 2, "2/3/4/3/4", QList<int>{1, 3},
            QStringList{"start Delete page 1..3", "Delete page file", "Delete page record"});
        // Level -1: the shortcut, a page with files and one whose files were never there, as
        // one deletion of several pages; no failure.
        row("several pages", -1, 0, "2/3/4/3/2", QList<int>{2, 3},
            QStringList{"Delete page file", "Delete page file", "Delete page file",
                        "Delete page record", "Delete page record", "Delete page record"});
    }
    void everyLevel()
    {
        const auto [level, id, counts, filesLeft, progress] =
            test::fetch<int, int, QString, QList<int>, QStringList>("level", "id", "counts",
                                                                    "filesLeft", "progress");
        DeletionStore s;
        QCOMPARE(s.counts(), QStringLiteral("2/3/4/3/5"));
        QCOMPARE(s.pagesWithFiles(), (QList<int>{1, 2, 3}));
        if (level < 0) {
            QCOMPARE(s.deletion().progressMaximum(Level::Page, -1, 3), 9);
            s.deletion().deletePages({4, 1, 5}, s.recorded);
        } else {
            s.recorded.start(Deletion::progressTitle(Level(level)), 1,
                             s.deletion().progressMaximum(Level(level), id));
            s.deletion().deleteItem(Level(level), id, s.recorded);
        }
        QCOMPARE(s.recorded.log, progress);
        QCOMPARE(s.counts(), counts);
        QCOMPARE(s.pagesWithFiles(), filesLeft);
        // The shortcut's file and thumbnail are not the program's to delete.
        QVERIFY(QFile::exists(s.shortcutFile));
        QVERIFY(QFile::exists(s.paths->thumbPath(4, s.shortcutFile)));
        // Directories stay, even when emptied.
        QVERIFY(QDir(s.paths->computedPageDirectory(1)).exists());
        QVERIFY(QDir(s.paths->computedThumbDirectory(1)).exists());
    }

    void filesThatCannotGoAreSkipped()
    {
        DeletionStore s;
        // The thumbnail's place is taken by a directory with something in it, which no file
        // delete can remove; the page's own directory is made read-only, which stops everybody
        // but the superuser.
        const QString thumb = s.paths->computedThumbPath(1);
        QVERIFY(QFile::remove(thumb));
        QVERIFY(writeFile(thumb + "/inside"));
        const QString dir = s.paths->computedPageDirectory(1);
        QFile::setPermissions(dir, QFile::ReadOwner | QFile::ExeOwner);
        s.deletion().deleteItem(Level::Document, 1, s.recorded);
        QFile::setPermissions(dir, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QCOMPARE(s.counts(), QStringLiteral("2/3/4/2/3")); // the rows went all the same
        QVERIFY(QFileInfo(thumb).isDir());
        if (geteuid() != 0)
            QVERIFY(QFile::exists(s.paths->computedPagePath(1)));
        QVERIFY(!QFile::exists(s.paths->computedThumbPath(2)));
    }

    void aFailedStatementLeavesEveryRow()
    {
        DeletionStore s;
        s.db().execute("CREATE TRIGGER keep BEFORE DELETE ON Drawer "
                       "BEGIN SELECT RAISE(ABORT, 'drawers are kept'); END");
        QVERIFY_THROWS_EXCEPTION(StoreError, s.deletion().deleteItem(Level::Drawer, 1, s.recorded));
        QCOMPARE(s.counts(), QStringLiteral("2/3/4/3/5"));
        QCOMPARE(s.db().transactionDepth(), 0);
    }
};

QMR_TEST(TestDeletion)
#include "testdeletion.moc"
