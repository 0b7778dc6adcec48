#include <QClipboard>
#include <QCryptographicHash>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>

#include "core/commandtarget.h"
#include "filing/clipboardfiles.h"
#include "filing/filedrop.h"
#include "filing/pageclipboard.h"
#include "movefixture.h"
#include "store/database.h"
#include "store/itemstore.h"
#include "store/pagestore.h"
#include "tests/support/datarow.h"
#include "tests/support/settargetview.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using namespace qmr::test;

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

// The sample store with a clipboard on it, whose page list and tree a test sets.
struct ClipBench : MoveBench
{
    explicit ClipBench(Progress* progress = nullptr)
        : MoveBench(progress), target(state.selection(), stub)
    {
        context->target = &target;
        clipboard = std::make_unique<PageClipboard>(*context);
        QGuiApplication::clipboard()->clear();
    }
    SetTargetView stub;
    CommandTarget target;
    std::unique_ptr<PageClipboard> clipboard;
    // Where pages stand: "document:number" each.
    QStringList places(std::initializer_list<qint32> ids) const
    {
        QStringList out;
        for (const qint32 id : ids)
            out << QString("%1:%2").arg(page(id).documentId).arg(page(id).pageNumber);
        return out;
    }
};

} // namespace

// Files that become pages, from a drop or the clipboard, and pages that go to the clipboard.
class TestPageFiles : public QObject
{
    Q_OBJECT
private slots:
    // Every name passes the loops' gate; the type is the name's last three letters.
    void aFileBecomesAPage_data()
    {
        // `format`: "" for bytes that are no picture.
        columns<QString, QByteArray, bool, QString>({"name", "format", "shortcut", "type"});
        const auto row = [](const char* tag, const char* name, const char* format, bool shortcut,
                            const char* type) {
            test::row(tag, QString(name), QByteArray(format), shortcut, QString(type));
        };
        row("JPEG with an apostrophe", "Bob's scan.jpg", "JPG", false, "jpg");
        row("JPEG in capitals, with quotes and percent", "the \"best\" 100% scan.JPEG", "JPG",
            false, "jpg");
        row("BMP, copied byte for byte", "plain.Bmp", "BMP", false, "bmp");
        row("TIFF stays where it is as a shortcut", "drawing.tif", "", true, "tif");
        row("tiff keeps its last three", "drawing.tiff", "", true, "iff");
        row("no extension", "README", "", true, "dme");
        row("shortcut with hostile name", "50% off; 'it''s' \"ok\".pdf", "", true, "pdf");
    }
    void aFileBecomesAPage()
    {
        auto [name, format, shortcut, type] =
            fetch<QString, QByteArray, bool, QString>("name", "format", "shortcut", "type");
        QCOMPARE(PageFileAdder::isShortcutFile(name), shortcut);
        QCOMPARE(PageFileAdder::fileType(name), type);
        QVERIFY(PageFileAdder::isImportableFile(name));
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
        QCOMPARE(b.nav.calls, QStringList{"SHOWDOC1"});
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
        columns<bool>({"nextGroup"});
        row("alone", false);
        // The failed copy reports while the next group of rows is open, and that group rolls
        // back: the failed row goes all the same, and is not brought back with the group.
        row("while the next group rolls back", true);
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
        columns<bool>({"committed"});
        row("committed", true);
        row("rolled back", false);
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

    void dropIntoADocument_data()
    {
        // `cancelAfter`: the steps before Cancel is pressed, 0 for none.
        columns<int, QSize, int, int>({"files", "size", "cancelAfter", "added"});
        // Groups of 4 and 8, then 3 of a group of 16: nothing lost at the groups' edges.
        const int large = 3 * FileDrop::kFirstGroupRows + 3;
        row("a large drop commits in groups", large, QSize(60, 80), 0, large);
        // What was added before the Cancel is whole: its files are in place.
        row("cancel keeps what was added", 5, QSize(600, 800), 2, 2);
    }
    void dropIntoADocument()
    {
        auto [files, size, cancelAfter, added] =
            fetch<int, QSize, int, int>("files", "size", "cancelAfter", "added");
        CancellingProgress progress(cancelAfter ? cancelAfter : 1 << 30);
        MoveBench b(&progress);
        QStringList paths;
        for (int i = 0; i < files; ++i)
            paths << b.image(QString("scan %1.jpg").arg(i), size);
        const int before = b.session->pages().count(3);
        QSignalSpy coming(b.files.get(), &PageFileAdder::thumbnailComing);
        QSignalSpy done(b.files.get(), &PageFileAdder::thumbnailDone);

        FileDrop(*b.context, *b.files).dropFiles(paths, NodeKey::parse("DOC3"), *b.mover);

        QCOMPARE(progress.titles, QStringList{"Pasting files"});
        QCOMPARE(progress.maximum, files);
        QVERIFY(progress.cancelShown);
        QCOMPARE(progress.ends, 1);
        const QVector<PageRow> rows = b.session->pages().pages(3);
        QCOMPARE(rows.size(), before + added);
        for (int i = 0; i < added; ++i) {
            QCOMPARE(rows.at(before + i).pageNumber, rows.at(before).pageNumber + i);
            QCOMPARE(digest(b.pagePath(rows.at(before + i).id)), digest(paths.at(i)));
        }
        QCOMPARE(b.notices.pages.size(), added);
        // Each thumbnail announced before it is made and handed over when it is.
        if (!cancelAfter) {
            QCOMPARE(coming.size(), added);
            QCOMPARE(done.size(), added);
            for (const QList<QVariant>& signal : done)
                QCOMPARE(signal.at(1).value<QImage>().size(), QSize(100, 100));
        }
        QCOMPARE(b.session->db().transactionDepth(), 0);
        QVERIFY(b.prompter.seen().isEmpty());
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
        QCOMPARE(b.nav.calls.first(), QStringLiteral("DOC%1 New document<2").arg(doc));
        QCOMPARE(b.nav.calls.filter(QStringLiteral("New document")).size(), 1);
        QCOMPARE(b.nav.calls.last(), QStringLiteral("SHOWDOC%1").arg(doc));
        QCOMPARE(b.notices.pages.size(), 3);
        // The window's expansion is not what a file drop does.
        QVERIFY(b.moves.calls.isEmpty());
    }

    void copiedFilesReadBack_data()
    {
        columns<QStringList>({"files"});
        row("one", QStringList{"/home/ann/Pages/0000000/7.jpg"});
        row("hostile names", QStringList{"/tmp/Bob's scan.jpg", "/tmp/the \"best\" 100%.bmp",
                                         "/tmp/semi;colon #hash?.tif", "/tmp/ümlaut ß.pdf"});
    }
    void copiedFilesReadBack()
    {
        QFETCH(QStringList, files);
        std::unique_ptr<QMimeData> data(ClipboardFiles::mimeDataFor(files));
        QVERIFY(data->hasFormat(QStringLiteral("text/uri-list")));
        QCOMPARE(ClipboardFiles::filesOf(data.get()), files);
        // A file manager's paste reads the second format: "copy", then one address a line.
        const QList<QByteArray> lines =
            data->data(QStringLiteral("x-special/gnome-copied-files")).split('\n');
        QCOMPARE(lines.first(), QByteArray("copy"));
        QCOMPARE(lines.size(), files.size() + 1);
        for (int i = 0; i < files.size(); ++i)
            QCOMPARE(QUrl::fromEncoded(lines.at(i + 1)).toLocalFile(), files.at(i));
        // Data with only that format reads the same.
        QMimeData copiedOnly;
        copiedOnly.setData(QStringLiteral("x-special/gnome-copied-files"),
                           data->data(QStringLiteral("x-special/gnome-copied-files")));
        QCOMPARE(ClipboardFiles::filesOf(&copiedOnly), files);
        // Addresses that are no local files are left out, and text is no file.
        QMimeData mixed;
        mixed.setUrls({QUrl(QStringLiteral("https://example.org/a.jpg")),
                       QUrl::fromLocalFile(files.first())});
        QCOMPARE(ClipboardFiles::filesOf(&mixed), QStringList{files.first()});
        QMimeData text;
        text.setText(files.first());
        QVERIFY(ClipboardFiles::filesOf(&text).isEmpty());
    }

    void copyPutsThePageFilesOnTheClipboard()
    {
        ClipBench b;
        const QString outside = b.write(QStringLiteral("O'Neil's 50%.pdf"), "pdf");
        b.files->begin();
        const qint32 shortcut = b.files->addPageFromFile(outside, 1);
        b.files->finish();
        b.stub.pages = {2, shortcut, 1};
        b.clipboard->copySelectedPages();
        const QMimeData* data = QGuiApplication::clipboard()->mimeData();
        QVERIFY(data && data->hasFormat("text/uri-list"));
        QVERIFY(data->hasFormat("x-special/gnome-copied-files"));
        // In the list's order; a shortcut gives its own file.
        QCOMPARE(ClipboardFiles::getClipboardFiles(),
                 (QStringList{b.pagePath(2), outside, b.pagePath(1)}));
        QVERIFY(b.clipboard->canPaste());

        // A copy after a cut forgets the cut.
        b.stub.pages = {1};
        b.clipboard->cut();
        QCOMPARE(b.state.clipPages().ids, QVector<qint32>{1});
        b.stub.pages = {2};
        b.clipboard->copySelectedPages();
        QVERIFY(b.state.clipPages().isEmpty());
        // The paste takes the copied file; what was cut stays where it is.
        b.stub.tree = NodeKey::parse("DOC3");
        b.clipboard->pasteIntoDocument();
        QCOMPARE(b.places({1, 2}), (QStringList{"1:1", "1:2"}));
        const QVector<PageRow> rows = b.session->pages().pages(3);
        QCOMPARE(rows.size(), 2);
        QCOMPARE(rows.last().pageNumber, 2);
        QVERIFY(QFile::exists(b.pagePath(rows.last().id)));
    }

    void cutWinsOverFilesOnTheClipboard()
    {
        ClipBench b;
        ClipboardFiles::setClipboardFiles({b.image(QStringLiteral("outside.jpg"))});
        b.stub.pages = {2, 1};
        b.clipboard->cut();
        // Cut pages stay in their document until the paste.
        QCOMPARE(b.places({1, 2}), (QStringList{"1:1", "1:2"}));
        b.stub.tree = NodeKey::parse("DOC3");
        b.clipboard->pasteIntoDocument();
        // Both moved, keeping their numbers: document 3 has two pages numbered 1 now.
        QCOMPARE(b.places({1, 2, 3}), (QStringList{"3:1", "3:2", "3:1"}));
        QCOMPARE(b.session->pages().count(3), 3);
        QCOMPARE(b.notices.pages, (QVector<qint32>{2, 1}));
        QCOMPARE(b.nav.calls, QStringList{"SHOWDOC3"});
        QVERIFY(b.state.clipPages().isEmpty());
        // The next paste takes the files.
        b.clipboard->pasteIntoDocument();
        QCOMPARE(b.session->pages().count(3), 4);
    }

    void pasteWithNothingDoesNothing_data()
    {
        columns<QString, bool>({"tree", "cut"});
        row("nothing on either clipboard", QString("DOC3"), false);
        row("a folder selected", QString("FLD1"), true);
        row("a found document selected", QString("FDC3"), true);
    }
    void pasteWithNothingDoesNothing()
    {
        auto [tree, cut] = fetch<QString, bool>("tree", "cut");
        CancellingProgress progress(1000);
        ClipBench b(&progress);
        if (cut) {
            b.stub.pages = {1};
            b.clipboard->cut();
        }
        QCOMPARE(b.clipboard->canPaste(), cut);
        b.stub.tree = NodeKey::parse(tree);
        b.clipboard->pasteIntoDocument();
        QVERIFY(progress.titles.isEmpty());
        QVERIFY(b.nav.calls.isEmpty());
        QVERIFY(b.prompter.seen().isEmpty());
        QCOMPARE(b.page(1).documentId, 1);
    }
};

QMR_TEST(TestPageFiles)
#include "testpagefileadder.moc"
