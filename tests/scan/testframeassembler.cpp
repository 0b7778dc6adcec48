#include <QBuffer>
#include <QTest>

#include "scan/frameassembler.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using K = qmr::FrameFormat::Kind;

Q_DECLARE_METATYPE(qmr::FrameFormat::Kind)
Q_DECLARE_METATYPE(qmr::FrameFormat)

namespace {

// The page every row draws: band 0 (red) of pixel (x, y) is x * 16, band 1 (green) y * 32,
// band 2 (blue) 255 - x * 16; line art is black where x + y is even.
int sample(int band, int x, int y)
{
    return (band == 0 ? x * 16 : band == 1 ? y * 32 : 255 - x * 16) & 0xff;
}
int grey(int x, int y)
{
    return qGray(sample(0, x, y), sample(1, x, y), sample(2, x, y));
}
QList<int> bandsOf(K kind)
{
    return kind == K::Rgb     ? QList<int>{0, 1, 2}
           : kind == K::Red   ? QList<int>{0}
           : kind == K::Green ? QList<int>{1}
           : kind == K::Blue  ? QList<int>{2}
                              : QList<int>{};
}

// The bytes of one frame, `padding` bytes of 0xEE after each line.
QByteArray frameBytes(K kind, int depth, int width, int height, int padding)
{
    const QList<int> bands = bandsOf(kind);
    const int channels = qMax(1, int(bands.size()));
    QByteArray data;
    for (int y = 0; y < height; ++y) {
        QByteArray line(depth == 1 ? (width * channels + 7) / 8 : 0, '\0');
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < channels; ++c) {
                const int s = bands.isEmpty() ? grey(x, y) : sample(bands[c], x, y);
                if (depth == 1) {
                    // Grey: 1 is black. Colour: 1 is full intensity of the band.
                    const int bit = x * channels + c;
                    if (bands.isEmpty() ? (x + y) % 2 == 0 : s >= 128)
                        line[bit / 8] = char(line[bit / 8] | (0x80 >> (bit % 8)));
                } else if (depth == 16) {
                    // The device's sample in the machine's order: the high byte carries it.
                    const quint16 v = quint16(s << 8 | 0x5a);
                    line.append(reinterpret_cast<const char*>(&v), 2);
                } else {
                    line.append(char(s));
                }
            }
        data += line + QByteArray(padding, '\xEE');
    }
    return data;
}

FrameFormat formatOf(K kind, int depth, int width, int height, int padding, bool knownLines = true)
{
    FrameFormat f;
    f.kind = kind;
    f.depth = depth;
    f.pixelsPerLine = width;
    f.bytesPerLine = (width * (kind == K::Rgb ? 3 : 1) * depth + 7) / 8 + padding;
    f.lines = knownLines ? height : -1;
    return f;
}

} // namespace

