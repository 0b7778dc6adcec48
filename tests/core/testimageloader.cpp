#include <QBuffer>
#include <QImageReader>
#include <QTest>

#include "core/imageloader.h"
#include "tests/support/bigpictures.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using qmr::test::row;
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
