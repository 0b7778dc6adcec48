#include <QTest>

#include "core/imageresolution.h"
#include "coreharness.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::bigEndian;
using test::columns;
using test::row;

namespace {

// A JPEG head: the start marker, one segment of `marker` holding `data`, then the picture.
QByteArray jpeg(quint8 marker, const QByteArray& data, bool whole = true)
{
    QByteArray b("\xFF\xD8", 2);
    b += char(0xFF);
    b += char(marker);
    b += bigEndian(quint32(data.size() + 2), 2);
    b += data;
    if (!whole)
        return b.left(b.size() - 4); // a file that stops inside the segment
    return b + QByteArray("\xFF\xDA", 2);
}

QByteArray jfif(int units, int x, int y)
{
    return QByteArray("JFIF\0\x01\x02", 7) + char(units) + bigEndian(quint32(x), 2) +
           bigEndian(quint32(y), 2) + QByteArray(2, '\0');
}

QByteArray png(int unit, quint32 x, quint32 y)
{
    const QByteArray phys = bigEndian(x, 4) + bigEndian(y, 4) + char(unit);
    return QByteArray("\x89PNG\r\n\x1A\n", 8) + bigEndian(13, 4) + "IHDR" + QByteArray(13, '\1') +
           bigEndian(0, 4) + bigEndian(9, 4) + "pHYs" + phys + bigEndian(0, 4) + bigEndian(0, 4) +
           "IDAT" + bigEndian(0, 4);
}

} // namespace

class TestImageResolution : public QObject
{
    Q_OBJECT
private slots:
    // The resolution a page file's header states, read from its bytes.
    void header_data()
    {
        columns<QByteArray, bool, int, int>({"head", "known", "x", "y"});
        row("JPEG in dots per inch", jpeg(0xE0, jfif(1, 300, 200)), true, 300, 200);
        row("JPEG in dots per centimetre", jpeg(0xE0, jfif(2, 118, 47)), true, 300, 119);
        row("JPEG stating only the aspect", jpeg(0xE0, jfif(0, 1, 1)), true, 0, 0);
        row("JPEG without a JFIF segment", jpeg(0xE1, jfif(1, 300, 300)), true, 0, 0);
        row("JPEG whose JFIF segment is cut short", jpeg(0xE0, jfif(1, 300, 300), false), true, 0,
            0);
        row("PNG per metre", png(1, 11811, 3937), true, 300, 100);
        row("PNG stating only the aspect", png(0, 2, 1), true, 0, 0);
        // A header read up to the end of the pHYs data (its check sum not read) still counts;
        // one byte short, it does not.
        row("PNG header ending with the pHYs data", png(1, 11811, 3937).left(50), true, 300, 100);
        row("PNG header cut inside the pHYs data", png(1, 11811, 3937).left(49), true, 0, 0);
        row("neither", QByteArray("GIF89a"), false, 0, 0);
    }
    void header()
    {
        auto [head, known, x, y] =
            test::fetch<QByteArray, bool, int, int>("head", "known", "x", "y");
        FileResolution result{7, 7};
        QCOMPARE(ImageResolution::readHeader(head, result), known);
        QCOMPARE(result.x, x);
        QCOMPARE(result.y, y);
    }
};

QMR_TEST(TestImageResolution)
#include "testimageresolution.moc"
