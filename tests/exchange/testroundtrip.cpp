#include <QDirIterator>
#include <QRegularExpression>

#include "exchange/cabinetexporter.h"
#include "exchange/cabinetimporter.h"
#include "exchange/filetypefilter.h"
#include "exchange/promptedquestions.h"
#include "exchangefixture.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::ExchangeFixture;
using test::fetch;

namespace {

// A cabinet with what the format has to carry and what it loses on the way.
struct Cabinet
{
    qint32 id = -1;
    qint32 bill = -1;       // "Bill.2.pdf": date, description, amount; five pages
    qint32 onlyAmount = -1; // amount alone: no manifest
    qint32 described = -1;  // an empty description that is not Null
    QString scanJpeg;       // a picture stored elsewhere, named .jpeg
    QString notesPdf;       // a shortcut's file
};

Cabinet buildCabinet(ExchangeFixture& f)
{
    test::FixtureStore& s = *f.store;
    Cabinet c;
    c.id = s.cabinet("Fam.ily: Papers");
    f.setText("Cabinet", "Description", c.id, "Line one\r\nLine two|three\nfour");
    const qint32 bank = s.drawer(c.id, "Bank.Accounts"); // no description at all
    const qint32 taxes = s.drawer(c.id, "Taxes");
    f.setText("Drawer", "Description", taxes, "");
    const qint32 checking = s.folder(bank, "Check*ing?");
    f.setText("Folder", "Description", checking, "Folder notes");
    s.folder(taxes, "2025"); // empty folder
    c.bill = s.document(checking, "Bill.2.pdf", QDate(2026, 3, 31), 1234.5);
    f.setText("Document", "Description", c.bill, "Paid");
    s.page(c.bill, 1, QSize(300, 400));
    s.page(c.bill, 3, QSize(400, 300));
    c.scanJpeg = f.outsidePath("scans/scan.jpeg");
    ExchangeFixture::writeImage(c.scanJpeg, Qt::darkGreen);
    f.storedPage(c.bill, 7, c.scanJpeg, false);
    c.notesPdf = f.outsidePath("docs/notes.pdf");
    ExchangeFixture::writeBytes(c.notesPdf, "%PDF-1.4 not much of a document");
    f.storedPage(c.bill, 8, c.notesPdf, true);
    s.pageRow(c.bill, 9); // its file has gone
    c.onlyAmount = s.document(checking, "Only amount", QDate(), 99.0);
    s.page(c.onlyAmount, 1, QSize(200, 200));
    c.described = s.document(checking, "Described");
    f.setText("Document", "Description", c.described, "");
    return c;
}

QStringList lines(const QString& path)
{
    const QByteArray bytes = ExchangeFixture::readBytes(path);
    // Every line ends in CR LF, the last one too.
    if (!bytes.endsWith("\r\n") || bytes.count('\n') != bytes.count("\r\n"))
        return {"<not CR LF>"};
    QStringList result = QString::fromUtf8(bytes).split("\r\n");
    result.removeLast();
    return result;
}

// The real file system and the fixture's questions, for an export and an import; the marker's
// clock stands still.
struct Exchange
{
    DiskFileSystem fs;
    PromptedQuestions questions;
    CabinetExporter exporter;
    CabinetImporter importer;
    explicit Exchange(ExchangeFixture& f)
        : questions(f.prompter),
          exporter(*f.session, fs, questions,
                   [] { return QDateTime(QDate(2026, 5, 1), QTime(8, 15, 0)); }),
          importer(*f.session, fs, questions, &f.nav)
    {
    }
};

} // namespace

