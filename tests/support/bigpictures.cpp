#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

#include "tests/support/bigpictures.h"
#include "tests/support/headerbytes.h"

namespace qmr::test {

namespace {

QString scanFile(const QSize& size)
{
    // Kept for the whole run: each test copies from here.
    static QTemporaryDir dir;
    const QString path =
        dir.filePath(QStringLiteral("scan-%1x%2.jpg").arg(size.width()).arg(size.height()));
    if (QFile::exists(path))
        return path;
    QImage image(size, QImage::Format_RGB32);
    image.fill(BigPictures::paper());
    image.setDotsPerMeterX(qRound(BigPictures::kScanDpi / 0.0254));
    image.setDotsPerMeterY(qRound(BigPictures::kScanDpi / 0.0254));
    {
        QPainter p(&image);
        const int w = size.width();
        const int h = size.height();
        p.fillRect(w / 10, h / 10, w * 8 / 10, h / 50, QColor(30, 30, 90));
        for (int y = h / 5; y < h * 9 / 10; y += h / 12)
            p.fillRect(w / 10, y, w * 7 / 10, h / 120, QColor(60, 40, 40));
        p.fillRect(w * 6 / 10, h * 8 / 10, w / 4, h / 12, QColor(160, 20, 20));
    }
    // A plain page at a middling quality writes quickly and stays a few megabytes.
    return image.save(path, "JPG", 50) ? path : QString();
}

quint32 crc32(const QByteArray& bytes)
{
    quint32 crc = 0xFFFFFFFFu;
    for (const char c : bytes) {
        crc ^= quint8(c);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
    }
    return ~crc;
}

QByteArray chunk(const QByteArray& type, const QByteArray& data)
{
    return bigEndian(quint32(data.size()), 4) + type + data + bigEndian(crc32(type + data), 4);
}

} // namespace

QByteArray BigPictures::pngStating(const QSize& size)
{
    const QByteArray header = bigEndian(quint32(size.width()), 4) +
                              bigEndian(quint32(size.height()), 4) +
                              QByteArray("\x08\x02\0\0\0", 5);
    // qCompress puts the length before the zlib stream, which PNG does not want.
    const QByteArray rows = qCompress(QByteArray(4096, '\0')).mid(4);
    return QByteArray("\x89PNG\r\n\x1A\n", 8) + chunk("IHDR", header) + chunk("IDAT", rows) +
           chunk("IEND", QByteArray());
}

QByteArray BigPictures::bmpStating(const QSize& size)
{
    const QByteArray info = littleEndian(40, 4) + littleEndian(quint32(size.width()), 4) +
                            littleEndian(quint32(size.height()), 4) + littleEndian(1, 2) +
                            littleEndian(24, 2) + QByteArray(24, '\0');
    const QByteArray rows(64, '\x7F');
    return "BM" + littleEndian(14 + 40 + rows.size(), 4) + littleEndian(0, 4) +
           littleEndian(14 + 40, 4) + info + rows;
}

bool BigPictures::copyScan(const QSize& size, const QString& path)
{
    const QString made = scanFile(size);
    QDir().mkpath(QFileInfo(path).absolutePath());
    return !made.isEmpty() && QFile::copy(made, path);
}

QByteArray BigPictures::jpegStating(const QSize& size)
{
    QImage tiny(16, 16, QImage::Format_RGB32);
    tiny.fill(Qt::gray);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    tiny.save(&buffer, "JPG");
    // The frame header (FF C0, length, precision, height, width) is made to state the size;
    // the picture data stays that of 16 by 16.
    const qsizetype frame = bytes.indexOf(QByteArray("\xFF\xC0", 2));
    if (frame < 0)
        return QByteArray();
    bytes[frame + 5] = char(size.height() >> 8);
    bytes[frame + 6] = char(size.height());
    bytes[frame + 7] = char(size.width() >> 8);
    bytes[frame + 8] = char(size.width());
    return bytes;
}

bool BigPictures::writeFile(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace qmr::test
