#include "viewer/imageedit.h"

#include <QColorSpace>
#include <QTransform>
#include <cstring>

namespace qmr {

namespace {

// Copies `src` into `dst` at (x, y), line by line: the page formats are plain pixel rows.
void blit(QImage& dst, const QImage& src, int x, int y)
{
    if (src.isNull())
        return;
    const int bytesPerPixel = dst.depth() / 8;
    const qsizetype length = qsizetype(src.width()) * bytesPerPixel;
    for (int row = 0; row < src.height(); ++row)
        std::memcpy(dst.scanLine(y + row) + qsizetype(x) * bytesPerPixel, src.constScanLine(row),
                    size_t(length));
}

// What a new image of the page takes over from the one it stands for: the resolution, which
// decides the printed size and goes into the saved file, and the colour space.
void keepMetadata(QImage& image, const QImage& from)
{
    image.setDotsPerMeterX(from.dotsPerMeterX());
    image.setDotsPerMeterY(from.dotsPerMeterY());
    image.setOffset(from.offset());
    image.setColorSpace(from.colorSpace());
}

QImage part(const QImage& image, int x, int y, int w, int h)
{
    return w > 0 && h > 0 ? image.copy(x, y, w, h) : QImage();
}

struct PixelReader
{
    const QImage& image;
    bool gray = image.format() == QImage::Format_Grayscale8;
    bool rgb32 = image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_ARGB32;

    QRgb at(int x, int y) const
    {
        if (rgb32)
            return reinterpret_cast<const QRgb*>(image.constScanLine(y))[x];
        if (gray) {
            const int v = image.constScanLine(y)[x];
            return qRgb(v, v, v);
        }
        return image.pixel(x, y);
    }
};

// A quarter turn: the resolutions across and down change places with the sides.
QImage turned(const QImage& image, int degrees)
{
    QImage result = image.transformed(QTransform().rotate(degrees));
    keepMetadata(result, image);
    result.setDotsPerMeterX(image.dotsPerMeterY());
    result.setDotsPerMeterY(image.dotsPerMeterX());
    return result;
}

bool near(QRgb a, QRgb b, int threshold)
{
    return qAbs(qRed(a) - qRed(b)) <= threshold && qAbs(qGreen(a) - qGreen(b)) <= threshold &&
           qAbs(qBlue(a) - qBlue(b)) <= threshold;
}

} // namespace

ImageEdit ImageEdit::crop(const QRect& rect)
{
    ImageEdit edit(Kind::Crop);
    edit.m_rect = rect;
    return edit;
}

ImageEdit ImageEdit::rotateClockwise()
{
    return ImageEdit(Kind::RotateClockwise);
}

ImageEdit ImageEdit::rotateCounterClockwise()
{
    return ImageEdit(Kind::RotateCounterClockwise);
}

ImageEdit ImageEdit::replace(const QImage& image)
{
    ImageEdit edit(Kind::Replace);
    edit.m_other = image;
    return edit;
}

bool ImageEdit::apply(QImage& image)
{
    if (image.isNull())
        return false;
    switch (m_kind) {
    case Kind::Crop: {
        const QRect r = m_rect.intersected(image.rect());
        if (r.isEmpty() || r == image.rect())
            return false;
        m_rect = r;
        m_fullSize = image.size();
        const int w = image.width();
        const int h = image.height();
        m_top = part(image, 0, 0, w, r.top());
        m_bottom = part(image, 0, r.bottom() + 1, w, h - r.bottom() - 1);
        m_left = part(image, 0, r.top(), r.left(), r.height());
        m_right = part(image, r.right() + 1, r.top(), w - r.right() - 1, r.height());
        image = image.copy(r);
        return true;
    }
    case Kind::RotateClockwise:
        image = turned(image, 90);
        return true;
    case Kind::RotateCounterClockwise:
        image = turned(image, -90);
        return true;
    case Kind::Replace:
        if (m_other.isNull())
            return false;
        // A picture from the clipboard carries no resolution of its own: it takes the page's.
        keepMetadata(m_other, image);
        std::swap(image, m_other);
        return true;
    }
    return false;
}

void ImageEdit::undo(QImage& image)
{
    switch (m_kind) {
    case Kind::Crop: {
        QImage full(m_fullSize, image.format());
        keepMetadata(full, image);
        blit(full, m_top, 0, 0);
        blit(full, m_left, 0, m_rect.top());
        blit(full, image, m_rect.left(), m_rect.top());
        blit(full, m_right, m_rect.right() + 1, m_rect.top());
        blit(full, m_bottom, 0, m_rect.bottom() + 1);
        image = full;
        m_top = m_bottom = m_left = m_right = QImage();
        break;
    }
    case Kind::RotateClockwise:
        image = turned(image, -90);
        break;
    case Kind::RotateCounterClockwise:
        image = turned(image, 90);
        break;
    case Kind::Replace:
        std::swap(image, m_other);
        break;
    }
}

qint64 ImageEdit::undoBytes() const
{
    return m_top.sizeInBytes() + m_bottom.sizeInBytes() + m_left.sizeInBytes() +
           m_right.sizeInBytes() + m_other.sizeInBytes();
}

QRect ImageEdit::cropRectFromBand(const QPoint& press, const QPoint& moved)
{
    return QRect(qMin(press.x(), moved.x()), qMin(press.y(), moved.y()),
                 qAbs(moved.x() - press.x()), qAbs(moved.y() - press.y()));
}

QRect ImageEdit::autoTrimRect(const QImage& image, int threshold)
{
    if (image.isNull())
        return QRect();
    const PixelReader px{image};
    const QRgb border = px.at(0, 0);
    const int w = image.width();
    const int h = image.height();
    auto rowIsBorder = [&](int y) {
        for (int x = 0; x < w; ++x)
            if (!near(px.at(x, y), border, threshold))
                return false;
        return true;
    };
    int top = 0;
    while (top < h && rowIsBorder(top))
        ++top;
    if (top == h)
        return QRect(); // nothing but border
    int bottom = h - 1;
    while (bottom > top && rowIsBorder(bottom))
        --bottom;
    auto columnIsBorder = [&](int x) {
        for (int y = top; y <= bottom; ++y)
            if (!near(px.at(x, y), border, threshold))
                return false;
        return true;
    };
    int left = 0;
    while (left < w && columnIsBorder(left))
        ++left;
    int right = w - 1;
    while (right > left && columnIsBorder(right))
        --right;
    const QRect content(QPoint(left, top), QPoint(right, bottom));
    return content == image.rect() ? QRect() : content;
}

} // namespace qmr