class TestRoundTrip : public QObject
{
    Q_OBJECT
private slots:
    // The cabinet out to the format, and back into another cabinet, twice.
    void exportThenImport()
    {
        ExchangeFixture f;
        const Cabinet c = buildCabinet(f);
        const qint32 target = f.store->cabinet("Target");
        Exchange ex(f);
        const ExportReport exported =
            ex.exporter.exportCabinet(c.id, f.outsidePath("out"), f.progress);
        QVERIFY2(f.prompter.verify(), qPrintable(f.prompter.report()));
        // The missing page file is left out and not counted.
        QCOMPARE(exported.reportText(), "Export complete. 5 pages copied.");
        QVERIFY(exported.error.isEmpty());
        QVERIFY(exported.problems.isEmpty());

        const QString root = f.outsidePath("out/Family Papers");
        QCOMPARE(lines(root + "/QMR.txt"),
                 QStringList({"*** DO NOT DELETE THIS FILE ***", "Quillmere",
                              "Cabinet exported: 05/01/2026 08:15:00"}));
        QCOMPARE(lines(root + "/Cabinet.txt"),
                 QStringList({"[Description]", "Line one|Line two|three|four"}));
        QVERIFY(!QFile::exists(root + "/BankAccounts/Drawer.txt")); // Null: no file
        QCOMPARE(lines(root + "/Taxes/Drawer.txt"), QStringList({"[Description]", ""}));
        QVERIFY(QFileInfo(root + "/Taxes/2025").isDir());
        const QString folder = root + "/BankAccounts/Checking";
        QCOMPARE(lines(folder + "/Folder.txt"), QStringList({"[Description]", "Folder notes"}));
        const QString billDir = folder + "/Bill2";
        QCOMPARE(lines(billDir + "/Document.txt"),
                 QStringList({"[DateOnDocument]", "03/31/2026", "", "[Description]", "Paid", "",
                              "[Amount]", "1234.5"}));
        QCOMPARE(
            QDir(billDir).entryList(QDir::Files, QDir::Name),
            QStringList({"Document.txt", "Page 1.jpg", "Page 3.jpg", "notes.pdf", "scan.jpeg"}));
        // Byte for byte.
        QCOMPARE(ExchangeFixture::readBytes(billDir + "/scan.jpeg"),
                 ExchangeFixture::readBytes(c.scanJpeg));
        QCOMPARE(ExchangeFixture::readBytes(billDir + "/notes.pdf"),
                 ExchangeFixture::readBytes(c.notesPdf));
        QCOMPARE(ExchangeFixture::readBytes(billDir + "/Page 3.jpg"),
                 ExchangeFixture::readBytes(f.session->paths().computedPagePath(2)));
        // An amount alone makes no manifest; an empty description that is not Null does.
        QVERIFY(!QFile::exists(folder + "/Only amount/Document.txt"));
        QVERIFY(QFile::exists(folder + "/Only amount/Page 1.jpg"));
        QCOMPARE(
            lines(folder + "/Described/Document.txt"),
            QStringList({"[DateOnDocument]", "", "", "[Description]", "", "", "[Amount]", ""}));
        // Thumbnails stay home; nothing is left under a temporary name.
        QStringList everything;
        for (QDirIterator it(f.outsidePath("out"), QDir::Files, QDirIterator::Subdirectories);
             it.hasNext();)
            everything << it.next();
        QCOMPARE(everything.filter("Thumbs").size(), 0);
        QCOMPARE(everything.filter(".qmrpart").size(), 0);

        const ImportReport report = ex.importer.importCabinet(target, root, 1, f.progress);
        QVERIFY2(f.prompter.verify(), qPrintable(f.prompter.report()));
        QVERIFY(report.error.isEmpty());
        QVERIFY2(report.problems.isEmpty(), qPrintable(report.problems.join("; ")));
        QCOMPARE(report.reportText(), "4 files imported.\r\n1 shortcuts created.");

        // The cabinet directory's name plays no part: the target keeps its own name, and
        // takes the description.
        QCOMPARE(f.fieldOf("Cabinet", "Name", target), "Target");
        QCOMPARE(f.fieldOf("Cabinet", "Description", target),
                 "Line one\r\nLine two\r\nthree\r\nfour");
        // Names come back cleaned, periods and all gone; a document loses its extension.
        ItemStore& items = f.session->items();
        const qint32 bank = items.childNamed(Level::Drawer, target, "BankAccounts");
        const qint32 taxes = items.childNamed(Level::Drawer, target, "Taxes");
        QVERIFY(bank >= 0 && taxes >= 0);
        QVERIFY(f.fieldOf("Drawer", "Description", bank).isNull());
        QCOMPARE(f.fieldOf("Drawer", "Description", taxes), "");
        QVERIFY(items.childNamed(Level::Folder, taxes, "2025") >= 0);
        const qint32 checking = items.childNamed(Level::Folder, bank, "Checking");
        QCOMPARE(f.fieldOf("Folder", "Description", checking), "Folder notes");
        const qint32 bill = items.childNamed(Level::Document, checking, "Bill2");
        QVERIFY(bill >= 0);
        const std::optional<ItemFields> billFields = items.fields(Level::Document, bill);
        QCOMPARE(billFields->dateOnDocument, QDate(2026, 3, 31));
        QCOMPARE(billFields->description, "Paid");
        QCOMPARE(billFields->amount, 1234.5);
        // No manifest: the amount is lost. An empty amount value reads as 0.
        const qint32 only = items.childNamed(Level::Document, checking, "Only amount");
        QVERIFY(f.fieldOf("Document", "Amount", only).isNull());
        const qint32 described = items.childNamed(Level::Document, checking, "Described");
        QCOMPARE(f.fieldOf("Document", "Amount", described), 0.0);
        QVERIFY(f.fieldOf("Document", "DateOnDocument", described).isNull());

        // Pages: the file name is the page's name; "Page N" gives the number, others take the
        // next free one, in the order the files are read.
        const Recordset pages = f.db().openRecordset(
            "SELECT PageId, Name, PageNumber, ShortcutYN, Filetype, Filename, FileSize, "
            "ScanDate FROM Page WHERE DocumentId = ? ORDER BY Name",
            {bill});
        QCOMPARE(pages.recordCount(), 4);
        struct Expected
        {
            const char* name;
            int number;
            bool shortcut;
            const char* type;
        };
        const Expected expected[] = {{"notes.pdf", 1, true, "PDF"},
                                     {"Page 1.jpg", 1, false, "JPG"},
                                     {"Page 3.jpg", 3, false, "JPG"},
                                     {"scan.jpeg", 4, false, "JPG"}};
        for (int i = 0; i < 4; ++i) {
            const Expected& e = expected[i];
            QCOMPARE(pages.text(i, "Name"), e.name);
            QCOMPARE(pages.integer(i, "PageNumber"), e.number);
            QCOMPARE(pages.text(i, "ShortcutYN") == "Y", e.shortcut);
            QCOMPARE(pages.text(i, "Filetype"), e.type);
            QCOMPARE(pages.date(i, "ScanDate"), QDate::currentDate());
            const qint32 id = pages.integer(i, "PageId");
            const QString file = billDir + "/" + e.name;
            QCOMPARE(pages.value(i, "FileSize").toLongLong(), QFileInfo(file).size());
            if (e.shortcut) {
                // A shortcut to the file where it lies in the exchange directory.
                QCOMPARE(pages.text(i, "Filename"), file);
                QVERIFY(!QFile::exists(f.session->paths().thumbPath(id, file)));
                continue;
            }
            QVERIFY(pages.text(i, "Filename").isEmpty());
            const QString stored = f.session->paths().computedPagePath(id);
            QCOMPARE(ExchangeFixture::readBytes(stored), ExchangeFixture::readBytes(file));
            const QImage thumb(f.session->paths().computedThumbPath(id));
            QCOMPARE(thumb.size(), QSize(100, 100));
        }
        // The window heard of every new item, parents first.
        QVERIFY(f.nav.calls.contains(QString("DRW%1 BankAccounts<%2").arg(bank).arg(target)));
        QVERIFY(f.nav.calls.indexOf(QString("DRW%1 BankAccounts<%2").arg(bank).arg(target)) <
                f.nav.calls.indexOf(QString("FLD%1 Checking<%2").arg(checking).arg(bank)));
        QVERIFY(f.nav.calls.contains(QString("DOC%1 Bill2<%2").arg(bill).arg(checking)));

        // A second import of the same tree creates nothing and copies nothing.
        const QList<int> counts = f.counts();
        f.nav.calls.clear();
        const ImportReport again = ex.importer.importCabinet(target, root, 1, f.progress);
        QCOMPARE(again.reportText(), "0 files imported.\r\n0 shortcuts created.");
        QCOMPARE(again.filesSkipped, 5);
        QCOMPARE(f.counts(), counts);
        QCOMPARE(f.nav.calls.filter(QRegularExpression("^(DRW|FLD|DOC)")).size(), 0);
        QVERIFY(f.prompter.verify());

        // The same exporter once more over its own export: the names the first export gave
        // are not taken any more, so every file is written under its name again.
        const ExportReport twice =
            ex.exporter.exportCabinet(c.id, f.outsidePath("out"), f.progress);
        QVERIFY2(f.prompter.verify(), qPrintable(f.prompter.report()));
        QCOMPARE(twice.reportText(), "Export complete. 5 pages copied.");
        QCOMPARE(
            QDir(billDir).entryList(QDir::Files, QDir::Name),
            QStringList({"Document.txt", "Page 1.jpg", "Page 3.jpg", "notes.pdf", "scan.jpeg"}));
    }

