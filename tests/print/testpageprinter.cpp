#include <QDir>
#include <QFileInfo>
#include <QPrinter>
#include <QTemporaryDir>
#include <QTest>

#include "print/pageprinter.h"
#include "print/printertarget.h"
#include "printharness.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::PrintHarness;

class TestPagePrinter : public QObject
{
    Q_OBJECT
private slots:
    void drawsEachPageAtItsSize()
    {
        PrintHarness h;
        h.page(1, QSize(1700, 2200), 200, 200);
        h.page(2, QSize(1700, 2200), 600, 600);
        h.page(3, QSize(400, 300), 0, 0);
        test::RecordingTarget target(600);
        const PagePrinter printer(h.session->paths(), PrintScaleSettings{150, 100, 100});
        const PrintOutcome outcome =
            printer.print(h.session->pages().pagesInRange(h.document, 1, 3), target);
        QCOMPARE(outcome.error, QString());
        QCOMPARE(outcome.printed, 3);
        QVERIFY(!outcome.cancelled);
        QCOMPARE(target.finished, 1);
        // The 600 dpi file is printed at the document resolution. No resolution at all: the scan
        // resolution stands in, no division by zero.
        QList<QSize> drawn;
        for (const test::Sheet& sheet : target.sheets)
            drawn << sheet.drawnSize;
        QCOMPARE(drawn, QList<QSize>({{4845, 6270}, {6460, 8360}, {1520, 1140}}));
        QCOMPARE(target.sheets[2].imageSize, QSize(400, 300));
    }

