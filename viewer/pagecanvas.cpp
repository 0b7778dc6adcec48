#include "viewer/pagecanvas.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QtMath>

namespace qmr {

PageCanvas::PageCanvas(QWidget* parent) : QAbstractScrollArea(parent)
{
    setObjectName(QStringLiteral("LEAD1"));
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setAutoFillBackground(false);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    setBackgroundRole(QPalette::Dark);
}

void PageCanvas::setImage(const QImage& image)
{
    m_image = image;
    m_scaled = QImage();
    updateScrollBars();
    viewport()->update();
}

QSize PageCanvas::displaySize() const
{
    if (m_image.isNull())
        return QSize(0, 0);
    return QSize(qMax(1, qRound(m_image.width() * m_zoom / 100.0)),
                 qMax(1, qRound(m_image.height() * m_zoom / 100.0)));
}

QPoint PageCanvas::origin() const
{
    const QSize shown = displaySize();
    const QSize view = viewport()->size();
    const int x = shown.width() <= view.width() ? (view.width() - shown.width()) / 2
                                                : -horizontalScrollBar()->value();
    const int y = shown.height() <= view.height() ? (view.height() - shown.height()) / 2
                                                  : -verticalScrollBar()->value();
    return QPoint(x, y);
}

void PageCanvas::updateScrollBars()
{
    const QSize shown = displaySize();
    const QSize view = viewport()->size();
    horizontalScrollBar()->setRange(0, qMax(0, shown.width() - view.width()));
    horizontalScrollBar()->setPageStep(view.width());
    horizontalScrollBar()->setSingleStep(qMax(1, view.width() / 20));
    verticalScrollBar()->setRange(0, qMax(0, shown.height() - view.height()));
    verticalScrollBar()->setPageStep(view.height());
    verticalScrollBar()->setSingleStep(qMax(1, view.height() / 20));
}

void PageCanvas::setZoomPercent(double percent)
{
    setZoomPercentAt(percent, viewport()->rect().center());
}

void PageCanvas::setZoomPercentAt(double percent, const QPoint& viewportPoint)
{
    if (percent <= 0)
        return;
    // The page point under `viewportPoint`, in image pixels, before the change.
    const QPointF before = (QPointF(viewportPoint) - QPointF(origin())) * (100.0 / m_zoom);
    m_zoom = percent;
    updateScrollBars();
    const QPointF shownAt = before * (m_zoom / 100.0);
    horizontalScrollBar()->setValue(qRound(shownAt.x() - viewportPoint.x()));
    verticalScrollBar()->setValue(qRound(shownAt.y() - viewportPoint.y()));
    viewport()->update();
}

void PageCanvas::setMarks(const QList<QRect>& boxes, int current)
{
    m_marks = boxes;
    m_currentMark = current >= 0 && current < boxes.size() ? current : -1;
    if (m_currentMark >= 0) {
        // Scrolled only as far as needed, with the box's own size again around it as margin.
        const QRect box = viewRectOf(m_marks.at(m_currentMark));
        const QRect view = viewport()->rect();
        const int mx = qMin(box.width(), view.width() / 4);
        const int my = qMin(box.height() * 2, view.height() / 4);
        const QRect wanted = box.adjusted(-mx, -my, mx, my);
        if (!view.contains(wanted)) {
            if (wanted.left() < view.left() || wanted.right() > view.right())
                horizontalScrollBar()->setValue(horizontalScrollBar()->value() + box.center().x() -
                                                view.center().x());
            if (wanted.top() < view.top() || wanted.bottom() > view.bottom())
                verticalScrollBar()->setValue(verticalScrollBar()->value() + box.center().y() -
                                              view.center().y());
        }
    }
    viewport()->update();
}

QRect PageCanvas::viewRectOf(const QRect& imageRect) const
{
    const double f = m_zoom / 100.0;
    const QPointF at = origin();
    return QRectF(QPointF(imageRect.topLeft()) * f + at, QSizeF(imageRect.size()) * f)
        .toAlignedRect();
}

void PageCanvas::resetOffsets()
{
    horizontalScrollBar()->setValue(0);
    verticalScrollBar()->setValue(0);
    viewport()->update();
}

void PageCanvas::clearBand()
{
    m_bandActive = false;
    viewport()->unsetCursor();
    viewport()->update();
}

QPoint PageCanvas::imagePointAt(const QPoint& viewportPoint) const
{
    const QPointF p = (QPointF(viewportPoint) - QPointF(origin())) * (100.0 / m_zoom);
    return QPoint(qBound(0, int(qFloor(p.x())), m_image.width()),
                  qBound(0, int(qFloor(p.y())), m_image.height()));
}

const QImage& PageCanvas::scaledForDisplay()
{
    const QSize size = displaySize();
    if (m_scaled.isNull() || m_scaledKey != m_image.cacheKey() || m_scaledSize != size) {
        m_scaled = QImage(); // the old copy goes before the new one is made
        m_scaled = m_image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        m_scaledKey = m_image.cacheKey();
        m_scaledSize = size;
    }
    return m_scaled;
}

void PageCanvas::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    const QRect dirty = event->rect();
    painter.fillRect(dirty, palette().color(QPalette::Dark));
    if (m_image.isNull())
        return;
    const QPoint at = origin();
    const QRect shown(at, displaySize());
    const QRect target = shown.intersected(dirty);
    if (!target.isEmpty()) {
        if (m_zoom < 100) {
            painter.drawImage(target.topLeft(), scaledForDisplay(), target.translated(-at));
        } else {
            m_scaled = QImage();
            const double f = 100.0 / m_zoom;
            const QRectF source(QPointF(target.topLeft() - at) * f, QSizeF(target.size()) * f);
            painter.setRenderHint(QPainter::SmoothPixmapTransform, m_zoom != 100);
            painter.drawImage(QRectF(target), m_image, source);
        }
    }
    if (!m_marks.isEmpty()) {
        painter.setRenderHint(QPainter::Antialiasing, false);
        for (int i = 0; i < m_marks.size(); ++i) {
            const QRect box = viewRectOf(m_marks.at(i)).adjusted(-2, -2, 2, 2);
            if (!box.intersects(dirty))
                continue;
            const bool current = i == m_currentMark;
            painter.setPen(
                QPen(current ? QColor(214, 92, 0) : QColor(230, 170, 0), current ? 3 : 1));
            painter.setBrush(current ? QColor(255, 150, 0, 90) : QColor(255, 220, 0, 80));
            painter.drawRect(box);
        }
    }
    if (m_bandActive && m_bandStart != m_bandEnd) {
        const double f = m_zoom / 100.0;
        const QRectF band(QPointF(m_bandStart) * f + at, QPointF(m_bandEnd) * f + at);
        QPen pen(Qt::black, 1, Qt::DashLine);
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        painter.setRenderHint(QPainter::Antialiasing, false);
        const QRectF r = band.normalized().adjusted(0, 0, -1, -1);
        painter.drawRect(r);
        pen.setColor(Qt::white);
        pen.setDashOffset(3);
        painter.setPen(pen);
        painter.drawRect(r);
    }
}

