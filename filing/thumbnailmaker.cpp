#include "filing/thumbnailmaker.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>
#include <QPdfDocument>
#include <QtMath>

#include "core/imageloader.h"
#include "core/partfile.h"
#include "filing/filinglog.h"
#include "store/pagepaths.h"

namespace qmr {

int qtJpegQuality(int factor)
{
    return qBound(1, 100 - factor, 100);
}

QSize ThumbnailMaker::reducedSize(const QSize& size)
{
    const int w = qMax(1, size.width());
    const int h = qMax(1, size.height());
    if (w > h)
        return QSize(kThumbSide, qMax(1, qRound(kThumbSide * (double(h) / w))));
    return QSize(qMax(1, qRound(kThumbSide * (double(w) / h))), kThumbSide);
}

QImage ThumbnailMaker::reducedImage(const QString& pagePath)
{
    QFile file(pagePath);
    if (file.open(QIODevice::ReadOnly) && file.size() <= kReadWhole) {
        const QByteArray page = file.readAll();
        if (file.error() == QFileDevice::NoError)
            return reducedImageFromData(page);
    }
    QImageReader reader(pagePath);
    return reduce(reader);
}

QImage ThumbnailMaker::reducedPdfPage(const QString& pdfPath)
{
    QPdfDocument document;
    if (document.load(pdfPath) != QPdfDocument::Error::None ||
        document.status() != QPdfDocument::Status::Ready || document.pageCount() < 1)
        return QImage();
    const QSizeF points = document.pagePointSize(0);
    if (points.isEmpty())
        return QImage();
    const QImage page = document.render(0, reducedSize(points.toSize().expandedTo(QSize(1, 1))));
    if (page.isNull())
        return QImage();
    // The page is drawn without a background: where it is transparent, it is paper.
    QImage paper(page.size(), QImage::Format_RGB32);
    paper.fill(Qt::white);
    QPainter painter(&paper);
    painter.drawImage(0, 0, page);
    return paper;
}

QImage ThumbnailMaker::reducedImageFromData(const QByteArray& page)
{
    QBuffer buffer;
    buffer.setData(page);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    return reduce(reader);
}

QImage ThumbnailMaker::reduce(QImageReader& reader)
{
    reader.setAutoTransform(true);
    // A picture too large to open gets no tile, even where the decoder could reduce it.
    if (!ImageLoader::checkSize(reader))
        return QImage();
    const QSize stored = reader.size();
    // Only a decoder that reduces by itself is asked for the size: any other reads the whole
    // picture and scales it inside the read, before its colours could be looked at.
    if (stored.isValid() && reader.supportsOption(QImageIOHandler::ScaledSize)) {
        // The size is the stored one. A photo its camera notes as taken turned comes out
        // turned, and its tile has the turned shape.
        const bool turned = reader.transformation() & QImageIOHandler::TransformationRotate90;
        const QSize target = reducedSize(turned ? stored.transposed() : stored);
        // The JPEG decoder reduces by up to eight while it decodes and smooths the rest of the
        // way itself: asked for the final size at once, it does the least work.
        reader.setScaledSize(turned ? target.transposed() : target);
        const QImage reduced = reader.read();
        if (reduced.isNull())
            return QImage();
        if (reduced.size() == target)
            return reduced;
        return reduced.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    const QImage full = ImageLoader::read(reader).image;
    if (full.isNull())
        return QImage();
    return full.scaled(reducedSize(full.size()), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QImage ThumbnailMaker::tile(const QImage& reduced)
{
    QImage tile(kThumbSide, kThumbSide, QImage::Format_RGB32);
    tile.fill(Qt::white);
    QPainter painter(&tile);
    painter.drawImage(0, 0, reduced.convertToFormat(QImage::Format_RGB32));
    return tile;
}

bool ThumbnailMaker::makeThumbnail(const QString& pagePath, const QString& thumbPath,
                                   const QString& home, QImage* made)
{
    if (QFile::exists(thumbPath))
        QFile::remove(thumbPath);
    if (!QFile::exists(pagePath) || !PagePaths::ensurePathExists(thumbPath, home))
        return false;
    return writeThumbnail(reducedImage(pagePath), thumbPath, made);
}

bool ThumbnailMaker::makeThumbnailFromData(const QByteArray& page, const QString& thumbPath,
                                           const QString& home, QImage* made)
{
    if (QFile::exists(thumbPath))
        QFile::remove(thumbPath);
    if (!PagePaths::ensurePathExists(thumbPath, home))
        return false;
    return writeThumbnail(reducedImageFromData(page), thumbPath, made);
}

bool ThumbnailMaker::writeThumbnail(const QImage& reduced, const QString& thumbPath, QImage* made)
{
    if (reduced.isNull())
        return false;
    // Written aside and renamed into place: the page pane and a paste may make one thumbnail
    // at once, and a reader must never find half a file. Not synced: a thumbnail lost to a
    // power cut is made again when it is missed.
    const auto failed = [&](const QString& reason) {
        qCWarning(lcFiling).noquote() << "No thumbnail written to" << thumbPath + ':' << reason;
        return false;
    };
    PartFile part(thumbPath);
    if (!part.open())
        return failed(part.errorString());
    QFile file;
    if (!file.open(part.handle(), QIODevice::WriteOnly, QFileDevice::DontCloseHandle))
        return failed(file.errorString());
    QImageWriter writer(&file, "jpeg");
    writer.setQuality(qtJpegQuality(10));
    const QImage tiled = tile(reduced);
    const bool written = writer.write(tiled) && file.flush();
    file.close();
    if (!written)
        return failed(writer.error() != QImageWriter::UnknownError ? writer.errorString()
                                                                   : file.errorString());
    if (part.place(PartFile::Placing::Replace, false) != PartFile::Placed::Done)
        return failed(part.errorString());
    if (made)
        *made = tiled;
    return true;
}

} // namespace qmr
