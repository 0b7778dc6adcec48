#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include "filing/thumbnailmaker.h"
#include "tests/support/bigpictures.h"
#include "tests/support/testrunner.h"

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
        QTest::newRow("JPEG too large to open") << test::BigPictures::bomb();
        QTest::newRow("PNG too large to open")
            << test::BigPictures::pngStating(QSize(60000, 60000));
        QTest::newRow("BMP too tall to open") << test::BigPictures::bmpStating(QSize(1, 200000));
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

    // A thumbnail that cannot be put in place is made again when it is missed; the reason
    // goes to the log, and nothing is left aside.
    void oneThatCannotBePutInPlaceIsLogged()
    {
        QTemporaryDir dir;
        QImage page(300, 200, QImage::Format_RGB32);
        page.fill(Qt::gray);
        const QString src = dir.filePath("page.jpg");
        QVERIFY(page.save(src, "JPG"));
        const QString dst = dir.filePath("Thumbs/1.jpg");
        QVERIFY(QDir().mkpath(dst + "/in the way"));
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression("^No thumbnail written to .*/Thumbs/1\\.jpg: "));
        QVERIFY(!ThumbnailMaker::makeThumbnail(src, dst, dir.path()));
        QCOMPARE(QDir(dir.filePath("Thumbs")).entryList(QDir::Files | QDir::Hidden).size(), 0);
    }

    void everyWayToTheSameTile_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QSize>("page");
        QTest::newRow("JPEG scan") << "JPG" << QSize(1275, 1650);
        QTest::newRow("BMP") << "BMP" << QSize(300, 200);
        // Larger than is read whole: the decoder reads the file itself.
        QTest::newRow("BMP beyond the whole read") << "BMP" << QSize(2400, 2400);
    }
    void everyWayToTheSameTile()
    {
        QFETCH(QString, format);
        QFETCH(QSize, page);
        QTemporaryDir dir;
        // Left half dark, right half light: a reduction that loses its way shows.
        QImage image(page, QImage::Format_RGB32);
        image.fill(Qt::white);
        for (int y = 0; y < page.height(); ++y)
            for (int x = 0; x < page.width() / 2; ++x)
                image.setPixel(x, y, qRgb(20, 40, 90));
        const QString src = dir.filePath("page." + format.toLower());
        QVERIFY(image.save(src, qPrintable(format)));
        QCOMPARE(QFileInfo(src).size() > ThumbnailMaker::kReadWhole,
                 QByteArray(QTest::currentDataTag()).contains("beyond"));
        QFile file(src);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray contents = file.readAll();

        QImage fromFile;
        QImage fromData;
        QVERIFY(ThumbnailMaker::makeThumbnail(src, dir.filePath("a.jpg"), dir.path(), &fromFile));
        QVERIFY(ThumbnailMaker::makeThumbnailFromData(contents, dir.filePath("b.jpg"), dir.path(),
                                                      &fromData));
        QCOMPARE(fromFile, fromData);
        // The tile handed back is the one written.
        QCOMPARE(QImage(dir.filePath("a.jpg")).size(), fromFile.size());
        const QSize reduced = ThumbnailMaker::reducedSize(page);
        QCOMPARE(ThumbnailMaker::reducedImage(src).size(), reduced);
        QVERIFY(qGray(fromFile.pixel(reduced.width() / 4, reduced.height() / 2)) < 80);
        QVERIFY(qGray(fromFile.pixel(reduced.width() * 3 / 4, reduced.height() / 2)) > 200);
        // Contents that are no picture make nothing.
        QVERIFY(!ThumbnailMaker::makeThumbnailFromData("not a picture", dir.filePath("c.jpg")));
        QVERIFY(!QFile::exists(dir.filePath("c.jpg")));
    }

    // A photo whose camera notes that it was taken turned: its tile has the turned shape
    // and the picture the right way up, not squeezed into the stored shape.
    void turnedByItsCameraKeepsItsShape()
    {
        QTemporaryDir dir;
        // Stored 400x200, left half dark; turned a quarter clockwise, the dark half is on top.
        QImage image(400, 200, QImage::Format_RGB32);
        image.fill(Qt::white);
        for (int y = 0; y < 200; ++y)
            for (int x = 0; x < 200; ++x)
                image.setPixel(x, y, qRgb(20, 40, 90));
        QBuffer plain;
        plain.open(QIODevice::WriteOnly);
        QVERIFY(image.save(&plain, "JPG"));
        // An APP1 segment with one orientation entry (6: turn a quarter clockwise) after SOI.
        const QByteArray exif = QByteArray::fromHex("FFE10022"
                                                    "457869660000"
                                                    "4D4D002A00000008"
                                                    "0001"
                                                    "011200030000000100060000"
                                                    "00000000");
        const QByteArray turned = plain.data().left(2) + exif + plain.data().mid(2);
        const QString src = dir.filePath("photo.jpg");
        QFile file(src);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(turned) == turned.size());
        file.close();
        QCOMPARE(QImageReader(src).transformation(), QImageIOHandler::TransformationRotate90);

        const QImage reduced = ThumbnailMaker::reducedImage(src);
        QCOMPARE(reduced.size(), QSize(50, 100));
        QVERIFY(qGray(reduced.pixel(25, 20)) < 80);
        QVERIFY(qGray(reduced.pixel(25, 80)) > 200);
    }

    void qualityScale()
    {
        for (const auto& [stored, qt] :
             {std::pair{10, 90}, {50, 50}, {0, 100}, {100, 1}, {-5, 100}})
            QCOMPARE(qtJpegQuality(stored), qt);
    }
};

QMR_TEST(TestThumbnailMaker)
#include "testthumbnailmaker.moc"
