#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "tests/support/testrunner.h"
#include "viewer/viewerpageopener.h"
#include "viewer/viewsettingsdialog.h"
#include "viewer/zoomrules.h"
#include "viewerharness.h"

using namespace qmr;
using test::fetch;
using test::row;
using test::ViewerHarness;

namespace {

template <class T> T* control(QWidget* w, const char* name)
{
    T* c = w->findChild<T*>(QLatin1String(name));
    if (!c)
        qWarning("no control %s", name);
    return c;
}

} // namespace

class TestPageViewer : public QObject
{
    Q_OBJECT
private slots:
    // A lower number comes before a twin: back from the second 5 lands on 4.
    void neighbours_data()
    {
        // previous: "" for none: the button is disabled
        // backAfterNext: where Next and then Previous lead
        test::columns<QString, int, QString, QString, QString>(
            {"page", "number", "previous", "next", "backAfterNext"});
        row("4", "numbered4", 4, "", "twinA", "numbered4");
        row("first 5", "twinA", 5, "numbered4", "twinB", "numbered4");
        row("second 5", "twinB", 5, "numbered4", "", "numbered4");
        row("one page alone", "singlePage", 1, "", "", "singlePage");
    }
    void neighbours()
    {
        auto [page, number, previous, next, backAfterNext] =
            fetch<QString, int, QString, QString, QString>("page", "number", "previous", "next",
                                                           "backAfterNext");
        ViewerHarness h;
        const QHash<QString, qint32> ids{{"numbered4", h.numbered4},
                                         {"twinA", h.twinA},
                                         {"twinB", h.twinB},
                                         {"singlePage", h.singlePage}};
        auto w = h.openViewer(ids[page]);
        QCOMPARE(w->windowTitle(), QString("Page # %1 (ID = %2)").arg(number).arg(ids[page]));
        QCOMPARE(w->location().prevPageId, ids.value(previous, -1));
        QCOMPARE(w->location().nextPageId, ids.value(next, -1));
        QCOMPARE(control<QPushButton>(w.get(), "cmdPrev")->isEnabled(), !previous.isEmpty());
        QCOMPARE(control<QPushButton>(w.get(), "cmdNext")->isEnabled(), !next.isEmpty());
        // At the end nothing happens.
        w->cmdNext();
        QCOMPARE(w->location().pageId, ids.value(next, ids[page]));
        w->cmdPrev();
        QCOMPARE(w->location().pageId, ids[backAfterNext]);
        QCOMPARE(w->pageImage().image().size(),
                 page == "singlePage" ? QSize(850, 1100) : QSize(400, 500));
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
    }

