#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

class QImageReader;

namespace qmr {

// The small pictures of pages. A made thumbnail is a 100 by 100 JPEG tile, white, with the
// page reduced into its top left corner; the viewer's save writes the reduced page alone.
class ThumbnailMaker
{
public:
    static constexpr int kThumbSide = 100;

    // Rebuilds one thumbnail from its page file: any old one is removed first, and nothing is
    // written when the page cannot be read. `home` is the directory whose dots do not count
    // when the thumbnail's directories are made. True when the file was written.
    // `made`, when given, receives the tile written, for a caller that shows it at once.
    static bool makeThumbnail(const QString& pagePath, const QString& thumbPath,
                              const QString& home = QString(), QImage* made = nullptr);
    // The same from the page file's contents, for a caller that has just read them.
    static bool makeThumbnailFromData(const QByteArray& page, const QString& thumbPath,
                                      const QString& home = QString(), QImage* made = nullptr);
    // The page reduced to fit 100 pixels on its longer side (squares by their height), read
    // at reduced size where the decoder can, which is many times faster for JPEG.
    static QImage reducedImage(const QString& pagePath);
    static QImage reducedImageFromData(const QByteArray& page);
    static QSize reducedSize(const QSize& size);
    // The first page of a PDF drawn to fit 100 pixels, on white. Null for a file that needs
    // a password, cannot be read as a PDF or has no pages.
    static QImage reducedPdfPage(const QString& pdfPath);
    // The white tile with `reduced` in its top left corner.
    static QImage tile(const QImage& reduced);

    // Page files up to this size are read whole before they are decoded: the decoder's many
    // small reads from a file cost a tenth of its time.
    static constexpr qint64 kReadWhole = 16 << 20;

private:
    static QImage reduce(QImageReader& reader);
    static bool writeThumbnail(const QImage& reduced, const QString& thumbPath, QImage* made);
};

// The quality factor of the settings and the design, on which lower is better (10 is a small
// file of high quality, 100 the smallest and worst), as Qt's 0..100 scale where higher is
// better: 100 - factor, kept within 1..100.
int qtJpegQuality(int factor);

} // namespace qmr
