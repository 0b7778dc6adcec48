#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPrintPreviewWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>

#include "print/printcommands.h"
#include "print/printdialog.h"
#include "print/printdocumentdialog.h"
#include "print/printerchoice.h"
#include "print/printsettingsdialog.h"
#include "printharness.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::PrintHarness;

namespace {

const QStringList kPrinters = {"Office_Laser", "Hall_Inkjet"};
const QString kPdf = "Print to PDF file";

template <class T> T* child(QWidget* w, const char* name)
{
    T* found = w->findChild<T*>(QLatin1String(name));
    if (!found)
        qWarning("no control %s", name);
    return found;
}

// The outline of what is drawn in dark blue (the test pictures' frame) in `shown`: "tall",
// "wide" or "none".
QString drawnShape(const QImage& shown)
{
    QRect box;
    for (int y = 0; y < shown.height(); ++y)
        for (int x = 0; x < shown.width(); ++x) {
            const QRgb c = shown.pixel(x, y);
            if (qBlue(c) > qRed(c) + 50 && qBlue(c) > qGreen(c) + 50)
                box |= QRect(x, y, 1, 1);
        }
    if (box.isEmpty())
        return QStringLiteral("none");
    return box.height() > box.width() * 1.15 ? QStringLiteral("tall") : QStringLiteral("wide");
}

void click(QWidget* w, const char* button)
{
    child<QPushButton>(w, button)->click();
}

} // namespace

class TestPrintDialogs : public QObject
{
    Q_OBJECT
private slots:
    void initialPrinter_data()
    {
        test::columns<QStringList, QString, QString, QString>(
            {"printers", "kept", "systemDefault", "chosen"});
        test::row("kept printer", kPrinters, "Hall_Inkjet", "Office_Laser", "Hall_Inkjet");
        test::row("kept PDF", kPrinters, kPdf, "Office_Laser", kPdf);
        test::row("kept printer gone: the system's default", kPrinters, "Old_Printer",
                  "Hall_Inkjet", "Hall_Inkjet");
        test::row("nothing kept, no default: the first printer", kPrinters, "", "", "Office_Laser");
        test::row("no printers at all: PDF", QStringList{}, "Office_Laser", "", kPdf);
    }
    void initialPrinter()
    {
        const auto [printers, kept, systemDefault] =
            test::fetch<QStringList, QString, QString>("printers", "kept", "systemDefault");
        QTEST(PrinterChoice::initial(PrinterChoice::entries(printers), kept, systemDefault),
              "chosen");
    }

    void pdfFileNames_data()
    {
        test::columns<QString, QString>({"title", "file"});
        test::row("plain", "Tax return", "Tax return.pdf");
        test::row("slashes and colons", "2025/26: rent", "2025_26_ rent.pdf");
        test::row("empty", "", "Quillmere.pdf");
        test::row("hidden file", ".profile", "Quillmere.profile.pdf");
    }
    void pdfFileNames()
    {
        QFETCH(QString, title);
        QTEST(PrinterChoice::pdfFileName(title), "file");
    }

