#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTest>
#include <functional>
#include <sys/stat.h>
#include <utility>
#include <utime.h>

#include "store/database.h"
#include "store/homesweep.h"
#include "store/pagepaths.h"
#include "store/pageplace.h"
#include "store/pagestore.h"
#include "store/storecheck.h"
#include "tests/support/datarow.h"
#include "tests/support/fixturestore.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using qmr::test::row;
using namespace qmr;

namespace {

QByteArray readFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

bool makeOlder(const QString& path, int seconds)
{
    struct stat info;
    if (::stat(QFile::encodeName(path).constData(), &info) != 0)
        return false;
    struct utimbuf times
    {
        info.st_atime - seconds, info.st_mtime - seconds
    };
    return ::utime(QFile::encodeName(path).constData(), &times) == 0;
}

// A cabinet, drawer and folder holding one document, "Doc".
qint32 oneDocument(test::FixtureStore& store)
{
    return store.document(store.folder(store.drawer(store.cabinet("C"), "D"), "F"), "Doc");
}

struct Checked
{
    QStringList problems;
    StoreCheck::Summary summary;
};

Checked check(Database& db, const PagePaths& paths, bool repair)
{
    StoreCheck check(db, paths);
    check.setThumbnailMaker([](const QString& page, const QString& thumb) {
        const QImage image(page);
        return !image.isNull() && image.scaled(20, 20).save(thumb, "JPG");
    });
    Checked c;
    c.summary = check.run(repair, [&c](const QString& problem, bool) { c.problems << problem; });
    return c;
}

// Runs an action from inside the sweep's turn, at its first removal: the log line of a removal
// is the one moment a test can reach between two of its decisions.
struct FirstRemoval
{
    static inline std::function<void()> action;
    static inline QtMessageHandler previous = nullptr;

    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        if (action && text.startsWith(QLatin1String("Removed")))
            std::exchange(action, nullptr)();
        if (previous)
            previous(type, context, text);
    }
};

} // namespace

class TestStoreCheck : public QObject
{
    Q_OBJECT
private slots:
    void summaryText_data()
    {
        test::columns<int, int, QString>({"problems", "repaired", "text"});
        row("none", 0, 0, "No problems found.");
        row("one", 1, 0, "1 problem found.");
        row("two, one repaired", 2, 1, "2 problems found, 1 repaired.");
    }
    void summaryText()
    {
        const auto [problems, repaired, text] =
            test::fetch<int, int, QString>("problems", "repaired", "text");
        QCOMPARE((StoreCheck::Summary{problems, repaired}.text()), text);
    }

    void damage_data()
    {
        QTest::addColumn<QString>("damage");
        QTest::addColumn<QString>("named"); // a part of the one line that names it
        QTest::addColumn<bool>("mendable");
        row("orphan page file", "orphan page", "belongs to no page", true);
        row("orphan thumbnail", "orphan thumb", "thumbnail of no page", true);
        row("leftover of a copy", "leftover", "never ended", true);
        row("leftover of an older writer", "older leftover", "never ended", true);
        row("wrong FileSize", "size", "the store says 12", true);
        row("no FileSize", "no size", "the store says nothing", true);
        row("missing thumbnail", "no thumb", "thumbnail", true);
        row("stale thumbnail", "stale thumb", "older than the page", true);
        row("missing page file", "no file", "is missing", false);
        row("a link in a page's place", "link", "it is a link", false);
        row("a directory in a page's place", "dir", "is not a file", false);
    }

