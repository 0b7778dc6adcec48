#pragma once

#include <QByteArray>
#include <QColor>
#include <QSize>
#include <QString>

namespace qmr::test {

// Pictures at the edges of what the program opens.
class BigPictures
{
public:
    // 600 dpi colour scans: A4 and A3.
    static constexpr QSize kA4{5000, 7000};
    static constexpr QSize kA3{7016, 9921};
    static constexpr int kScanDpi = 600;
    // The colour of a scan's paper; its marks are dark.
    static QColor paper() { return QColor(250, 240, 200); }

    // A scan of `size` at 600 dpi, written once per test run (it takes a while) and copied to
    // `path`. False when it could not be made or copied.
    static bool copyScan(const QSize& size, const QString& path);
    // Small colour pictures whose headers state `size` while they hold a few pixels; a BMP
    // stating a negative height stores its rows from the top down.
    static QByteArray jpegStating(const QSize& size);
    static QByteArray pngStating(const QSize& size);
    static QByteArray bmpStating(const QSize& size);
    // A JPEG stating 60000 by 60000 pixels: far too large to open.
    static QByteArray bomb() { return jpegStating(QSize(60000, 60000)); }
    static bool writeFile(const QString& path, const QByteArray& bytes);
};

} // namespace qmr::test
