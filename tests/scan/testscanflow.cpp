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

} // namespace

#define SCAN(h, node) QVERIFY2((h).scan(node), qPrintable((h).prompter.report()))

class TestScanFlow : public QObject
{
    Q_OBJECT
private slots:
    // A scan into a folder makes a document with pages from 1 (its details asked once, after
    // the first sheet), each scan one of its own; into a document the pages follow its
    // highest number. Every sheet is a real JPEG of the size the device gives. (The rows the
    // viewer makes for them, also for a run of sheets into a document of pages:
    // TestPageSave::addMakesItsRowsOnce.)
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
        row("camera never feeds", false, "camera", "", true, 1, 300, false);
    }
    void scanIntoStore()
    {
        const auto [intoFolder, kind, scanType, feeder, pages, dpi, grey] =
            fetch<bool, QString, QString, bool, int, int, bool>("intoFolder", "kind", "scanType",
                                                                "feeder", "pages", "dpi", "grey");
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
        QCOMPARE(h.settings().get(keys::ImageType), kind);
        const QVector<qint32> made = h.documentsOf(h.letters);
        QCOMPARE(made.size(), intoFolder ? 1 : 0);
        QCOMPARE(answerer.seen, intoFolder ? QStringList{"qmr::ItemDialog"} : QStringList());
        const int before = intoFolder ? 0 : 5;
        const QVector<PageRow> rows = h.pages(made.value(0, h.five));
        QCOMPARE(rows.size(), before + pages);
        for (int i = 0; i < pages; ++i) {
            const PageRow& row = rows.at(before + i);
            QCOMPARE(row.pageNumber, before + 1 + i);
            QCOMPARE(saved.at(i).first().toInt(), row.id);
            const QImage image = h.pageImage(row);
            QVERIFY2(!image.isNull(), qPrintable(h.pagePath(row)));
            QCOMPARE(image.size(), expected.size());
            QCOMPARE(image.allGray(), grey);
        }
        if (!intoFolder)
            return;
        h.flow.reset();
        h.flow = std::make_unique<ScanFlow>(h.context(), *h.source);
        SCAN(h, h.target(true));
        const QVector<qint32> documents = h.documentsOf(h.letters);
        QCOMPARE(documents.size(), 2);
        QCOMPARE(h.pages(documents.value(1)).size(), pages);
        QCOMPARE(h.pages(documents.value(1)).value(0).pageNumber, 1);
    }

    // "IMAGEEDIT": one page stays in the viewer with its image for editing; the row is there,
    // the file comes with the person's save. With the feeder each sheet waits in the viewer
    // for that save; a viewer closed without saving ends the run, keeping the pages saved
    // before.
    void editing_data()
    {
        // closeAt: that sheet's viewer is closed; 0 for none
        columns<bool, int, int>({"feeder", "closeAt", "saved"});
        row("one page stays", false, 0, 0);
        row("every sheet saved", true, 0, 10);
        row("closed at the third", true, 3, 2);
    }
    void editing()
    {
        auto [feeder, closeAt, saved] = fetch<bool, int, int>("feeder", "closeAt", "saved");
        ScanHarness h;
        h.settings().setMode(keys::AfterScan, AfterScanMode::OpenViewer);
        h.settings().setFlag(keys::ScanFeeder, feeder);
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
        if (feeder)
            person.start();
        SCAN(h, h.target(false));
        QCOMPARE(h.flow->pagesSaved(), saved);
        if (!feeder) {
            PageViewWindow* viewer = h.flow->viewer();
            QVERIFY(viewer && viewer->isVisible());
            QCOMPARE(h.pages(h.five).size(), 6);
            QVERIFY(h.pageImage(h.pages(h.five).last()).isNull());
            QCOMPARE(viewer->save(), PageSaver::Result::Saved);
            viewer->close();
            saved = 1;
        } else {
            QCOMPARE(shown, closeAt ? closeAt : 10);
            QVERIFY(!h.flow->viewer());
        }
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
        const auto [kind, scanner, camera, intoFolder, status, failAfter, message] =
            fetch<QString, QString, QString, bool, QString, int, QString>(
                "kind", "scanner", "camera", "intoFolder", "status", "failAfter", "message");
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
        QCOMPARE(rows.value(rows.size() - 1).pageNumber, rows.size());
        QCOMPARE(h.brokenPage(document), QString());
        QCOMPARE(h.pages(h.five).size(), 5 + (made.isEmpty() ? failAfter : 0));
    }

    // A dialog before the scan, gone through or cancelled: the new document's details
    // ("beforescan", asked before the device reads), the device's own options ("TWAINShowUI":
    // what is changed there is what the device reads with) or, before the first scan, the
    // settings (OK goes on with the first device found, for someone who never chose: what it
    // writes is TestScanSettingsDialog::okWritesEverySetting's). Cancel reads nothing and
    // leaves no row.
    void dialogBeforeTheScan_data()
    {
        columns<QString, bool>({"dialog", "goOn"});
        for (const char* dialog :
             {"qmr::ItemDialog", "qmr::ScanOptionsDialog", "qmr::ScanSettingsDialog"})
            for (const bool goOn : {true, false})
                QTest::addRow("%s, %s", dialog, goOn ? "gone through" : "cancelled")
                    << QString::fromLatin1(dialog) << goOn;
    }
    void dialogBeforeTheScan()
    {
        const auto [dialog, goOn] = fetch<QString, bool>("dialog", "goOn");
        const bool details = dialog == QLatin1String("qmr::ItemDialog");
        const bool options = dialog == QLatin1String("qmr::ScanOptionsDialog");
        const bool first = dialog == QLatin1String("qmr::ScanSettingsDialog");
        ScanHarness h({kPicture}, !first);
        if (details)
            h.settings().setMode(keys::GetDocInfo, DocInfoTime::BeforeScan);
        h.settings().setFlag(keys::ScanShowUi, options);
        h.settings().set(keys::DocDpi, QStringLiteral("50"));
        QSignalSpy progress(h.flow.get(), &ScanFlow::sheetProgress);
        int readBefore = -1;
        QStringList modes; // the device's, then the one set, then the person's
        QString device;
        DialogAnswerer answerer([&](QDialog* d) {
            auto* settings = qobject_cast<ScanSettingsDialog*>(d);
            // The answer to the settings waits until the devices are listed.
            if (QLatin1String(d->metaObject()->className()) != dialog ||
                (settings && settings->isLooking()))
                return false;
            readBefore = progress.count();
            if (details)
                d->findChild<QLineEdit*>(QStringLiteral("txtName"))->setText("Invoice");
            auto* optionsDialog = qobject_cast<ScanOptionsDialog*>(d);
            auto* mode =
                optionsDialog
                    ? qobject_cast<QComboBox*>(optionsDialog->control(QStringLiteral("mode")))
                    : nullptr;
            if (mode) {
                device = d->findChild<QLabel*>(QStringLiteral("lblDevice"))->text();
                for (int i = 0; i < mode->count(); ++i)
                    modes << mode->itemText(i);
                modes << mode->currentText();
            }
            if (!goOn || (options && !mode))
                return DialogAnswerer::press(d, "cmdCancel");
            if (!options)
                return DialogAnswerer::press(d, "cmdOK");
            QSignalSpy updated(optionsDialog, &ScanOptionsDialog::optionsUpdated);
            emit mode->activated(mode->findText(QStringLiteral("Gray")));
            if (!waitFor(updated))
                return DialogAnswerer::press(d, "cmdCancel");
            modes << mode->currentText();
            return DialogAnswerer::press(d, "cmdScan");
        });
        SCAN(h, h.target(details));
        QCOMPARE(answerer.seen, QStringList{dialog});
        QCOMPARE(readBefore, 0);
        QCOMPARE(h.flow->pagesSaved(), goOn ? 1 : 0);
        QVERIFY(!h.flow->viewer());
        const QVector<qint32> made = h.documentsOf(h.letters);
        // The document asked before the scan is there even when its details are cancelled.
        QCOMPARE(made.size(), details ? 1 : 0);
        const QVector<PageRow> rows = h.pages(made.value(0, h.five));
        QCOMPARE(rows.size(), (details ? 0 : 5) + (goOn ? 1 : 0));
        if (details)
            QCOMPARE(h.session->items().item(Level::Document, made.first()).name,
                     goOn ? QStringLiteral("Invoice") : QStringLiteral("New document"));
        if (options) {
            QCOMPARE(device, QStringLiteral("Options of test:0"));
            // The list of the device, set to colour by the settings, then grey by the person.
            QCOMPARE(modes, QStringList({"Gray", "Color", "Color"}) +
                                (goOn ? QStringList{"Gray"} : QStringList()));
            if (goOn) {
                const QImage image = h.pageImage(rows.last());
                QVERIFY(!image.isNull() && image.allGray());
            }
        }
    }
};

QMR_TEST(TestScanFlow)
#include "testscanflow.moc"
