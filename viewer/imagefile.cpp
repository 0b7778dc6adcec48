#include "viewer/imagefile.h"

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>
#include <QSaveFile>

#include "core/imageloader.h"
#include "viewer/thumbnailmaker.h"

namespace qmr {

bool ImageFile::isRefusedFormat(const QByteArray& format)
{
    static const QByteArray refused[] = {"png", "gif", "tga", "pcx", "psd", "ras",
                                         "pic", "wmf", "eps", "pct", "mac", "avi"};
    const QByteArray f = format.toLower();
    for (const QByteArray& r : refused)
        if (f == r)
            return true;
    return false;
}

QImage ImageFile::normalised(const QImage& image)
{
    if (image.isNull())
        return image;
    switch (image.format()) {
    case QImage::Format_RGB32:
    case QImage::Format_Grayscale8:
        return image;
    default:
        break;
    }
    if (image.hasAlphaChannel()) {
        QImage flat(image.size(), QImage::Format_RGB32);
        // The scan's resolution stays with the page: it decides the printed size.
        flat.setDotsPerMeterX(image.dotsPerMeterX());
        flat.setDotsPerMeterY(image.dotsPerMeterY());
        flat.fill(Qt::white);
        QPainter painter(&flat);
        painter.drawImage(0, 0, image);
        return flat;
    }
    if (image.isGrayscale() && image.depth() == 8)
        return image.convertToFormat(QImage::Format_Grayscale8);
    return image.convertToFormat(QImage::Format_RGB32);
}

QImage ImageFile::load(const QString& path, QString* tooLarge)
{
    QImageReader reader(path);
    return load(reader, path, tooLarge);
}

QImage ImageFile::loadFromData(const QByteArray& page, const QString& name, QString* tooLarge)
{
    QBuffer buffer;
    buffer.setData(page);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    return load(reader, name, tooLarge);
}

QImage ImageFile::load(QImageReader& reader, const QString& name, QString* tooLarge)
{
    // A picture too large to open is named whatever its kind; the refused kinds stay silent.
    if (const std::optional<QString> refused = ImageLoader::refusal(reader)) {
        if (tooLarge)
            *tooLarge = ImageLoader::tooLargeMessage(name, *refused);
        return QImage();
    }
    if (isRefusedFormat(reader.format()))
        return QImage();
    const LoadedImage loaded = ImageLoader::read(reader);
    if (loaded.refused && tooLarge)
        *tooLarge = ImageLoader::tooLargeMessage(name, loaded.error);
    return normalised(loaded.image);
}

std::optional<QString> ImageFile::writeJpeg(const QImage& image, const QString& path,
                                            int qualityFactor)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return QStringLiteral("The image could not be written to '%1': %2")
            .arg(path, file.errorString());
    QImageWriter writer(&file, "jpeg");
    writer.setQuality(qtJpegQuality(qualityFactor));
    if (!writer.write(image)) {
        file.cancelWriting();
        return QStringLiteral("The image could not be written to '%1': %2")
            .arg(path, writer.errorString());
    }
    if (!file.commit())
        return QStringLiteral("The image could not be written to '%1': %2")
            .arg(path, file.errorString());
    return std::nullopt;
}

} // namespace qmr
