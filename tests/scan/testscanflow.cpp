#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>

#include "dialogs/itemdialog.h"
#include "sanetestbackend.h"
#include "scan/sanesource.h"
#include "scan/scanflow.h"
#include "scan/scanoptionsdialog.h"
#include "scan/scansettingsdialog.h"
#include "scanharness.h"
#include "tests/support/testrunner.h"
#include "viewer/pageviewwindow.h"

using namespace qmr;
using namespace qmr::test;

namespace {

const QString kPicture = QStringLiteral("test-picture \"Color pattern\"");

// The details of a document made by a scan into a folder are taken as they stand.
bool acceptDetails(QDialog* dialog)
{
    return qobject_cast<ItemDialog*>(dialog) && DialogAnswerer::press(dialog, "cmdOK");
}

QString imageTypeAfter(ScanHarness& h)
{
    return h.settings().get(keys::ImageType);
}

} // namespace

class TestScanFlow : public QObject
{
    Q_OBJECT
private slots:
    // A scan into a folder makes "New document" with pages from 1; into a document the pages
    // follow its highest number. Every sheet is a real JPEG of the size the device gives.
    void scanIntoStore_data()
    {
        QTest::addColumn<bool>("intoFolder");
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("scanType"); // "" leaves the default colour
        QTest::addColumn<bool>("feeder");
        QTest::addColumn<int>("firstNumber");
        QTest::addColumn<int>("pages");
        QTest::addColumn<int>("dpi");
        QTest::addColumn<bool>("grey");
        QTest::newRow("document into a folder") << true << "document"
                                                << "" << false << 1 << 1 << 150 << false;
        QTest::newRow("picture into a document of five") << false << "picture"
                                                         << "" << false << 6 << 1 << 300 << false;
        QTest::newRow("grey picture") << false << "picture"
                                      << "grayscale" << false << 6 << 1 << 300 << true;
        QTest::newRow("line art document") << false << "document"
                                           << "Black & White" << false << 6 << 1 << 150 << true;
        QTest::newRow("feeder into a folder") << true << "document"
                                              << "" << true << 1 << 10 << 150 << false;
        QTest::newRow("feeder into a document of five") << false << "document"
                                                        << "" << true << 6 << 10 << 150 << false;
        QTest::newRow("camera never feeds") << false << "camera"
                                            << "" << true << 6 << 1 << 300 << false;
    }
    void scanIntoStore()
    {
        QFETCH(bool, intoFolder);
        QFETCH(QString, kind);
        QFETCH(QString, scanType);
        QFETCH(bool, feeder);
        QFETCH(int, firstNumber);
        QFETCH(int, pages);
        QFETCH(int, dpi);
        QFETCH(bool, grey);
        SaneTestBackend backend({kPicture});
        ScanHarness h;
        Settings& s = h.settings();
        s.set(keys::ImageType, kind);
        s.set(keys::CameraSource, QStringLiteral("test:1"));
        s.setFlag(keys::ScanFeeder, feeder);
        if (!scanType.isEmpty())
            s.set(kind == QLatin1String("document") ? keys::DocScanType : keys::PicScanType,
                  scanType);
        const QImage expected = backend.scanimage(
            {"-d", "test:0", "--resolution", QString::number(dpi), "--mode", "Color"});
        QVERIFY(!expected.isNull());

        SaneSource source;
        ScanFlow flow(h.context(), source);
        QSignalSpy saved(&flow, &ScanFlow::pageSaved);
        DialogAnswerer answerer(acceptDetails);
        flow.scanToViewer(intoFolder ? NodeKey::of(Level::Folder, h.letters)
                                     : NodeKey::of(Level::Document, h.five));
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QVERIFY(!flow.isRunning());
        QCOMPARE(flow.pagesSaved(), pages);
        QCOMPARE(saved.count(), pages);
        // Every page was saved at once: no viewer is left.
        QVERIFY(!flow.viewer());
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
        const QVector<PageRow> rows = h.pages(document);
        QCOMPARE(rows.size(), firstNumber - 1 + pages);
        for (int i = 0; i < pages; ++i) {
            const PageRow& row = rows.at(firstNumber - 1 + i);
            QCOMPARE(row.pageNumber, firstNumber + i);
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
        QCOMPARE(imageTypeAfter(h), kind);
    }

    // "IMAGEEDIT": one page stays in the viewer with its image for editing; the row is there,
    // the file comes with the person's save.
    void editingKeepsTheViewer()
    {
        SaneTestBackend backend({kPicture});
        ScanHarness h;
        h.settings().setMode(keys::AfterScan, AfterScanMode::OpenViewer);
        SaneSource source;
        ScanFlow flow(h.context(), source);
        flow.scanToViewer(NodeKey::of(Level::Document, h.five));
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        PageViewWindow* viewer = flow.viewer();
        QVERIFY(viewer);
        QVERIFY(viewer->isVisible());
        QCOMPARE(flow.pagesSaved(), 0);
        const QVector<PageRow> rows = h.pages(h.five);
        QCOMPARE(rows.size(), 6);
        QCOMPARE(rows.last().pageNumber, 6);
        QVERIFY(h.pageImage(rows.last()).isNull());
        QCOMPARE(viewer->save(), PageSaver::Result::Saved);
        QVERIFY(!h.pageImage(h.pages(h.five).last()).isNull());
        viewer->close();
    }

    // "IMAGEEDIT" with the feeder: each sheet waits in the viewer for the person's save; a
    // viewer closed without saving ends the run, keeping the pages saved before.
    void editingEachSheet_data()
    {
        QTest::addColumn<int>("closeAt"); // the sheet whose viewer is closed; 0 for none
        QTest::addColumn<int>("saved");
        QTest::newRow("every sheet saved") << 0 << 10;
        QTest::newRow("closed at the third") << 3 << 2;
    }
    void editingEachSheet()
    {
        QFETCH(int, closeAt);
        QFETCH(int, saved);
        SaneTestBackend backend({kPicture});
        ScanHarness h;
        h.settings().setMode(keys::AfterScan, AfterScanMode::OpenViewer);
        h.settings().setFlag(keys::ScanFeeder, true);
        h.settings().set(keys::DocDpi, QStringLiteral("50"));
        if (closeAt)
            h.prompter.expect(QStringLiteral("Cancel saving this new page?"),
                              Prompter::Answer::Yes);
        SaneSource source;
        ScanFlow flow(h.context(), source);
        int shown = 0;
        QTimer person;
        person.setInterval(5);
        QObject::connect(&person, &QTimer::timeout, [&] {
            PageViewWindow* viewer = flow.viewer();
            if (!viewer || !viewer->isVisible() || viewer->newPageSaved() ||
                viewer->pageImage().isNull())
                return;
            ++shown;
            if (shown == closeAt)
                viewer->close();
            else
                viewer->save();
        });
        person.start();
        flow.scanToViewer(NodeKey::of(Level::Document, h.five));
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(shown, closeAt ? closeAt : 10);
        QCOMPARE(flow.pagesSaved(), saved);
        QVERIFY(!flow.viewer());
        const QVector<PageRow> rows = h.pages(h.five);
        QCOMPARE(rows.size(), 5 + saved);
        for (const PageRow& row : rows)
            QVERIFY2(!h.pageImage(row).isNull(), qPrintable(h.pagePath(row)));
    }

    // With "afterscan", each scan into a folder makes a document of its own.
    void eachFolderScanMakesItsDocument()
    {
        SaneTestBackend backend({kPicture});
        ScanHarness h;
        h.settings().set(keys::DocDpi, QStringLiteral("50"));
        SaneSource source;
        DialogAnswerer answerer(acceptDetails);
        for (int i = 0; i < 2; ++i) {
            ScanFlow flow(h.context(), source);
            flow.scanToViewer(NodeKey::of(Level::Folder, h.letters));
            QCOMPARE(flow.pagesSaved(), 1);
        }
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        const QVector<qint32> documents = h.documentsOf(h.letters);
        QCOMPARE(documents.size(), 2);
        for (qint32 id : documents) {
            QCOMPARE(h.pages(id).size(), 1);
            QCOMPARE(h.pages(id).first().pageNumber, 1);
        }
    }

    // Cancel in the middle of a feeder run stops the device; the pages saved stay whole and
    // no row is left without its file.
    void cancelKeepsSavedPages_data()
    {
        QTest::addColumn<bool>("intoFolder");
        QTest::addColumn<int>("cancelAfter");
        QTest::newRow("into a document, after three") << false << 3;
        QTest::newRow("into a folder, after one") << true << 1;
    }
    void cancelKeepsSavedPages()
    {
        QFETCH(bool, intoFolder);
        QFETCH(int, cancelAfter);
        // A sheet takes a while to come, so that Cancel lands while one is read.
        SaneTestBackend backend({kPicture, "read-delay true", "read-delay-duration 20000"});
        ScanHarness h;
        h.settings().setFlag(keys::ScanFeeder, true);
        h.settings().set(keys::DocDpi, QStringLiteral("75"));
        SaneSource source;
        ScanFlow flow(h.context(), source);
        QObject guard;
        // Cancel is pressed while the sheet after them is being read.
        QObject::connect(&flow, &ScanFlow::sheetProgress, &guard, [&](int sheet, int percent) {
            if (sheet == cancelAfter + 1 && percent >= 10)
                h.progress.pressCancel();
        });
        DialogAnswerer answerer(acceptDetails);
        flow.scanToViewer(intoFolder ? NodeKey::of(Level::Folder, h.letters)
                                     : NodeKey::of(Level::Document, h.five));
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(flow.pagesSaved(), cancelAfter);
        QVERIFY(!flow.viewer());
        const qint32 document = intoFolder ? h.documentsOf(h.letters).value(0) : h.five;
        const QVector<PageRow> rows = h.pages(document);
        const int before = intoFolder ? 0 : 5;
        QCOMPARE(rows.size(), before + cancelAfter);
        for (int i = before; i < rows.size(); ++i) {
            QCOMPARE(rows.at(i).pageNumber, i + 1);
            QVERIFY2(!h.pageImage(rows.at(i)).isNull(), qPrintable(h.pagePath(rows.at(i))));
        }
    }

    // What stops a scan before anything is made, and what a device that fails leaves.
    void messages_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("scanner");
        QTest::addColumn<QString>("camera");
        QTest::addColumn<bool>("intoFolder");
        QTest::addColumn<QString>("message");
        QTest::newRow("no scanner") << "document"
                                    << ""
                                    << "test:1" << false << "A scanner could not be detected.";
        QTest::newRow("no scanner for a picture")
            << "picture"
            << ""
            << "test:1" << true << "A scanner could not be detected.";
        QTest::newRow("no camera") << "camera"
                                   << "test:0"
                                   << "" << false << "A camera could not be detected.";
        QTest::newRow("a device that is not there")
            << "document"
            << "test:9"
            << "" << false << "The scanner 'test:9' could not be used: Invalid argument.";
    }
    void messages()
    {
        QFETCH(QString, kind);
        QFETCH(QString, scanner);
        QFETCH(QString, camera);
        QFETCH(bool, intoFolder);
        QFETCH(QString, message);
        SaneTestBackend backend;
        ScanHarness h;
        h.settings().set(keys::ImageType, kind);
        h.settings().set(keys::ScanSource, scanner);
        h.settings().set(keys::CameraSource, camera);
        h.prompter.expect(message);
        SaneSource source;
        ScanFlow flow(h.context(), source);
        DialogAnswerer answerer(acceptDetails);
        flow.scanToViewer(intoFolder ? NodeKey::of(Level::Folder, h.letters)
                                     : NodeKey::of(Level::Document, h.five));
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QVERIFY(answerer.seen.isEmpty());
        QVERIFY(!flow.viewer());
        QCOMPARE(h.pages(h.five).size(), 5);
        QVERIFY(h.documentsOf(h.letters).isEmpty());
    }