    void pagePrint_data()
    {
        // chosen: the PDF file's name, "" when cancelled.
        test::columns<QString, QString, QString>({"printer", "chosen", "message"});
        test::row("to a PDF file", kPdf, "one", "");
        test::row("PDF name cancelled: the window stays", kPdf, "", "");
        // The test lists a printer that the system does not have.
        test::row("missing printer is named", "Office_Laser", "",
                  "The printer 'Office_Laser' is not available.");
    }
    void pagePrint()
    {
        const auto [printer, chosen, message] =
            test::fetch<QString, QString, QString>("printer", "chosen", "message");
        PrintHarness h;
        h.page(1, QSize(850, 1100), 100, 100);
        const qint32 second = h.page(2, QSize(1700, 2200), 200, 200);
        QTemporaryDir dir;
        h.home.settings().set(keys::Printer, "Hall_Inkjet");
        h.home.settings().set(keys::PrintPdfPath, dir.path());
        if (printer == kPdf)
            h.choosers.queueSaveFile(chosen.isEmpty() ? std::optional<QString>()
                                                      : dir.filePath(chosen));
        if (!message.isEmpty())
            h.prompter.expect(message);
        PageLayouts layouts;
        PrintDialog dialog(h.context(), layouts, second, kPrinters);
        QCOMPARE(dialog.windowTitle(), QString("Print"));
        auto* box = child<QComboBox>(&dialog, "cboPrinter");
        QCOMPARE(box->count(), 3);
        QCOMPARE(QStringList({box->itemText(0), box->itemText(1), box->itemText(2)}),
                 (QStringList{"Office_Laser", "Hall_Inkjet", kPdf}));
        // The kept printer is chosen; a choice is kept at once, for the next print.
        QCOMPARE(box->currentText(), QString("Hall_Inkjet"));
        QVERIFY(child<QPushButton>(&dialog, "cmdPrint")->isEnabled());
        QVERIFY(!dialog.choosePrinter("Nowhere"));
        QVERIFY(dialog.choosePrinter(printer));
        QCOMPARE(h.home.settings().get(keys::Printer), printer);
        dialog.show();
        click(&dialog, "cmdPrint");
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(dialog.isVisible(), chosen.isEmpty());
        QCOMPARE(dialog.result(), int(chosen.isEmpty() ? QDialog::Rejected : QDialog::Accepted));
        if (chosen.isEmpty())
            return;
        // The chooser starts in the last PDF directory with the page's name.
        QCOMPARE(h.choosers.saveStarts(), QStringList{dir.filePath("Tax return page 2.pdf")});
        // A name without a suffix gets ".pdf".
        const test::PdfFacts pdf = test::readPdf(dir.filePath("one.pdf"));
        QCOMPARE(test::ppiMismatch(pdf, {{211, 211}}), QString());
        QCOMPARE(pdf.pages, 1);
        QCOMPARE(h.home.settings().get(keys::PrintPdfPath), dir.path());
    }

    void documentRange_data()
    {
        // pages -1: "Nothing found to print."
        test::columns<QString, QString, int>({"from", "to", "pages"});
        test::row("the whole document", "", "", 3);
        test::row("two of three", "4", "9", 2);
        test::row("one", "9", "9", 1);
        test::row("no page in range", "10", "20", -1);
        test::row("reversed range", "9", "2", -1);
        test::row("empty box", "", "-", -1);
    }
    void documentRange()
    {
        const auto [from, to, pages] = test::fetch<QString, QString, int>("from", "to", "pages");
        PrintHarness h;
        for (const int number : {2, 5, 9})
            h.page(number, QSize(400, 300), 100, 100);
        QTemporaryDir dir;
        h.home.settings().set(keys::Printer, kPdf);
        const QString file = dir.filePath("range.pdf");
        if (pages > 0)
            h.choosers.queueSaveFile(file);
        else
            h.prompter.expect("Nothing found to print.");
        test::RecordingProgress progress;
        PageLayouts layouts;
        PrintDocumentDialog dialog(h.context(&progress), layouts, h.document, kPrinters);
        auto* txtFrom = child<QLineEdit>(&dialog, "txtFrom");
        auto* txtTo = child<QLineEdit>(&dialog, "txtTo");
        // The range starts at the lowest and the highest page number.
        QCOMPARE(txtFrom->text(), QString("2"));
        QCOMPARE(txtTo->text(), QString("9"));
        if (!from.isEmpty())
            txtFrom->setText(from);
        if (!to.isEmpty())
            txtTo->setText(to == "-" ? QString() : to);
        dialog.show();
        click(&dialog, "cmdPrint");
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        if (pages < 0) {
            QVERIFY(dialog.isVisible());
            QVERIFY(!QFile::exists(file));
            return;
        }
        QVERIFY(!dialog.isVisible());
        QCOMPARE(progress.starts(),
                 QStringList{QString("start Printing Tax return 1..%1").arg(pages)});
        const test::PdfFacts pdf = test::readPdf(file);
        QCOMPARE(test::ppiMismatch(pdf, QVector<QPair<int, int>>(pages, {105, 105})), QString());
        QCOMPARE(pdf.pages, pages);
    }