    // The sheets before the failure stay printed; the run ends there.
    void failureEndsTheRun_data()
    {
        QTest::addColumn<bool>("refusedSheet"); // or else an unreadable picture
        test::row("picture that cannot be read", false);
        test::row("sheet the printer refuses", true);
    }
    void failureEndsTheRun()
    {
        QFETCH(bool, refusedSheet);
        PrintHarness h;
        h.page(1, QSize(200, 100), 100, 100);
        const qint32 second = h.page(2, QSize(200, 100), 100, 100);
        h.page(3, QSize(200, 100), 100, 100);
        const QString path = h.session->paths().computedPagePath(second);
        test::RecordingTarget target;
        if (refusedSheet) {
            target.refuseSheet = 2;
        } else {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("no picture at all") > 0);
        }
        test::CancellingProgress progress(100);
        const PrintOutcome outcome = PagePrinter(h.session->paths(), PrintScaleSettings{})
                                         .print(h.session->pages().pages(h.document), target,
                                                &progress, "Printing Tax return");
        QCOMPARE(outcome.printed, 1);
        if (refusedSheet) {
            QCOMPARE(outcome.error, QString("The printer refused a sheet."));
        } else {
            const QString start = "Cannot print " + path + ": ";
            QVERIFY2(outcome.error.startsWith(start) && outcome.error.size() > start.size(),
                     qPrintable(outcome.error));
        }
        QCOMPARE(target.sheets.size(), 1);
        QCOMPARE(target.finished, 1);
        QCOMPARE(progress.ends, 1);
    }

    void cancelEndsAfterThePageInHand_data()
    {
        QTest::addColumn<int>("cancelAfter");
        QTest::addColumn<int>("printed");
        QTest::addColumn<bool>("cancelled");
        test::row("after the first", 1, 1, true);
        test::row("after the third", 3, 3, true);
        test::row("at the last page nothing is lost", 5, 5, false);
    }
    void cancelEndsAfterThePageInHand()
    {
        QFETCH(int, cancelAfter);
        QFETCH(int, printed);
        QFETCH(bool, cancelled);
        PrintHarness h;
        for (int n = 1; n <= 5; ++n)
            h.page(n, QSize(120, 160), 100, 100);
        test::RecordingTarget target;
        test::CancellingProgress progress(cancelAfter);
        const PrintOutcome outcome = PagePrinter(h.session->paths(), PrintScaleSettings{})
                                         .print(h.session->pages().pages(h.document), target,
                                                &progress, "Printing Tax return");
        QCOMPARE(outcome.printed, printed);
        QCOMPARE(outcome.cancelled, cancelled);
        QCOMPARE(target.finished, 1);
        QVERIFY(progress.cancelShown);
        QCOMPARE(QStringList({progress.title, QString::number(progress.min),
                              QString::number(progress.max), progress.steps.first()}),
                 QStringList({"Printing Tax return", "1", "5", "Page 1"}));
    }

    void windowsAnswerWhilePagesPrint()
    {
        PrintHarness h;
        for (int n = 1; n <= 3; ++n)
            h.page(n, QSize(120, 160), 100, 100);
        bool timerRan = false;
        QTimer::singleShot(0, this, [&] { timerRan = true; });
        QVector<bool> seenAtSheet;
        test::RecordingTarget target;
        target.onDraw = [&] { seenAtSheet << timerRan; };
        test::CancellingProgress progress(100);
        PagePrinter(h.session->paths(), PrintScaleSettings{})
            .print(h.session->pages().pages(h.document), target, &progress, "Printing");
        // Events ran between the pages, not only after the run.
        QCOMPARE(seenAtSheet, (QVector<bool>{false, true, true}));
    }

    void pdfHoldsOneSheetAPage()
    {
        PrintHarness h;
        h.page(1, QSize(850, 1100), 100, 100);
        h.page(2, QSize(600, 400), 300, 150);
        h.page(3, QSize(850, 1100), 600, 600);
        QTemporaryDir dir, elsewhere;
        // A link planted at the chosen name is replaced, never written through.
        QFile victim(elsewhere.filePath("victim"));
        QVERIFY(victim.open(QIODevice::WriteOnly) && victim.write("not a PDF") == 9);
        victim.close();
        QVERIFY(QFile::link(victim.fileName(), dir.filePath("three.pdf")));
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(dir.filePath("three.pdf"));
        PrinterTarget target(printer);
        const PrintOutcome outcome =
            PagePrinter(h.session->paths(), PrintScaleSettings{200, 100, 100})
                .print(h.session->pages().pages(h.document), target);
        QCOMPARE(outcome.error, QString());
        QCOMPARE(outcome.printed, 3);
        QVERIFY(!QFileInfo(dir.filePath("three.pdf")).isSymLink());
        QVERIFY(victim.open(QIODevice::ReadOnly));
        QCOMPARE(victim.readAll(), QByteArray("not a PDF"));
        // Nothing is left beside it.
        QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
                 QStringList{"three.pdf"});
        const test::PdfFacts pdf = test::readPdf(dir.filePath("three.pdf"));
        QCOMPARE(pdf.pages, 3);
        // The page wider than it is tall goes across its sheet; the others stand upright.
        QCOMPARE(pdf.across(), QList<bool>({false, true, false}));
        // True size less 5%: a picture of R dots per inch shows at R / 0.95 on paper; 100 / 0.95;
        // crossed: the width by the vertical 150, the height by the 300; 600 claimed: the scan
        // resolution, 200, stands in.
        QCOMPARE(test::ppiMismatch(pdf, {{105, 105}, {158, 316}, {211, 211}}), QString());
    }

    void unwritablePdfIsReported()
    {
        PrintHarness h;
        h.page(1, QSize(100, 100), 100, 100);
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName("/nonexistent-directory/out.pdf");
        PrinterTarget target(printer);
        const PrintOutcome outcome = PagePrinter(h.session->paths(), PrintScaleSettings{})
                                         .print(h.session->pages().pages(h.document), target);
        QCOMPARE(outcome.printed, 0);
        QCOMPARE(outcome.error,
                 QString("Cannot print to the file /nonexistent-directory/out.pdf."));
    }
};

QMR_TEST(TestPagePrinter)
#include "testpageprinter.moc"