    // A device that fails in the middle of a feeder run: its own status text names the
    // trouble, the pages before stay whole, and the page being read leaves no row behind.
    void deviceFailsMidRun_data()
    {
        QTest::addColumn<QString>("status");
        QTest::addColumn<int>("failAfter");
        QTest::addColumn<QString>("message");
        QTest::newRow("jammed on the third sheet")
            << "SANE_STATUS_JAMMED" << 2
            << "The scanner 'test:0' stopped: Document feeder jammed.\n"
               "The 2 pages scanned before are kept.";
        QTest::newRow("cover open after one")
            << "SANE_STATUS_COVER_OPEN" << 1
            << "The scanner 'test:0' stopped: Scanner cover is open.\n"
               "The page scanned before is kept.";
        QTest::newRow("no paper at all") << "SANE_STATUS_NO_DOCS" << 0
                                         << "The scanner 'test:0' stopped: Document feeder out "
                                            "of documents.";
    }
    void deviceFailsMidRun()
    {
        QFETCH(QString, status);
        QFETCH(int, failAfter);
        QFETCH(QString, message);
        SaneTestBackend backend({kPicture});
        ScanHarness h;
        h.settings().setFlag(keys::ScanFeeder, true);
        h.settings().set(keys::DocDpi, QStringLiteral("50"));
        SaneSource source;
        ScanFlow flow(h.context(), source);
        QObject guard;
        // The device is told to fail before it reads the next sheet.
        const auto fail = [&] { source.setOption(QStringLiteral("read-return-value"), status); };
        QObject::connect(&source, &ScanSource::opened, &guard, [&] {
            if (failAfter == 0)
                fail();
        });
        QObject::connect(&flow, &ScanFlow::pageSaved, &guard, [&] {
            if (flow.pagesSaved() + 1 == failAfter)
                fail();
        });
        h.prompter.expect(message);
        flow.scanToViewer(NodeKey::of(Level::Document, h.five));
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(flow.pagesSaved(), failAfter);
        QVERIFY(!flow.viewer());
        const QVector<PageRow> rows = h.pages(h.five);
        QCOMPARE(rows.size(), 5 + failAfter);
        for (const PageRow& row : rows)
            QVERIFY2(!h.pageImage(row).isNull(), qPrintable(h.pagePath(row)));
    }

