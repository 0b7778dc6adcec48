#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>

#include "dialogs/itemdialog.h"
#include "scan/scanoptionsdialog.h"
#include "scan/scansettingsdialog.h"
#include "scanharness.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"
#include "viewer/pageviewwindow.h"

using namespace qmr;
using namespace qmr::test;

namespace {

// The details of a document made by a scan into a folder are taken as they stand.
bool acceptDetails(QDialog* dialog)
{
    return qobject_cast<ItemDialog*>(dialog) && DialogAnswerer::press(dialog, "cmdOK");
}

// A dialog before the scan, gone through or cancelled.
void goOnOrCancel(const char* goOn)
{
    columns<bool>({"goOn"});
    row(goOn, true);
    row("cancelled", false);
}

} // namespace

#define SCAN(h, node) QVERIFY2((h).scan(node), qPrintable((h).prompter.report()))

class TestScanFlow : public QObject
{
    Q_OBJECT
private slots:
    // A scan into a folder makes "New document" with pages from 1, each scan one of its own;
    // into a document the pages follow its highest number. Every sheet is a real JPEG of the
    // size the device gives.
    void scanIntoStore_data()
    {
        // scanType "" leaves the default colour.
        columns<bool, QString, QString, bool, int, int, bool>(
            {"intoFolder", "kind", "scanType", "feeder", "pages", "dpi", "grey"});
        row("document into a folder", true, "document", "", false, 1, 150, false);
        row("picture into a document of five", false, "picture", "", false, 1, 300, false);
        row("grey picture", false, "picture", "grayscale", false, 1, 300, true);
        row("line art document", false, "document", "Black & White", false, 1, 150, true);
        row("feeder into a folder", true, "document", "", true, 10, 150, false);
        row("feeder into a document of five", false, "document", "", true, 10, 150, false);
        row("camera never feeds", false, "camera", "", true, 1, 300, false);
    }
    void scanIntoStore()
    {
        QFETCH(bool, intoFolder);
        QFETCH(QString, kind);
        QFETCH(QString, scanType);
        QFETCH(bool, feeder);
        QFETCH(int, pages);
        QFETCH(int, dpi);
        QFETCH(bool, grey);
        ScanHarness h;
        Settings& s = h.settings();
        s.set(keys::ImageType, kind);
        s.set(keys::CameraSource, QStringLiteral("test:1"));
        s.setFlag(keys::ScanFeeder, feeder);
        if (!scanType.isEmpty())
            s.set(kind == QLatin1String("document") ? keys::DocScanType : keys::PicScanType,
                  scanType);
        const QImage expected = h.backend.scanimage(
            {"-d", "test:0", "--resolution", QString::number(dpi), "--mode", "Color"});
        QVERIFY(!expected.isNull());
        QSignalSpy saved(h.flow.get(), &ScanFlow::pageSaved);
        DialogAnswerer answerer(acceptDetails);
        SCAN(h, h.target(intoFolder));
        QVERIFY(!h.flow->isRunning());
        QCOMPARE(h.flow->pagesSaved(), pages);
        QCOMPARE(saved.count(), pages);
        QVERIFY(!h.flow->viewer()); // every page was saved at once
        QVERIFY(h.progress.cancelOffered);
        QVERIFY(h.progress.titles.first().startsWith(QStringLiteral("Reading page 1 from ")));

        qint32 document = h.five;
        if (intoFolder) {
            const QVector<qint32> made = h.documentsOf(h.letters);
            QCOMPARE(made.size(), 1);
            document = made.first();
            QCOMPARE(h.session->items().item(Level::Document, document).name,
                     QStringLiteral("New document"));
            // Its details were asked once, after the first sheet.
            QCOMPARE(answerer.seen, QStringList{"qmr::ItemDialog"});
        } else {
            QVERIFY(answerer.seen.isEmpty());
        }
        const int before = intoFolder ? 0 : 5;
        const QVector<PageRow> rows = h.pages(document);
        QCOMPARE(rows.size(), before + pages);
        for (int i = 0; i < pages; ++i) {
            const PageRow& row = rows.at(before + i);
            QCOMPARE(row.pageNumber, before + 1 + i);
            QCOMPARE(row.fileType, QStringLiteral("JPG"));
            QCOMPARE(row.scanDate, QDate::currentDate());
            QCOMPARE(saved.at(i).first().toInt(), row.id);
            const QImage image = h.pageImage(row);
            QVERIFY2(!image.isNull(), qPrintable(h.pagePath(row)));
            QCOMPARE(image.size(), expected.size());
            QCOMPARE(image.allGray(), grey);
            QVERIFY(row.hasFileSize && row.fileSize > 0);
            QVERIFY(QFile::exists(h.session->paths().thumbPath(row.id, row.filename)));
        }
        QCOMPARE(h.settings().get(keys::ImageType), kind);
        if (!intoFolder)
            return;
        h.flow.reset();
        h.flow = std::make_unique<ScanFlow>(h.context(), *h.source);
        SCAN(h, h.target(true));
        const QVector<qint32> documents = h.documentsOf(h.letters);
        QCOMPARE(documents.size(), 2);
        for (qint32 id : documents)
            QCOMPARE(h.pages(id).value(0).pageNumber, 1);
        QCOMPARE(h.pages(documents.value(0)).size() + h.pages(documents.value(1)).size(),
                 2 * pages);
    }

