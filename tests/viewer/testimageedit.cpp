#include <QRandomGenerator>

#include "tests/support/testrunner.h"
#include "viewer/imageedit.h"
#include "viewer/pageimage.h"
#include "viewer/zoomrules.h"
#include "viewerharness.h"

using namespace qmr;
using test::fetch;
using test::row;

namespace {

// An image whose every pixel differs from its neighbours, so that a misplaced one shows.
QImage noise(int w, int h, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(w, h, QImage::Format_RGB32);
    QRandomGenerator random(w * 1000 + h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            image.setPixel(x, y, qRgb(random.bounded(256), random.bounded(256), (x + y) % 256));
    return image.convertToFormat(format);
}

} // namespace

class TestImageEdit : public QObject
{
    Q_OBJECT
private slots:
    void cropRectFromBand_data()
    {
        test::columns<QPoint, QPoint, QRect>({"press", "moved", "rect"});
        row("down and right", QPoint(10, 20), QPoint(50, 80), QRect(10, 20, 40, 60));
        row("up and left", QPoint(50, 80), QPoint(10, 20), QRect(10, 20, 40, 60));
        row("crossed", QPoint(50, 20), QPoint(10, 80), QRect(10, 20, 40, 60));
        // A press without a move: the last move point of an earlier band still counts.
        row("press after an earlier band", QPoint(100, 100), QPoint(30, 40), QRect(30, 40, 70, 60));
        row("a point", QPoint(7, 7), QPoint(7, 7), QRect(7, 7, 0, 0));
    }
    void cropRectFromBand()
    {
        auto [press, moved, rect] = fetch<QPoint, QPoint, QRect>("press", "moved", "rect");
        QCOMPARE(ImageEdit::cropRectFromBand(press, moved), rect);
    }

    // kept: what is left of the image, empty when the crop changes nothing
    void cropAndUndo_data()
    {
        test::columns<int, QRect, QRect>({"format", "rect", "kept"});
        const int colour = QImage::Format_RGB32;
        row("colour, inside", colour, QRect(10, 20, 40, 30), QRect(10, 20, 40, 30));
        row("grey, inside", int(QImage::Format_Grayscale8), QRect(1, 1, 98, 58),
            QRect(1, 1, 98, 58));
        row("reaching past the edge", colour, QRect(60, 40, 100, 100), QRect(60, 40, 40, 20));
        row("a corner", colour, QRect(0, 0, 5, 5), QRect(0, 0, 5, 5));
        row("empty band", colour, QRect(7, 7, 0, 0), QRect());
        row("the whole image", colour, QRect(0, 0, 100, 60), QRect());
        row("outside", colour, QRect(200, 200, 10, 10), QRect());
    }
    void cropAndUndo()
    {
        auto [format, rect, kept] = fetch<int, QRect, QRect>("format", "rect", "kept");
        const QImage original = noise(100, 60, QImage::Format(format));
        QImage image = original;
        ImageEdit edit = ImageEdit::crop(rect);
        QCOMPARE(edit.apply(image), !kept.isEmpty());
        QCOMPARE(image, kept.isEmpty() ? original : original.copy(kept));
        if (kept.isEmpty())
            return;
        // The strips and the crop together hold the image, and no more than it did (grey rows
        // are padded to four bytes, which the crop and its side strips may add on every row).
        const qsizetype padding = format == QImage::Format_RGB32 ? 0 : 9 * original.height();
        QVERIFY(edit.undoBytes() + image.sizeInBytes() >= original.sizeInBytes());
        QVERIFY(edit.undoBytes() + image.sizeInBytes() <= original.sizeInBytes() + padding);
        edit.undo(image);
        QCOMPARE(image, original);
    }

    void rotateNonSquare_data()
    {
        test::columns<int>({"format"});
        row("colour", int(QImage::Format_RGB32));
        row("grey", int(QImage::Format_Grayscale8));
    }
    void rotateNonSquare()
    {
        QFETCH(int, format);
        const QImage original = noise(300, 200, QImage::Format(format));
        QImage image = original;
        ImageEdit edit = ImageEdit::rotateClockwise();
        QVERIFY(edit.apply(image));
        QCOMPARE(image.size(), QSize(200, 300));
        QCOMPARE(image.format(), original.format());
        // Clockwise: the top left corner goes to the top right, the bottom left to the top left.
        QCOMPARE(image.pixel(199, 0), original.pixel(0, 0));
        QCOMPARE(image.pixel(0, 0), original.pixel(0, 199));
        QCOMPARE(image.pixel(0, 299), original.pixel(299, 199));
        QCOMPARE(edit.undoBytes(), 0);
        edit.undo(image);
        QCOMPARE(image, original);
    }

