#include <QBuffer>
#include <QImageReader>
#include <QTest>

#include "core/imageloader.h"
#include "tests/support/bigpictures.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::BigPictures;

// Which stated sizes the program refuses to open, before anything is decoded.
class TestImageLoader : public QObject
{
    Q_OBJECT
private slots:
    void checkSize_data()
    {
        QTest::addColumn<QByteArray>("picture");
        QTest::addColumn<QString>("reason"); // "" when it opens
        QTest::newRow("A3 at 600 dpi") << BigPictures::jpegStating(BigPictures::kA3) << "";
        QTest::newRow("a gigabyte exactly") << BigPictures::jpegStating(QSize(16384, 16384)) << "";
        QTest::newRow("a row beyond a gigabyte")
            << BigPictures::jpegStating(QSize(16384, 16385))
            << "it is 16384 by 16385 pixels, which would take 1025 MB of memory, and at most "
               "1024 MB may be used";
        QTest::newRow("a side longer than any page")
            << BigPictures::pngStating(QSize(70000, 1))
            << "it is 70000 by 1 pixels, and no side may be longer than 65535 pixels";
        // Found by the fuzzer: its decoding took seconds and 670 MB.
        QTest::newRow("BMP a pixel wide, rows from the top")
            << BigPictures::bmpStating(QSize(1, -167771647))
            << "it is 1 by 167771647 pixels, and no side may be longer than 65535 pixels";
        QTest::newRow("no picture") << QByteArray("no picture at all") << "";
    }
    void checkSize()
    {
        QFETCH(QByteArray, picture);
        QFETCH(QString, reason);
        QBuffer buffer(&picture);
        buffer.open(QIODevice::ReadOnly);
        QImageReader reader(&buffer);
        const Attempt<> sized = ImageLoader::checkSize(reader);
        QCOMPARE(sized ? QString() : sized.why(), reason);
        QCOMPARE(QImageReader::allocationLimit(), ImageLoader::kLimitMb);
    }
};

QMR_TEST(TestImageLoader)
#include "testimageloader.moc"
