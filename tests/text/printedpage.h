#pragma once

#include <QCoreApplication>
#include <QImage>
#include <QPainter>
#include <QStringList>

#include "text/textworker.h"

namespace qmr::test {

// A strip of white paper, by default at 300 dpi and as wide as an A4 page.
inline QImage paper(int height = 500, int width = 2480, int dpi = 300)
{
    QImage page(width, height, QImage::Format_RGB32);
    page.fill(Qt::white);
    page.setDotsPerMeterX(qRound(dpi / 0.0254));
    page.setDotsPerMeterY(qRound(dpi / 0.0254));
    return page;
}

inline QFont printFont()
{
    QFont font("DejaVu Serif");
    font.setPixelSize(50); // 12 points at 300 dpi
    return font;
}

// Paper (by default a strip just long enough) with the lines printed on it in 12 points, one
// line every 100 pixels.
inline QImage printedPage(const QStringList& lines, QPoint origin = QPoint(150, 150),
                          QImage page = QImage())
{
    if (page.isNull())
        page = paper(origin.y() + 100 * int(lines.size()) + 100);
    QPainter painter(&page);
    painter.setFont(printFont());
    painter.setPen(Qt::black);
    for (const QString& line : lines) {
        painter.drawText(origin, line);
        origin.ry() += 100;
    }
    painter.end();
    return page;
}

// This executable started as the reading worker, for `languages` when they are given.
inline QStringList workerCommand(const QStringList& languages = {})
{
    return QStringList{QCoreApplication::applicationFilePath(), TextWorker::kOption} + languages;
}

} // namespace qmr::test
