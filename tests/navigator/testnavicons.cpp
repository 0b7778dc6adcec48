#include <QImage>
#include <QTest>

#include "resources/appresources.h"
#include "resources/navicons.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

// The share of pixels that are not fully transparent.
double coverage(const QImage& image)
{
    int painted = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            painted += qAlpha(image.pixel(x, y)) > 0;
    return double(painted) / (image.width() * image.height());
}

} // namespace

class TestNavIcons : public QObject
{
    Q_OBJECT
private slots:
    void everyKeyDrawsAtEverySize_data()
    {
        QTest::addColumn<QString>("key");
        for (const char* key :
             {"root", "rootb", "rootc", "cabinet", "locked", "drawer", "folder", "document", "page",
              "found", "thumbnails", "clock", "viewlist", "viewthumbnails", "arrowdown"})
            QTest::newRow(key) << QString(key);
    }
    void everyKeyDrawsAtEverySize()
    {
        QFETCH(QString, key);
        QVERIFY(AppResources::iconNames().contains(key));
        // Drawn from the outline at each size, not scaled from one bitmap: a large picture
        // is as full as a small one, and its edges are sharp.
        for (const int side : {16, 32, 48, 128}) {
            const QImage image = NavIcons::pixmap(key, side).toImage();
            QCOMPARE(image.size(), QSize(side, side));
            const double share = coverage(image);
            QVERIFY2(share > 0.05 && share < 0.95,
                     qPrintable(QString("%1 at %2: %3").arg(key).arg(side).arg(share)));
        }
        NavIcons icons;
        QVERIFY(!icons.icon(key).isNull());
        QCOMPARE(&icons.icon(key), &icons.icon(key)); // made once
    }
};

QMR_TEST(TestNavIcons)
#include "testnavicons.moc"
