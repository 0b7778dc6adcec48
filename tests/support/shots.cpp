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

QPalette darkPalette()
{
    QPalette dark(QColor(0x3a, 0x3a, 0x3a), QColor(0x2b, 0x2b, 0x2b));
    const QColor light(0xe8, 0xe8, 0xe8);
    dark.setColor(QPalette::WindowText, light);
    dark.setColor(QPalette::Base, QColor(0x1f, 0x1f, 0x1f));
    dark.setColor(QPalette::AlternateBase, QColor(0x2a, 0x2a, 0x2a));
    dark.setColor(QPalette::Text, light);
    dark.setColor(QPalette::ButtonText, light);
    dark.setColor(QPalette::Highlight, QColor(0x2f, 0x65, 0xca));
    dark.setColor(QPalette::HighlightedText, Qt::white);
    dark.setColor(QPalette::Link, QColor(0x8a, 0xb4, 0xf8));
    dark.setColor(QPalette::PlaceholderText, QColor(0x9a, 0x9a, 0x9a));
    return dark;
}

} // namespace qmr::test
