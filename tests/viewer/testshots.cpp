#include "tests/support/shots.h"
#include "tests/support/testrunner.h"
#include "viewer/viewsettingsdialog.h"
#include "viewerharness.h"

using namespace qmr;

namespace {

// A typed letter as a scanner gives it: a grey-white sheet with a heading and lines of text.
QImage letter(const QSize& size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor(248, 247, 242));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QFont font("DejaVu Serif");
    font.setPixelSize(size.width() / 28);
    font.setBold(true);
    p.setFont(font);
    p.setPen(QColor(30, 30, 60));
    const int margin = size.width() / 10;
    p.drawText(margin, size.height() / 9, "Northwind Savings Bank");
    font.setBold(false);
    font.setPixelSize(size.width() / 48);
    p.setFont(font);
    p.drawText(margin, size.height() / 9 + size.width() / 20, "Statement of account, March 2026");
    int y = size.height() / 4;
    const QStringList words = {
        "Opening balance", "Deposit",        "Card payment", "Transfer",
        "Interest",        "Standing order", "Fee",          "Closing balance"};
    for (int i = 0; y < size.height() * 4 / 5; ++i, y += size.height() / 30) {
        p.drawText(margin, y,
                   QString("%1/03/2026   %2")
                       .arg(i % 28 + 1, 2, 10, QChar('0'))
                       .arg(words[i % words.size()]));
        p.drawText(size.width() - margin - size.width() / 8, y,
                   QString::number(120.5 + i * 37.25, 'f', 2));
    }
    p.setPen(QPen(QColor(30, 30, 60), 2));
    p.drawLine(margin, size.height() / 5, size.width() - margin, size.height() / 5);
    return image;
}

} // namespace

class Shots : public QObject
{
    Q_OBJECT
private slots:
    // The view settings and a named page first, while the zoom is the one a home starts with.
    void viewer()
    {
        test::ViewerHarness h;
        ViewSettingsDialog dialog(*h.view);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        test::saveShot(&dialog, "dialog-view-settings");

        QVERIFY(letter({1275, 1650}).save(h.outsideFile("first.jpg"), "JPG", 85));
        PageViewWindow& named = h.newViewer();
        named.resize(980, 720);
        named.openPage(h.named);
        QVERIFY(QTest::qWaitForWindowExposed(&named));
        QTRY_VERIFY(named.canvas()->hasImage());
        named.cmdZoomFitHeight();
        test::saveShot(&named, "viewer-named-fit-height");

        QVERIFY(letter({2550, 3300})
                    .save(h.session->paths().computedPagePath(h.singlePage), "JPG", 85));
        h.view->setZoomDefault("FITWIDTH");
        PageViewWindow& w = h.newViewer();
        w.resize(980, 720);
        w.openPage(h.singlePage);
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        QTRY_VERIFY(w.canvas()->hasImage());
        test::saveShot(&w, "viewer-fit-width");

        w.cmdZoomIn();
        w.cmdZoomIn();
        const QPoint from = w.canvas()->viewport()->rect().center() - QPoint(220, 120);
        test::ViewerHarness::band(w.canvas(), from,
                                  {from + QPoint(200, 90), from + QPoint(420, 200)});
        test::saveShot(&w, "viewer-zoomed-band");

        w.cmdCrop();
        test::saveShot(&w, "viewer-cropped");

        // Saved: the status line says so.
        h.prompter.expect("No filename entered.  Do you want to auto-assign a filename?",
                          Prompter::Answer::Yes);
        QCOMPARE(w.save(), PageSaver::Result::Saved);
        test::saveShot(&w, "viewer-saved");
    }
};

QMR_TEST(Shots)
#include "testshots.moc"
