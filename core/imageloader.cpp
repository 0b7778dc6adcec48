#include "core/imageloader.h"

#include <QCoreApplication>
#include <QImageReader>

namespace qmr {

namespace {

constexpr qint64 kLimitBytes = qint64(ImageLoader::kLimitMb) << 20;

// Why a picture of `size` in `format` is too large, or nothing. A side stated negative (a
// BMP's rows from the top down) counts by its length.
std::optional<QString> sizeRefusal(const QSize& size, QImage::Format format)
{
    const qint64 width = qAbs(qint64(size.width()));
    const qint64 height = qAbs(qint64(size.height()));
    if (width > ImageLoader::kMaxSide || height > ImageLoader::kMaxSide)
        return QCoreApplication::translate(
                   "qmr::ImageLoader",
                   "it is %1 by %2 pixels, and no side may be longer than %3 pixels")
            .arg(width)
            .arg(height)
            .arg(ImageLoader::kMaxSide);
    const qint64 bytes = ImageLoader::bytesFor(QSize(int(width), int(height)), format);
    if (bytes <= kLimitBytes)
        return std::nullopt;
    return QCoreApplication::translate(
               "qmr::ImageLoader",
               "it is %1 by %2 pixels, which would take %3 MB of memory, and at most "
               "%4 MB may be used")
        .arg(width)
        .arg(height)
        .arg((bytes + (1 << 20) - 1) >> 20)
        .arg(ImageLoader::kLimitMb);
}

} // namespace

void ImageLoader::applyLimit()
{
    // Once, before the first reading: threads that read thumbnails meanwhile see the bound.
    static const bool applied = [] {
        QImageReader::setAllocationLimit(kLimitMb);
        return true;
    }();
    Q_UNUSED(applied);
}

qint64 ImageLoader::bytesFor(const QSize& size, QImage::Format format)
{
    if (size.isEmpty())
        return 0;
    const int stated =
        format == QImage::Format_Invalid ? 0 : int(QImage::toPixelFormat(format).bitsPerPixel());
    // A page is kept as 8-bit grey or 32-bit colour; other formats become colour.
    const int bits = format == QImage::Format_Grayscale8 ? 8 : qMax(32, stated);
    return qint64(size.width()) * size.height() * bits / 8;
}

Attempt<> ImageLoader::checkSize(QImageReader& reader)
{
    applyLimit();
    // A decoder that cannot tell the size before decoding answers QSize().
    const QSize size = reader.size();
    if (size == QSize())
        return {};
    if (const std::optional<QString> refused = sizeRefusal(size, reader.imageFormat()))
        return Failure(*refused);
    return {};
}

LoadedImage ImageLoader::read(QImageReader& reader)
{
    reader.setAutoTransform(true);
    if (const Attempt<> sized = checkSize(reader); !sized)
        return {QImage(), sized.why(), true};
    QImage image = reader.read();
    if (image.isNull())
        return {QImage(), reader.errorString(), false};
    // A picture that stated no size is held to the bound as it is kept.
    if (const std::optional<QString> refused = sizeRefusal(image.size(), image.format()))
        return {QImage(), *refused, true};
    // A damaged file's pixels may name colours its table does not hold; drawn or scaled, the
    // table would be read past its end. The missing colours are added as transparent black:
    // such pixels show as paper where the page is drawn on white, and black where the picture
    // is converted to a format without alpha.
    const int colours = image.format() == QImage::Format_Indexed8 ? 256
                        : image.depth() == 1                      ? 2
                                                                  : 0;
    if (image.colorCount() < colours)
        image.setColorCount(colours);
    return {image, QString(), false};
}

Attempt<> ImageLoader::checkFile(const QString& path)
{
    QImageReader reader(path);
    if (!reader.canRead())
        return {};
    if (const Attempt<> sized = checkSize(reader); !sized)
        return Failure(tooLargeMessage(path, sized.why()));
    return {};
}

QString ImageLoader::tooLargeMessage(const QString& path, const QString& reason)
{
    return QCoreApplication::translate("qmr::ImageLoader",
                                       "The picture '%1' is too large to open: %2.")
        .arg(path, reason);
}

} // namespace qmr