    void looseFilesFindUnfiledHomes()
    {
        ExchangeFixture f;
        const qint32 target = f.store->cabinet("Target");
        const QString root = f.outsidePath("ex");
        ExchangeFixture::writeBytes(root + "/QMR.txt", "marker\r\n");
        ExchangeFixture::writeImage(root + "/receipt.jpg");
        // A document manifest in a drawer directory counts as loose but is no page.
        ExchangeFixture::writeBytes(root + "/Bank/Document.txt", "[Amount]\r\n5\r\n");
        ExchangeFixture::writeImage(root + "/Bank/Checking/statement.JPG");
        ExchangeFixture::writeBytes(root + "/Bank/Checking/March/Page 2.jpg", "not an image");
        ExchangeFixture::writeImage(root + "/Bank/Checking/March/Deeper/ignored.jpg");
        // A folder whose name the store refuses is named, and nothing below it comes in.
        const QString longName(81, 'n');
        ExchangeFixture::writeImage(root + "/Bank/" + longName + "/Doc/Page 1.jpg");
        const ImportReport report = Exchange(f).importer.importCabinet(target, root, 1, f.progress);
        QVERIFY2(f.prompter.verify(), qPrintable(f.prompter.report()));
        QCOMPARE(report.problems, QStringList(longName + ": The name is too long: a folder's name "
                                                         "can have at most 80 characters."));
        QCOMPARE(report.filesImported, 3);
        ItemStore& items = f.session->items();
        // At the top: "Unfiled drawer", "Unfiled folder", and a document named as the file.
        const qint32 receipt =
            f.itemAt(target, {"Unfiled drawer", "Unfiled folder", "receipt.jpg"});
        QVERIFY(receipt >= 0);
        QCOMPARE(f.session->pages().count(receipt), 1);
        // The drawer's "Unfiled folder" is made and stays empty.
        const qint32 bankUnfiled = f.itemAt(target, {"Bank", "Unfiled folder"});
        QVERIFY(bankUnfiled >= 0);
        QCOMPARE(items.children(Level::Document, bankUnfiled).size(), 0);
        // A file in a folder directory is a document of its own.
        const qint32 checking = f.itemAt(target, {"Bank", "Checking"});
        QVERIFY(items.childNamed(Level::Document, checking, "statement.JPG") >= 0);
        // An unreadable picture still comes in as a page, without a thumbnail; nothing below
        // a document directory is looked at.
        const qint32 march = items.childNamed(Level::Document, checking, "March");
        const QVector<PageRow> pages = f.session->pages().pages(march);
        QCOMPARE(pages.size(), 1);
        QCOMPARE(pages.first().pageNumber, 2);
        QVERIFY(!QFile::exists(f.session->paths().computedThumbPath(pages.first().id)));
        QCOMPARE(items.childNamed(Level::Document, checking, "Deeper"), -1);
        QCOMPARE(f.count("Page"), 3);
    }

