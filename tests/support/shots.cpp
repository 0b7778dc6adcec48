#include "tests/support/shots.h"

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QSet>
#include <QTest>
#include <QWidget>

namespace qmr::test {

QString shotsDirectory()
{
    const QString dir = qEnvironmentVariable("QMR_SHOTS_DIR", QDir::currentPath() + "/shots");
    QDir().mkpath(dir);
    return dir;
}

void saveShot(QWidget* window, const QString& name)
{
    QCoreApplication::processEvents();
    const QImage image = window->grab().toImage();
    QVERIFY(!image.isNull());
    QVERIFY(image.width() > 50 && image.height() > 50);
    // A picture of one or two colours would mean nothing was drawn.
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 3)
        for (int x = 0; x < image.width(); x += 3)
            colours.insert(image.pixel(x, y));
    QVERIFY2(colours.size() > 3, qPrintable(name));
    const QString path = shotsDirectory() + "/" + name + ".png";
    QVERIFY2(image.save(path), qPrintable(path));
}

} // namespace qmr::test