    // One store through the viewer on a page: opening, the zoom's limits, band and crops,
    // a turn, the clipboard, leaving with an edit, and a page whose file is gone.
    void viewingAndEditing()
    {
        ViewerHarness h;
        auto w = h.openViewer(h.singlePage);
        QCOMPARE(w->mode(), ViewerMode::Edit);
        QCOMPARE(w->canvas()->image().size(), QSize(850, 1100));
        QCOMPARE(w->canvas()->zoomPercent(), 100.0);
        QCOMPARE(w->currentFile(), h.session->paths().computedPagePath(h.singlePage));
        // A cabinet whose names the program chooses shows no file name.
        QVERIFY(!control<QLineEdit>(w.get(), "txtFilename")->isVisible());
        QVERIFY(!control<QLabel>(w.get(), "lblSaveTo")->isVisible());
        QVERIFY(!control<QPushButton>(w.get(), "cmdPrint")->isEnabled());

        auto n = h.openViewer(h.named);
        QVERIFY(control<QLineEdit>(n.get(), "txtFilename")->isVisible());
        QCOMPARE(control<QLineEdit>(n.get(), "txtFilename")->text(), h.outsideFile("first.jpg"));

        // 600 x 400, white around a frame
        QAction* undo = control<QAction>(n.get(), "mnuEditUndo");
        QVERIFY(!undo->isEnabled());
        n->cmdRotateClockwise();
        QCOMPARE(n->pageImage().image().size(), QSize(400, 600));
        QVERIFY(n->imageChanged());
        QCOMPARE(n->canvas()->zoomPercent(), 100.0);
        QVERIFY(undo->isEnabled());
        undo->trigger();
        QCOMPARE(n->pageImage().image().size(), QSize(600, 400));
        QVERIFY(!undo->isEnabled());

        n->mnuEditCopy();
        QCOMPARE(QApplication::clipboard()->image().size(), QSize(600, 400));
        const QImage other = ViewerHarness::picture(QSize(90, 70), Qt::red);
        QApplication::clipboard()->setImage(other);
        n->mnuEditPaste();
        QCOMPARE(n->pageImage().image().size(), QSize(90, 70));
        QCOMPARE(n->pageImage().image().pixel(45, 35),
                 other.convertToFormat(QImage::Format_RGB32).pixel(45, 35));
        n->mnuEditUndo();
        QCOMPARE(n->pageImage().image().size(), QSize(600, 400));
        // Nothing on the clipboard: nothing happens.
        QApplication::clipboard()->clear();
        n->mnuEditPaste();
        QCOMPARE(n->pageImage().image().size(), QSize(600, 400));
        QVERIFY(!n->pageImage().canUndo());

        w = h.openViewer(h.singlePage);
        int presses = 0;
        double last = 0;
        while (w->canvas()->zoomPercent() != last && presses < 100) {
            last = w->canvas()->zoomPercent();
            w->cmdZoomOut();
            ++presses;
        }
        // 100, 75, 56.25 ... 13.35, 10.01, 7.51: the press at 7.51 is refused.
        QCOMPARE(presses, 10);
        QVERIFY(qAbs(w->canvas()->zoomPercent() - 100 * std::pow(0.75, 9)) < 1e-9);
        while (w->canvas()->zoomPercent() < 10000)
            w->cmdZoomIn();
        const double top = w->canvas()->zoomPercent();
        w->cmdZoomIn();
        QCOMPARE(w->canvas()->zoomPercent(), top);

        w = h.openViewer(h.singlePage);
        PageCanvas* c = w->canvas();
        const QPoint base = c->viewport()->rect().center() - QPoint(150, 100);
        const QPoint origin = c->imagePointAt(base);
        ViewerHarness::band(c, base, {base + QPoint(60, 40), base + QPoint(120, 90)});
        QVERIFY(c->bandActive());
        QCOMPARE(c->bandStart(), origin);
        QCOMPARE(c->bandEnd(), origin + QPoint(120, 90));
        w->cmdCrop();
        QCOMPARE(w->pageImage().image().size(), QSize(120, 90));
        QVERIFY(!c->bandActive());
        // A second crop needs a new band.
        w->cmdCrop();
        QCOMPARE(w->pageImage().image().size(), QSize(120, 90));
        // A press without a move keeps the last move point: the crop runs to it.
        const QPoint at = c->imagePointAt(c->viewport()->rect().center() - QPoint(20, 10));
        const QPoint viewAt = c->viewport()->rect().center() - QPoint(20, 10);
        ViewerHarness::band(c, viewAt);
        const QRect expected = ImageEdit::cropRectFromBand(at, origin + QPoint(120, 90))
                                   .intersected(QRect(0, 0, 120, 90));
        w->cmdCrop();
        QCOMPARE(w->pageImage().image().size(), expected.size());
        w->mnuEditUndo();
        w->mnuEditUndo();
        QCOMPARE(w->pageImage().image().size(), QSize(850, 1100));
        QVERIFY(!w->imageChanged()); // crops leave the flag alone

        w = h.openViewer(h.singlePage);
        w->cmdRotateClockwise();
        // An edit not saved is asked about; Discard drops the change on the screen.
        h.prompter.expect("Save the changes to page 1?", Prompter::Answer::No);
        QTest::keyClick(w.get(), Qt::Key_Escape);
        QVERIFY(!w->isVisible());
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(QImage(h.session->paths().computedPagePath(h.singlePage)).size(),
                 QSize(850, 1100));

        QVERIFY(QFile::remove(h.session->paths().computedPagePath(h.twinA)));
        w = h.openViewer(h.numbered4);
        QVERIFY(w->canvas()->hasImage());
        // Moving on to a page without its file must not leave the last picture standing in.
        w->cmdNext();
        QCOMPARE(w->windowTitle(), QString("Page # 5 (ID = %1)").arg(h.twinA));
        QVERIFY(!w->canvas()->hasImage());
        QVERIFY(w->currentFile().isEmpty());
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
    }

    // The zoom a page opens at, and the view settings, which apply at once to the open
    // viewer: each row chooses the next setting in the dialog.
    void zoomDefault_data()
    {
        test::columns<int>({"index"});
        row("none", 0);
        row("fit width", 1);
        row("fit height", 2);
    }
    void zoomDefault()
    {
        QFETCH(int, index);
        const QStringList settings{"NONE", "FITWIDTH", "FITHEIGHT"};
        ViewerHarness h;
        h.view->setZoomDefault(settings[index]);
        auto w = h.openViewer(h.singlePage);
        PageCanvas* c = w->canvas();
        const auto expected = [c](int i) {
            return i == 1   ? ZoomRules::fit(c->width(), 850)
                   : i == 2 ? ZoomRules::fit(c->height(), 1100)
                            : 100.0;
        };
        QCOMPARE(c->zoomPercent(), expected(index));
        w->cmdZoomIn();
        QCOMPARE(c->zoomPercent(), expected(index) * 1.25);
        ViewSettingsDialog dialog(*h.view);
        QCOMPARE(control<QComboBox>(&dialog, "cboZoom")->currentIndex(), index);
        const int chosen = (index + 1) % 3;
        dialog.chooseZoom(chosen);
        QCOMPARE(h.home.settings().get(keys::ZoomDefault), settings[chosen]);
        QCOMPARE(h.view->zoomDefault(), settings[chosen]);
        QCOMPARE(c->zoomPercent(), expected(chosen));
    }