class TestFrameAssembler : public QObject
{
    Q_OBJECT
private slots:
    void frames_data()
    {
        QTest::addColumn<K>("kind");
        QTest::addColumn<int>("depth");
        QTest::addColumn<int>("padding");
        QTest::addColumn<bool>("knownLines");
        QTest::addColumn<int>("chunk"); // bytes handed over at a time
        QTest::newRow("line art") << K::Grey << 1 << 0 << true << 4096;
        QTest::newRow("line art, padded") << K::Grey << 1 << 3 << true << 7;
        QTest::newRow("grey") << K::Grey << 8 << 0 << true << 4096;
        QTest::newRow("grey, padded") << K::Grey << 8 << 5 << true << 1;
        QTest::newRow("grey 16") << K::Grey << 16 << 2 << true << 33;
        QTest::newRow("colour") << K::Rgb << 8 << 0 << true << 4096;
        QTest::newRow("colour, padded") << K::Rgb << 8 << 4 << true << 11;
        QTest::newRow("colour 16") << K::Rgb << 16 << 6 << true << 100;
        QTest::newRow("colour 1") << K::Rgb << 1 << 1 << true << 5;
        QTest::newRow("grey, length unknown") << K::Grey << 8 << 1 << false << 9;
        QTest::newRow("colour, length unknown") << K::Rgb << 8 << 0 << false << 64;
    }
    void frames()
    {
        QFETCH(K, kind);
        QFETCH(int, depth);
        QFETCH(int, padding);
        QFETCH(bool, knownLines);
        QFETCH(int, chunk);
        const int width = 13, height = 7;
        const FrameFormat format = formatOf(kind, depth, width, height, padding, knownLines);
        QByteArray data = frameBytes(kind, depth, width, height, padding);
        // A device that does not know the length may stop in the middle of a line.
        if (!knownLines)
            data += QByteArray(format.bytesPerLine / 2, '\x11');
        FrameAssembler assembler;
        const Attempt<> begun = assembler.beginFrame(format);
        QVERIFY2(begun, begun ? "" : qPrintable(begun.why()));
        for (qsizetype at = 0; at < data.size(); at += chunk)
            assembler.append(data.constData() + at, qMin<qsizetype>(chunk, data.size() - at));
        assembler.endFrame();
        const QImage image = assembler.image(150);
        QCOMPARE(image.size(), QSize(width, height));
        // The resolution goes with the image, for printing at true size.
        QCOMPARE(image.dotsPerMeterX(), qRound(150 / 0.0254));
        QCOMPARE(image.dotsPerMeterY(), qRound(150 / 0.0254));
        if (kind == K::Grey)
            QCOMPARE(image.format(), depth == 1 ? QImage::Format_Mono : QImage::Format_Grayscale8);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const QRgb p = image.pixel(x, y);
                if (kind == K::Grey) {
                    QCOMPARE(qGray(p), depth > 1 ? grey(x, y) : (x + y) % 2 == 0 ? 0 : 255);
                    continue;
                }
                const auto expect = [&](int band) {
                    const int s = sample(band, x, y);
                    return depth > 1 ? s : s >= 128 ? 255 : 0;
                };
                QCOMPARE(p & 0xffffff, uint(qRgb(expect(0), expect(1), expect(2))) & 0xffffff);
            }
    }

    void threePass_data()
    {
        QTest::addColumn<int>("depth");
        QTest::addColumn<QString>("order");
        QTest::addColumn<int>("padding");
        QTest::newRow("rgb") << 8 << "RGB" << 0;
        QTest::newRow("bgr, 16 bits") << 16 << "BGR" << 0;
        QTest::newRow("grb, padded") << 8 << "GRB" << 2;
    }
    void threePass()
    {
        QFETCH(int, depth);
        QFETCH(QString, order);
        QFETCH(int, padding);
        const int width = 9, height = 5;
        FrameAssembler assembler;
        for (QChar band : order) {
            const K kind = band == 'R' ? K::Red : band == 'G' ? K::Green : K::Blue;
            QVERIFY(assembler.beginFrame(formatOf(kind, depth, width, height, padding)));
            const QByteArray data = frameBytes(kind, depth, width, height, padding);
            assembler.append(data.constData(), data.size());
            assembler.endFrame();
        }
        const QImage image = assembler.image(300);
        QCOMPARE(image.size(), QSize(width, height));
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                QCOMPARE(image.pixel(x, y),
                         qRgb(sample(0, x, y), sample(1, x, y), sample(2, x, y)));
    }

    // Formats the page cannot be made of are refused with a reason; so is nothing at all.
    void refused_data()
    {
        QTest::addColumn<FrameFormat>("format");
        FrameFormat f = formatOf(K::Grey, 8, 10, 10, 0);
        f.depth = 4;
        QTest::newRow("4 bits") << f;
        f = formatOf(K::Rgb, 8, 10, 10, 0);
        f.bytesPerLine = 29;
        QTest::newRow("lines shorter than their pixels") << f;
        f = formatOf(K::Grey, 8, 10, 10, 0);
        f.kind = K::Other;
        QTest::newRow("infrared and such") << f;
        QTest::newRow("no pixels") << formatOf(K::Grey, 8, 0, 10, 0);
    }
    void refused()
    {
        QFETCH(FrameFormat, format);
        FrameAssembler assembler;
        const Attempt<> begun = assembler.beginFrame(format);
        QVERIFY(!begun);
        QVERIFY(!begun.why().isEmpty());
    }

    void nothingCame()
    {
        FrameAssembler assembler;
        QVERIFY(assembler.image(150).isNull());
        QVERIFY(assembler.beginFrame(formatOf(K::Grey, 8, 10, 10, 0)));
        assembler.append("abc", 3); // less than one line
        assembler.endFrame();
        QVERIFY(assembler.image(150).isNull());
    }

    void jpegFrame()
    {
        QImage page(40, 30, QImage::Format_RGB32);
        page.fill(qRgb(200, 30, 40));
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QVERIFY(page.save(&buffer, "JPEG", 95));
        FrameFormat format;
        format.kind = K::Jpeg;
        FrameAssembler assembler;
        QVERIFY(assembler.beginFrame(format));
        assembler.append(bytes.constData(), bytes.size());
        assembler.endFrame();
        const QImage image = assembler.image(200);
        QCOMPARE(image.size(), QSize(40, 30));
        QVERIFY(qAbs(qRed(image.pixel(20, 15)) - 200) < 8);
        QCOMPARE(image.dotsPerMeterX(), qRound(200 / 0.0254));
    }
};

QMR_TEST(TestFrameAssembler)
#include "testframeassembler.moc"