    void autoTrim_data()
    {
        // speck: a light mark in the border, within the threshold
        test::columns<QRgb, QRgb, QRect, QRect>({"border", "speck", "content", "trimmed"});
        row("white margins", qRgb(255, 255, 255), qRgb(200, 200, 200), QRect(50, 40, 100, 80),
            QRect(50, 40, 100, 80));
        row("dark scanner bed", qRgb(20, 20, 20), qRgb(70, 70, 70), QRect(10, 0, 380, 290),
            QRect(10, 0, 380, 290));
        row("no border", qRgb(255, 255, 255), qRgb(255, 255, 255), QRect(0, 0, 400, 300), QRect());
        // The border's colour is the corner's, not its neighbour's.
        row("content next to the corner", qRgb(255, 255, 255), qRgb(200, 200, 200),
            QRect(1, 0, 300, 200), QRect(1, 0, 300, 200));
    }
    void autoTrim()
    {
        auto [border, speck, content, trimmed] =
            fetch<QRgb, QRgb, QRect, QRect>("border", "speck", "content", "trimmed");
        QImage image(400, 300, QImage::Format_RGB32);
        image.fill(border);
        image.setPixel(399, 299, speck);
        image.setPixel(5, 150, speck);
        const QImage inner = noise(content.width(), content.height());
        for (int y = 0; y < content.height(); ++y)
            for (int x = 0; x < content.width(); ++x)
                image.setPixel(content.x() + x, content.y() + y, inner.pixel(x, y));
        // The pixel at the content's corner must not pass for border.
        image.setPixel(content.topLeft(), qRgb(128, 0, 255));
        image.setPixel(content.bottomRight(), qRgb(128, 0, 255));
        QCOMPARE(ImageEdit::autoTrimRect(image, 64), trimmed);
        QCOMPARE(ImageEdit::autoTrimRect(image.convertToFormat(QImage::Format_ARGB32), 64),
                 trimmed);
    }

    void autoTrimOfABlankPage()
    {
        QImage blank(200, 100, QImage::Format_Grayscale8);
        blank.fill(255);
        QCOMPARE(ImageEdit::autoTrimRect(blank, 64), QRect());
        blank.setPixel(120, 30, 0);
        QCOMPARE(ImageEdit::autoTrimRect(blank, 64), QRect(120, 30, 1, 1));
    }

    void undoInOrder()
    {
        const QImage original = noise(120, 80);
        const QImage pasted = noise(33, 44);
        PageImage page;
        page.setImage(original);
        QVERIFY(!page.canUndo());
        QVERIFY(page.apply(ImageEdit::crop(QRect(10, 10, 60, 50))));
        const QImage cropped = page.image();
        QVERIFY(page.apply(ImageEdit::rotateClockwise()));
        QCOMPARE(page.image().size(), QSize(50, 60));
        QVERIFY(!page.apply(ImageEdit::crop(QRect(0, 0, 0, 0))));
        QVERIFY(page.apply(ImageEdit::replace(pasted)));
        QCOMPARE(page.image(), pasted);
        // The image and what undo keeps: the pasted picture and the page's own pixels once.
        QVERIFY(page.memoryBytes() <= original.sizeInBytes() + pasted.sizeInBytes());
        QVERIFY(page.undo());
        QCOMPARE(page.image().size(), QSize(50, 60));
        QVERIFY(page.undo());
        QCOMPARE(page.image(), cropped);
        QVERIFY(page.undo());
        QCOMPARE(page.image(), original);
        QVERIFY(!page.undo());
        QVERIFY(page.apply(ImageEdit::rotateClockwise()));
        page.forgetEdits();
        QVERIFY(!page.canUndo());
        QCOMPARE(page.image().size(), QSize(80, 120));
    }

    void zoomSteps_data()
    {
        // in, out -1: refused
        test::columns<double, double, double>({"percent", "in", "out"});
        row("one to one", 100.0, 125.0, 75.0);
        row("just below the top", 9999.0, 12498.75, 7499.25);
        row("at the top", 10000.0, -1.0, 7500.0);
        row("11 goes to 8.25", 11.0, 13.75, 8.25);
        row("at the bottom", 10.0, 12.5, -1.0);
        row("below the bottom", 8.25, 10.3125, -1.0);
    }
    void zoomSteps()
    {
        auto [percent, in, out] = fetch<double, double, double>("percent", "in", "out");
        QCOMPARE(ZoomRules::zoomIn(percent).value_or(-1), in);
        QCOMPARE(ZoomRules::zoomOut(percent).value_or(-1), out);
    }

    void zoomFit_data()
    {
        test::columns<int, int, double>({"control", "image", "percent"});
        row("letter page in 800 pixels", 800, 2550, 29.0);
        row("a control of the image's width", 1600, 1600, 94.0);
        row("small image, large window", 800, 10, 7500.0);
        row("tiny image: over the top gives 100", 1200, 1, 100.0);
        row("huge image: under the bottom gives 100", 100, 20000, 100.0);
        row("no image", 800, 0, 100.0);
    }
    void zoomFit()
    {
        auto [control, image, percent] = fetch<int, int, double>("control", "image", "percent");
        QCOMPARE(ZoomRules::fit(control, image), percent);
    }
};

QMR_TEST(TestImageEdit)
#include "testimageedit.moc"
