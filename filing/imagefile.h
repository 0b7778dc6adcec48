#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>
#include <optional>

#include "core/attempt.h"
#include "core/partfile.h"

class QImageReader;

namespace qmr {

// Reading and writing page images. The viewer keeps its decoders to the kinds a page is made
// of: files of the kinds it leaves to other programs (PNG, GIF, TGA...) do not load.
class ImageFile
{
public:
    // The page image in a form the edits work on (24-bit colour, or 8-bit grey as the file
    // has it); a null image when the file is missing, unreadable or of a refused kind (these
    // stay silent); refused with the message naming the file when it is too large to open.
    static Attempt<QImage> load(const QString& path);
    // The same from a page file's contents; `name` stands for the file in the message.
    static Attempt<QImage> loadFromData(const QByteArray& page, const QString& name);
    // Whether the viewer leaves a format (by Qt's format name) to other programs.
    static bool isRefusedFormat(const QByteArray& format);
    // An image from elsewhere (the clipboard) in the form of a loaded page: transparency
    // lies on white.
    static QImage normalised(const QImage& image);

    // Writes a JPEG at the quality factor of the settings (lower is better) to a file aside
    // (made anew, never through a link) and puts it at `path`, so that a failed write leaves
    // the old file whole. With NoReplace a file standing at `path` stays and is a failure.
    // A failure's text names the path.
    static Attempt<> writeJpeg(const QImage& image, const QString& path, int qualityFactor,
                               PartFile::Placing placing = PartFile::Placing::Replace);

private:
    static Attempt<QImage> load(QImageReader& reader, const QString& name);
};

} // namespace qmr
