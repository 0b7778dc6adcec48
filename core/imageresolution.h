#pragma once

#include <QString>

class QImage;

namespace qmr {

// Dots per inch as a picture file states them; 0 on an axis means the file states none.
struct FileResolution
{
    int x = 0;
    int y = 0;
};

// Reads the resolution a page file stores. Qt's readers put a screen's resolution into any
// image whose file has none, so the JPEG and PNG headers are read here directly; for other
// formats the decoded image's value counts unless it is that screen default.
class ImageResolution
{
public:
    static FileResolution read(const QString& path, const QImage& decoded);
    // The headers alone: nothing when the bytes are neither JPEG nor PNG.
    static bool readHeader(const QByteArray& head, FileResolution& result);
};

} // namespace qmr