    // A file at a new page's place is never taken for its copy: one that no row refers to
    // (left by an import that was killed) gives way, one that a row refers to ends the import.
    void aFileAtANewPagesPlace()
    {
        ExchangeFixture f;
        const qint32 doc = f.store->document(
            f.store->folder(f.store->drawer(f.store->cabinet("C"), "D"), "F"), "Doc");
        const PagePaths& paths = f.session->paths();
        const qint32 owner = f.storedPage(doc, 1, QString(), false);
        const QString taken = paths.computedPagePath(owner + 2);
        QVERIFY(ExchangeFixture::writeBytes(taken, "the page's own"));
        f.db().execute("UPDATE Page SET Filename = ? WHERE PageId = ?", {taken, owner});
        const QString orphan = paths.computedPagePath(owner + 1);
        QVERIFY(ExchangeFixture::writeImage(orphan, Qt::red));
        const QString dir = f.outsidePath("scans");
        QVERIFY(ExchangeFixture::writeImage(dir + "/a.jpg", Qt::green));
        QVERIFY(ExchangeFixture::writeImage(dir + "/b.jpg", Qt::blue));

        const ImportReport report = Exchange(f).importer.importFiles(doc, Level::Document, dir,
                                                                     FileTypeFilter(), f.progress);
        QCOMPARE(ExchangeFixture::readBytes(orphan), ExchangeFixture::readBytes(dir + "/a.jpg"));
        QCOMPARE(report.filesImported, 1);
        QVERIFY2(report.error.contains(QString("is the file of page %1").arg(owner)),
                 qPrintable(report.error));
        QVERIFY(f.progress.stopped()); // its window is closed
        QCOMPARE(ExchangeFixture::readBytes(taken), QByteArray("the page's own"));
        QCOMPARE(f.count("Page"), 2);
        QCOMPARE(f.field("SELECT Name FROM Page WHERE PageId = ?", {owner + 1}).toString(),
                 QString("a.jpg"));
    }

