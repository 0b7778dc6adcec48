#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>

#include "core/pageopener.h"
#include "core/textfile.h"
#include "navharness.h"
#include "print/printcommands.h"
#include "store/pagestore.h"
#include "tests/support/modalwatch.h"
#include "tests/support/testrunner.h"
#include "viewer/pagecanvas.h"
#include "viewer/pageviewwindow.h"

using namespace qmr;
using namespace qmr::test;

// The entries of the other features reach the main window: each brings its own window, on the
// item it was given.
class TestMenuEntries : public QObject
{
    Q_OBJECT
private slots:
    void entryOpensItsWindow_data()
    {
        // What the window shows: its name ("#title": its caption instead) and the texts of the
        // named labels and boxes, joined by '|'.
        columns<QString, QStringList, QString>({"entry", "fields", "shown"});
        row("view settings", "mnuViewSettings", QStringList{}, "frmViewSettings");
        row("email settings", "mnuEmailSettings", QStringList{}, "frmEmailSettings");
        row("print settings", "mnuPrintSettings", QStringList{"txtHeightPct"},
            "frmPrintSettings|100");
        row("print a document", "mnuPopupDocumentPrint", QStringList{"lblItem", "txtFrom", "txtTo"},
            "frmPrintDocument|Document: March statement|1|2");
        row("print a page", "mnuPopupPagePrint", QStringList{"lblItem"},
            "frmPrint|Page 2 of March statement");
        row("help topics", "mnuHelpHelpTopics", QStringList{}, "frmHelp");
        row("about", "mnuHelpAbout", QStringList{"#title", "lblPgCnt"},
            "About Quillmere|Pages stored: 3");
    }
    void entryOpensItsWindow()
    {
        QFETCH(QString, entry);
        QFETCH(QStringList, fields);
        SampleWindow h;
        QVERIFY(TextFile::writeLines(h.home.file("qmrhelp.txt"), {"[toc]", "1=Only topic"}));
        h.window->printCommands().setPrinters({});
        h.clickPath({"CAB1", "DRW1", "FLD1", "DOC1"});
        if (entry.contains("Page")) {
            QVERIFY(h.window->pageList()->selectPage(2));
            h.setSource(ContextSource::PageList);
        }
        QString shown;
        // The email settings ask the keyring before they are shown, letting events run.
        whenModal(this, [&](QWidget* w) {
            const bool title = fields.value(0) == "#title";
            QStringList texts{title ? w->windowTitle() : w->objectName()};
            for (const QString& name : fields.mid(title ? 1 : 0))
                if (auto* label = w->findChild<QLabel*>(name))
                    texts << label->text();
                else if (auto* box = w->findChild<QLineEdit*>(name))
                    texts << box->text();
                else
                    texts << "<missing " + name + ">";
            shown = texts.join('|');
            w->close();
        });
        h.trigger(entry);
        QTRY_VERIFY(!shown.isEmpty());
        QTEST(shown, "shown");
        QMR_VERIFY_PROMPTS(h);
    }

    // The document the tree points at is saved as a PDF of its pictures; the sample's pages
    // are not read, which the command says.
    void searchablePdfOfTheDocumentPointedAt()
    {
        SampleWindow h({"CAB1", "DRW1", "FLD1", "DOC1"});
        QTemporaryDir out;
        const QString pdf = out.filePath("statement.pdf");
        h.choosers.queueSaveFile(pdf);
        int pictures = 0;
        for (const PageRow& page : PageStore(h.db()).pages(1))
            pictures += !page.shortcut;
        QVERIFY(pictures > 1);
        h.prompter.expect(QString("%1 pages have not been read yet; the PDF holds their pictures "
                                  "without text.")
                              .arg(pictures));
        h.trigger("mnuPopupDocumentSearchablePdf");
        QMR_VERIFY_PROMPTS(h);
        QCOMPARE(QFileInfo(h.choosers.saveStarts().value(0)).fileName(),
                 QString("March statement.pdf"));
        QFile written(pdf);
        QVERIFY(written.open(QIODevice::ReadOnly));
        QVERIFY(written.read(5) == "%PDF-");
    }

    void pagesOpenInTheViewer()
    {
        NavHarness h;
        h.loadSample(false);
        PageOpener* opener = h.navigator().context().pageOpener;
        QVERIFY(opener);
        opener->openPage(1);
        PageViewWindow* viewer = nullptr;
        QTRY_VERIFY((viewer = h.window->findChild<PageViewWindow*>()) != nullptr);
        QTRY_COMPARE(viewer->windowTitle(), QString("Page # 1 (ID = 1)"));
        QVERIFY(viewer->isWindow());
        QVERIFY(viewer->canvas()->hasImage());
        viewer->close();
        QMR_VERIFY_PROMPTS(h);
    }
};

QMR_TEST(TestMenuEntries)
#include "testmenuentries.moc"