    void printSettingsChecksWidthThenHeight_data()
    {
        // ok: OK, or else Cancel; message: "" when none.
        test::columns<QString, QString, bool, QString>({"width", "height", "ok", "message"});
        const QString width = "Print width % must be between 10% and 200%.";
        const QString height = "Print height % must be between 10% and 200%.";
        test::row("limits are accepted", "10", "200", true, "");
        test::row("width too small", "5", "100", true, width);
        test::row("width first", "250", "2", true, width);
        test::row("height too big", "100", "201", true, height);
        test::row("width no number", "wide", "100", true, width);
        test::row("height empty", "100", "", true, height);
        test::row("Cancel saves nothing", "150", "120", false, "");
    }
    void printSettingsChecksWidthThenHeight()
    {
        const auto [width, height, ok, message] =
            test::fetch<QString, QString, bool, QString>("width", "height", "ok", "message");
        test::TestHome home;
        test::ScriptedPrompter prompter;
        home.settings().set(keys::PrintWidthPct, "90");
        home.settings().set(keys::PrintHeightPct, "95");
        if (!message.isEmpty())
            prompter.expect(message);
        PrintSettingsDialog dialog(home.settings(), prompter);
        auto* txtWidth = child<QLineEdit>(&dialog, "txtWidthPct");
        auto* txtHeight = child<QLineEdit>(&dialog, "txtHeightPct");
        QCOMPARE(QStringList({txtWidth->text(), txtHeight->text()}), QStringList({"90", "95"}));
        txtWidth->setText(width);
        txtHeight->setText(height);
        dialog.show();
        click(&dialog, ok ? "cmdOK" : "cmdCancel");
        QVERIFY2(prompter.verify(), qPrintable(prompter.report()));
        // Nothing is saved unless both pass, and the window stays after a refusal.
        QCOMPARE(dialog.isVisible(), !message.isEmpty());
        const bool saved = ok && message.isEmpty();
        QCOMPARE(QStringList({home.settings().get(keys::PrintWidthPct),
                              home.settings().get(keys::PrintHeightPct)}),
                 saved ? QStringList({width, height}) : QStringList({"90", "95"}));
    }

    // What frmPrintSettings saves and the paper the setup chose (here A5) are those of the
    // next print; the sheet turns to suit the page, which is wider than it is tall.
    void choicesReachTheNextPrint()
    {
        PrintHarness h;
        const qint32 page = h.page(1, QSize(1000, 100), 100, 100);
        h.home.settings().set(keys::Printer, kPdf);
        PrintSettingsDialog settings(h.home.settings(), h.prompter);
        child<QLineEdit>(&settings, "txtWidthPct")->setText("50");
        child<QLineEdit>(&settings, "txtHeightPct")->setText("200");
        QVERIFY(settings.cmdOK());
        PageLayouts layouts;
        {
            PrintDialog dialog(h.context(), layouts, page, kPrinters);
            QVERIFY(
                child<QLabel>(&dialog, "lblScale")->text().contains("50% across and 200% down"));
            QString opened;
            test::whenModal(this, [&](QWidget* w) {
                opened = w->metaObject()->className();
                if (auto* d = qobject_cast<QDialog*>(w))
                    d->accept();
            });
            click(&dialog, "cmdSetup");
            QCOMPARE(opened, QString("QPageSetupDialog"));
            QVERIFY(layouts.contains(kPdf));
        }
        QPageLayout a5 = layouts.value(kPdf);
        a5.setPageSize(QPageSize(QPageSize::A5));
        a5.setOrientation(QPageLayout::Portrait);
        layouts.insert(kPdf, a5);
        QTemporaryDir dir;
        h.choosers.queueSaveFile(dir.filePath("wide.pdf"));
        PrintDialog dialog(h.context(), layouts, page, kPrinters);
        click(&dialog, "cmdPrint");
        const test::PdfFacts pdf = test::readPdf(dir.filePath("wide.pdf"));
        QVERIFY2(pdf.error.isEmpty(), qPrintable(pdf.error));
        QCOMPARE(pdf.pageSizes.value(0).toSize(), QSize(595, 420));
        // 100 / 0.95 / 0.5 across, 100 / 0.95 / 2 down.
        QCOMPARE(test::ppiMismatch(pdf, {{211, 53}}), QString());
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
    }

