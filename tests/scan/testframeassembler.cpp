#include <QBuffer>
#include <QTest>
#include <cstring>

#include "scan/frameassembler.h"
#include "tests/support/testrunner.h"

using namespace qmr;

Q_DECLARE_METATYPE(qmr::FrameFormat::Kind)
Q_DECLARE_METATYPE(qmr::FrameFormat)

namespace {

// The page every row draws: pixel (x, y) has red x * 16, green y * 32, blue 255 - x * 16, and
// line art is black where x + y is even.
int red(int x, int)
{
    return (x * 16) & 0xff;
}
int green(int, int y)
{
    return (y * 32) & 0xff;
}
int blue(int x, int)
{
    return (255 - x * 16) & 0xff;
}
bool black(int x, int y)
{
    return (x + y) % 2 == 0;
}

void put16(QByteArray& line, int value8)
{
    // The device's 16-bit sample in the machine's order: the high byte carries the value.
    const quint16 v = quint16(value8 << 8 | 0x5a);
    line.append(reinterpret_cast<const char*>(&v), 2);
}

// The bytes of one frame, `padding` bytes of 0xEE after each line.
QByteArray frameBytes(FrameFormat::Kind kind, int depth, int width, int height, int padding)
{
    QByteArray data;
    for (int y = 0; y < height; ++y) {
        QByteArray line;
        if (depth == 1) {
            const int channels = kind == FrameFormat::Kind::Rgb ? 3 : 1;
            QByteArray bits((width * channels + 7) / 8, '\0');
            for (int x = 0; x < width; ++x)
                for (int c = 0; c < channels; ++c) {
                    // Grey: 1 is black. Colour: 1 is full intensity of the band.
                    const bool on = kind == FrameFormat::Kind::Grey
                                        ? black(x, y)
                                        : (c == 0   ? red(x, y)
                                           : c == 1 ? green(x, y)
                                                    : blue(x, y)) >= 128;
                    const int bit = x * channels + c;
                    if (on)
                        bits[bit / 8] = char(bits[bit / 8] | (0x80 >> (bit % 8)));
                }
            line = bits;
        } else {
            for (int x = 0; x < width; ++x) {
                QList<int> samples;
                switch (kind) {
                case FrameFormat::Kind::Rgb:
                    samples = {red(x, y), green(x, y), blue(x, y)};
                    break;
                case FrameFormat::Kind::Red:
                    samples = {red(x, y)};
                    break;
                case FrameFormat::Kind::Green:
                    samples = {green(x, y)};
                    break;
                case FrameFormat::Kind::Blue:
                    samples = {blue(x, y)};
                    break;
                default:
                    samples = {qGray(red(x, y), green(x, y), blue(x, y))};
                    break;
                }
                for (int s : samples) {
                    if (depth == 16)
                        put16(line, s);
                    else
                        line.append(char(s));
                }
            }
        }
        data += line + QByteArray(padding, '\xEE');
    }
    return data;
}

FrameFormat formatOf(FrameFormat::Kind kind, int depth, int width, int height, int padding,
                     bool knownLines = true)
{
    const int channels = kind == FrameFormat::Kind::Rgb ? 3 : 1;
    FrameFormat f;
    f.kind = kind;
    f.depth = depth;
    f.pixelsPerLine = width;
    f.bytesPerLine = (width * channels * depth + 7) / 8 + padding;
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
        QTest::addColumn<FrameFormat::Kind>("kind");
        QTest::addColumn<int>("depth");
        QTest::addColumn<int>("padding");
        QTest::addColumn<bool>("knownLines");
        QTest::addColumn<int>("chunk"); // bytes handed over at a time
        using K = FrameFormat::Kind;
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
        QFETCH(FrameFormat::Kind, kind);
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
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const QRgb p = image.pixel(x, y);
                if (kind == FrameFormat::Kind::Grey && depth == 1) {
                    QCOMPARE(image.format(), QImage::Format_Mono);
                    QCOMPARE(qGray(p), black(x, y) ? 0 : 255);
                } else if (kind == FrameFormat::Kind::Grey) {
                    QCOMPARE(image.format(), QImage::Format_Grayscale8);
                    QCOMPARE(qGray(p), qGray(red(x, y), green(x, y), blue(x, y)));
                } else if (depth == 1) {
                    QCOMPARE(qRed(p), red(x, y) >= 128 ? 255 : 0);
                    QCOMPARE(qGreen(p), green(x, y) >= 128 ? 255 : 0);
                    QCOMPARE(qBlue(p), blue(x, y) >= 128 ? 255 : 0);
                } else {
                    QCOMPARE(qRed(p), red(x, y));
                    QCOMPARE(qGreen(p), green(x, y));
                    QCOMPARE(qBlue(p), blue(x, y));
                }
            }
    }

    void threePass_data()
    {
        QTest::addColumn<int>("depth");
        QTest::addColumn<QString>("order");
        QTest::newRow("rgb") << 8 << "RGB";
        QTest::newRow("bgr, 16 bits") << 16 << "BGR";
        QTest::newRow("grb, padded") << 8 << "GRB";
    }
    void threePass()
    {
        QFETCH(int, depth);
        QFETCH(QString, order);
        const int width = 9, height = 5;
        FrameAssembler assembler;
        for (QChar band : order) {
            const FrameFormat::Kind kind = band == 'R'   ? FrameFormat::Kind::Red
                                           : band == 'G' ? FrameFormat::Kind::Green
                                                         : FrameFormat::Kind::Blue;
            const int padding = order == "GRB" ? 2 : 0;
            QVERIFY(assembler.beginFrame(formatOf(kind, depth, width, height, padding)));
            const QByteArray data = frameBytes(kind, depth, width, height, padding);
            assembler.append(data.constData(), data.size());
            assembler.endFrame();
        }
        const QImage image = assembler.image(300);
        QCOMPARE(image.size(), QSize(width, height));
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                QCOMPARE(image.pixel(x, y), qRgb(red(x, y), green(x, y), blue(x, y)));
    }

    void refused_data()
    {
        QTest::addColumn<FrameFormat>("format");
        FrameFormat depth4 = formatOf(FrameFormat::Kind::Grey, 8, 10, 10, 0);
        depth4.depth = 4;
        QTest::newRow("4 bits") << depth4;
        FrameFormat shortLines = formatOf(FrameFormat::Kind::Rgb, 8, 10, 10, 0);
        shortLines.bytesPerLine = 29;
        QTest::newRow("lines shorter than their pixels") << shortLines;
        FrameFormat other = formatOf(FrameFormat::Kind::Grey, 8, 10, 10, 0);
        other.kind = FrameFormat::Kind::Other;
        QTest::newRow("infrared and such") << other;
        FrameFormat empty = formatOf(FrameFormat::Kind::Grey, 8, 0, 10, 0);
        QTest::newRow("no pixels") << empty;
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
        QVERIFY(assembler.beginFrame(formatOf(FrameFormat::Kind::Grey, 8, 10, 10, 0)));
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
        format.kind = FrameFormat::Kind::Jpeg;
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
