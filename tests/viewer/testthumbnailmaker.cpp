#include <QImage>
#include <QImageReader>
#include <QTemporaryDir>
#include <QTest>

#include "tests/support/testrunner.h"
#include "viewer/thumbnailmaker.h"

using namespace qmr;

class TestThumbnailMaker : public QObject
{
    Q_OBJECT
private slots:
    void tile_data()
    {
        QTest::addColumn<QSize>("page");
        QTest::addColumn<QSize>("reduced");
        QTest::newRow("landscape") << QSize(2000, 1000) << QSize(100, 50);
        QTest::newRow("square") << QSize(500, 500) << QSize(100, 100);
        QTest::newRow("portrait letter") << QSize(850, 1100) << QSize(77, 100);
        QTest::newRow("tiny") << QSize(10, 20) << QSize(50, 100);
        QTest::newRow("a sliver") << QSize(3000, 2) << QSize(100, 1);
    }
    void tile()
    {
        QFETCH(QSize, page);
        QFETCH(QSize, reduced);
        QTemporaryDir dir;
        QImage image(page, QImage::Format_RGB32);
        image.fill(Qt::black);
        const QString src = dir.filePath("page.jpg");
        QVERIFY(image.save(src, "JPG"));
        const QString dst = dir.filePath("Thumbs/0000000/1.jpg");
        QVERIFY(ThumbnailMaker::makeThumbnail(src, dst, dir.path()));
        QImage thumb(dst);
        QCOMPARE(thumb.size(), QSize(100, 100));
        // The page sits in the top left corner; the rest of the tile stays white.
        QVERIFY(qGray(thumb.pixel(0, 0)) < 40);
        if (reduced.width() < 96)
            QVERIFY(qGray(thumb.pixel(99, 0)) > 215);
        if (reduced.height() < 96)
            QVERIFY(qGray(thumb.pixel(0, 99)) > 215);
        QCOMPARE(ThumbnailMaker::reducedSize(page), reduced);
    }

    void goneOrUnreadablePageLeavesNoThumbnail_data()
    {
        QTest::addColumn<QByteArray>("content"); // empty: no page file at all
        QTest::newRow("gone") << QByteArray();
        QTest::newRow("not an image") << QByteArray("this is no picture");
    }
    void goneOrUnreadablePageLeavesNoThumbnail()
    {
        QFETCH(QByteArray, content);
        QTemporaryDir dir;
        const QString src = dir.filePath("page.jpg");
        if (!content.isEmpty()) {
            QFile f(src);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(content);
        }
        const QString dst = dir.filePath("thumb.jpg");
        QImage(10, 10, QImage::Format_RGB32).save(dst, "JPG"); // a stale one
        QVERIFY(!ThumbnailMaker::makeThumbnail(src, dst, dir.path()));
        QVERIFY(!QFile::exists(dst));
    }

    void qualityScale()
    {
        QCOMPARE(qtJpegQuality(10), 90);
        QCOMPARE(qtJpegQuality(50), 50);
        QCOMPARE(qtJpegQuality(0), 100);
        QCOMPARE(qtJpegQuality(100), 1);
        QCOMPARE(qtJpegQuality(-5), 100);
    }
};

QMR_TEST(TestThumbnailMaker)
#include "testthumbnailmaker.moc"
