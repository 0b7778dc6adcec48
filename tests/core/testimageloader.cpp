#include <QBuffer>
#include <QImageReader>
#include <QTest>

#include "core/imageloader.h"
#include "coreharness.h"
#include "tests/support/bigpictures.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::BigPictures;
using test::littleEndian;
using test::row;

// Which stated sizes the program refuses to open, before anything is decoded.
class TestImageLoader : public QObject
{
    Q_OBJECT
private slots:
    void checkSize_data()
    {
        // reason: "" when it opens
        test::columns<QByteArray, QString>({"picture", "reason"});
        row("A3 at 600 dpi", BigPictures::jpegStating(BigPictures::kA3), "");
        row("a gigabyte exactly", BigPictures::jpegStating(QSize(16384, 16384)), "");
        row("a row beyond a gigabyte", BigPictures::jpegStating(QSize(16384, 16385)),
            "it is 16384 by 16385 pixels, which would take 1025 MB of memory, and at most "
            "1024 MB may be used");
        row("a side longer than any page", BigPictures::pngStating(QSize(70000, 1)),
            "it is 70000 by 1 pixels, and no side may be longer than 65535 pixels");
        // Found by the fuzzer: its decoding took seconds and 670 MB.
        row("BMP a pixel wide, rows from the top", BigPictures::bmpStating(QSize(1, -167771647)),
            "it is 1 by 167771647 pixels, and no side may be longer than 65535 pixels");
        row("no picture", QByteArray("no picture at all"), "");
    }
    void checkSize()
    {
        auto [picture, reason] = test::fetch<QByteArray, QString>("picture", "reason");
        QBuffer buffer(&picture);
        buffer.open(QIODevice::ReadOnly);
        QImageReader reader(&buffer);
        const Attempt<> sized = ImageLoader::checkSize(reader);
        QCOMPARE(sized ? QString() : sized.why(), reason);
        QCOMPARE(QImageReader::allocationLimit(), ImageLoader::kLimitMb);
    }

    // A BMP whose pixels name colour 245 of a table of one (found by the fuzzer: scaling it
    // read past the table and crashed). It opens with a whole table, and scales.
    void pixelsBeyondTheColourTable()
    {
        const QByteArray rows(40 * 7, '\xF5'); // 39 pixels a row, rounded up to four bytes
        const QByteArray table = littleEndian(0x00FF0000, 4);
        const QByteArray info = littleEndian(40, 4) + littleEndian(39, 4) + littleEndian(7, 4) +
                                littleEndian(1, 2) + littleEndian(8, 2) + littleEndian(0, 4) +
                                littleEndian(quint32(rows.size()), 4) + littleEndian(2835, 4) +
                                littleEndian(2835, 4) + littleEndian(1, 4) + littleEndian(0, 4);
        const quint32 offset = 14 + 40 + quint32(table.size());
        QByteArray bmp = "BM" + littleEndian(offset + quint32(rows.size()), 4) +
                         littleEndian(0, 4) + littleEndian(offset, 4) + info + table + rows;
        QBuffer buffer(&bmp);
        buffer.open(QIODevice::ReadOnly);
        QImageReader reader(&buffer);
        const QImage image = ImageLoader::read(reader).image;
        QCOMPARE(image.size(), QSize(39, 7));
        QCOMPARE(image.format(), QImage::Format_Indexed8);
        QCOMPARE(image.pixelIndex(0, 0), 245);
        QCOMPARE(image.colorCount(), 256);
        QCOMPARE(image.scaled(20, 4, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).size(),
                 QSize(20, 4));
    }
};

QMR_TEST(TestImageLoader)
#include "testimageloader.moc"
