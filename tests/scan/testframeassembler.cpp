#include <QBuffer>
#include <QTest>

#include "scan/frameassembler.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using K = qmr::FrameFormat::Kind;

Q_DECLARE_METATYPE(qmr::FrameFormat::Kind)

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
    // One frame of every kind, or three passes of one band each in any order; lines with
    // padding, handed over in chunks that cut through lines and samples.
    void frames_data()
    {
        test::columns<QList<K>, int, int, bool, int>(
            {"passes", "depth", "padding", "knownLines", "chunk"});
        const QList<K> mono{K::Grey}, rgb{K::Rgb};
        test::row("line art", mono, 1, 0, true, 4096);
        test::row("line art, padded", mono, 1, 3, true, 7);
        test::row("grey", mono, 8, 0, true, 4096);
        test::row("grey, padded", mono, 8, 5, true, 1);
        test::row("grey 16", mono, 16, 2, true, 33);
        test::row("colour", rgb, 8, 0, true, 4096);
        test::row("colour, padded", rgb, 8, 4, true, 11);
        test::row("colour 16", rgb, 16, 6, true, 100);
        test::row("colour 1", rgb, 1, 1, true, 5);
        test::row("grey, length unknown", mono, 8, 1, false, 9);
        test::row("colour, length unknown", rgb, 8, 0, false, 64);
        test::row("three passes", QList<K>{K::Red, K::Green, K::Blue}, 8, 0, true, 4096);
        test::row("three passes, bgr, 16 bits", QList<K>{K::Blue, K::Green, K::Red}, 16, 0, true,
                  4096);
        test::row("three passes, grb, padded", QList<K>{K::Green, K::Red, K::Blue}, 8, 2, true,
                  4096);
    }
    void frames()
    {
        const auto [passes, depth, padding, knownLines, chunk] =
            test::fetch<QList<K>, int, int, bool, int>("passes", "depth", "padding", "knownLines",
                                                       "chunk");
        const int width = 13, height = 7;
        FrameAssembler assembler;
        for (K kind : passes) {
            const FrameFormat format = formatOf(kind, depth, width, height, padding, knownLines);
            QByteArray data = frameBytes(kind, depth, width, height, padding);
            // A device that does not know the length may stop in the middle of a line.
            if (!knownLines)
                data += QByteArray(format.bytesPerLine / 2, '\x11');
            const Attempt<> begun = assembler.beginFrame(format);
            QVERIFY2(begun, begun ? "" : qPrintable(begun.why()));
            for (qsizetype at = 0; at < data.size(); at += chunk)
                assembler.append(data.constData() + at, qMin<qsizetype>(chunk, data.size() - at));
            assembler.endFrame();
        }
        const QImage image = assembler.image(150);
        QCOMPARE(image.size(), QSize(width, height));
        // The resolution goes with the image, for printing at true size.
        QCOMPARE(image.dotsPerMeterX(), qRound(150 / 0.0254));
        QCOMPARE(image.dotsPerMeterY(), qRound(150 / 0.0254));
        const bool isGrey = passes.first() == K::Grey;
        if (isGrey)
            QCOMPARE(image.format(), depth == 1 ? QImage::Format_Mono : QImage::Format_Grayscale8);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const QRgb p = image.pixel(x, y);
                if (isGrey) {
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

    // Formats the page cannot be made of are refused with a reason; so is nothing at all.
    void refused_data()
    {
        test::columns<K, int, int, int>({"kind", "depth", "width", "bytesPerLine"});
        test::row("4 bits", K::Grey, 4, 10, 10);
        test::row("lines shorter than their pixels", K::Rgb, 8, 10, 29);
        test::row("infrared and such", K::Other, 8, 10, 10);
        test::row("no pixels", K::Grey, 8, 0, 0);
    }
    void refused()
    {
        FrameFormat format;
        std::tie(format.kind, format.depth, format.pixelsPerLine, format.bytesPerLine) =
            test::fetch<K, int, int, int>("kind", "depth", "width", "bytesPerLine");
        format.lines = 10;
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
