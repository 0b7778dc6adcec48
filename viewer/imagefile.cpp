#include "viewer/imagefile.h"

#include <QImageReader>
#include <QImageWriter>
#include <QPainter>
#include <QSaveFile>

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
        flat.fill(Qt::white);
        QPainter painter(&flat);
        painter.drawImage(0, 0, image);
        return flat;
    }
    if (image.isGrayscale() && image.depth() == 8)
        return image.convertToFormat(QImage::Format_Grayscale8);
    return image.convertToFormat(QImage::Format_RGB32);
}

QImage ImageFile::load(const QString& path)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    if (isRefusedFormat(reader.format()))
        return QImage();
    return normalised(reader.read());
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
