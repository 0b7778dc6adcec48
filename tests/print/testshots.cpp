#include <QPrintPreviewWidget>
#include <QPushButton>
#include <QTest>

#include "print/printdialog.h"
#include "print/printdocumentdialog.h"
#include "print/printsettingsdialog.h"
#include "printharness.h"
#include "tests/support/shots.h"
#include "tests/support/testrunner.h"

using namespace qmr;

// Pictures of the print windows, for looking at without a display.
class Shots : public QObject
{
    Q_OBJECT
private slots:
    void printWindows()
    {
        test::PrintHarness h;
        h.page(1, QSize(100, 100), 100, 100);
        const qint32 page = h.page(2, QSize(100, 100), 100, 100);
        h.page(3, QSize(1100, 850), 100, 100);
        const QStringList printers = {"Office_Laser", "Hall_Inkjet"};
        PageLayouts layouts;

        PrintDialog print(h.context(), layouts, page, printers);
        print.show();
        QVERIFY(QTest::qWaitForWindowExposed(&print));
        test::saveShot(&print, "dialog-print");

        PrintDocumentDialog document(h.context(), layouts, h.document, printers);
        document.show();
        QVERIFY(QTest::qWaitForWindowExposed(&document));
        test::saveShot(&document, "dialog-print-document");
        // The preview of the document: the third page lies turned on its sheet.
        bool previewed = false;
        test::whenModal(this, [&](QWidget* preview) {
            preview->resize(900, 600);
            auto* view = preview->findChild<QPrintPreviewWidget*>();
            (void)QTest::qWaitFor([&] { return view && view->pageCount() == 3; });
            if (view) {
                view->setViewMode(QPrintPreviewWidget::AllPagesView);
                view->fitInView();
            }
            test::saveShot(preview, "dialog-print-preview");
            previewed = true;
            preview->close();
        });
        document.findChild<QPushButton*>("cmdPreview")->click();
        QVERIFY(previewed);
        // The system's print dialog, offered beside the program's own.
        bool shown = false;
        test::whenModal(this, [&](QWidget* system) {
            test::saveShot(system, "dialog-print-system");
            shown = true;
            system->close();
        });
        document.findChild<QPushButton*>("cmdSystemDialog")->click();
        QVERIFY(shown);

        PrintSettingsDialog settings(h.home.settings(), h.prompter);
        settings.show();
        QVERIFY(QTest::qWaitForWindowExposed(&settings));
        test::saveShot(&settings, "dialog-print-settings");
    }
};

QMR_TEST(Shots)
#include "testshots.moc"