    // "IMAGEEDIT": one page stays in the viewer with its image for editing; the row is there,
    // the file comes with the person's save.
    void editingKeepsTheViewer()
    {
        ScanHarness h;
        h.settings().setMode(keys::AfterScan, AfterScanMode::OpenViewer);
        SCAN(h, h.target(false));
        PageViewWindow* viewer = h.flow->viewer();
        QVERIFY(viewer && viewer->isVisible());
        QCOMPARE(h.flow->pagesSaved(), 0);
        const QVector<PageRow> rows = h.pages(h.five);
        QCOMPARE(rows.size(), 6);
        QCOMPARE(rows.last().pageNumber, 6);
        QVERIFY(h.pageImage(rows.last()).isNull());
        QCOMPARE(viewer->save(), PageSaver::Result::Saved);
        QCOMPARE(h.brokenPage(h.five), QString());
        viewer->close();
    }

    // "IMAGEEDIT" with the feeder: each sheet waits in the viewer for the person's save; a
    // viewer closed without saving ends the run, keeping the pages saved before.
    void editingEachSheet_data()
    {
        columns<int, int>({"closeAt", "saved"}); // closeAt: that sheet's viewer; 0 for none
        row("every sheet saved", 0, 10);
        row("closed at the third", 3, 2);
    }
    void editingEachSheet()
    {
        QFETCH(int, closeAt);
        QFETCH(int, saved);
        ScanHarness h;
        h.settings().setMode(keys::AfterScan, AfterScanMode::OpenViewer);
        h.settings().setFlag(keys::ScanFeeder, true);
        h.settings().set(keys::DocDpi, QStringLiteral("50"));
        if (closeAt)
            h.prompter.expect(QStringLiteral("Cancel saving this new page?"),
                              Prompter::Answer::Yes);
        int shown = 0;
        QTimer person;
        person.setInterval(5);
        QObject::connect(&person, &QTimer::timeout, [&] {
            PageViewWindow* viewer = h.flow->viewer();
            if (!viewer || !viewer->isVisible() || viewer->newPageSaved() ||
                viewer->pageImage().isNull())
                return;
            if (++shown == closeAt)
                viewer->close();
            else
                viewer->save();
        });
        person.start();
        SCAN(h, h.target(false));
        QCOMPARE(shown, closeAt ? closeAt : 10);
        QCOMPARE(h.flow->pagesSaved(), saved);
        QVERIFY(!h.flow->viewer());
        QCOMPARE(h.pages(h.five).size(), 5 + saved);
        QCOMPARE(h.brokenPage(h.five), QString());
    }

