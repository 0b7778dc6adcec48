#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>

#include "core/pagenotifier.h"
#include "exchange/importdialog.h"
#include "exchangefixture.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::ExchangeFixture;
using test::fetch;
using test::row;
using test::TestFileSystem;

namespace {

// An exchange directory of one drawer, folder and document with `pages` pages.
QString writeExchange(ExchangeFixture& f, const QString& name, int pages, bool marker = true)
{
    const QString root = f.outsidePath(name);
    if (marker)
        ExchangeFixture::writeBytes(root + "/QMR.txt", "*** DO NOT DELETE THIS FILE ***\r\n");
    for (int p = 1; p <= pages; ++p)
        ExchangeFixture::writeImage(root + QString("/Bank/Checking/March/Page %1.jpg").arg(p));
    return root;
}

// What the window's notifiers hear: pictures that came in are read for their text; an import
// sends no folder notice.
struct Arrivals : PageNotifier
{
    int added = 0, arrived = 0;
    void pageAdded(qint32) override { ++added; }
    void picturesArrived() override { ++arrived; }
};

// A home with the cabinet "Target" and an exchange directory "ex" of `pages` pages.
struct ImportFixture : ExchangeFixture
{
    qint32 target = store->cabinet("Target");
    QString ex;
    explicit ImportFixture(int pages) : ex(writeExchange(*this, "ex", pages)) {}
};

void importFrom(ImportDialog& dialog, const QString& path, const QString& disks = "1")
{
    dialog.findChild<QLineEdit*>("txtImportPath")->setText(path);
    dialog.findChild<QLineEdit*>("txtDiskCount")->setText(disks);
    dialog.cmdOK();
}

} // namespace

class TestImportDialog : public QObject
{
    Q_OBJECT
private slots:
    void checksInOrder_data()
    {
        // path: "@ex": an exchange directory, "@plain": none; pages: how many came in
        test::columns<QString, QString, QStringList, QList<int>, QString, int>(
            {"path", "disks", "texts", "answers", "disksAfter", "pages"});
        const int ok = int(Prompter::Answer::Ok), yes = int(Prompter::Answer::Yes),
                  no = int(Prompter::Answer::No), cancel = int(Prompter::Answer::Cancel);
        const QString over = "You have designated over 10 disks to import.  Continue?";
        const QString below = "You have entered a disk count less than 1.";
        const QString marker = "Missing QMR.TXT. This file designates the starting point of a "
                               "previously exported file cabinet.";
        const QString report = "2 files imported.\r\n0 shortcuts created.";
        const QString disk2 = "Please insert disk # 2";
        row("path first", "@out/none", "0", QStringList{"'@out/none' does not exist."},
            QList<int>{ok}, "0", 0);
        row("then the marker", "@plain", "0", QStringList{marker}, QList<int>{ok}, "0", 0);
        row("one disk", "@ex", "1", QStringList{report}, QList<int>{ok}, "1", 2);
        row("1.9 is one", "@ex", "1.9", QStringList{report}, QList<int>{ok}, "1", 2);
        // The second disk holds the rest of the same tree, without a marker; cancelled, the
        // first disk's pages stay.
        row("9 asks nothing", "@ex", "9", QStringList{disk2, report}, QList<int>{cancel, ok}, "9",
            2);
        row("a second disk put in", "@ex", "2",
            QStringList{disk2, "3 files imported.\r\n0 shortcuts created."}, QList<int>{ok, ok},
            "2", 3);
        row("10 asks, no", "@ex", "10", QStringList{over}, QList<int>{no}, "10", 0);
        row("10 asks, yes", "@ex", "10", QStringList{over, disk2, report},
            QList<int>{yes, cancel, ok}, "10", 2);
        row("11.5 asks first, then nothing below one", "@ex", "11.5", QStringList{over},
            QList<int>{no}, "11", 0);
        row("0", "@ex", "0", QStringList{below}, QList<int>{ok}, "0", 0);
        row("not a number", "@ex", "two", QStringList{below}, QList<int>{ok}, "0", 0);
        row("negative", "@ex", "-3", QStringList{below}, QList<int>{ok}, "-3", 0);
    }
    void checksInOrder()
    {
        auto [path, disks, texts, answers, disksAfter, pages] =
            fetch<QString, QString, QStringList, QList<int>, QString, int>(
                "path", "disks", "texts", "answers", "disksAfter", "pages");
        ImportFixture f(2);
        const QString plain = writeExchange(f, "plain", 1, false);
        f.prompter.onAsk = [&](const QString& text) {
            if (!text.startsWith("Please insert disk"))
                return;
            QDir(f.ex).removeRecursively();
            ExchangeFixture::writeImage(f.ex + "/Bank/Checking/March/Page 3.jpg");
        };
        f.expectAll(texts, answers, {{"@ex", f.ex}, {"@plain", plain}});
        Arrivals arrivals;
        f.context();
        f.contexts.back().pageNotifier = &arrivals;
        ImportDialog dialog(f.contexts.back());
        importFrom(dialog, f.placed(path, {{"@ex", f.ex}, {"@plain", plain}}), disks);
        QVERIFY2(f.prompter.verify(), qPrintable(f.prompter.report()));
        const bool imported = pages > 0;
        QCOMPARE(arrivals.arrived, imported ? 1 : 0);
        QCOMPARE(arrivals.added, 0);
        QCOMPARE(dialog.findChild<QLineEdit*>("txtDiskCount")->text(), disksAfter);
        // One drawer, folder and document however many disks brought them.
        QCOMPARE(f.counts(), imported ? QList<int>({1, 1, 1, pages}) : QList<int>({0, 0, 0, 0}));
        QCOMPARE(dialog.result() == QDialog::Accepted, imported);
        QCOMPARE(f.home.settings().get(keys::LastImportPath), imported ? f.ex : QString());
    }

