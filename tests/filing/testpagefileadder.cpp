#include <QCryptographicHash>
#include <QFileInfo>
#include <QImageReader>
#include <QSignalSpy>
#include <QTest>

#include "movefixture.h"
#include "filing/filedrop.h"
#include "store/database.h"
#include "store/itemstore.h"
#include "store/pagestore.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::MoveBench;

namespace {

QByteArray digest(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256);
}

// Puts a directory where the next page's file would go, so that page's copy fails; its id.
qint32 blockNextPageFile(MoveBench& b)
{
    const qint32 id =
        b.session->db()
            .scalar(QStringLiteral("SELECT seq FROM sqlite_sequence WHERE name = 'Page'"))
            .toInt() +
        1;
    return QDir().mkpath(b.pagePath(id)) ? id : 0;
}

} // namespace

class TestPageFileAdder : public QObject
{
    Q_OBJECT
private slots:
    void fileKinds_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("shortcut");
        QTest::addColumn<QString>("type");
        QTest::newRow("jpg") << "/scans/a.jpg" << false << "jpg";
        QTest::newRow("JPEG in capitals") << "/scans/A.JPEG" << false << "jpg";
        QTest::newRow("bmp") << "/scans/a.Bmp" << false << "bmp";
        QTest::newRow("tif") << "/scans/a.tif" << true << "tif";
        QTest::newRow("tiff keeps its last three") << "/scans/a.tiff" << true << "iff";
        QTest::newRow("pdf") << "/docs/contract.pdf" << true << "pdf";
        QTest::newRow("no extension") << "/docs/README" << true << "dme";
        QTest::newRow("a jpg that lost its dot") << "/scans/scanjpg" << false << "jpg";
    }
    void fileKinds()
    {
        QFETCH(QString, name);
        QFETCH(bool, shortcut);
        QFETCH(QString, type);
        QCOMPARE(PageFileAdder::isShortcutFile(name), shortcut);
        QCOMPARE(PageFileAdder::fileType(name), type);
        // Every name passes the loops' gate.
        QVERIFY(PageFileAdder::isImportableFile(name));
    }

    void aFileBecomesAPage_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("format"); // "" for bytes that are no picture
        QTest::addColumn<bool>("shortcut");
        QTest::addColumn<QString>("type");
        QTest::newRow("JPEG with an apostrophe")
            << "Bob's scan.jpg" << QByteArray("JPG") << false << "jpg";
        QTest::newRow("JPEG with quotes and percent")
            << "the \"best\" 100% scan.jpeg" << QByteArray("JPG") << false << "jpg";
        QTest::newRow("BMP, copied byte for byte")
            << "plain.bmp" << QByteArray("BMP") << false << "bmp";
        QTest::newRow("TIFF stays where it is as a shortcut")
            << "drawing.tif" << QByteArray() << true << "tif";
        QTest::newRow("shortcut with hostile name")
            << "50% off; 'it''s' \"ok\".pdf" << QByteArray() << true << "pdf";
    }
    void aFileBecomesAPage()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, format);
        QFETCH(bool, shortcut);
        QFETCH(QString, type);
        MoveBench b;
        const QString source = format.isEmpty()
                                   ? b.write(name, QByteArray("%PDF-1.4 not a picture\n"))
                                   : b.image(name, QSize(300, 400), format.constData());
        const QByteArray sourceDigest = digest(source);

        b.files->begin();
        const qint32 id = b.files->addPageFromFile(source, 1);
        b.files->finish();

        QVERIFY(id > 0);
        const PageRow row = b.page(id);
        // Document, number (after the document's two pages; a shortcut's is 0), shortcut,
        // stored name, type, size and date.
        QCOMPARE((QVariantList{row.documentId, row.pageNumber, row.shortcut, row.filename,
                               row.fileType, row.fileSize, row.scanDate}),
                 (QVariantList{1, shortcut ? 0 : 3, shortcut, shortcut ? source : QString(), type,
                               QFileInfo(source).size(), QDate::currentDate()}));
        QCOMPARE(b.notices.pages, QVector<qint32>{id});
        QCOMPARE(b.files->added(), 1);
        QVERIFY(b.files->problems().isEmpty());
        if (shortcut) {
            // Not copied, no thumbnail: the page pane shows the file's icon.
            QVERIFY(!QFile::exists(b.pagePath(id)));
            QVERIFY(!QFile::exists(b.thumbPath(id)));
        } else {
            QCOMPARE(digest(b.pagePath(id)), sourceDigest);
            QCOMPARE(QImageReader(b.thumbPath(id)).size(), QSize(100, 100));
            // Nothing but the page and its thumbnail in their directories.
            QCOMPARE(QDir(QFileInfo(b.pagePath(id)).path())
                         .entryList({QStringLiteral("*.part*"), QStringLiteral("*.jpg.*")},
                                    QDir::Files | QDir::Hidden),
                     QStringList());
        }
    }

    void filesThatCannotBeReadAreNamed()
    {
        MoveBench b;
        const QString missing = b.outside.filePath("gone.jpg");
        const QString folder = b.outside.filePath("a folder.jpg");
        QDir().mkpath(folder);
        b.prompter.expect("2 of 4 files were added. These could not be added:\n\n" + missing +
                          ": No such file\n" + folder + ": A folder, not a file");
        const int before = b.session->pages().count(1);

        FileDrop(*b.context, *b.files)
            .pasteFiles(
                {b.image("first.jpg"), missing, folder, b.image("last.bmp", QSize(50, 50), "BMP")},
                1);

        QVERIFY2(b.prompter.verify(), qPrintable(b.prompter.report()));
        const QVector<PageRow> rows = b.session->pages().pages(1);
        QCOMPARE(rows.size(), before + 2);
        QCOMPARE(rows.at(before).pageNumber, 3);
        QCOMPARE(rows.at(before + 1).pageNumber, 4);
        QCOMPARE(b.navigator.calls, QStringList{"SHOWDOC1"});
    }

    void aFileGoneBeforeItsCopyLeavesNoPage()
    {
        MoveBench b;
        const QString source = b.image(QStringLiteral("soon gone.jpg"));
        b.files->begin();
        const std::optional<PageFileAdder::NewRow> row = b.files->insertRow(source, 3);
        QVERIFY(row);
        QVERIFY(b.session->pages().page(row->pageId));
        QFile::remove(source);
        b.files->deliver(*row);
        b.files->finish();
        QVERIFY(!b.session->pages().page(row->pageId));
        QVERIFY(!QFile::exists(b.pagePath(row->pageId)));
        QCOMPARE(b.files->added(), 0);
        QCOMPARE(b.files->problems().size(), 1);
        QVERIFY(b.files->problems().first().startsWith(source + QStringLiteral(": ")));
        QCOMPARE(b.files->report().left(29), QStringLiteral("The file could not be added:\n"));
    }

    void aCopyThatFailsLeavesNoPage_data()
    {
        QTest::addColumn<bool>("nextGroup");
        QTest::newRow("alone") << false;
        // The failed copy reports while the next group of rows is open, and that group rolls
        // back: the failed row goes all the same, and is not brought back with the group.
        QTest::newRow("while the next group rolls back") << true;
    }
    void aCopyThatFailsLeavesNoPage()
    {
        QFETCH(bool, nextGroup);
        MoveBench b;
        const QString source = b.image(QStringLiteral("blocked.jpg"));
        const qint32 id = blockNextPageFile(b);
        QVERIFY(id > 0);
        QSignalSpy done(b.files.get(), &PageFileAdder::thumbnailDone);
        b.files->begin();
        QCOMPARE(b.files->addPageFromFile(source, 3), id);
        if (nextGroup) {
            {
                Database::Transaction group(b.session->db());
                b.files->holdDeliveries();
                QVERIFY(b.files->addPageFromFile(b.image(QStringLiteral("two.jpg")), 3) > 0);
                QTRY_COMPARE(b.files->outstanding(), 0);
                QCOMPARE(b.files->problems().size(), 1);
            }
            b.files->dropDeliveries(QStringLiteral("the disk is full"));
        }
        b.files->finish();
        QVERIFY(!b.session->pages().page(id));
        QCOMPARE(b.files->problems().size(), nextGroup ? 2 : 1);
        QVERIFY(b.files->problems().first().startsWith(source + QStringLiteral(": ")));
        QVERIFY(QFileInfo(b.pagePath(id)).isDir());
        QCOMPARE(b.session->db().transactionDepth(), 0);
        // The thumbnail, made from the contents while the copy failed, went with the row.
        QVERIFY(!QFile::exists(b.thumbPath(id)));
        const auto made = std::find_if(done.cbegin(), done.cend(), [&](const QList<QVariant>& s) {
            return s.at(0).toString() == b.thumbPath(id);
        });
        QVERIFY(made != done.cend());
        QVERIFY(made->at(1).value<QImage>().isNull());
        if (!nextGroup)
            QCOMPARE(done.size(), 1);
    }

    void heldDeliveriesWaitForTheCommit_data()
    {
        QTest::addColumn<bool>("committed");
        QTest::newRow("committed") << true;
        QTest::newRow("rolled back") << false;
    }
    void heldDeliveriesWaitForTheCommit()
    {
        QFETCH(bool, committed);
        MoveBench b;
        const QStringList files{b.image(QStringLiteral("one.jpg")),
                                b.image(QStringLiteral("two.jpg"))};
        b.files->begin();
        const qint32 highest = b.session->pages().highestNumber(3);
        QVector<qint32> ids;
        {
            Database::Transaction group(b.session->db());
            b.files->holdDeliveries();
            for (const QString& file : files)
                ids << b.files->addPageFromFile(file, 3);
            // Neither a notice nor a copy for rows that could still go.
            QCOMPARE(b.files->held(), 2);
            QVERIFY(b.notices.pages.isEmpty());
            QCOMPARE(b.files->outstanding(), 0);
            if (committed)
                group.commit();
        }
        if (committed)
            b.files->releaseDeliveries();
        else
            b.files->dropDeliveries(QStringLiteral("the disk is full"));
        // The batch goes on numbering after what the store holds now.
        const qint32 next = b.files->addPageFromFile(b.image(QStringLiteral("three.jpg")), 3);
        QCOMPARE(b.session->pages().page(next)->pageNumber, highest + (committed ? 3 : 1));
        b.files->finish();
        QCOMPARE(b.files->held(), 0);
        for (int i = 0; i < ids.size(); ++i) {
            // The store may give a rolled-back row's id to the next row.
            if (ids.at(i) == next)
                continue;
            QCOMPARE(bool(b.session->pages().page(ids.at(i))), committed);
            QCOMPARE(digest(b.pagePath(ids.at(i))), committed ? digest(files.at(i)) : QByteArray());
        }
        if (committed) {
            QCOMPARE(b.notices.pages, ids << next);
            QCOMPARE(b.files->added(), 3);
            QVERIFY(b.files->problems().isEmpty());
        } else {
            QCOMPARE(b.notices.pages, QVector<qint32>{next});
            QCOMPARE(b.files->problems(),
                     QStringList({files.at(0) + QStringLiteral(": the disk is full"),
                                  files.at(1) + QStringLiteral(": the disk is full")}));
        }
    }

    void aLargeDropCommitsInGroups()
    {
        MoveBench b;
        QStringList files;
        // Groups of 4 and 8, then 3 of a group of 16.
        const int count = 3 * FileDrop::kFirstGroupRows + 3;
        for (int i = 0; i < count; ++i)
            files << b.image(QStringLiteral("scan %1.jpg").arg(i), QSize(60, 80));
        // Nothing lost at the groups' edges.
        const int before = b.session->pages().count(3);
        QSignalSpy coming(b.files.get(), &PageFileAdder::thumbnailComing);
        QSignalSpy done(b.files.get(), &PageFileAdder::thumbnailDone);

        FileDrop(*b.context, *b.files).dropFiles(files, NodeKey::parse("DOC3"), *b.mover);

        const QVector<PageRow> rows = b.session->pages().pages(3);
        QCOMPARE(rows.size(), before + count);
        for (int i = 0; i < count; ++i) {
            QCOMPARE(rows.at(before + i).pageNumber, rows.at(before).pageNumber + i);
            QCOMPARE(digest(b.pagePath(rows.at(before + i).id)), digest(files.at(i)));
        }
        QCOMPARE(b.notices.pages.size(), count);
        // Each thumbnail announced before it is made and handed over when it is.
        QCOMPARE(coming.size(), count);
        QCOMPARE(done.size(), count);
        for (const QList<QVariant>& signal : done)
            QCOMPARE(signal.at(1).value<QImage>().size(), QSize(100, 100));
        QCOMPARE(b.session->db().transactionDepth(), 0);
    }

    void threeFilesOnAFolderMakeOneDocument()
    {
        MoveBench b;
        const QStringList files{b.image(QStringLiteral("one.jpg")),
                                b.write(QStringLiteral("two's.tif"), "II*\0 not really"),
                                b.image(QStringLiteral("three.bmp"), QSize(80, 60), "BMP")};
        const int documents = b.session->items().count(Level::Document);
        const qint64 pages = b.session->pages().countAll();
        // Not on a drawer, a cabinet, the root or a found document.
        for (const char* target : {"DRW1", "CAB1", "ROOT", "FDC1"})
            FileDrop(*b.context, *b.files).dropFiles(files, NodeKey::parse(target), *b.mover);
        QCOMPARE(b.session->pages().countAll(), pages);
        QCOMPARE(b.session->items().count(Level::Document), documents);
        QVERIFY(b.prompter.seen().isEmpty());

        FileDrop(*b.context, *b.files).dropFiles(files, NodeKey::parse("FLD2"), *b.mover);

        QCOMPARE(b.session->items().count(Level::Document), documents + 1);
        const QVector<ItemRow> made = b.session->items().children(Level::Document, 2);
        QCOMPARE(made.size(), 1);
        QCOMPARE(made.first().name, QStringLiteral("New document"));
        const qint32 doc = made.first().id;
        const QVector<PageRow> rows = b.session->pages().pages(doc);
        QCOMPARE(rows.size(), 3);
        // In page order: the shortcut (0), then the two images as they came.
        QCOMPARE(rows.at(0).filename, files.at(1));
        QCOMPARE(rows.at(1).pageNumber, 1);
        QCOMPARE(rows.at(2).pageNumber, 2);
        QCOMPARE(rows.at(2).fileType, QStringLiteral("bmp"));
        // The document is announced once, then its pages are shown.
        QCOMPARE(b.navigator.calls.first(), QStringLiteral("DOC%1 New document<2").arg(doc));
        QCOMPARE(b.navigator.calls.filter(QStringLiteral("New document")).size(), 1);
        QCOMPARE(b.navigator.calls.last(), QStringLiteral("SHOWDOC%1").arg(doc));
        QCOMPARE(b.notices.pages.size(), 3);
        // The window's expansion is not what a file drop does.
        QVERIFY(b.moves.calls.isEmpty());
    }

    void cancelKeepsWhatWasAdded()
    {
        test::CancellingProgress progress(2);
        MoveBench b(&progress);
        QStringList files;
        for (int i = 0; i < 5; ++i)
            files << b.image(QStringLiteral("scan %1.jpg").arg(i), QSize(600, 800));
        const int before = b.session->pages().count(3);

        FileDrop(*b.context, *b.files).dropFiles(files, NodeKey::parse("DOC3"), *b.mover);

        QCOMPARE(progress.titles, QStringList{"Pasting files"});
        QCOMPARE(progress.maximum, 5);
        QVERIFY(progress.cancelShown);
        QCOMPARE(progress.ends, 1);
        const QVector<PageRow> rows = b.session->pages().pages(3);
        QCOMPARE(rows.size(), before + 2);
        // What was added is whole: both files are in place.
        for (int i = 0; i < 2; ++i)
            QCOMPARE(digest(b.pagePath(rows.at(before + i).id)), digest(files.at(i)));
        QVERIFY(b.prompter.seen().isEmpty());
    }
};

QMR_TEST(TestPageFileAdder)
#include "testpagefileadder.moc"
