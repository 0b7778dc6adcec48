#include <QDir>
#include <QFileInfo>
#include <QPrinter>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "print/pageprinter.h"
#include "print/printertarget.h"
#include "print/printscale.h"
#include "printharness.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::PrintHarness;

namespace {

PrintOutcome printAll(PrintHarness& h, PrintTarget& target, PrintScaleSettings scale = {},
                      Progress* progress = nullptr)
{
    return PagePrinter(h.session->paths(), scale)
        .print(h.session->pages().pages(h.document), target, progress, "Printing Tax return");
}

} // namespace

class TestPagePrinter : public QObject
{
    Q_OBJECT
private slots:
    // A cancel ends the run after the page in hand; a failure ends it at the failing page, the
    // sheets before it staying printed.
    void runEnds_data()
    {
        test::columns<int, QString, int, bool>({"cancelAfter", "failure", "printed", "cancelled"});
        test::row("cancel after the first", 1, QString(), 1, true);
        test::row("cancel after the third", 3, QString(), 3, true);
        test::row("cancel at the last page loses nothing", 5, QString(), 5, false);
        test::row("picture that cannot be read", 100, QString("picture"), 1, false);
        test::row("sheet the printer refuses", 100, QString("sheet"), 1, false);
    }
    void runEnds()
    {
        const auto [cancelAfter, failure, printed, cancelled] =
            test::fetch<int, QString, int, bool>("cancelAfter", "failure", "printed", "cancelled");
        PrintHarness h;
        h.pages(QVector<QSize>(5, QSize(120, 160)));
        const QString second =
            h.session->paths().computedPagePath(h.session->pages().pages(h.document).at(1).id);
        test::RecordingTarget target;
        if (failure == "sheet")
            target.refuseSheet = 2;
        if (failure == "picture") {
            QFile file(second);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("no picture at all") > 0);
        }
        // Events run between the pages, not only after the run.
        bool timerRan = false;
        QTimer::singleShot(0, this, [&] { timerRan = true; });
        QVector<bool> seenAtSheet;
        target.onDraw = [&] { seenAtSheet << timerRan; };
        test::CancellingProgress progress(cancelAfter);
        const PrintOutcome outcome = printAll(h, target, {}, &progress);
        QCOMPARE(outcome.printed, printed);
        QCOMPARE(outcome.cancelled, cancelled);
        if (failure == "sheet") {
            QCOMPARE(outcome.error, QString("The printer refused a sheet."));
        } else if (failure == "picture") {
            const QString start = "Cannot print " + second + ": ";
            QVERIFY2(outcome.error.startsWith(start) && outcome.error.size() > start.size(),
                     qPrintable(outcome.error));
        } else {
            QCOMPARE(outcome.error, QString());
        }
        QCOMPARE(target.sheets, printed);
        QVector<bool> expected(printed, true);
        expected[0] = false;
        QCOMPARE(seenAtSheet, expected);
        QCOMPARE(target.finished, 1);
        QVERIFY(progress.cancelShown);
        QCOMPARE(progress.log.mid(0, 2), QStringList({"start Printing Tax return 1..5", "Page 1"}));
        QCOMPARE(progress.log.count("end"), 1);
    }

    // A PDF holds one sheet a page; one that cannot be written is reported.
    void pdfHoldsOneSheetAPage()
    {
        PrintHarness h;
        h.page(1, QSize(850, 1100), 100, 100);
        h.page(2, QSize(600, 400), 300, 150);
        h.page(3, QSize(850, 1100), 600, 600);
        h.page(4, QSize(400, 300), 0, 0);
        QTemporaryDir dir, elsewhere;
        // A link planted at the chosen name is replaced, never written through.
        QFile victim(elsewhere.filePath("victim"));
        QVERIFY(victim.open(QIODevice::WriteOnly) && victim.write("not a PDF") == 9);
        victim.close();
        QVERIFY(QFile::link(victim.fileName(), dir.filePath("four.pdf")));
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(dir.filePath("four.pdf"));
        PrinterTarget target(printer);
        const PrintOutcome outcome = printAll(h, target, PrintScaleSettings{200, 100, 100});
        QCOMPARE(outcome.error, QString());
        QCOMPARE(outcome.printed, 4);
        QVERIFY(!QFileInfo(dir.filePath("four.pdf")).isSymLink());
        QVERIFY(victim.open(QIODevice::ReadOnly));
        QCOMPARE(victim.readAll(), QByteArray("not a PDF"));
        // Nothing is left beside it.
        QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
                 QStringList{"four.pdf"});
        const test::PdfFacts pdf = test::readPdf(dir.filePath("four.pdf"));
        // Each picture is drawn whole, not scaled down to the sheet first.
        QCOMPARE(pdf.imageSizes,
                 (QVector<QSize>{{850, 1100}, {600, 400}, {850, 1100}, {400, 300}}));
        // The pages wider than they are tall go across their sheets; the others stand upright.
        QCOMPARE(pdf.across(), QList<bool>({false, true, false, true}));
        // True size less 5%: a picture of R dots per inch shows at R / 0.95 on paper; 100 / 0.95;
        // crossed: the width by the vertical 150, the height by the 300; 600 claimed or none at
        // all: the scan resolution, 200, stands in.
        QCOMPARE(test::ppiMismatch(pdf, {{105, 105}, {158, 316}, {211, 211}, {211, 211}}),
                 QString());

        QPrinter unwritable(QPrinter::HighResolution);
        unwritable.setOutputFormat(QPrinter::PdfFormat);
        unwritable.setOutputFileName("/nonexistent-directory/out.pdf");
        PrinterTarget failing(unwritable);
        const PrintOutcome failed = printAll(h, failing);
        QCOMPARE(failed.printed, 0);
        QCOMPARE(failed.error, QString("Cannot print to the file /nonexistent-directory/out.pdf."));
    }

    // The size a picture is drawn at, and the settings that scale it.
    void printSize_data()
    {
        // drawn: width x height in printer dots.
        test::columns<QSize, int, int, int, int, double, double, QSize>(
            {"pixels", "fileX", "fileY", "printer", "scanDpi", "widthPct", "heightPct", "drawn"});

        // A 600 dpi printer, scans at 150, 100% both ways unless a row says otherwise.
        const auto row = [](const char* tag, QSize pixels, int fileX, int fileY, QSize drawn,
                            int scanDpi = 150, double widthPct = 100, double heightPct = 100,
                            int printer = 600) {
            test::row(tag, pixels, fileX, fileY, printer, scanDpi, widthPct, heightPct, drawn);
        };
        const QSize letter(1700, 2200);
        row("200 dpi page on a 600 dpi printer", letter, 200, 200, QSize(4845, 6270));
        // The horizontal resolution scales the height, the vertical one the width.
        row("resolutions crossed", letter, 100, 200, QSize(4845, 12540));
        row("349 is believed", QSize(349, 349), 349, 349, QSize(570, 570));
        row("600 dpi file takes the scan resolution", letter, 600, 600, QSize(6460, 8360));
        row("350 takes the scan resolution", letter, 350, 350, QSize(3230, 4180), 300);
        row("one axis of 350 or more is enough", letter, 200, 400, QSize(6460, 8360));
        row("no resolution stored takes the scan resolution", letter, 0, 0, QSize(6460, 8360));
        row("one axis stated, the other not", letter, 200, 0, QSize(6460, 8360));
        row("percentages scale after the 95%", letter, 200, 200, QSize(2423, 12540), 150, 50, 200);
        // 600 / 11 * 3 = 163.64 is rounded to 164 before the 95% (155.8 -> 156), not after
        // (155.45 -> 155).
        row("rounded at every step", QSize(3, 3), 11, 11, QSize(156, 156));
        row("printer of 1200 dpi", QSize(850, 1100), 100, 100, QSize(9690, 12540), 150, 100, 100,
            1200);
    }
    void printSize()
    {
        const auto [pixels, fileX, fileY, printer] =
            test::fetch<QSize, int, int, int>("pixels", "fileX", "fileY", "printer");
        const auto [scanDpi, widthPct, heightPct] =
            test::fetch<int, double, double>("scanDpi", "widthPct", "heightPct");
        const PrintScaleSettings settings{scanDpi, widthPct, heightPct};
        QTEST(PrintScale::printSize(pixels, fileX, fileY, printer, printer, settings), "drawn");
    }

    void settingsFeedTheScale_data()
    {
        // stored: key=value, ...
        // scale: scan resolution, width %, height %.
        test::columns<QStringList, QList<double>>({"stored", "scale"});
        const auto row = [](const QString& tag, const QString& stored, int scanDpi,
                            double widthPct = 100, double heightPct = 100) {
            test::row(qPrintable(tag), stored.split(',', Qt::SkipEmptyParts),
                      QList<double>{double(scanDpi), widthPct, heightPct});
        };
        row("nothing stored: documents at 150, 100%", "", 150);
        row("last scan a picture", "TWAINImageType=picture", 300);
        row("a camera counts as a picture", "TWAINImageType=camera,PicDPIOverride=240", 240);
        row("document resolution of the settings", "TWAINImageType=document,DocDPIOverride=200",
            200);
        row("a resolution of 0 falls back", "DocDPIOverride=0", 150);
        row("a resolution that is no number falls back",
            "PicDPIOverride=high,TWAINImageType=picture", 300);
        row("percentages, 5 taken as 100", "PrintWidthPct=5,PrintHeightPct=200", 150, 100, 200);
        // Below 10, above 200 or no number at all is taken as 100.
        const QList<std::pair<const char*, double>> percentages = {
            {"9.9", 100}, {"10", 10}, {"150", 150}, {"201", 100}, {"wide", 100}, {" 80 ", 80}};
        for (const auto& [stored, used] : percentages)
            row("width '" + QString(stored) + "'", "PrintWidthPct=" + QString(stored), 150, used);
    }
    void settingsFeedTheScale()
    {
        QFETCH(QStringList, stored);
        test::TestHome home;
        for (const QString& kv : stored)
            home.settings().saveSetting(kv.section('=', 0, 0), kv.section('=', 1));
        const PrintScaleSettings s = PrintScale::fromSettings(home.settings());
        QTEST(QList<double>({double(s.scanDpi), s.widthPct, s.heightPct}), "scale");
    }
};

QMR_TEST(TestPagePrinter)
#include "testpageprinter.moc"
