#include "core/imageloader.h"

#include <QImageReader>

namespace qmr {

namespace {

constexpr qint64 kLimitBytes = qint64(ImageLoader::kLimitMb) << 20;

QString sizeReason(const QSize& size, qint64 bytes)
{
    return QStringLiteral("it is %1 by %2 pixels, which would take %3 MB of memory, and at most "
                          "%4 MB may be used")
        .arg(size.width())
        .arg(size.height())
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

std::optional<QString> ImageLoader::refusal(QImageReader& reader)
{
    applyLimit();
    const QSize size = reader.size();
    if (!size.isValid())
        return std::nullopt;
    const qint64 bytes = bytesFor(size, reader.imageFormat());
    if (bytes <= kLimitBytes)
        return std::nullopt;
    return sizeReason(size, bytes);
}

LoadedImage ImageLoader::read(QImageReader& reader)
{
    reader.setAutoTransform(true);
    if (const std::optional<QString> refused = refusal(reader))
        return {QImage(), *refused, true};
    QImage image = reader.read();
    if (image.isNull())
        return {QImage(), reader.errorString(), false};
    // A picture that stated no size is held to the bound as it is kept.
    const qint64 bytes = bytesFor(image.size(), image.format());
    if (bytes > kLimitBytes)
        return {QImage(), sizeReason(image.size(), bytes), true};
    return {image, QString(), false};
}

std::optional<QString> ImageLoader::checkFile(const QString& path)
{
    QImageReader reader(path);
    if (!reader.canRead())
        return std::nullopt;
    if (const std::optional<QString> refused = refusal(reader))
        return tooLargeMessage(path, *refused);
    return std::nullopt;
}

QString ImageLoader::tooLargeMessage(const QString& path, const QString& reason)
{
    return QStringLiteral("The picture '%1' is too large to open: %2.").arg(path, reason);
}

} // namespace qmr
