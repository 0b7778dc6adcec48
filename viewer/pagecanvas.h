#pragma once

#include <QAbstractScrollArea>
#include <QImage>

namespace qmr {

// LEAD1: shows the page image at a scale, centred when it is smaller than the view, and
// scrolled with the wheel, the scroll bars, the keys or a drag with the middle (or right)
// button. A left press starts the crop band and a left drag draws it; the band is kept in
// image pixels, so it stays on the same part of the page when the view moves. Only the part
// in view is drawn; below one to one a smoothly reduced copy is drawn.
class PageCanvas : public QAbstractScrollArea
{
    Q_OBJECT
public:
    explicit PageCanvas(QWidget* parent = nullptr);

    // A changed image keeps the scale; the view stays where it was as far as it can.
    void setImage(const QImage& image);
    const QImage& image() const { return m_image; }
    bool hasImage() const { return !m_image.isNull(); }

    double zoomPercent() const { return m_zoom; }
    // A new scale; the point of the page at the centre of the view stays there.
    void setZoomPercent(double percent);
    // The same around a point of the view (the wheel's pointer).
    void setZoomPercentAt(double percent, const QPoint& viewportPoint);
    // The view back to the top left corner of the page.
    void resetOffsets();

    // The band: its press point and its last move point, in image pixels. The press moves
    // only the first; a press without a move leaves the second where it was.
    bool bandActive() const { return m_bandActive; }
    QPoint bandStart() const { return m_bandStart; }
    QPoint bandEnd() const { return m_bandEnd; }
    // The band is used up: no band, the normal pointer.
    void clearBand();
    // The image pixel under a point of the view, kept within the image.
    QPoint imagePointAt(const QPoint& viewportPoint) const;
    // Places on the page to mark (in image pixels), as a highlighter would; `current` is drawn
    // stronger and scrolled into view. None clears them.
    void setMarks(const QList<QRect>& boxes, int current);
    const QList<QRect>& marks() const { return m_marks; }
    int currentMark() const { return m_currentMark; }
    // Where a place of the page lies in the view.
    QRect viewRectOf(const QRect& imageRect) const;
    // The bytes of the reduced copy kept for drawing.
    qint64 cacheBytes() const { return m_scaled.sizeInBytes(); }

signals:
    // Ctrl and the wheel: steps in (positive) or out (negative), around a point of the view.
    void wheelZoom(int steps, const QPoint& viewportPoint);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    QSize displaySize() const;
    // Where the image's top left corner lies in the view.
    QPoint origin() const;
    void updateScrollBars();
    const QImage& scaledForDisplay();

    QImage m_image;
    double m_zoom = 100;
    QImage m_scaled;
    qint64 m_scaledKey = 0;
    QSize m_scaledSize;
    bool m_bandActive = false;
    QPoint m_bandStart;
    QPoint m_bandEnd;
    bool m_panning = false;
    QPoint m_panFrom;
    int m_wheelAngle = 0;
    QList<QRect> m_marks;
    int m_currentMark = -1;
};

} // namespace qmr
