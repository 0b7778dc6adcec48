#include "tests/support/shots.h"

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QSet>
#include <QTest>
#include <QFileInfo>
#include <QPainter>
#include <QWidget>

#include "core/apphome.h"
#include "store/pagepaths.h"

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
    // A run at another scale draws the same windows; its files are told apart by their size.
    const qreal scale = window->devicePixelRatioF();
    const QString suffix = scale > 1.0 ? QString("@%1x").arg(scale) : QString();
    const QString path = shotsDirectory() + "/" + name + suffix + ".png";
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

void scannedPage(const AppHome& home, qint32 id, int number, const QSize& size, QColor head)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor(250, 248, 240));
    QPainter p(&image);
    p.fillRect(QRect(0, 0, size.width(), size.height() / 7), head);
    p.setPen(QPen(QColor(60, 60, 60), qMax(2, size.height() / 180)));
    for (int y = size.height() / 4; y < size.height() * 9 / 10; y += size.height() / 24)
        p.drawLine(size.width() / 10, y, size.width() * (number % 3 == 0 ? 6 : 9) / 10, y);
    QFont font = p.font();
    font.setPixelSize(size.height() / 6);
    font.setBold(true);
    p.setFont(font);
    p.setPen(Qt::white);
    p.drawText(QRect(0, 0, size.width(), size.height() / 7), Qt::AlignCenter,
               QString::number(number));
    p.end();
    const QString file = PagePaths(home).computedPagePath(id);
    QDir().mkpath(QFileInfo(file).path());
    image.save(file, "JPG", 85);
}

} // namespace qmr::test
