#include <QAction>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>
#include <csignal>
#include <functional>

#include "app/exitonsignal.h"
#include "core/pageopener.h"
#include "dialogs/boxprompter.h"
#include "navigator/navigator.h"
#include "store/pagepaths.h"
#include "tests/app/apprun.h"
#include "tests/mail/mailharness.h"
#include "tests/print/printharness.h"
#include "tests/support/bigpictures.h"
#include "viewer/pagecanvas.h"
#include "viewer/pageviewwindow.h"

using namespace qmr;
using test::BigPictures;

namespace {

// Decoding a 70-megapixel page takes seconds on a loaded machine.
constexpr int kLoadMs = 60000;

using FileWriter = std::function<bool(const QString& path)>;

// The program as main assembles it, on a home with one page whose file the test puts in place.
struct ViewerRun : test::AppRun
{
    qint32 page = -1;

    bool start(const FileWriter& write, Prompter* boxes = nullptr)
    {
        {
            test::FixtureStore store(home.home());
            page = store.pageRow(
                store.document(store.folder(store.drawer(store.cabinet("Scans"), "Office"), "Post"),
                               "Letter"),
                1);
            if (!write(path()))
                return false;
        }
        startup = boxes ? std::make_unique<Startup>(home.home(), home.settings(), *boxes, choosers)
                        : make();
        return startup->start();
    }
    QString path() const { return PagePaths(home.home()).computedPagePath(page); }