    // A stop, a full store, unreadable files and links: what came in before stays whole, and
    // the report names the rest. "@doc" is the document's directory, "@stored2" the store's
    // place of the second page.
    void troublesOnTheWay_data()
    {
        test::columns<int, int, int, QStringList, bool, QStringList, QList<int>, QStringList>(
            {"pages", "cancelAt", "diskFullAt", "unreadable", "links", "texts", "answers",
             "names"});
        const int ok = int(Prompter::Answer::Ok), yes = int(Prompter::Answer::Yes);
        const QString link = "' is a link; it was not followed.";
        row("stop keeps what came in", 5, 2, 0, QStringList{}, false,
            QStringList{"Stop the import?",
                        "2 files imported.\r\n0 shortcuts created.\r\nImport stopped by user."},
            QList<int>{yes, ok}, QStringList{"Page 1.jpg", "Page 2.jpg"});
        // The page whose file could not be stored leaves no row; the one before it stays.
        row("a full store ends it", 3, 0, 2, QStringList{}, false,
            QStringList{"Cannot write @stored2: No space left on device",
                        "1 files imported.\r\n0 shortcuts created."},
            QList<int>{ok, ok}, QStringList{"Page 1.jpg"});
        row("unreadable files are passed over", 3, 0, 0, QStringList{"Page 2.jpg", "Document.txt"},
            false, QStringList{"2 files imported.\r\n0 shortcuts created."}, QList<int>{ok},
            QStringList{"Page 1.jpg", "Page 3.jpg"});
        // Links made out of order are named in order of their names, at the end.
        row("links are named at the end", 2, 0, 0, QStringList{}, true,
            QStringList{"2 files imported.\r\n0 shortcuts created.\r\n\r\n'@ex/Bank/Everything" +
                        link + "\r\n'@doc/Page 3.jpg" + link + "\r\n'@doc/Page 7.jpg" + link +
                        "\r\n'@doc/Page 8.jpg" + link + "\r\n'@doc/Page 9.jpg" + link},
            QList<int>{ok}, QStringList{"Page 1.jpg", "Page 2.jpg"});
    }
    void troublesOnTheWay()
    {
        auto [pages, cancelAt, diskFullAt, unreadable, links, texts, answers, names] =
            fetch<int, int, int, QStringList, bool, QStringList, QList<int>, QStringList>(
                "pages", "cancelAt", "diskFullAt", "unreadable", "links", "texts", "answers",
                "names");
        ImportFixture f(pages);
        const QString doc = f.ex + "/Bank/Checking/March";
        TestFileSystem fs;
        if (diskFullAt)
            fs.failCopy.insert(diskFullAt, FileOutcome::Kind::DiskFull);
        for (const QString& name : unreadable)
            fs.unreadable.insert(doc + "/" + name);
        if (unreadable.contains("Document.txt"))
            ExchangeFixture::writeBytes(doc + "/Document.txt", "[Amount]\r\n1\r\n");
        if (links) {
            QVERIFY(ExchangeFixture::writeImage(f.outsidePath("secret.jpg"), Qt::red));
            for (const char* page : {"Page 3.jpg", "Page 9.jpg", "Page 7.jpg", "Page 8.jpg"})
                QVERIFY(QFile::link(f.outsidePath("secret.jpg"), doc + "/" + page));
            QVERIFY(QFile::link(f.outside.path(), f.ex + "/Bank/Everything"));
        }
        f.expectAll(
            texts, answers,
            {{"@ex", f.ex}, {"@doc", doc}, {"@stored2", f.session->paths().computedPagePath(2)}});
        ImportDialog dialog(f.context(), nullptr, &fs);
        fs.afterCopy = [&](int n) {
            if (n == cancelAt)
                dialog.findChild<QPushButton*>("cmdCancel")->click();
        };
        dialog.selectCabinet(f.target);
        importFrom(dialog, f.ex);
        QVERIFY2(f.prompter.verify(), qPrintable(f.prompter.report()));
        QCOMPARE(f.count("Folder"), 1);
        QVERIFY(f.field("SELECT Amount FROM Document").isNull());
        const Recordset rs = f.db().openRecordset("SELECT PageId, Name FROM Page ORDER BY Name");
        QStringList stored;
        for (int i = 0; i < rs.recordCount(); ++i) {
            stored << rs.text(i, "Name");
            const qint32 id = rs.integer(i, "PageId");
            QVERIFY(QFile::exists(f.session->paths().computedPagePath(id)));
            QVERIFY(QFile::exists(f.session->paths().computedThumbPath(id)));
        }
        QCOMPARE(stored, names);
    }