    // What stops a scan before anything is made, and a feeder run stopped in the middle by
    // Cancel or by a device that fails: its own status text names the trouble, the pages
    // saved before stay whole, and the page being read leaves no row behind.
    void stops_data()
    {
        // status: the device fails with it ("" for no failure, "cancel" for Cancel pressed)
        // after failAfter pages saved; message: "" for none.
        columns<QString, QString, QString, bool, QString, int, QString>(
            {"kind", "scanner", "camera", "intoFolder", "status", "failAfter", "message"});
        const char* noScanner = "A scanner could not be detected.";
        row("no scanner", "document", "", "test:1", false, "", 0, noScanner);
        row("no scanner for a picture", "picture", "", "test:1", true, "", 0, noScanner);
        row("no camera", "camera", "test:0", "", false, "", 0, "A camera could not be detected.");
        row("a device that is not there", "document", "test:9", "", false, "", 0,
            "The scanner 'test:9' could not be used: Invalid argument.");
        row("jammed on the third sheet", "document", "test:0", "", false, "SANE_STATUS_JAMMED", 2,
            "The scanner 'test:0' stopped: Document feeder jammed.\n"
            "The 2 pages scanned before are kept.");
        row("cover open after one", "document", "test:0", "", false, "SANE_STATUS_COVER_OPEN", 1,
            "The scanner 'test:0' stopped: Scanner cover is open.\nThe page scanned before is "
            "kept.");
        row("no paper at all", "document", "test:0", "", false, "SANE_STATUS_NO_DOCS", 0,
            "The scanner 'test:0' stopped: Document feeder out of documents.");
        row("cancelled after three", "document", "test:0", "", false, "cancel", 3, "");
        row("cancelled in a folder after one", "document", "test:0", "", true, "cancel", 1, "");
    }
    void stops()
    {
        QFETCH(QString, kind);
        QFETCH(QString, scanner);
        QFETCH(QString, camera);
        QFETCH(bool, intoFolder);
        QFETCH(QString, status);
        QFETCH(int, failAfter);
        QFETCH(QString, message);
        const bool cancel = status == QLatin1String("cancel");
        // A sheet takes a while to come, so that Cancel lands while one is read.
        ScanHarness h(status.isEmpty() ? QStringList()
                      : cancel
                          ? QStringList{kPicture, "read-delay true", "read-delay-duration 20000"}
                          : QStringList{kPicture});
        h.settings().set(keys::ImageType, kind);
        h.settings().set(keys::ScanSource, scanner);
        h.settings().set(keys::CameraSource, camera);
        if (!status.isEmpty()) {
            h.settings().setFlag(keys::ScanFeeder, true);
            h.settings().set(keys::DocDpi, QStringLiteral("75"));
        }
        QObject guard;
        // The device is told to fail before it reads the next sheet; Cancel is pressed while
        // it is read.
        const auto fail = [&] { h.source->setOption(QStringLiteral("read-return-value"), status); };
        QObject::connect(h.source.get(), &ScanSource::opened, &guard, [&] {
            if (!status.isEmpty() && !cancel && failAfter == 0)
                fail();
        });
        QObject::connect(h.flow.get(), &ScanFlow::pageSaved, &guard, [&] {
            if (!cancel && h.flow->pagesSaved() + 1 == failAfter)
                fail();
        });
        QObject::connect(h.flow.get(), &ScanFlow::sheetProgress, &guard, [&](int sheet, int pc) {
            if (cancel && sheet == failAfter + 1 && pc >= 10)
                h.progress.pressCancel();
        });
        if (!message.isEmpty())
            h.prompter.expect(message);
        DialogAnswerer answerer(acceptDetails);
        SCAN(h, h.target(intoFolder));
        QCOMPARE(h.flow->pagesSaved(), failAfter);
        QVERIFY(!h.flow->viewer());
        const QVector<qint32> made = h.documentsOf(h.letters);
        QCOMPARE(made.size(), intoFolder && failAfter ? 1 : 0);
        QCOMPARE(answerer.seen, made.isEmpty() ? QStringList() : QStringList{"qmr::ItemDialog"});
        const qint32 document = made.value(0, h.five);
        const int before = made.isEmpty() ? 5 : 0;
        const QVector<PageRow> rows = h.pages(document);
        QCOMPARE(rows.size(), before + failAfter);
        for (int i = before; i < rows.size(); ++i)
            QCOMPARE(rows.at(i).pageNumber, i + 1);
        QCOMPARE(h.brokenPage(document), QString());
        QCOMPARE(h.pages(h.five).size(), 5 + (made.isEmpty() ? failAfter : 0));
    }

    // "beforescan": the details of the new document are asked before the device reads; the
    // document is in the tree at once; Cancel there reads nothing.
    void detailsBeforeTheScan_data() { goOnOrCancel("named Invoice"); }
    void detailsBeforeTheScan()
    {
        QFETCH(bool, goOn);
        ScanHarness h;
        h.settings().setMode(keys::GetDocInfo, DocInfoTime::BeforeScan);
        h.settings().set(keys::DocDpi, QStringLiteral("50"));
        QSignalSpy progress(h.flow.get(), &ScanFlow::sheetProgress);
        int readBeforeDialog = -1;
        DialogAnswerer answerer([&](QDialog* dialog) {
            if (!qobject_cast<ItemDialog*>(dialog))
                return false;
            readBeforeDialog = progress.count();
            dialog->findChild<QLineEdit*>(QStringLiteral("txtName"))->setText("Invoice");
            return DialogAnswerer::press(dialog, goOn ? "cmdOK" : "cmdCancel");
        });
        SCAN(h, h.target(true));
        QCOMPARE(answerer.seen, QStringList{"qmr::ItemDialog"});
        QCOMPARE(readBeforeDialog, 0);
        const QVector<qint32> documents = h.documentsOf(h.letters);
        QCOMPARE(documents.size(), 1);
        const qint32 id = documents.first();
        QCOMPARE(h.session->items().item(Level::Document, id).name,
                 goOn ? QStringLiteral("Invoice") : QStringLiteral("New document"));
        QCOMPARE(h.nav.calls.value(0),
                 QStringLiteral("DOC%1 New document<%2").arg(id).arg(h.letters));
        QCOMPARE(h.pages(id).size(), goOn ? 1 : 0);
        QCOMPARE(h.flow->pagesSaved(), goOn ? 1 : 0);
        QVERIFY(!h.flow->viewer());
    }

