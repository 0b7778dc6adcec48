#include <QComboBox>
#include <QDirIterator>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "exchange/dialogprogress.h"
#include "exchange/exportdialog.h"
#include "exchangefixture.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::ExchangeFixture;
using test::fetch;
using test::row;
using test::TestFileSystem;

namespace {

int filesBelow(const QString& dir, const QString& pattern = "*")
{
    int n = 0;
    for (QDirIterator it(dir, {pattern}, QDir::Files, QDirIterator::Subdirectories); it.hasNext();
         it.next())
        ++n;
    return n;
}

void exportTo(ExportDialog& dialog, const QString& path)
{
    dialog.findChild<QLineEdit*>("txtOutputPath")->setText(path);
    dialog.cmdOK();
}

} // namespace

class TestExportDialog : public QObject
{
    Q_OBJECT
private slots:
    void refusalsAndQuestions_data()
    {
        // path: "@home" stands for the home, "@out" outside; "Empty" is a cabinet of a drawer
        // and a folder without pages
        test::columns<QString, QString, QStringList, QList<int>, bool, bool>(
            {"cabinet", "path", "texts", "answers", "accepted", "written"});
        const QString within = "You cannot export a cabinet to a path within the Quillmere "
                               "system.\nPlease select another location that is not within "
                               "the application path of:\n'@home'.";
        const QString missing = "'@out/new/dir' does not exist.  Do you want to create it?";
        const QString two = "Export complete. 2 pages copied.",
                      none = "Export complete. 0 pages copied.";
        const QString empty = "There are no images in this cabinet.  Export an empty cabinet?";
        const int yes = int(Prompter::Answer::Yes), no = int(Prompter::Answer::No),
                  cancel = int(Prompter::Answer::Cancel), ok = int(Prompter::Answer::Ok);
        row("below the home", "Papers", "@home/backup", QStringList{within}, QList<int>{ok}, false,
            false);
        row("the home inside, other case", "Papers", "@out/x@HOME/y", QStringList{within},
            QList<int>{ok}, false, false);
        row("missing, no", "Papers", "@out/new/dir", QStringList{missing}, QList<int>{no}, false,
            false);
        row("missing, cancel", "Papers", "@out/new/dir", QStringList{missing}, QList<int>{cancel},
            false, false);
        row("missing, yes", "Papers", "@out/new/dir", QStringList{missing, two},
            QList<int>{yes, ok}, true, true);
        row("there, with blanks around", "Papers", "  @out  ", QStringList{two}, QList<int>{ok},
            true, true);
        row("empty cabinet, yes", "Empty", "@out", QStringList{empty, none}, QList<int>{yes, ok},
            true, true);
        row("empty cabinet, no", "Empty", "@out", QStringList{empty, none}, QList<int>{no, ok},
            true, false);
        row("empty cabinet, cancel", "Empty", "@out", QStringList{empty, none},
            QList<int>{cancel, ok}, true, false);
    }
    void refusalsAndQuestions()
    {
        auto [cabinet, path, texts, answers, accepted, written] =
            fetch<QString, QString, QStringList, QList<int>, bool, bool>(
                "cabinet", "path", "texts", "answers", "accepted", "written");
        ExchangeFixture f;
        const qint32 papers = f.filledCabinet("Papers", 1, 2);
        const qint32 empty = f.store->cabinet("Empty");
        f.store->folder(f.store->drawer(empty, "Drawer"), "Folder");
        f.expectAll(texts, answers);
        ExportDialog dialog(f.context());
        dialog.selectCabinet(cabinet == "Empty" ? empty : papers);
        exportTo(dialog, f.placed(path));
        QVERIFY2(f.prompter.verify(), qPrintable(f.prompter.report()));
        QCOMPARE(dialog.result() == QDialog::Accepted, accepted);
        const QString target = f.placed(path).trimmed();
        QCOMPARE(QFileInfo(target + "/" + cabinet).exists(), written);
        QCOMPARE(QFileInfo(target + "/" + cabinet + "/QMR.txt").exists(), written);
        QCOMPARE(QFileInfo(target + "/" + cabinet + "/Drawer/Folder").isDir(), written);
        QCOMPARE(f.home.settings().get(keys::LastOutputPath), accepted ? target : QString());
        QCOMPARE(filesBelow(f.home.path(), "QMR.txt"), 0);
    }

    void cabinetList()
    {
        ExchangeFixture f;
        {
            ExportDialog dialog(f.context());
            auto* list = dialog.findChild<QComboBox*>("cboCabinet");
            QCOMPARE(list->count(), 1);
            QCOMPARE(list->currentText(), "No file cabinets to export");
            QVERIFY(!list->isEnabled());
            QVERIFY(!dialog.findChild<QPushButton*>("cmdOK")->isEnabled());
        }
        f.store->cabinet("Zebra");
        f.store->cabinet("Locked", "secret");
        f.store->cabinet("apple");
        {
            ExportDialog dialog(f.context());
            auto* list = dialog.findChild<QComboBox*>("cboCabinet");
            // Only open cabinets, by name; the first is chosen.
            QCOMPARE(list->count(), 2);
            QCOMPARE(list->itemText(0), "apple");
            QCOMPARE(list->itemText(1), "Zebra");
            QCOMPARE(list->currentText(), "apple");
            dialog.selectCabinet(1);
            QCOMPARE(list->currentText(), "Zebra");
            // A locked one cannot be chosen from outside either.
            dialog.selectCabinet(2);
            QCOMPARE(list->currentText(), "Zebra");
        }
        // Once its password has been given it is offered.
        f.session->locks().recordOpen(2);
        ExportDialog dialog(f.context());
        QCOMPARE(dialog.findChild<QComboBox*>("cboCabinet")->count(), 3);
        // Escape while idle closes it.
        dialog.show();
        QTest::keyClick(&dialog, Qt::Key_Escape);
        QVERIFY(!dialog.isVisible());
        QCOMPARE(dialog.result(), int(QDialog::Rejected));
        QVERIFY(f.prompter.verify());
    }