    // Every edit and its undo keep the scan's resolution, which decides the printed size, and
    // a save writes it into the file.
    void editsKeepTheResolution_data()
    {
        test::columns<QString, QSize, QSize>({"edit", "after", "afterUndo"});
        row("crop", "crop", QSize(120, 90), QSize(600, 400));
        row("automatic trim", "trim", QSize(288, 208), QSize(600, 400));
        row("quarter turn", "rotate", QSize(400, 600), QSize(600, 400));
        row("paste", "paste", QSize(90, 70), QSize(600, 400));
    }
    void editsKeepTheResolution()
    {
        auto [edit, after, afterUndo] = fetch<QString, QSize, QSize>("edit", "after", "afterUndo");
        ViewerHarness h;
        // A 300 dpi scan: white around a block that lies on the JPEG's grid, so that the trim
        // finds its edges exactly.
        QImage scan(600, 400, QImage::Format_RGB32);
        scan.fill(Qt::white);
        QPainter(&scan).fillRect(QRect(96, 48, 288, 208), Qt::darkBlue);
        scan.setDotsPerMeterX(qRound(300 / 0.0254));
        scan.setDotsPerMeterY(qRound(300 / 0.0254));
        const QString file = h.outsideFile("first.jpg");
        QVERIFY(scan.save(file, "JPG", 90));
        auto w = h.openViewer(h.named);
        PageCanvas* c = w->canvas();
        const auto apply = [&] {
            if (edit == "crop") {
                const QPoint base = c->viewport()->rect().center() - QPoint(150, 100);
                ViewerHarness::band(c, base, {base + QPoint(120, 90)});
                w->cmdCrop();
            } else if (edit == "trim") {
                w->cmdAutoTrim();
            } else if (edit == "rotate") {
                w->cmdRotateClockwise();
            } else {
                QApplication::clipboard()->setImage(ViewerHarness::picture(after, Qt::red));
                w->mnuEditPaste();
            }
        };
        const auto dpi = [](const QImage& image) {
            return QSize(qRound(image.dotsPerMeterX() * 0.0254),
                         qRound(image.dotsPerMeterY() * 0.0254));
        };
        const QSize scanDpi(300, 300);
        QCOMPARE(dpi(w->pageImage().image()), scanDpi);
        apply();
        QCOMPARE(w->pageImage().image().size(), after);
        QCOMPARE(dpi(w->pageImage().image()), scanDpi);
        w->mnuEditUndo();
        QCOMPARE(w->pageImage().image().size(), afterUndo);
        QCOMPARE(dpi(w->pageImage().image()), scanDpi);
        // Saved after the undo, and saved with the edit: read back from the disk.
        QCOMPARE(w->save(), PageSaver::Result::Saved);
        QCOMPARE(QImage(file).size(), afterUndo);
        QCOMPARE(dpi(QImage(file)), scanDpi);
        apply();
        QCOMPARE(w->save(), PageSaver::Result::Saved);
        QCOMPARE(QImage(file).size(), after);
        QCOMPARE(dpi(QImage(file)), scanDpi);
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
    }

    void opener_data()
    {
        // kind: how the page is stored
        test::columns<QString, QString, bool, bool>({"kind", "message", "viewer", "program"});
        row("page", "page", "", true, false);
        row("missing page", "missing page", "Missing file '%1'.", false, false);
        row("shortcut", "shortcut", "", false, true);
        row("missing shortcut", "missing shortcut", "Missing file '%1'.", false, false);
        row("nameless shortcut", "nameless shortcut", "This shortcut has no filename.", false,
            false);
    }
    void opener()
    {
        auto [kind, message, viewer, program] =
            fetch<QString, QString, bool, bool>("kind", "message", "viewer", "program");
        ViewerHarness h;
        qint32 id = h.singlePage;
        QString path = h.session->paths().computedPagePath(id);
        if (kind == "missing page") {
            QFile::remove(path);
        } else if (kind.contains("shortcut")) {
            path = kind == "nameless shortcut" ? QString() : h.outsideFile("letter.pdf");
            if (kind == "shortcut")
                QVERIFY(QFile(path).open(QIODevice::WriteOnly));
            h.session->db().execute("UPDATE Page SET ShortcutYN = 'Y', Filename = ? "
                                    "WHERE PageId = ?",
                                    {path.isEmpty() ? QVariant() : QVariant(path), id});
        }
        if (!message.isEmpty())
            h.prompter.expect(message.arg(path));
        ViewerPageOpener opener(h.context());
        opener.openPage(id);
        QCoreApplication::processEvents();
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(opener.viewer() != nullptr, viewer);
        QCOMPARE(h.choosers.edited(), program ? QStringList{path} : QStringList());
        if (viewer) {
            QTRY_COMPARE(opener.viewer()->windowTitle(), QString("Page # 1 (ID = %1)").arg(id));
            // A second page goes to the same viewer.
            PageViewWindow* first = opener.viewer();
            opener.openPage(h.twinA);
            QCOMPARE(opener.viewer(), first);
            QTRY_COMPARE(first->location().pageId, h.twinA);
            first->close();
        }
    }
};

QMR_TEST(TestPageViewer)
#include "testpageviewer.moc"
