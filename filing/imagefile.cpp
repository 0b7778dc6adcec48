#include "filing/imagefile.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFile>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>

#include "core/imageloader.h"
#include "filing/thumbnailmaker.h"

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

Attempt<QImage> ImageFile::load(const QString& path)
{
    QImageReader reader(path);
    return load(reader, path);
}

Attempt<QImage> ImageFile::loadFromData(const QByteArray& page, const QString& name)
{
    QBuffer buffer;
    buffer.setData(page);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    return load(reader, name);
}

Attempt<QImage> ImageFile::load(QImageReader& reader, const QString& name)
{
    // A picture too large to open is named whatever its kind; the refused kinds stay silent.
    if (const Attempt<> sized = ImageLoader::checkSize(reader); !sized)
        return Failure(ImageLoader::tooLargeMessage(name, sized.why()));
    if (isRefusedFormat(reader.format()))
        return QImage();
    const LoadedImage loaded = ImageLoader::read(reader);
    if (loaded.refused)
        return Failure(ImageLoader::tooLargeMessage(name, loaded.error));
    return normalised(loaded.image);
}

Attempt<> ImageFile::writeJpeg(const QImage& image, const QString& path, int qualityFactor,
                               PartFile::Placing placing)
{
    const auto failure = [&](const QString& reason) {
        return Failure(QCoreApplication::translate("qmr::ImageFile",
                                                   "The image could not be written to '%1': %2")
                           .arg(path, reason));
    };
    PartFile part(path);
    if (!part.open())
        return failure(part.errorString());
    QFile file;
    if (!file.open(part.handle(), QIODevice::WriteOnly, QFileDevice::DontCloseHandle))
        return failure(file.errorString());
    QImageWriter writer(&file, "jpeg");
    writer.setQuality(qtJpegQuality(qualityFactor));
    if (!writer.write(image))
        return failure(writer.errorString());
    if (!file.flush())
        return failure(file.errorString());
    file.close();
    switch (part.place(placing)) {
    case PartFile::Placed::Done:
        return {};
    case PartFile::Placed::TargetExists:
        return failure(QCoreApplication::translate("qmr::ImageFile", "another file stands there"));
    case PartFile::Placed::Failed:
        break;
    }
    return failure(part.errorString());
}

} // namespace qmr
