#include "core/imageresolution.h"

#include <QFile>
#include <QImage>
#include <cmath>

namespace qmr {

namespace {

// Enough of a file to pass the segments before a JPEG's picture data or a PNG's first chunks.
constexpr qint64 kHeadBytes = 256 * 1024;

quint32 bigEndian(const QByteArray& b, qsizetype at, int bytes)
{
    quint32 v = 0;
    for (int i = 0; i < bytes; ++i)
        v = (v << 8) | quint8(b.at(at + i));
    return v;
}

int dpiOf(double perUnit, double unitsPerInch)
{
    return int(std::lround(perUnit * unitsPerInch));
}

bool readJpeg(const QByteArray& b, FileResolution& result)
{
    qsizetype at = 2; // after the start-of-image marker
    while (at + 4 <= b.size()) {
        if (quint8(b.at(at)) != 0xFF)
            return false;
        const quint8 marker = quint8(b.at(at + 1));
        if (marker == 0xFF) { // fill byte
            ++at;
            continue;
        }
        if (marker == 0xDA || marker == 0xD9) // picture data or end: no JFIF header came
            return true;
        const qsizetype length = qsizetype(bigEndian(b, at + 2, 2));
        const qsizetype data = at + 4;
        if (marker == 0xE0 && length >= 14 && data + 12 <= b.size() &&
            b.mid(data, 5) == QByteArray("JFIF", 5)) {
            const int units = quint8(b.at(data + 7));
            const quint32 x = bigEndian(b, data + 8, 2);
            const quint32 y = bigEndian(b, data + 10, 2);
            if (units == 1)
                result = {int(x), int(y)};
            else if (units == 2)
                result = {dpiOf(x, 2.54), dpiOf(y, 2.54)};
            return true; // units 0 states only the aspect ratio
        }
        at += 2 + length;
    }
    return true;
}

bool readPng(const QByteArray& b, FileResolution& result)
{
    qsizetype at = 8; // after the signature
    while (at + 8 <= b.size()) {
        const qsizetype length = qsizetype(bigEndian(b, at, 4));
        const QByteArray type = b.mid(at + 4, 4);
        if (type == "IDAT" || type == "IEND")
            return true;
        if (type == "pHYs" && length >= 9 && at + 8 + 9 <= b.size()) {
            const quint32 x = bigEndian(b, at + 8, 4);
            const quint32 y = bigEndian(b, at + 12, 4);
            if (quint8(b.at(at + 16)) == 1) // per metre
                result = {dpiOf(x, 0.0254), dpiOf(y, 0.0254)};
            return true;
        }
        at += 12 + length;
    }
    return true;
}

} // namespace

bool ImageResolution::readHeader(const QByteArray& head, FileResolution& result)
{
    result = {};
    if (head.startsWith("\xFF\xD8"))
        return readJpeg(head, result);
    if (head.startsWith("\x89PNG\r\n\x1A\n"))
        return readPng(head, result);
    return false;
}

FileResolution ImageResolution::read(const QString& path, const QImage& decoded)
{
    FileResolution result;
    QFile file(path);
    if (file.open(QIODevice::ReadOnly) && readHeader(file.read(kHeadBytes), result))
        return result;
    const QImage blank(1, 1, QImage::Format_RGB32);
    if (decoded.isNull() || decoded.dotsPerMeterX() == blank.dotsPerMeterX())
        return {};
    return {dpiOf(decoded.dotsPerMeterX(), 0.0254), dpiOf(decoded.dotsPerMeterY(), 0.0254)};
}

} // namespace qmr