    // Preview shows the sheets of the chosen printer and writes nothing; the system's print
    // dialog prints two collated copies of pages 2 to 3 into a PDF file, each sheet turned to
    // suit its page.
    void previewAndSystemDialog()
    {
        PrintHarness h;
        h.pages({{850, 1100}, {1100, 850}, {850, 1100}, {1100, 850}});
        QTemporaryDir dir;
        h.home.settings().set(keys::Printer, kPdf);
        h.home.settings().set(keys::PrintPdfPath, dir.path());
        PageLayouts layouts;
        PrintDocumentDialog dialog(h.context(), layouts, h.document, kPrinters);
        int sheets = -1;
        QString title;
        QStringList shapes;
        test::whenModal(this, [&](QWidget* w) {
            title = w->windowTitle();
            if (auto* view = w->findChild<QPrintPreviewWidget*>()) {
                (void)QTest::qWaitFor([&] { return view->pageCount() == 4; }, 10000);
                sheets = view->pageCount();
                view->setViewMode(QPrintPreviewWidget::SinglePageView);
                for (int n = 1; n <= sheets; ++n) {
                    view->setCurrentPage(n);
                    view->fitInView();
                    QCoreApplication::processEvents();
                    shapes << drawnShape(view->grab().toImage());
                }
            }
            w->close();
        });
        click(&dialog, "cmdPreview");
        QCOMPARE(title, QString("Preview of Tax return"));
        QCOMPARE(sheets, 4);
        // The preview has one sheet size for all; the sideways pages lie turned on their
        // sheets, whole, as they come out of the printer.
        QCOMPARE(shapes, QStringList({"tall", "tall", "tall", "tall"}));
        QVERIFY(h.choosers.saveStarts().isEmpty());
        QVERIFY(!QFile::exists(dir.filePath("Tax return.pdf")));

        QString opened;
        test::whenModal(this, [&](QWidget* w) {
            opened = w->metaObject()->className();
            child<QSpinBox>(w, "copies")->setValue(2);
            child<QCheckBox>(w, "collate")->setChecked(true);
            child<QRadioButton>(w, "printRange")->setChecked(true);
            child<QSpinBox>(w, "to")->setValue(3);
            child<QSpinBox>(w, "from")->setValue(2);
            qobject_cast<QDialog*>(w)->accept();
        });
        click(&dialog, "cmdSystemDialog");
        QCOMPARE(opened, QString("QPrintDialog"));
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        const test::PdfFacts pdf = test::readPdf(dir.filePath("Tax return.pdf"));
        QVERIFY2(pdf.error.isEmpty(), qPrintable(pdf.error));
        QCOMPARE(pdf.imageSizes,
                 (QVector<QSize>{{1100, 850}, {850, 1100}, {1100, 850}, {850, 1100}}));
        QCOMPARE(pdf.across(), QList<bool>({true, false, true, false}));
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
    }

    void commandsOpenTheirWindows()
    {
        PrintHarness h;
        PageLayouts layouts;
        {
            // A document without pages has nothing to print.
            h.prompter.expect("Nothing found to print.");
            PrintDocumentDialog dialog(h.context(), layouts, h.document, kPrinters);
            click(&dialog, "cmdPrint");
            QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        }
        h.page(3, QSize(100, 100), 100, 100);
        h.page(7, QSize(100, 100), 100, 100);
        PrintCommands commands(h.context(), kPrinters);
        CommandTable table;
        commands.addTo(table);
        for (const char* name : {"mnuPopupPagePrint", "mnuPopupDocumentPrint", "mnuPrintSettings"})
            QVERIFY2(table.contains(name), name);

        QString seen;
        test::whenModal(this, [&](QWidget* w) {
            seen = w->objectName() + " " + child<QLabel>(w, "lblItem")->text();
            w->close();
        });
        commands.printPage(h.session->pages().pages(h.document).last().id);
        QCOMPARE(seen, QString("frmPrint Page 7 of Tax return"));

        test::whenModal(this, [&](QWidget* w) {
            seen = w->objectName() + " " + child<QLineEdit>(w, "txtWidthPct")->text();
            w->close();
        });
        table.value("mnuPrintSettings")();
        QCOMPARE(seen, QString("frmPrintSettings 100"));
    }
};

QMR_TEST(TestPrintDialogs)
#include "testprintdialogs.moc"