    // Stopped once the first file is on its way: the second stays out, and the report says so.
    void filesImportStopped()
    {
        ExchangeFixture f;
        const qint32 doc = f.store->document(
            f.store->folder(f.store->drawer(f.store->cabinet("C"), "D"), "F"), "Doc");
        const QString dir = f.outsidePath("scans");
        QVERIFY(ExchangeFixture::writeImage(dir + "/a.jpg", Qt::green));
        QVERIFY(ExchangeFixture::writeImage(dir + "/b.jpg", Qt::blue));
        struct StopAfterOne : SilentProgress
        {
            bool begun = false;
            void step(const QString& status) override
            {
                begun = begun || status.startsWith("Import ");
            }
            bool stopped() const override { return begun || SilentProgress::stopped(); }
        } progress;
        const ImportReport report =
            Exchange(f).importer.importFiles(doc, Level::Document, dir, FileTypeFilter(), progress);
        QCOMPARE(report.reportText(),
                 "1 files imported.\r\n0 shortcuts created.\r\nImport stopped by user.");
        QCOMPARE(f.count("Page"), 1);
    }

    void upperCaseAndWindows1252()
    {
        // Written on a system that ignores case, by an older program in its code page.
        ExchangeFixture f;
        const qint32 target = f.store->cabinet("Target");
        const QString root = f.outsidePath("EXPORT/HOME");
        ExchangeFixture::writeBytes(root + "/QMR.TXT", "*** DO NOT DELETE THIS FILE ***\r\n");
        ExchangeFixture::writeBytes(root + "/CABINET.TXT",
                                    "[DESCRIPTION]\r\nCaf\xe9 \x80 5|na\xefve\r\n");
        ExchangeFixture::writeBytes(root + "/BILLS/DRAWER.TXT", "[description]\r\nDrawer\r\n");
        ExchangeFixture::writeBytes(root + "/BILLS/GAS/FOLDER.TXT", "[Description]\r\nGas\r\n");
        const QString doc = root + "/BILLS/GAS/JANUARY";
        ExchangeFixture::writeBytes(doc + "/DOCUMENT.TXT",
                                    "[AMOUNT]\r\n45.10\r\n\r\n[DESCRIPTION]\r\nR\xe9sum\xe9\r\n"
                                    "\r\n[DATEONDOCUMENT]\r\n1/15/2025\r\n");
        ExchangeFixture::writeImage(doc + "/PAGE 2.JPG");
        ExchangeFixture::writeImage(doc + "/SCAN.BMP");
        const ImportReport report = Exchange(f).importer.importCabinet(target, root, 1, f.progress);
        QVERIFY2(f.prompter.verify(), qPrintable(f.prompter.report()));
        QCOMPARE(report.reportText(), "2 files imported.\r\n0 shortcuts created.");
        QCOMPARE(f.fieldOf("Cabinet", "Description", target),
                 QString::fromUtf8("Café € 5\r\nnaïve"));
        QCOMPARE(f.fieldOf("Drawer", "Description", f.itemAt(target, {"BILLS"})), "Drawer");
        QCOMPARE(f.fieldOf("Folder", "Description", f.itemAt(target, {"BILLS", "gas"})), "Gas");
        const qint32 january = f.itemAt(target, {"BILLS", "gas", "January"});
        const std::optional<ItemFields> fields =
            f.session->items().fields(Level::Document, january);
        QCOMPARE(fields->dateOnDocument, QDate(2025, 1, 15));
        QCOMPARE(fields->description, QString::fromUtf8("Résumé"));
        QCOMPARE(fields->amount, 45.1);
        const QVector<PageRow> pages = f.session->pages().pages(january);
        QCOMPARE(pages.size(), 2);
        // "PAGE 2.JPG" is page 2; the bitmap takes the next number and is stored, not linked.
        QCOMPARE(pages.at(0).pageNumber, 2);
        QCOMPARE(pages.at(1).pageNumber, 3);
        QVERIFY(!pages.at(1).shortcut);
        QCOMPARE(QImage(f.session->paths().computedThumbPath(pages.at(1).id)).size(),
                 QSize(100, 100));
    }