    // Each damage is named in one line; repair mends what can be mended and a second check
    // finds the home clean, and no row, nor any file a row refers to, is ever removed.
    void damage()
    {
        const auto [damage, named, mendable] =
            test::fetch<QString, QString, bool>("damage", "named", "mendable");
        test::TestHome home;
        test::FixtureStore store(home.home());
        const qint32 doc = oneDocument(store);
        const qint32 a = store.page(doc, 1, QSize(200, 260));
        const qint32 b = store.page(doc, 2, QSize(200, 260));
        const PagePaths paths(home.home());
        Database& db = store.db();
        QCOMPARE(check(db, paths, false).problems, QStringList());

        const QString page = paths.computedPagePath(b);
        const QString thumb = paths.computedThumbPath(b);
        if (damage == "orphan page")
            QVERIFY(writeFile(paths.computedPagePath(9999), "left by a killed run"));
        else if (damage == "orphan thumb")
            QVERIFY(writeFile(paths.computedThumbPath(b + 1), "left"));
        else if (damage == "leftover")
            QVERIFY(writeFile(page + ".1a2b3c4d.qmrpart", "half"));
        else if (damage == "older leftover")
            QVERIFY(writeFile(thumb + ".7f00aa.part", "half"));
        else if (damage == "size")
            db.execute("UPDATE Page SET FileSize = 12 WHERE PageId = ?", {b});
        else if (damage == "no size")
            db.execute("UPDATE Page SET FileSize = NULL WHERE PageId = ?", {b});
        else if (damage == "no thumb")
            QVERIFY(QFile::remove(thumb));
        else if (damage == "stale thumb")
            QVERIFY(makeOlder(thumb, 3600));
        else if (damage == "no file")
            QVERIFY(QFile::remove(page));
        else if (damage == "link")
            QVERIFY(QFile::remove(page) && QFile::link(paths.computedPagePath(a), page));
        else if (damage == "dir")
            QVERIFY(QFile::remove(page) && QDir().mkdir(page));
        const QByteArray first = readFile(paths.computedPagePath(a));

        const Checked found = check(db, paths, false);
        QCOMPARE(found.problems.size(), 1);
        QVERIFY2(found.problems.first().contains(named), qPrintable(found.problems.first()));
        QVERIFY(!found.summary.clean());

        const Checked repaired = check(db, paths, true);
        QCOMPARE(repaired.problems, found.problems);
        QCOMPARE(repaired.summary.repaired, mendable ? 1 : 0);
        const Checked again = check(db, paths, false);
        QCOMPARE(again.problems.isEmpty(), mendable);
        QCOMPARE(PageStore(db).count(doc), 2);
        QCOMPARE(readFile(paths.computedPagePath(a)), first);
        if (damage != "no file")
            QVERIFY(QFileInfo::exists(page));
    }

    // A store damaged below its first pages opens, and the check says so.
    void aDamagedStoreIsNamed()
    {
        test::TestHome home;
        QString path;
        {
            test::FixtureStore store(home.home());
            const qint32 folder = store.folder(store.drawer(store.cabinet("C"), "D"), "F");
            Database::Transaction tx(store.db());
            for (int i = 0; i < 3000; ++i)
                store.document(folder, QStringLiteral("A document with a long name %1").arg(i));
            tx.commit();
            path = store.db().path();
        }
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        const qint64 size = file.size();
        QVERIFY(size > 64 * 1024);
        QVERIFY(file.seek(size / 2 / 4096 * 4096));
        QVERIFY(file.write(QByteArray(4096, '\xa5')) == 4096);
        file.close();
        Database db;
        db.open(path);
        const Checked found = check(db, PagePaths(home.home()), true);
        QVERIFY(!found.problems.isEmpty());
        QVERIFY2(found.problems.first().startsWith("The store is damaged"),
                 qPrintable(found.problems.first()));
        QVERIFY(!found.summary.clean());
    }

