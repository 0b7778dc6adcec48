#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <optional>

#include "core/attempt.h"

class QImageReader;

namespace qmr {

// A picture as read: the image, or why there is none.
struct LoadedImage
{
    QImage image;
    QString error;        // the reason when the image is null
    bool refused = false; // too large to open, rather than unreadable
};

// The one way the program reads pictures, so that one bound on their memory holds for the
// viewer, thumbnails, printing and mail alike. A picture whose stated size needs more, or
// has a side longer than any page, is refused before any of it is decoded, with a reason the
// caller puts beside the file's name; a decoder that gets that far is stopped by the same
// bound.
class ImageLoader
{
public:
    // A 600 dpi A3 colour page is 7016 by 9921 pixels, 278 MB at four bytes a pixel; the
    // bound leaves room for larger sheets and an edit's copy beside the page.
    static constexpr int kLimitMb = 1024;
    // No page has a longer side (2.7 m at 600 dpi); a few bytes stating a picture one pixel
    // wide and millions tall would otherwise keep a decoder busy within the bound.
    static constexpr int kMaxSide = 65535;

    // Hands the bound to every decoder of the process (QImageReader's allocation limit).
    // Each reading below does so first; the program's entry points do so at start as well.
    static void applyLimit();
    // The bytes a picture of `size` takes in the form the program keeps it: one a pixel for
    // grey, four for colour, more for a deeper stated format.
    static qint64 bytesFor(const QSize& size, QImage::Format format);
    // Whether the reader's picture may be decoded: refused, with the reason, when its stated
    // size is too large; it goes on when it fits or states no size.
    static Attempt<> checkSize(QImageReader& reader);
    // The whole picture, turned as its camera noted.
    static LoadedImage read(QImageReader& reader);
    // For a file handed on without decoding (a mail's attachment): refused, with the message
    // naming it, when it is a picture too large to open.
    static Attempt<> checkFile(const QString& path);
    // "The picture '<path>' is too large to open: <reason>."
    static QString tooLargeMessage(const QString& path, const QString& reason);
};

} // namespace qmr
