#include <QBuffer>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>

#include "core/settings.h"
#include "print/imageresolution.h"
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
        QTest::addColumn<QSize>("pixels");
        QTest::addColumn<int>("fileX");
        QTest::addColumn<int>("fileY");
        QTest::addColumn<int>("printer");
        QTest::addColumn<int>("scanDpi");
        QTest::addColumn<double>("widthPct");
        QTest::addColumn<double>("heightPct");
        QTest::addColumn<QSize>("drawn"); // width x height in printer dots

        QTest::newRow("200 dpi page on a 600 dpi printer")
            << QSize(1700, 2200) << 200 << 200 << 600 << 150 << 100.0 << 100.0 << QSize(4845, 6270);
        // The horizontal resolution scales the height, the vertical one the width.
        QTest::newRow("resolutions crossed") << QSize(1700, 2200) << 100 << 200 << 600 << 150
                                             << 100.0 << 100.0 << QSize(4845, 12540);
        QTest::newRow("349 is believed")
            << QSize(349, 349) << 349 << 349 << 600 << 150 << 100.0 << 100.0 << QSize(570, 570);
        QTest::newRow("600 dpi file takes the scan resolution")
            << QSize(1700, 2200) << 600 << 600 << 600 << 150 << 100.0 << 100.0 << QSize(6460, 8360);
        QTest::newRow("350 takes the scan resolution")
            << QSize(1700, 2200) << 350 << 350 << 600 << 300 << 100.0 << 100.0 << QSize(3230, 4180);
        QTest::newRow("one axis of 350 or more is enough")
            << QSize(1700, 2200) << 200 << 400 << 600 << 150 << 100.0 << 100.0 << QSize(6460, 8360);
        QTest::newRow("no resolution stored takes the scan resolution")
            << QSize(1700, 2200) << 0 << 0 << 600 << 150 << 100.0 << 100.0 << QSize(6460, 8360);
        QTest::newRow("one axis stated, the other not")
            << QSize(1700, 2200) << 200 << 0 << 600 << 150 << 100.0 << 100.0 << QSize(6460, 8360);
        QTest::newRow("percentages scale after the 95%")
            << QSize(1700, 2200) << 200 << 200 << 600 << 150 << 50.0 << 200.0 << QSize(2423, 12540);
        // 600 / 11 * 3 = 163.64 is rounded to 164 before the 95% (155.8 -> 156), not after
        // (155.45 -> 155).
        QTest::newRow("rounded at every step")
            << QSize(3, 3) << 11 << 11 << 600 << 150 << 100.0 << 100.0 << QSize(156, 156);
        QTest::newRow("printer of 1200 dpi") << QSize(850, 1100) << 100 << 100 << 1200 << 150
                                             << 100.0 << 100.0 << QSize(9690, 12540);
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
        QTest::addColumn<QString>("stored");
        QTest::addColumn<double>("used");
        QTest::newRow("5 is out of range") << "5" << 100.0;
        QTest::newRow("9.9") << "9.9" << 100.0;
        QTest::newRow("10") << "10" << 10.0;
        QTest::newRow("150") << "150" << 150.0;
        QTest::newRow("200 is accepted") << "200" << 200.0;
        QTest::newRow("201") << "201" << 100.0;
        QTest::newRow("not a number") << "wide" << 100.0;
        QTest::newRow("empty") << "" << 100.0;
        QTest::newRow("spaces") << " 80 " << 80.0;
    }
    void percentage()
    {
        QFETCH(QString, stored);
        QFETCH(double, used);
        QCOMPARE(PrintScale::percentage(stored), used);
    }

    void settingsFeedTheScale_data()
    {
        QTest::addColumn<QStringList>("keyValues"); // key, value, key, value...
        QTest::addColumn<int>("scanDpi");
        QTest::addColumn<double>("widthPct");
        QTest::addColumn<double>("heightPct");
        QTest::newRow("nothing stored: documents at 150, 100%")
            << QStringList{} << 150 << 100.0 << 100.0;
        QTest::newRow("last scan a picture")
            << QStringList{"TWAINImageType", "picture"} << 300 << 100.0 << 100.0;
        QTest::newRow("a camera counts as a picture")
            << QStringList{"TWAINImageType", "camera", "PicDPIOverride", "240"} << 240 << 100.0
            << 100.0;
        QTest::newRow("document resolution of the settings")
            << QStringList{"TWAINImageType", "document", "DocDPIOverride", "200"} << 200 << 100.0
            << 100.0;
        QTest::newRow("a resolution of 0 falls back")
            << QStringList{"DocDPIOverride", "0"} << 150 << 100.0 << 100.0;
        QTest::newRow("a resolution that is no number falls back")
            << QStringList{"PicDPIOverride", "high", "TWAINImageType", "picture"} << 300 << 100.0
            << 100.0;
        QTest::newRow("percentages, 5 taken as 100")
            << QStringList{"PrintWidthPct", "5", "PrintHeightPct", "200"} << 150 << 100.0 << 200.0;
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
        QCOMPARE(s.scanDpi, scanDpi);
        QCOMPARE(s.widthPct, widthPct);
        QCOMPARE(s.heightPct, heightPct);
    }

    void fileResolution_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<int>("dpiX");
        QTest::addColumn<int>("dpiY");
        QTest::addColumn<int>("readX");
        QTest::addColumn<int>("readY");
        QTest::newRow("JPEG 200") << "JPG" << 200 << 200 << 200 << 200;
        QTest::newRow("JPEG 300 by 150") << "JPG" << 300 << 150 << 300 << 150;
        QTest::newRow("JPEG without resolution") << "JPG" << 0 << 0 << 0 << 0;
        QTest::newRow("JPEG 96, a screen's value, is still stated")
            << "JPG" << 96 << 96 << 96 << 96;
        QTest::newRow("PNG 600") << "PNG" << 600 << 600 << 600 << 600;
    }
    void fileResolution()
    {
        QFETCH(QString, format);
        QFETCH(int, dpiX);
        QFETCH(int, dpiY);
        QFETCH(int, readX);
        QFETCH(int, readY);
        QTemporaryDir dir;
        const QString path = dir.filePath("page." + format.toLower());
        if (format == "JPG") {
            QVERIFY(test::writePicture(path, QSize(40, 30), dpiX, dpiY));
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
        QCOMPARE(r.x, readX);
        QCOMPARE(r.y, readY);
    }

    void jpegInDotsPerCentimetre()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("cm.jpg");
        QVERIFY(test::writePicture(path, QSize(20, 20), 254, 254));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QByteArray bytes = file.readAll();
        const qsizetype at = bytes.indexOf(QByteArray("JFIF", 5));
        QVERIFY(at > 0);
        bytes[at + 7] = 2; // dots per centimetre
        bytes[at + 8] = 0; // 79 per cm is 200.66 per inch
        bytes[at + 9] = 79;
        bytes[at + 10] = 0;
        bytes[at + 11] = 79;
        file.seek(0);
        file.write(bytes);
        file.close();
        const FileResolution r = ImageResolution::read(path, QImage(path));
        QCOMPARE(r.x, 201);
        QCOMPARE(r.y, 201);
    }
};

QMR_TEST(TestPrintScale)
#include "testprintscale.moc"