    // A new page's place holding a file no row refers to is cleared; one that a row refers to
    // is refused, and its file stays. After a start: leftovers from before it and files of no
    // page go, a page added meanwhile keeps its file, and pages without a file are found.
    void aNewPagesPlaceAndTheSweep()
    {
        test::TestHome home;
        test::FixtureStore store(home.home());
        const qint32 doc = oneDocument(store);
        const qint32 kept = store.page(doc, 1, QSize(50, 50));
        const qint32 bare = store.pageRow(doc, 2);
        const PagePaths paths(home.home());
        PageStore pages(store.db());
        const QString place = paths.computedPagePath(bare);
        QVERIFY(writeFile(place, "left by a killed run"));
        QCOMPARE(PagePlace::clear(pages, paths, bare, place), QString());
        QVERIFY(!QFile::exists(place));
        QCOMPARE(PagePlace::clear(pages, paths, bare, place), QString());
        // A place that cannot be cleared (a directory stands there) is refused with the reason.
        QVERIFY(QDir().mkpath(place));
        const QString stuck = PagePlace::clear(pages, paths, bare, place);
        QVERIFY2(stuck.startsWith("Cannot remove " + place + ", which no page refers to: "),
                 qPrintable(stuck));
        QVERIFY(QDir().rmdir(place));

        const QString taken = paths.computedPagePath(kept);
        const QByteArray bytes = readFile(taken);
        const QString refused = PagePlace::clear(pages, paths, bare, taken);
        QVERIFY2(refused.contains(QString("page %1").arg(kept)), qPrintable(refused));
        QCOMPARE(readFile(taken), bytes);

        // The sweep after a start.
        const QString orphan = paths.computedPagePath(bare + 10);
        const QString orphanThumb = paths.computedThumbPath(bare + 10);
        const QString oldPart = paths.computedPagePath(bare + 11) + ".0badf00d.qmrpart";
        const QString newPart = paths.computedPagePath(bare + 12) + ".c0ffee00.qmrpart";
        const QString lateComer = paths.computedPagePath(bare + 20);
        for (const QString& f : {orphan, orphanThumb, oldPart, newPart, lateComer})
            QVERIFY(writeFile(f, "x"));
        QVERIFY(makeOlder(oldPart, 600));
        const qint64 runStart = QDateTime::currentSecsSinceEpoch() - 60;

        HomeSweep sweep(store.db(), paths, runStart);
        QSignalSpy finished(&sweep, &HomeSweep::finished);
        sweep.start();
        // Added while the directories are read: its row comes before its file is swept.
        store.db().execute("INSERT INTO sqlite_sequence (name, seq) SELECT 'Page', 0 WHERE NOT "
                           "EXISTS (SELECT 1 FROM sqlite_sequence WHERE name = 'Page')");
        store.db().execute("UPDATE sqlite_sequence SET seq = ? WHERE name = 'Page'", {bare + 19});
        QCOMPARE(store.pageRow(doc, 3), bare + 20);
        QVERIFY(finished.wait(20000));
        QVERIFY(!sweep.isRunning());

        QVERIFY(!QFile::exists(orphan));
        QVERIFY(!QFile::exists(orphanThumb));
        QVERIFY(!QFile::exists(oldPart));
        QVERIFY(QFile::exists(newPart));
        QVERIFY(QFile::exists(lateComer));
        QVERIFY(QFile::exists(paths.computedPagePath(kept)));
        QVERIFY(QFile::exists(paths.computedThumbPath(kept)));
        QCOMPARE(sweep.removed(), 3);
        QCOMPARE(sweep.missingPages(), QVector<qint32>{bare});
    }
    // A file is weighed against the rows as they stand when its turn comes, not when the
    // directories were read: a page given a row while the sweep runs keeps its file.
    void aRowAddedWhileTheSweepRunsKeepsItsFile()
    {
        test::TestHome home;
        test::FixtureStore store(home.home());
        const qint32 doc = oneDocument(store);
        const PagePaths paths(home.home());
        const QList<qint32> ids{1000, 1001};
        for (const qint32 id : ids)
            QVERIFY(writeFile(paths.computedPagePath(id), "x"));
        FirstRemoval::action = [&] {
            for (const qint32 id : ids)
                store.db().execute(
                    "INSERT INTO Page (PageId, DocumentId, Name, PageNumber, "
                    "ScanDate, Filetype) VALUES (?, ?, '', 1, '2026-03-14 09:30:00', 'JPG')",
                    {id, doc});
        };
        QLoggingCategory::setFilterRules("qmr.store.info=true");
        FirstRemoval::previous = qInstallMessageHandler(&FirstRemoval::handle);
        HomeSweep sweep(store.db(), paths, QDateTime::currentSecsSinceEpoch());
        QSignalSpy finished(&sweep, &HomeSweep::finished);
        sweep.start();
        const bool ended = finished.wait(20000);
        qInstallMessageHandler(FirstRemoval::previous);
        QLoggingCategory::setFilterRules(QString());
        QVERIFY(ended);
        QVERIFY(!FirstRemoval::action); // the first removal came
        QCOMPARE(sweep.removed(), 1);
        QCOMPARE(int(QFile::exists(paths.computedPagePath(ids[0]))) +
                     int(QFile::exists(paths.computedPagePath(ids[1]))),
                 1);
    }
};

QMR_TEST(TestStoreCheck)
#include "teststorecheck.moc"