    void stopsAndFailedCopies_data()
    {
        // failing: copies that fail, the disk full unless `full` is false
        // cancelAt: the copy after which Cancel is pressed, 0 for none
        // texts: "@doc" for the cabinet's folder
        test::columns<QList<int>, bool, int, QStringList, QList<int>, int>(
            {"failing", "full", "cancelAt", "texts", "answers", "onDisk"});
        const int ok = int(Prompter::Answer::Ok), yes = int(Prompter::Answer::Yes),
                  no = int(Prompter::Answer::No), cancel = int(Prompter::Answer::Cancel);
        const QString stop = "Stop the export?", disk2 = "Please insert disk #2";
        const QString full = ": No space left on device";
        row("cancel, yes stops", QList<int>{}, true, 2,
            QStringList{stop, "Export not complete. 2 pages copied before it ended."},
            QList<int>{yes, ok}, 2);
        row("cancel, no goes on", QList<int>{}, true, 2,
            QStringList{stop, "Export complete. 6 pages copied."}, QList<int>{no, ok}, 6);
        row("disk full, cancel ends it", QList<int>{3}, true, 0,
            QStringList{disk2, "Export not complete. 2 pages copied before it ended.\r\n\r\n"
                               "Cannot write @doc/Document 2/Page 1.jpg" +
                                   full},
            QList<int>{cancel, ok}, 2);
        row("disk full, ok copies the same page again", QList<int>{3}, true, 0,
            QStringList{disk2, "Export complete. 6 pages copied."}, QList<int>{ok, ok}, 6);
        // Asked once only: a second full disk is passed over, and named.
        row("later failures are not asked about", QList<int>{3, 6}, true, 0,
            QStringList{disk2, "Export complete. 5 pages copied.\r\n\r\nCannot write "
                               "@doc/Document 3/Page 1.jpg" +
                                   full},
            QList<int>{ok, ok}, 5);
        // Any other failure ends the export with the report.
        row("another failure ends it", QList<int>{4}, false, 0,
            QStringList{"Export not complete. 3 pages copied before it ended.\r\n\r\nCannot "
                        "write @doc/Document 2/Page 2.jpg" +
                        full},
            QList<int>{ok}, 3);
    }
    void stopsAndFailedCopies()
    {
        auto [failing, full, cancelAt, texts, answers, onDisk] =
            fetch<QList<int>, bool, int, QStringList, QList<int>, int>(
                "failing", "full", "cancelAt", "texts", "answers", "onDisk");
        ExchangeFixture f;
        f.filledCabinet("Papers", 3, 2);
        TestFileSystem fs;
        for (const int n : failing)
            fs.failCopy.insert(n,
                               full ? FileOutcome::Kind::DiskFull : FileOutcome::Kind::WriteFailed);
        f.expectAll(texts, answers, {{"@doc", f.outsidePath("Papers/Drawer/Folder")}});
        ExportDialog dialog(f.context(), nullptr, &fs);
        fs.afterCopy = [&](int n) {
            if (n == cancelAt) {
                QVERIFY(dialog.isExporting());
                dialog.findChild<QPushButton*>("cmdCancel")->click();
            }
        };
        exportTo(dialog, f.outside.path());
        QVERIFY2(f.prompter.verify(), qPrintable(f.prompter.report()));
        QCOMPARE(filesBelow(f.outside.path(), "Page*"), onDisk);
        QVERIFY(!dialog.isExporting());
        // Nothing half-written stays behind.
        QCOMPARE(filesBelow(f.outside.path(), "*.qmrpart"), 0);
    }

    void statusLineKeepsTheEnd()
    {
        QLabel label;
        const QFontMetrics metrics = label.fontMetrics();
        const QString path = "/a/very/long/path/that/goes/on/and/on/to/the/file/Page 12.jpg";
        const int width = metrics.horizontalAdvance("Copy file ...on/to/the/file/Page 12.jpg");
        const QString fitted = DialogProgress::fitStatus("Copy file", path, metrics, width);
        QVERIFY(fitted.startsWith("Copy file ..."));
        QVERIFY(fitted.endsWith("Page 12.jpg"));
        QVERIFY(metrics.horizontalAdvance(fitted) <= width);
        QCOMPARE(DialogProgress::fitStatus("Copy file", "short", metrics, 1000), "Copy file short");
    }
};

QMR_TEST(TestExportDialog)
#include "testexportdialog.moc"