void PageCanvas::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    updateScrollBars();
}

void PageCanvas::scrollContentsBy(int, int)
{
    viewport()->update();
}

void PageCanvas::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        m_bandActive = true;
        m_bandStart = imagePointAt(event->position().toPoint());
        viewport()->setCursor(Qt::CrossCursor);
        viewport()->update();
    } else if (event->button() == Qt::MiddleButton || event->button() == Qt::RightButton) {
        m_panning = true;
        m_panFrom = event->position().toPoint();
        viewport()->setCursor(Qt::ClosedHandCursor);
    }
    event->accept();
}

void PageCanvas::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint pos = event->position().toPoint();
    if (m_panning) {
        const QPoint delta = pos - m_panFrom;
        m_panFrom = pos;
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - delta.x());
        verticalScrollBar()->setValue(verticalScrollBar()->value() - delta.y());
    } else if ((event->buttons() & Qt::LeftButton) && m_bandActive) {
        m_bandEnd = imagePointAt(pos);
        viewport()->update();
    }
    event->accept();
}

void PageCanvas::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_panning && (event->button() == Qt::MiddleButton || event->button() == Qt::RightButton)) {
        m_panning = false;
        if (m_bandActive)
            viewport()->setCursor(Qt::CrossCursor);
        else
            viewport()->unsetCursor();
    }
    event->accept();
}

void PageCanvas::wheelEvent(QWheelEvent* event)
{
    if (!(event->modifiers() & Qt::ControlModifier)) {
        QAbstractScrollArea::wheelEvent(event);
        return;
    }
    // Fine-grained wheels report small angles; a step is a notch of 120.
    m_wheelAngle += event->angleDelta().y();
    const int steps = m_wheelAngle / 120;
    m_wheelAngle -= steps * 120;
    if (steps != 0)
        emit wheelZoom(steps, event->position().toPoint());
    event->accept();
}

} // namespace qmr
