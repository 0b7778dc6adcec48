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

        // A 600 dpi printer, scans at 150, 100% both ways unless a row says otherwise.
        const auto row = [](const char* tag, QSize pixels, int fileX, int fileY, QSize drawn,
                            int scanDpi = 150, double widthPct = 100, double heightPct = 100,
                            int printer = 600) {
            test::row(tag, pixels, fileX, fileY, printer, scanDpi, widthPct, heightPct, drawn);
        };
        const QSize letter(1700, 2200);
        row("200 dpi page on a 600 dpi printer", letter, 200, 200, QSize(4845, 6270));
        // The horizontal resolution scales the height, the vertical one the width.
        row("resolutions crossed", letter, 100, 200, QSize(4845, 12540));
        row("349 is believed", QSize(349, 349), 349, 349, QSize(570, 570));
        row("600 dpi file takes the scan resolution", letter, 600, 600, QSize(6460, 8360));
        row("350 takes the scan resolution", letter, 350, 350, QSize(3230, 4180), 300);
        row("one axis of 350 or more is enough", letter, 200, 400, QSize(6460, 8360));
        row("no resolution stored takes the scan resolution", letter, 0, 0, QSize(6460, 8360));
        row("one axis stated, the other not", letter, 200, 0, QSize(6460, 8360));
        row("percentages scale after the 95%", letter, 200, 200, QSize(2423, 12540), 150, 50, 200);
        // 600 / 11 * 3 = 163.64 is rounded to 164 before the 95% (155.8 -> 156), not after
        // (155.45 -> 155).
        row("rounded at every step", QSize(3, 3), 11, 11, QSize(156, 156));
        row("printer of 1200 dpi", QSize(850, 1100), 100, 100, QSize(9690, 12540), 150, 100, 100,
            1200);
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
        const PrintScaleSettings settings{scanDpi, widthPct, heightPct};
        QTEST(PrintScale::printSize(pixels, fileX, fileY, printer, printer, settings), "drawn");
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
        QTEST(PrintScale::percentage(stored), "used");
    }

    void settingsFeedTheScale_data()
    {
        // stored: key=value, ...
        // scale: scan resolution, width %, height %.
        test::columns<QStringList, QList<double>>({"stored", "scale"});
        const auto row = [](const char* tag, const char* stored, int scanDpi,
                            double heightPct = 100) {
            test::row(tag, QString(stored).split(',', Qt::SkipEmptyParts),
                      QList<double>{double(scanDpi), 100, heightPct});
        };
        row("nothing stored: documents at 150, 100%", "", 150);
        row("last scan a picture", "TWAINImageType=picture", 300);
        row("a camera counts as a picture", "TWAINImageType=camera,PicDPIOverride=240", 240);
        row("document resolution of the settings", "TWAINImageType=document,DocDPIOverride=200",
            200);
        row("a resolution of 0 falls back", "DocDPIOverride=0", 150);
        row("a resolution that is no number falls back",
            "PicDPIOverride=high,TWAINImageType=picture", 300);
        row("percentages, 5 taken as 100", "PrintWidthPct=5,PrintHeightPct=200", 150, 200);
    }
    void settingsFeedTheScale()
    {
        QFETCH(QStringList, stored);
        test::TestHome home;
        for (const QString& kv : stored)
            home.settings().saveSetting(kv.section('=', 0, 0), kv.section('=', 1));
        const PrintScaleSettings s = PrintScale::fromSettings(home.settings());
        QTEST(QList<double>({double(s.scanDpi), s.widthPct, s.heightPct}), "scale");
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