    void emptyDirectoryAsksBeforeTheStructure_data()
    {
        test::columns<int, int>({"answer", "drawers"});
        test::row("yes: the structure", int(Prompter::Answer::Yes), 1);
        test::row("no: nothing", int(Prompter::Answer::No), 0);
        test::row("cancel: nothing", int(Prompter::Answer::Cancel), 0);
    }
    void emptyDirectoryAsksBeforeTheStructure()
    {
        auto [answer, drawers] = fetch<int, int>("answer", "drawers");
        ExchangeFixture f;
        const qint32 target = f.store->cabinet("Target");
        const QString root = f.outsidePath("ex");
        ExchangeFixture::writeBytes(root + "/qmr.txt", "");
        ExchangeFixture::writeBytes(root + "/Drawer One/Folder One/Doc/Document.txt",
                                    "[Amount]\r\n3\r\n");
        f.prompter.expect(
            "There are no image files to import.  Import the file cabinet's structure?",
            Prompter::Answer(answer));
        const ImportReport report = Exchange(f).importer.importCabinet(target, root, 1, f.progress);
        QVERIFY2(f.prompter.verify(), qPrintable(f.prompter.report()));
        QCOMPARE(report.reportText(), "0 files imported.\r\n0 shortcuts created.");
        QCOMPARE(f.counts(), QList<int>({drawers, drawers, drawers, 0}));
    }
};

QMR_TEST(TestRoundTrip)
#include "testroundtrip.moc"