    // "TWAINShowUI": the device's own options come up before the scan; what is changed there
    // is what the device reads with; Cancel there reads nothing and leaves no row.
    void deviceOptionsBeforeTheScan_data() { goOnOrCancel("mode changed to grey, then Scan"); }
    void deviceOptionsBeforeTheScan()
    {
        QFETCH(bool, goOn);
        ScanHarness h;
        h.settings().setFlag(keys::ScanShowUi, true);
        QStringList modes;
        QString device;
        DialogAnswerer answerer([&](QDialog* dialog) {
            auto* options = qobject_cast<ScanOptionsDialog*>(dialog);
            if (!options)
                return false;
            device = dialog->findChild<QLabel*>(QStringLiteral("lblDevice"))->text();
            auto* mode = qobject_cast<QComboBox*>(options->control(QStringLiteral("mode")));
            if (!mode)
                return DialogAnswerer::press(dialog, "cmdCancel");
            for (int i = 0; i < mode->count(); ++i)
                modes << mode->itemText(i);
            modes << mode->currentText();
            if (!goOn)
                return DialogAnswerer::press(dialog, "cmdCancel");
            QSignalSpy updated(options, &ScanOptionsDialog::optionsUpdated);
            emit mode->activated(mode->findText(QStringLiteral("Gray")));
            if (!waitFor(updated))
                return DialogAnswerer::press(dialog, "cmdCancel");
            modes << mode->currentText();
            return DialogAnswerer::press(dialog, "cmdScan");
        });
        SCAN(h, h.target(false));
        QCOMPARE(answerer.seen, QStringList{"qmr::ScanOptionsDialog"});
        QCOMPARE(device, QStringLiteral("Options of test:0"));
        // The list of the device, set to colour by the settings, then grey by the person.
        QCOMPARE(modes, QStringList({"Gray", "Color", "Color"}) +
                            (goOn ? QStringList{"Gray"} : QStringList()));
        QCOMPARE(h.flow->pagesSaved(), goOn ? 1 : 0);
        const QVector<PageRow> rows = h.pages(h.five);
        QCOMPARE(rows.size(), goOn ? 6 : 5);
        if (goOn) {
            const QImage image = h.pageImage(rows.last());
            QVERIFY(!image.isNull() && image.allGray());
        }
        QVERIFY(!h.flow->viewer());
    }

    // Before the first scan the settings dialog comes up; Cancel starts nothing, OK goes on
    // with what it chose (the first device found, for someone who never chose).
    void settingsBeforeTheFirstScan_data() { goOnOrCancel("confirmed"); }
    void settingsBeforeTheFirstScan()
    {
        QFETCH(bool, goOn);
        ScanHarness h({kPicture}, false);
        DialogAnswerer answerer([&](QDialog* dialog) {
            auto* settings = qobject_cast<ScanSettingsDialog*>(dialog);
            // The answer waits until the devices are listed.
            if (!settings || settings->isLooking())
                return false;
            return DialogAnswerer::press(dialog, goOn ? "cmdOK" : "cmdCancel");
        });
        SCAN(h, h.target(false));
        QCOMPARE(answerer.seen, QStringList{"qmr::ScanSettingsDialog"});
        QCOMPARE(h.settings().get(keys::SetupScanSettings),
                 goOn ? QStringLiteral("True") : QString());
        QCOMPARE(h.settings().get(keys::ScanSource), goOn ? QStringLiteral("test:0") : QString());
        QCOMPARE(h.pages(h.five).size(), goOn ? 6 : 5);
        QCOMPARE(h.flow->pagesSaved(), goOn ? 1 : 0);
        QVERIFY(!h.flow->viewer());
    }
};

QMR_TEST(TestScanFlow)
#include "testscanflow.moc"