    // "beforescan": the details of the new document are asked before the device reads; the
    // document is in the tree at once; Cancel there reads nothing.
    void detailsBeforeTheScan_data()
    {
        QTest::addColumn<bool>("confirm");
        QTest::newRow("named Invoice") << true;
        QTest::newRow("cancelled") << false;
    }
    void detailsBeforeTheScan()
    {
        QFETCH(bool, confirm);
        SaneTestBackend backend({kPicture});
        ScanHarness h;
        h.settings().setMode(keys::GetDocInfo, DocInfoTime::BeforeScan);
        h.settings().set(keys::DocDpi, QStringLiteral("50"));
        SaneSource source;
        ScanFlow flow(h.context(), source);
        QSignalSpy progress(&flow, &ScanFlow::sheetProgress);
        int readBeforeDialog = -1;
        DialogAnswerer answerer([&](QDialog* dialog) {
            if (!qobject_cast<ItemDialog*>(dialog))
                return false;
            readBeforeDialog = progress.count();
            dialog->findChild<QLineEdit*>(QStringLiteral("txtName"))->setText("Invoice");
            return DialogAnswerer::press(dialog, confirm ? "cmdOK" : "cmdCancel");
        });
        flow.scanToViewer(NodeKey::of(Level::Folder, h.letters));
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(answerer.seen, QStringList{"qmr::ItemDialog"});
        QCOMPARE(readBeforeDialog, 0);
        const QVector<qint32> documents = h.documentsOf(h.letters);
        QCOMPARE(documents.size(), 1);
        const qint32 id = documents.first();
        QCOMPARE(h.session->items().item(Level::Document, id).name,
                 confirm ? QStringLiteral("Invoice") : QStringLiteral("New document"));
        const QString added = QStringLiteral("DOC%1 New document<%2").arg(id).arg(h.letters);
        QCOMPARE(h.nav.calls.value(0), added);
        QCOMPARE(h.pages(id).size(), confirm ? 1 : 0);
        QCOMPARE(flow.pagesSaved(), confirm ? 1 : 0);
        QVERIFY(!flow.viewer());
    }

