#include <QImage>
#include <QTemporaryDir>
#include <QTest>

#include "core/imageresolution.h"
#include "core/settings.h"
#include "print/printscale.h"
#include "printharness.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;

class TestPrintScale : public QObject
{
    Q_OBJECT
private slots:
    void printSize_data()
    {
        // drawn: width x height in printer dots.
        test::columns<QSize, int, int, int, int, double, double, QSize>(
            {"pixels", "fileX", "fileY", "printer", "scanDpi", "widthPct", "heightPct", "drawn"});

        const QSize letter(1700, 2200);
        test::row("200 dpi page on a 600 dpi printer", letter, 200, 200, 600, 150, 100.0, 100.0,
                  QSize(4845, 6270));
        // The horizontal resolution scales the height, the vertical one the width.
        test::row("resolutions crossed", letter, 100, 200, 600, 150, 100.0, 100.0,
                  QSize(4845, 12540));
        test::row("349 is believed", QSize(349, 349), 349, 349, 600, 150, 100.0, 100.0,
                  QSize(570, 570));
        test::row("600 dpi file takes the scan resolution", letter, 600, 600, 600, 150, 100.0,
                  100.0, QSize(6460, 8360));
        test::row("350 takes the scan resolution", letter, 350, 350, 600, 300, 100.0, 100.0,
                  QSize(3230, 4180));
        test::row("one axis of 350 or more is enough", letter, 200, 400, 600, 150, 100.0, 100.0,
                  QSize(6460, 8360));
        test::row("no resolution stored takes the scan resolution", letter, 0, 0, 600, 150, 100.0,
                  100.0, QSize(6460, 8360));
        test::row("one axis stated, the other not", letter, 200, 0, 600, 150, 100.0, 100.0,
                  QSize(6460, 8360));
        test::row("percentages scale after the 95%", letter, 200, 200, 600, 150, 50.0, 200.0,
                  QSize(2423, 12540));
        // 600 / 11 * 3 = 163.64 is rounded to 164 before the 95% (155.8 -> 156), not after
        // (155.45 -> 155).
        test::row("rounded at every step", QSize(3, 3), 11, 11, 600, 150, 100.0, 100.0,
                  QSize(156, 156));
        test::row("printer of 1200 dpi", QSize(850, 1100), 100, 100, 1200, 150, 100.0, 100.0,
                  QSize(9690, 12540));
    }
    void printSize()
    {
        QFETCH(QSize, pixels);
        QFETCH(int, fileX);
        QFETCH(int, fileY);
        QFETCH(int, printer);
        QFETCH(int, scanDpi);
        QFETCH(double, widthPct);
        QFETCH(double, heightPct);
        QFETCH(QSize, drawn);
        const PrintScaleSettings settings{scanDpi, widthPct, heightPct};
        QCOMPARE(PrintScale::printSize(pixels, fileX, fileY, printer, printer, settings), drawn);
    }

    void percentage_data()
    {
        test::columns<QString, double>({"stored", "used"});
        const QList<std::pair<const char*, double>> rows = {
            {"5", 100},   {"9.9", 100},  {"10", 10}, {"150", 150}, {"200", 200},
            {"201", 100}, {"wide", 100}, {"", 100},  {" 80 ", 80}};
        for (const auto& [stored, used] : rows)
            test::row(qPrintable("'" + QString(stored) + "'"), stored, used);
    }
    void percentage()
    {
        QFETCH(QString, stored);
        QFETCH(double, used);
        QCOMPARE(PrintScale::percentage(stored), used);
    }

    void settingsFeedTheScale_data()
    {
        // keyValues: key, value, key, value...
        test::columns<QStringList, int, double, double>(
            {"keyValues", "scanDpi", "widthPct", "heightPct"});
        test::row("nothing stored: documents at 150, 100%", QStringList{}, 150, 100.0, 100.0);
        test::row("last scan a picture", QStringList{"TWAINImageType", "picture"}, 300, 100.0,
                  100.0);
        test::row("a camera counts as a picture",
                  QStringList{"TWAINImageType", "camera", "PicDPIOverride", "240"}, 240, 100.0,
                  100.0);
        test::row("document resolution of the settings",
                  QStringList{"TWAINImageType", "document", "DocDPIOverride", "200"}, 200, 100.0,
                  100.0);
        test::row("a resolution of 0 falls back", QStringList{"DocDPIOverride", "0"}, 150, 100.0,
                  100.0);
        test::row("a resolution that is no number falls back",
                  QStringList{"PicDPIOverride", "high", "TWAINImageType", "picture"}, 300, 100.0,
                  100.0);
        test::row("percentages, 5 taken as 100",
                  QStringList{"PrintWidthPct", "5", "PrintHeightPct", "200"}, 150, 100.0, 200.0);
    }
    void settingsFeedTheScale()
    {
        QFETCH(QStringList, keyValues);
        QFETCH(int, scanDpi);
        QFETCH(double, widthPct);
        QFETCH(double, heightPct);
        test::TestHome home;
        for (qsizetype i = 0; i + 1 < keyValues.size(); i += 2)
            home.settings().saveSetting(keyValues.at(i), keyValues.at(i + 1));
        const PrintScaleSettings s = PrintScale::fromSettings(home.settings());
        QCOMPARE(QList<double>({double(s.scanDpi), s.widthPct, s.heightPct}),
                 QList<double>({double(scanDpi), widthPct, heightPct}));
    }

    void fileResolution_data()
    {
        test::columns<QString, int, int, int, int>({"format", "dpiX", "dpiY", "readX", "readY"});
        test::row("JPEG 200", "JPG", 200, 200, 200, 200);
        test::row("JPEG 300 by 150", "JPG", 300, 150, 300, 150);
        test::row("JPEG without resolution", "JPG", 0, 0, 0, 0);
        test::row("JPEG 96, a screen's value, is still stated", "JPG", 96, 96, 96, 96);
        // 79 per centimetre is 200.66 per inch.
        test::row("JPEG in dots per centimetre", "JPG-cm", 79, 79, 201, 201);
        test::row("PNG 600", "PNG", 600, 600, 600, 600);
    }
    void fileResolution()
    {
        QFETCH(QString, format);
        QFETCH(int, dpiX);
        QFETCH(int, dpiY);
        QFETCH(int, readX);
        QFETCH(int, readY);
        QTemporaryDir dir;
        const QString path = dir.filePath("page." + format.left(3).toLower());
        if (format == "JPG") {
            QVERIFY(test::writePicture(path, QSize(40, 30), dpiX, dpiY));
        } else if (format == "JPG-cm") {
            QVERIFY(test::writePicture(path, QSize(40, 30), 254, 254));
            QVERIFY(test::setJfifDensity(path, 2, quint8(dpiX), quint8(dpiY)));
        } else {
            QImage image(40, 30, QImage::Format_RGB32);
            image.fill(Qt::gray);
            image.setDotsPerMeterX(qRound(dpiX / 0.0254));
            image.setDotsPerMeterY(qRound(dpiY / 0.0254));
            QVERIFY(image.save(path, qPrintable(format)));
        }
        const QImage decoded(path);
        QVERIFY(!decoded.isNull());
        const FileResolution r = ImageResolution::read(path, decoded);
        QCOMPARE(QPair(r.x, r.y), QPair(readX, readY));
    }
};

QMR_TEST(TestPrintScale)
#include "testprintscale.moc"
