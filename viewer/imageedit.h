#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>

namespace qmr {

// One change to a page image that can be taken back: a crop (the band's or the automatic
// trim's), a quarter turn either way, or a whole new image (a paste). Each keeps only what its
// undo needs: a crop keeps the strips it cut off, so the strips and the cropped image together
// are never more than the image before; a turn keeps nothing.
class ImageEdit
{
public:
    enum class Kind { Crop, RotateClockwise, RotateCounterClockwise, Replace };

    static ImageEdit crop(const QRect& rect);
    static ImageEdit rotateClockwise();
    static ImageEdit rotateCounterClockwise();
    static ImageEdit replace(const QImage& image);

    Kind kind() const { return m_kind; }
    // Changes `image`; false (and `image` untouched) when the edit would change nothing. An
    // edit taken back by undo() may be applied again (a redo).
    bool apply(QImage& image);
    // Gives back the image as it was before apply().
    void undo(QImage& image);
    // Bytes held for the undo.
    qint64 undoBytes() const;

    // The rectangle between the band's press point and its last move point: the smaller
    // coordinates as its corner and the absolute differences as its size.
    static QRect cropRectFromBand(const QPoint& press, const QPoint& moved);
    // The part of the image inside its uniform border, the border's colour being that of the
    // top left pixel and a pixel counting as border while no channel differs from it by more
    // than `threshold`. A null rectangle when there is nothing to trim or nothing but border.
    static QRect autoTrimRect(const QImage& image, int threshold = 64);

private:
    explicit ImageEdit(Kind kind) : m_kind(kind) {}

    Kind m_kind;
    QRect m_rect;
    QSize m_fullSize;
    // Crop: the strips above, below, left and right of the rectangle. Replace: the old image.
    QImage m_top;
    QImage m_bottom;
    QImage m_left;
    QImage m_right;
    QImage m_other;
};

} // namespace qmr