    // With no cabinet to take it, the dialog says so; its look-up still finds a directory.
    void noCabinetsAndLookup()
    {
        ExchangeFixture f;
        f.store->cabinet("Locked", "pw");
        ImportDialog dialog(f.context());
        QCOMPARE(dialog.findChild<QComboBox*>("cboCabinet")->currentText(),
                 "No file cabinets to export");
        QVERIFY(!dialog.findChild<QPushButton*>("cmdOK")->isEnabled());
        QCOMPARE(dialog.windowTitle(), "Import Files");
        QCOMPARE(dialog.findChild<QLineEdit*>("txtDiskCount")->text(), "1");

        const QString ex = writeExchange(f, "ex", 1);
        f.choosers.queueFileToOpen(ex + "/QMR.txt");
        auto* box = dialog.findChild<QLineEdit*>("txtImportPath");
        box->setText(f.outside.path());
        dialog.cmdLookup();
        QCOMPARE(box->text(), ex);
        QCOMPARE(f.choosers.fileStarts(),
                 QStringList({f.outside.path() + "/QMR.txt | File cabinets (qmr.txt QMR.txt "
                                                 "QMR.TXT)"}));
        // Cancel keeps the text.
        dialog.cmdLookup();
        QCOMPARE(box->text(), ex);
    }
};

QMR_TEST(TestImportDialog)
#include "testimportdialog.moc"
