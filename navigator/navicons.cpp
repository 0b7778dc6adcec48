#include "navigator/navicons.h"

#include <QHash>
#include <QPainter>
#include <QPainterPath>

namespace qmr {

namespace {

// Everything is drawn on a 32-unit grid; at 16 pixels the pen widths halve with it.
void drawCabinet(QPainter& p, int drawers)
{
    p.setPen(QPen(QColor(0x37, 0x47, 0x4f), 1.5));
    p.setBrush(QColor(0x90, 0xa4, 0xae));
    p.drawRoundedRect(QRectF(6.5, 2.5, 19, 27), 1.5, 1.5);
    const double h = 25.0 / drawers;
    for (int i = 0; i < drawers; ++i) {
        const double top = 3.5 + i * h;
        p.setBrush(QColor(0xcf, 0xd8, 0xdc));
        p.drawRect(QRectF(8.5, top + 1, 15, h - 2.5));
        p.setBrush(QColor(0x37, 0x47, 0x4f));
        p.drawRect(QRectF(13.5, top + h / 2 - 1.5, 5, 1.5));
    }
}

void drawPaper(QPainter& p, bool lines)
{
    QPainterPath path;
    path.moveTo(7.5, 2.5);
    path.lineTo(19.5, 2.5);
    path.lineTo(25.5, 8.5);
    path.lineTo(25.5, 29.5);
    path.lineTo(7.5, 29.5);
    path.closeSubpath();
    p.setPen(QPen(QColor(0x42, 0x42, 0x42), 1.5));
    p.setBrush(Qt::white);
    p.drawPath(path);
    p.setBrush(QColor(0xe0, 0xe0, 0xe0));
    p.drawPolygon(QPolygonF({QPointF(19.5, 2.5), QPointF(19.5, 8.5), QPointF(25.5, 8.5)}));
    if (lines) {
        p.setPen(QPen(QColor(0x15, 0x65, 0xc0), 1.5));
        for (double y = 13; y <= 25; y += 4)
            p.drawLine(QPointF(10.5, y), QPointF(22.5, y));
    }
}

void paint(QPainter& p, const QString& key)
{
    if (key == QLatin1String("cabinet")) {
        drawCabinet(p, 3);
    } else if (key == QLatin1String("locked")) {
        drawCabinet(p, 3);
        p.setPen(QPen(QColor(0x5d, 0x40, 0x37), 2));
        p.setBrush(Qt::NoBrush);
        p.drawArc(QRectF(17, 13, 10, 10), 0, 180 * 16);
        p.setPen(QPen(QColor(0x5d, 0x40, 0x37), 1.2));
        p.setBrush(QColor(0xff, 0xc1, 0x07));
        p.drawRoundedRect(QRectF(15.5, 18.5, 14, 11), 1.5, 1.5);
        p.setBrush(QColor(0x5d, 0x40, 0x37));
        p.drawEllipse(QPointF(22.5, 23.5), 1.5, 1.5);
    } else if (key == QLatin1String("drawer")) {
        p.setPen(QPen(QColor(0x37, 0x47, 0x4f), 1.5));
        p.setBrush(QColor(0x90, 0xa4, 0xae));
        p.drawRect(QRectF(2.5, 9.5, 27, 15));
        p.setBrush(QColor(0xcf, 0xd8, 0xdc));
        p.drawRect(QRectF(5.5, 12.5, 21, 9));
        p.setBrush(QColor(0x37, 0x47, 0x4f));
        p.drawRect(QRectF(12.5, 15.5, 7, 2.5));
    } else if (key == QLatin1String("folder")) {
        p.setPen(QPen(QColor(0x8d, 0x6e, 0x00), 1.5));
        p.setBrush(QColor(0xff, 0xca, 0x28));
        QPainterPath back;
        back.moveTo(2.5, 7.5);
        back.lineTo(11.5, 7.5);
        back.lineTo(14.5, 10.5);
        back.lineTo(29.5, 10.5);
        back.lineTo(29.5, 26.5);
        back.lineTo(2.5, 26.5);
        back.closeSubpath();
        p.drawPath(back);
        p.setBrush(QColor(0xff, 0xe0, 0x82));
        p.drawRect(QRectF(2.5, 13.5, 27, 13));
    } else if (key == QLatin1String("document")) {
        drawPaper(p, true);
    } else if (key == QLatin1String("page") || key == QLatin1String("thumbnails")) {
        drawPaper(p, false);
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(0x43, 0xa0, 0x47));
        p.drawPolygon(QPolygonF(
            {QPointF(9, 26), QPointF(15, 17), QPointF(19, 22), QPointF(21, 19), QPointF(24, 26)}));
        p.setBrush(QColor(0xff, 0xa0, 0x00));
        p.drawEllipse(QPointF(13, 13), 2.2, 2.2);
    } else if (key == QLatin1String("found")) {
        p.setPen(QPen(QColor(0x37, 0x47, 0x4f), 4, Qt::SolidLine, Qt::RoundCap));
        p.drawLine(QPointF(19, 19), QPointF(28, 28));
        p.setPen(QPen(QColor(0x37, 0x47, 0x4f), 2.5));
        p.setBrush(QColor(0xbb, 0xde, 0xfb));
        p.drawEllipse(QPointF(13, 13), 9, 9);
    } else { // root and its variants: two cabinets side by side
        p.save();
        p.translate(-5, 0);
        p.scale(0.85, 1);
        drawCabinet(p, 2);
        p.restore();
        p.save();
        p.translate(10, 4);
        p.scale(0.75, 0.88);
        drawCabinet(p, 2);
        p.restore();
    }
}

} // namespace

QPixmap NavIcons::pixmap(const QString& key, int side)
{
    QPixmap pm(side, side);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(side / 32.0, side / 32.0);
    paint(p, key);
    return pm;
}

const QIcon& NavIcons::icon(const QString& key)
{
    auto it = m_cache.find(key);
    if (it == m_cache.end()) {
        QIcon icon;
        icon.addPixmap(pixmap(key, 16));
        icon.addPixmap(pixmap(key, 32));
        it = m_cache.insert(key, icon);
    }
    return *it;
}

} // namespace qmr
