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
        // path: "@ex": an exchange directory, "@plain": none
        test::columns<QString, QString, QStringList, QList<int>, QString, bool>(
            {"path", "disks", "texts", "answers", "disksAfter", "imported"});
        const int ok = int(Prompter::Answer::Ok), yes = int(Prompter::Answer::Yes),
                  no = int(Prompter::Answer::No), cancel = int(Prompter::Answer::Cancel);
        const QString over = "You have designated over 10 disks to import.  Continue?";
        const QString below = "You have entered a disk count less than 1.";
        const QString marker = "Missing QMR.TXT. This file designates the starting point of a "
                               "previously exported file cabinet.";
        const QString report = "2 files imported.\r\n0 shortcuts created.";
        const QString disk2 = "Please insert disk # 2";
        row("path first", "@out/none", "0", QStringList{"'@out/none' does not exist."},
            QList<int>{ok}, "0", false);
        row("then the marker", "@plain", "0", QStringList{marker}, QList<int>{ok}, "0", false);
        row("one disk", "@ex", "1", QStringList{report}, QList<int>{ok}, "1", true);
        row("1.9 is one", "@ex", "1.9", QStringList{report}, QList<int>{ok}, "1", true);
        row("9 asks nothing", "@ex", "9", QStringList{disk2, report}, QList<int>{cancel, ok}, "9",
            true);
        row("10 asks, no", "@ex", "10", QStringList{over}, QList<int>{no}, "10", false);
        row("10 asks, yes", "@ex", "10", QStringList{over, disk2, report},
            QList<int>{yes, cancel, ok}, "10", true);
        row("11.5 asks first, then nothing below one", "@ex", "11.5", QStringList{over},
            QList<int>{no}, "11", false);
        row("0", "@ex", "0", QStringList{below}, QList<int>{ok}, "0", false);
        row("not a number", "@ex", "two", QStringList{below}, QList<int>{ok}, "0", false);
        row("negative", "@ex", "-3", QStringList{below}, QList<int>{ok}, "-3", false);
    }
    void checksInOrder()
    {
        auto [path, disks, texts, answers, disksAfter, imported] =
            fetch<QString, QString, QStringList, QList<int>, QString, bool>(
                "path", "disks", "texts", "answers", "disksAfter", "imported");
        ImportFixture f(2);
        const QString plain = writeExchange(f, "plain", 1, false);
        const auto place = [&](QString text) {
            return text.replace("@ex", f.ex)
                .replace("@plain", plain)
                .replace("@out", f.outside.path());
        };
        for (int i = 0; i < texts.size(); ++i)
            f.prompter.expect(place(texts.at(i)), Prompter::Answer(answers.at(i)));
        Arrivals arrivals;
        f.context();
        f.contexts.back().pageNotifier = &arrivals;
        ImportDialog dialog(f.contexts.back());
        importFrom(dialog, place(path), disks);
        QVERIFY2(f.prompter.verify(), qPrintable(f.prompter.report()));
        QCOMPARE(arrivals.arrived, imported ? 1 : 0);
        QCOMPARE(arrivals.added, 0);
        QCOMPARE(dialog.findChild<QLineEdit*>("txtDiskCount")->text(), disksAfter);
        QCOMPARE(f.count("Page"), imported ? 2 : 0);
        QCOMPARE(dialog.result() == QDialog::Accepted, imported);
        QCOMPARE(f.home.settings().get(keys::LastImportPath), imported ? f.ex : QString());
    }

    void stopKeepsWhatCameIn()
    {
        ImportFixture f(5);
        TestFileSystem fs;
        ImportDialog dialog(f.context(), nullptr, &fs);
        fs.afterCopy = [&](int n) {
            if (n == 2)
                dialog.findChild<QPushButton*>("cmdCancel")->click();
        };
        f.prompter.expect("Stop the import?", Prompter::Answer::Yes);
        f.prompter.expect("2 files imported.\r\n0 shortcuts created.\r\nImport stopped by user.");
        importFrom(dialog, f.ex);
        QVERIFY2(f.prompter.verify(), qPrintable(f.prompter.report()));
        QCOMPARE(f.count("Page"), 2);
        const Recordset rs = f.db().openRecordset("SELECT PageId FROM Page");
        for (int i = 0; i < rs.recordCount(); ++i) {
            const qint32 id = rs.integer(i, "PageId");
            QVERIFY(QFile::exists(f.session->paths().computedPagePath(id)));
            QVERIFY(QFile::exists(f.session->paths().computedThumbPath(id)));
        }
    }

    void furtherDisksMerge_data()
    {
        test::columns<int, int>({"answer", "pages"});
        row("second disk put in", int(Prompter::Answer::Ok), 3);
        row("cancelled", int(Prompter::Answer::Cancel), 2);
    }
    void furtherDisksMerge()
    {
        auto [answer, pages] = fetch<int, int>("answer", "pages");
        ImportFixture f(2);
        // The second disk holds the rest of the same tree, without a marker.
        f.prompter.onAsk = [&](const QString& text) {
            if (!text.startsWith("Please insert disk"))
                return;
            QDir(f.ex).removeRecursively();
            ExchangeFixture::writeImage(f.ex + "/Bank/Checking/March/Page 3.jpg");
        };
        f.prompter.expect("Please insert disk # 2", Prompter::Answer(answer));
        f.prompter.expect(QString("%1 files imported.\r\n0 shortcuts created.").arg(pages));
        ImportDialog dialog(f.context());
        importFrom(dialog, f.ex, "2");
        QVERIFY2(f.prompter.verify(), qPrintable(f.prompter.report()));
        // One drawer, folder and document however many disks brought them.
        QCOMPARE(f.count("Drawer"), 1);
        QCOMPARE(f.count("Document"), 1);
        QCOMPARE(f.count("Page"), pages);
    }

    void storeDiskFullEndsTheImport()
    {
        ImportFixture f(3);
        TestFileSystem fs;
        fs.failCopy.insert(2, FileOutcome::Kind::DiskFull);
        ImportDialog dialog(f.context(), nullptr, &fs);
        const QString error =
            "Cannot write " + f.session->paths().computedPagePath(2) + ": No space left on device";
        f.prompter.expect(error);
        f.prompter.expect("1 files imported.\r\n0 shortcuts created.");
        importFrom(dialog, f.ex);
        QVERIFY2(f.prompter.verify(), qPrintable(f.prompter.report()));
        // The page whose file could not be stored leaves no row; the one before it stays.
        QCOMPARE(f.count("Page"), 1);
        QCOMPARE(f.field("SELECT Name FROM Page"), "Page 1.jpg");
    }

    void unreadableFileIsPassedOver()
    {
        ImportFixture f(3);
        TestFileSystem fs;
        fs.unreadable.insert(f.ex + "/Bank/Checking/March/Page 2.jpg");
        fs.unreadable.insert(f.ex + "/Bank/Checking/March/Document.txt");
        ExchangeFixture::writeBytes(f.ex + "/Bank/Checking/March/Document.txt",
                                    "[Amount]\r\n1\r\n");
        f.prompter.expect("2 files imported.\r\n0 shortcuts created.");
        ImportDialog dialog(f.context(), nullptr, &fs);
        dialog.selectCabinet(f.target);
        importFrom(dialog, f.ex);
        QVERIFY2(f.prompter.verify(), qPrintable(f.prompter.report()));
        QCOMPARE(f.count("Page"), 2);
        QVERIFY(f.field("SELECT Amount FROM Document").isNull());
    }

    void linksAreNamedAtTheEnd()
    {
        ImportFixture f(2);
        const QString doc = f.ex + "/Bank/Checking/March";
        QVERIFY(ExchangeFixture::writeImage(f.outsidePath("secret.jpg"), Qt::red));
        // Made out of order: they are named in order of their names.
        for (const char* page : {"Page 3.jpg", "Page 9.jpg", "Page 7.jpg", "Page 8.jpg"})
            QVERIFY(QFile::link(f.outsidePath("secret.jpg"), doc + "/" + page));
        QVERIFY(QFile::link(f.outside.path(), f.ex + "/Bank/Everything"));
        QString named = "2 files imported.\r\n0 shortcuts created.\r\n\r\n'" + f.ex +
                        "/Bank/Everything' is a link; it was not followed.";
        for (const char* page : {"Page 3.jpg", "Page 7.jpg", "Page 8.jpg", "Page 9.jpg"})
            named += "\r\n'" + doc + "/" + page + "' is a link; it was not followed.";
        f.prompter.expect(named);
        ImportDialog dialog(f.context());
        importFrom(dialog, f.ex);
        QVERIFY2(f.prompter.verify(), qPrintable(f.prompter.report()));
        QCOMPARE(f.count("Folder"), 1);
        QCOMPARE(f.count("Page"), 2);
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
