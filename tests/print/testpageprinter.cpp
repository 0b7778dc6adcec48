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
        QCOMPARE(target.sheets.size(), 3);
        QCOMPARE(target.sheets[0].drawnSize, QSize(4845, 6270));
        // The 600 dpi file is printed at the document resolution.
        QCOMPARE(target.sheets[1].drawnSize, QSize(6460, 8360));
        // No resolution at all: the scan resolution stands in, no division by zero.
        QCOMPARE(target.sheets[2].drawnSize, QSize(1520, 1140));
        QCOMPARE(target.sheets[2].imageSize, QSize(400, 300));
    }

    void unreadablePictureEndsTheRun()
    {
        PrintHarness h;
        h.page(1, QSize(200, 100), 100, 100);
        const qint32 broken = h.store->pageRow(h.document, 2);
        const QString path = h.session->paths().computedPagePath(broken);
        QVERIFY(PagePaths::ensurePathExists(path));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("no picture at all");
        file.close();
        h.page(3, QSize(200, 100), 100, 100);

        test::RecordingTarget target;
        test::CancellingProgress progress(100);
        const PagePrinter printer(h.session->paths(), PrintScaleSettings{});
        const PrintOutcome outcome = printer.print(h.session->pages().pages(h.document), target,
                                                   &progress, "Printing Tax return");
        // The sheet before the broken page stays printed; the run ends there.
        QCOMPARE(outcome.printed, 1);
        QVERIFY(outcome.error.startsWith("Cannot print " + path + ": "));
        QVERIFY(outcome.error.size() > QString("Cannot print " + path + ": ").size());
        QCOMPARE(target.sheets.size(), 1);
        QCOMPARE(target.finished, 1);
        QCOMPARE(progress.ends, 1);
    }

    void refusedSheetIsReported()
    {
        PrintHarness h;
        h.page(1, QSize(200, 100), 100, 100);
        h.page(2, QSize(200, 100), 100, 100);
        test::RecordingTarget target;
        target.refuseSheet = 2;
        const PrintOutcome outcome = PagePrinter(h.session->paths(), PrintScaleSettings{})
                                         .print(h.session->pages().pages(h.document), target);
        QCOMPARE(outcome.printed, 1);
        QCOMPARE(outcome.error, QString("The printer refused a sheet."));
    }

    void cancelEndsAfterThePageInHand_data()
    {
        QTest::addColumn<int>("cancelAfter");
        QTest::addColumn<int>("printed");
        QTest::addColumn<bool>("cancelled");
        QTest::newRow("after the first") << 1 << 1 << true;
        QTest::newRow("after the third") << 3 << 3 << true;
        QTest::newRow("at the last page nothing is lost") << 5 << 5 << false;
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
        QCOMPARE(progress.title, QString("Printing Tax return"));
        QCOMPARE(progress.min, 1);
        QCOMPARE(progress.max, 5);
        QCOMPARE(progress.steps.first(), QString("Page 1"));
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
        QVERIFY2(pdf.error.isEmpty(), qPrintable(pdf.error));
        QCOMPARE(pdf.pages, 3);
        // The page wider than it is tall goes across its sheet; the others stand upright.
        QCOMPARE(pdf.pageSizes.size(), 3);
        for (int i = 0; i < 3; ++i)
            QVERIFY2((pdf.pageSizes[i].width() > pdf.pageSizes[i].height()) == (i == 1),
                     qPrintable(QString("sheet %1: %2 x %3")
                                    .arg(i + 1)
                                    .arg(pdf.pageSizes[i].width())
                                    .arg(pdf.pageSizes[i].height())));
        QCOMPARE(pdf.imagePpi.size(), 3);
        // True size less 5%: a picture of R dots per inch shows at R / 0.95 on paper.
        const QVector<QPair<int, int>> expected = {
            {105, 105}, // 100 / 0.95
            {158, 316}, // crossed: the width by the vertical 150, the height by the 300
            {211, 211}, // 600 claimed: the scan resolution, 200, stands in
        };
        for (int i = 0; i < 3; ++i) {
            QVERIFY2(qAbs(pdf.imagePpi[i].first - expected[i].first) <= 1,
                     qPrintable(QString("page %1 x %2").arg(i + 1).arg(pdf.imagePpi[i].first)));
            QVERIFY2(qAbs(pdf.imagePpi[i].second - expected[i].second) <= 1,
                     qPrintable(QString("page %1 y %2").arg(i + 1).arg(pdf.imagePpi[i].second)));
        }
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