    // The viewer on the page, opened as the page pane opens it, once it has loaded the page
    // (its caption comes with the load).
    PageViewWindow* open()
    {
        window()->navigator().context().pageOpener->openPage(page);
        auto* viewer = window()->findChild<PageViewWindow*>();
        const QString caption = QString("Page # 1 (ID = %1)").arg(page);
        return QTest::qWaitFor([&] { return viewer && viewer->windowTitle() == caption; }, kLoadMs)
                   ? viewer
                   : nullptr;
    }
};

// A landscape sheet with a dark block in its top left corner, which shows how it is turned.
bool writeCornered(const QString& path)
{
    QImage image(300, 200, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter(&image).fillRect(0, 0, 60, 60, Qt::black);
    return QDir().mkpath(QFileInfo(path).path()) && image.save(path, "JPG", 90);
}

// Clicks the named button of a window; false when it has none.
bool click(QWidget* window, const char* name)
{
    auto* button = window->findChild<QPushButton*>(name);
    if (button)
        button->click();
    return button != nullptr;
}

bool darkAt(const QImage& image, int x, int y)
{
    return qGray(image.pixel(x, y)) < 64;
}

// The share of the view drawn in the colour of the page's paper.
double paperShare(PageCanvas* canvas)
{
    const QImage shot = canvas->viewport()->grab().toImage();
    const QColor paper = BigPictures::paper();
    qint64 matching = 0;
    for (int y = 0; y < shot.height(); y += 4)
        for (int x = 0; x < shot.width(); x += 4) {
            const QRgb c = shot.pixel(x, y);
            matching += qAbs(qRed(c) - paper.red()) < 12 && qAbs(qGreen(c) - paper.green()) < 12 &&
                        qAbs(qBlue(c) - paper.blue()) < 12;
        }
    return double(matching) / double(((shot.width() + 3) / 4) * ((shot.height() + 3) / 4));
}

} // namespace

// The page viewer of the assembled program: 600 dpi colour scans up to A3 show, print and go
// by mail; a picture too large to open is refused by name on each of those ways; a save
// leaves the viewer in front.
class TestViewerWindow : public QObject
{
    Q_OBJECT
private slots:
    void picturesShowPrintAndMail_data()
    {
        test::columns<QSize, QByteArray, QString>({"scan", "picture", "reason"});
        // The largest scan; which stated sizes are too large is the image loader's rule.
        test::row("A3 at 600 dpi", BigPictures::kA3, QByteArray(), QString());
        const QString square = "it is 60000 by 60000 pixels, which would take 13733 MB of "
                               "memory, and at most 1024 MB may be used";
        test::row("too large: JPEG", QSize(), BigPictures::bomb(), square);
        // A kind the viewer leaves to other programs, but named all the same.
        test::row("too large: PNG", QSize(), BigPictures::pngStating(QSize(60000, 60000)), square);
    }
    void picturesShowPrintAndMail()
    {
        const auto [scan, picture, reason] =
            test::fetch<QSize, QByteArray, QString>("scan", "picture", "reason");
        const bool refused = !reason.isEmpty();
        ViewerRun r;
        QVERIFY(r.start({[&](const QString& path) {
            return refused ? BigPictures::writeFile(path, picture)
                           : BigPictures::copyScan(scan, path);
        }}));
        const QString path = r.path();
        const QString tooLarge = "The picture '" + path + "' is too large to open: " + reason + ".";

        if (refused)
            r.prompter.expect(tooLarge);
        PageViewWindow* viewer = r.open();
        QVERIFY(viewer);
        QVERIFY2(r.prompter.verify(), qPrintable(r.prompter.report()));
        QCOMPARE(viewer->canvas()->hasImage(), !refused);
        if (!refused) {
            QCOMPARE(viewer->pageImage().image().size(), scan);
            QCOMPARE(qRound(viewer->pageImage().image().dotsPerMeterX() * 0.0254), 600);
            // The page is drawn: at one to one it fills the view with its paper.
            QCOMPARE(viewer->canvas()->zoomPercent(), 100.0);
            QVERIFY2(paperShare(viewer->canvas()) > 0.9, "the view does not show the page");
        }

        // Print, to a PDF file.
        QTemporaryDir out;
        r.home.settings().set(keys::Printer, "Print to PDF file");
        r.home.settings().set(keys::PrintPdfPath, out.path());
        r.choosers.queueSaveFile(out.filePath("page.pdf"));
        if (refused)
            r.prompter.expect("Cannot print " + path + ": " + reason);
        test::whenModal(viewer, [](QWidget* dialog) { click(dialog, "cmdPrint"); });
        QVERIFY(click(viewer, "cmdPrint"));
        QVERIFY2(r.prompter.verify(), qPrintable(r.prompter.report()));
        if (!refused) {
            const test::PdfFacts pdf = test::readPdf(out.filePath("page.pdf"));
            QVERIFY2(pdf.error.isEmpty(), qPrintable(pdf.error));
            QCOMPARE(pdf.pages, 1);
            QCOMPARE(pdf.imageSizes, QVector<QSize>{scan});
        }

        // Email of the page alone, through a stand-in sendmail.
        test::SendmailStandIn sendmail;
        r.home.settings().set(keys::EmailSystem, "MAPI");
        r.home.settings().set(keys::SendmailPath, sendmail.program);
        r.home.settings().set(keys::EmailAddress, "me@example.org");
        r.prompter.expect(refused ? tooLarge : QString("Message sent."));
        test::whenModal(viewer, [](QWidget* dialog) {
            dialog->findChild<QLineEdit*>("txtSendTo")->setText("you@example.org");
            dialog->findChild<QRadioButton*>("optSend1")->setChecked(true);
            click(dialog, "cmdSend");
            dialog->close();
        });
        QVERIFY(click(viewer, "cmdEmail"));
        QVERIFY2(r.prompter.verify(), qPrintable(r.prompter.report()));
        if (refused) {
            QVERIFY(sendmail.message().isEmpty());
            return;
        }
        const test::ParsedMessage message(sendmail.message());
        QCOMPARE(message.parts.size(), 2);
        const test::ParsedMessage::Part& attached = message.parts.at(1);
        QVERIFY(attached.headers.value("content-disposition")
                    .contains(QByteArray::number(r.page) + ".jpg"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(QByteArray::fromBase64(attached.body), file.readAll());
    }

    // Rotate Left turns the other way from Rotate; Ctrl+Z and Ctrl+Shift+Z take an edit back
    // and make it again; the caption marks a page with edits not saved, and closing asks
    // whether to save them.
    void editsAreKeptUntilTheyAreSavedOrDropped_data()
    {
        // answer: to "Save the changes to page 1?"
        test::columns<int, bool, bool>({"answer", "staysOpen", "fileTurned"});
        // No, which drops the edits, is the viewer's own test (its Escape).
        test::row("save", int(Prompter::Answer::Yes), false, true);
        test::row("cancel", int(Prompter::Answer::Cancel), true, false);
    }
    void editsAreKeptUntilTheyAreSavedOrDropped()
    {
        const auto [answer, staysOpen, fileTurned] =
            test::fetch<int, bool, bool>("answer", "staysOpen", "fileTurned");
        ViewerRun r;
        QVERIFY(r.start({writeCornered}));
        QPointer<PageViewWindow> viewer = r.open();
        QVERIFY(viewer && QTest::qWaitForWindowActive(viewer));
        const QString caption = viewer->windowTitle(); // open() waited for the page's caption

        QVERIFY(click(viewer, "cmdRotateCounterClockwise"));
        QImage shown = viewer->pageImage().image();
        QCOMPARE(shown.size(), QSize(200, 300));
        QVERIFY(darkAt(shown, 10, 290)); // the corner went down the left side
        QCOMPARE(viewer->windowTitle(), "*" + caption);
        QTest::keyClick(viewer, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(viewer->pageImage().image().size(), QSize(300, 200));
        QCOMPARE(viewer->windowTitle(), caption);
        QTest::keyClick(viewer, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(viewer->pageImage().image().size(), QSize(200, 300));
        const QAction* redo = viewer->findChild<QAction*>("mnuEditRedo");
        QVERIFY(redo && !redo->isEnabled());
        QCOMPARE(viewer->windowTitle(), "*" + caption);
        // Rotate stays clockwise: the corner comes back to the top left.
        QVERIFY(click(viewer, "cmdRotateClockwise") && click(viewer, "cmdRotateClockwise"));
        shown = viewer->pageImage().image();
        QCOMPARE(shown.size(), QSize(200, 300));
        QVERIFY(darkAt(shown, 190, 10));

        r.prompter.expect("Save the changes to page 1?", Prompter::Answer(answer));
        if (fileTurned) // the page has no name of its own yet
            r.prompter.expect("No filename entered.  Do you want to auto-assign a filename?",
                              Prompter::Answer::Yes);
        viewer->close();
        QVERIFY2(r.prompter.verify(), qPrintable(r.prompter.report()));
        QCOMPARE(viewer && viewer->isVisible(), staysOpen);
        QCOMPARE(QImage(r.path()).size(), fileTurned ? QSize(200, 300) : QSize(300, 200));
        if (staysOpen) {
            QCOMPARE(viewer->windowTitle(), "*" + caption);
            // Save says so in the status line, and the page has nothing left to ask about.
            r.prompter.expect("No filename entered.  Do you want to auto-assign a filename?",
                              Prompter::Answer::Yes);
            QVERIFY(click(viewer, "cmdSave"));
            QCOMPARE(viewer->statusBar()->currentMessage(), QString("Page 1 saved."));
            QCOMPARE(viewer->windowTitle(), caption);
            viewer->close();
            QVERIFY2(r.prompter.verify(), qPrintable(r.prompter.report()));
            QVERIFY(!viewer || !viewer->isVisible());
        }
    }

    // A run that is made to end (a logout, SIGTERM) cannot ask about the viewer's edits: the
    // changed picture goes into the home's folder "Recovered", the page stays as it was, and
    // the next start says where the picture is, once.
    void aSignalKeepsTheViewersEdits()
    {
        ViewerRun r;
        ExitOnSignal exitOnSignal;
        QVERIFY(r.start({writeCornered}));
        exitOnSignal.attach(r.window());
        QPointer<PageViewWindow> viewer = r.open();
        QVERIFY(viewer);
        QVERIFY(click(viewer, "cmdRotateClockwise"));
        // Stands for the program's main loop, which the signal's exit waits for.
        QEventLoop mainLoop;
        connect(r.window(), &NavWindow::exitRequested, &mainLoop, [&] { mainLoop.exit(0); });
        QTimer::singleShot(20000, &mainLoop, [&] { mainLoop.exit(1); });
        QTimer::singleShot(0, [] { std::raise(SIGTERM); });
        QCOMPARE(mainLoop.exec(), 0);
        QVERIFY2(r.prompter.verify(), qPrintable(r.prompter.report()));
        QCOMPARE(QImage(r.path()).size(), QSize(300, 200));
        const QDir recovered(r.home.file("Recovered"));
        const QStringList kept = recovered.entryList(QDir::Files);
        QCOMPARE(kept.size(), 1);
        QVERIFY2(kept.first().startsWith(QString("Page %1, ").arg(r.page)),
                 qPrintable(kept.first()));
        const QImage picture(recovered.filePath(kept.first()));
        QCOMPARE(picture.size(), QSize(200, 300));
        QVERIFY(picture.pixelColor(190, 10).value() < 60); // the dark corner turned to the right

        for (const bool tell : {true, false}) {
            r.startup.reset();
            r.startup = r.make();
            if (tell)
                r.prompter.expect(QString("Quillmere was ended while a viewer held changes "
                                          "that were not saved. The changed pictures were kept "
                                          "in %1; the pages are as they were.")
                                      .arg(QDir::toNativeSeparators(recovered.path())));
            QVERIFY(r.startup->start());
            QVERIFY2(r.prompter.verify(), qPrintable(r.prompter.report()));
        }
    }

    // The viewer opens wholly on the screen and comes back where it was left. Ending the
    // program closes it as its own Close does: edits not saved are asked about, and Cancel
    // keeps the program running.
    void viewerKeepsItsPlaceAndIsAskedAtTheEnd()
    {
        ViewerRun r;
        QVERIFY(r.start({writeCornered}));
        QPointer<PageViewWindow> viewer = r.open();
        QVERIFY(viewer);
        const QRect screen = viewer->screen()->availableGeometry();
        QVERIFY(screen.contains(viewer->frameGeometry()));
        const QRect left(screen.topLeft() + QPoint(6, 40),
                         QSize(420, 330).expandedTo(viewer->minimumSizeHint()));
        viewer->setGeometry(left);
        viewer->close();
        QTRY_VERIFY(!viewer);
        viewer = r.open();
        QVERIFY(viewer);
        QCOMPARE(viewer->geometry(), left);
        viewer->close();
        QTRY_VERIFY(!viewer);
        // A place from a larger screen than this one.
        r.home.settings().savePlacement("frmPageView", Placement{5000, 9000, 2400, 3200, 0});
        viewer = r.open();
        QVERIFY(viewer);
        QVERIFY(screen.contains(viewer->frameGeometry()));

        QVERIFY(click(viewer, "cmdRotateClockwise"));
        r.prompter.expect("Exit the Quillmere?", Prompter::Answer::Yes);
        r.prompter.expect("Save the changes to page 1?", Prompter::Answer::Cancel);
        r.window()->mnuFileExit();
        r.prompter.expect("Save the changes to page 1?", Prompter::Answer::Cancel);
        r.window()->close();
        QVERIFY(r.window()->isVisible());
        QVERIFY(viewer && viewer->isVisible() && viewer->edited());
        r.prompter.expect("Save the changes to page 1?", Prompter::Answer::No);
        r.window()->close();
        QVERIFY(!r.window()->isVisible());
        QVERIFY(!viewer || !viewer->isVisible());
        QVERIFY2(r.prompter.verify(), qPrintable(r.prompter.report()));
        QCOMPARE(QImage(r.path()).size(), QSize(300, 200));
    }

    void saveLeavesTheViewerInFront()
    {
        ViewerRun r;
        BoxPrompter boxes;
        QVERIFY(r.start(
            {[](const QString& path) { return BigPictures::copyScan(QSize(850, 1100), path); }},
            &boxes));
        boxes.setParent(r.window());
        PageViewWindow* viewer = r.open();
        QVERIFY(viewer);
        QVERIFY(viewer->canvas()->hasImage());
        QTRY_COMPARE(QApplication::activeWindow(), viewer);

        // The page has no name of its own: the save asks whether to give it one.
        QString asked;
        QWidget* askedOver = nullptr;
        test::whenModal(viewer, [&](QWidget* modal) {
            auto* box = qobject_cast<QMessageBox*>(modal);
            QVERIFY(box);
            asked = box->text();
            askedOver = box->parentWidget();
            box->button(QMessageBox::Yes)->click();
        });
        viewer->findChild<QPushButton*>("cmdSave")->click();
        QCOMPARE(asked, "No filename entered.  Do you want to auto-assign a filename?");
        QVERIFY(QFile::exists(r.path()));
        QTRY_COMPARE(QApplication::activeWindow(), viewer);
        // The question stood over the viewer, not over the main window it would have raised.
        QCOMPARE(askedOver, viewer);
    }
};

QMR_TEST(TestViewerWindow)
#include "testviewerwindow.moc"