    // "TWAINShowUI": the device's own options come up before the scan; what is changed there
    // is what the device reads with; Cancel there reads nothing and leaves no row.
    void deviceOptionsBeforeTheScan_data()
    {
        QTest::addColumn<bool>("scan");
        QTest::newRow("mode changed to grey, then Scan") << true;
        QTest::newRow("cancelled") << false;
    }
    void deviceOptionsBeforeTheScan()
    {
        QFETCH(bool, scan);
        SaneTestBackend backend({kPicture});
        ScanHarness h;
        h.settings().setFlag(keys::ScanShowUi, true);
        SaneSource source;
        ScanFlow flow(h.context(), source);
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
            if (!scan)
                return DialogAnswerer::press(dialog, "cmdCancel");
            QSignalSpy updated(options, &ScanOptionsDialog::optionsUpdated);
            emit mode->activated(mode->findText(QStringLiteral("Gray")));
            if (!waitFor(updated))
                return DialogAnswerer::press(dialog, "cmdCancel");
            modes << mode->currentText();
            return DialogAnswerer::press(dialog, "cmdScan");
        });
        flow.scanToViewer(NodeKey::of(Level::Document, h.five));
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(answerer.seen, QStringList{"qmr::ScanOptionsDialog"});
        QCOMPARE(device, QStringLiteral("Options of test:0"));
        // The list of the device, set to colour by the settings, then grey by the person.
        const QStringList expectedModes = scan ? QStringList{"Gray", "Color", "Color", "Gray"}
                                               : QStringList{"Gray", "Color", "Color"};
        QCOMPARE(modes, expectedModes);
        QCOMPARE(flow.pagesSaved(), scan ? 1 : 0);
        const QVector<PageRow> rows = h.pages(h.five);
        QCOMPARE(rows.size(), scan ? 6 : 5);
        if (scan) {
            const QImage image = h.pageImage(rows.last());
            QVERIFY(!image.isNull());
            QVERIFY(image.allGray());
        }
        QVERIFY(!flow.viewer());
    }

    // Before the first scan the settings dialog comes up; Cancel starts nothing, OK goes on
    // with what it chose (the first device found, for someone who never chose).
    void settingsBeforeTheFirstScan_data()
    {
        QTest::addColumn<bool>("confirm");
        QTest::newRow("cancelled") << false;
        QTest::newRow("confirmed") << true;
    }
    void settingsBeforeTheFirstScan()
    {
        QFETCH(bool, confirm);
        SaneTestBackend backend({kPicture});
        ScanHarness h(false);
        SaneSource source;
        ScanFlow flow(h.context(), source);
        DialogAnswerer answerer([&](QDialog* dialog) {
            auto* settings = qobject_cast<ScanSettingsDialog*>(dialog);
            // The answer waits until the devices are listed.
            if (!settings || settings->isLooking())
                return false;
            return DialogAnswerer::press(dialog, confirm ? "cmdOK" : "cmdCancel");
        });
        flow.scanToViewer(NodeKey::of(Level::Document, h.five));
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(answerer.seen, QStringList{"qmr::ScanSettingsDialog"});
        Settings& s = h.settings();
        QCOMPARE(s.get(keys::SetupScanSettings), confirm ? QStringLiteral("True") : QString());
        QCOMPARE(s.get(keys::ScanSource), confirm ? QStringLiteral("test:0") : QString());
        QCOMPARE(h.pages(h.five).size(), confirm ? 6 : 5);
        QCOMPARE(flow.pagesSaved(), confirm ? 1 : 0);
        QVERIFY(!flow.viewer());
    }
};

QMR_TEST(TestScanFlow)
#include "testscanflow.moc"
