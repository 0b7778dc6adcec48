#include "scan/frameassembler.h"

#include <cstring>

namespace qmr {

namespace {

int linesIn(const FrameFormat& f, qsizetype bytes)
{
    if (f.bytesPerLine <= 0)
        return 0;
    const int whole = int(bytes / f.bytesPerLine);
    return f.lines >= 0 ? qMin(f.lines, whole) : whole;
}

// One sample of a line, scaled to 0..255.
inline int sample(const uchar* line, int index, int depth)
{
    if (depth == 16) {
        quint16 v;
        std::memcpy(&v, line + 2 * index, 2);
        return v >> 8;
    }
    if (depth == 1)
        return (line[index >> 3] >> (7 - (index & 7))) & 1 ? 255 : 0;
    return line[index];
}

} // namespace

Attempt<> FrameAssembler::beginFrame(const FrameFormat& format)
{
    auto refuse = [](const QString& why) { return Failure(why); };
    if (format.kind == FrameFormat::Kind::Other)
        return refuse(QStringLiteral("the device sends its pages in a form this program "
                                     "cannot read"));
    if (format.kind != FrameFormat::Kind::Jpeg) {
        if (format.depth != 1 && format.depth != 8 && format.depth != 16)
            return refuse(QStringLiteral("the device sends %1 bits a sample, which this program "
                                         "cannot read")
                              .arg(format.depth));
        const int channels = format.kind == FrameFormat::Kind::Rgb ? 3 : 1;
        const qint64 needed = (qint64(format.pixelsPerLine) * channels * format.depth + 7) / 8;
        if (format.pixelsPerLine <= 0 || format.bytesPerLine < needed)
            return refuse(QStringLiteral("the device describes its lines inconsistently"));
    }
    m_current = format;
    m_data.clear();
    if (const qint64 expected = expectedBytes(); expected > 0 && expected < (qint64(1) << 31))
        m_data.reserve(qsizetype(expected));
    return {};
}

qint64 FrameAssembler::expectedBytes() const
{
    if (m_current.kind == FrameFormat::Kind::Jpeg || m_current.lines < 0)
        return 0;
    return qint64(m_current.bytesPerLine) * m_current.lines;
}

void FrameAssembler::append(const char* data, qsizetype length)
{
    m_data.append(data, length);
}

void FrameAssembler::endFrame()
{
    m_frames.append(Frame{m_current, m_data});
    m_data.clear();
}

QImage FrameAssembler::frameToImage(const Frame& frame)
{
    const FrameFormat& f = frame.format;
    if (f.kind == FrameFormat::Kind::Jpeg)
        return QImage::fromData(frame.data, "JPEG");
    const int width = f.pixelsPerLine;
    const int height = linesIn(f, frame.data.size());
    if (width <= 0 || height <= 0)
        return QImage();
    const auto* bytes = reinterpret_cast<const uchar*>(frame.data.constData());

    if (f.kind == FrameFormat::Kind::Grey && f.depth == 1) {
        QImage image(width, height, QImage::Format_Mono);
        if (image.isNull())
            return image;
        image.setColorTable({qRgb(255, 255, 255), qRgb(0, 0, 0)});
        const int used = (width + 7) / 8;
        for (int y = 0; y < height; ++y)
            std::memcpy(image.scanLine(y), bytes + qint64(y) * f.bytesPerLine, size_t(used));
        return image;
    }
    if (f.kind == FrameFormat::Kind::Rgb) {
        QImage image(width, height, QImage::Format_RGB32);
        if (image.isNull())
            return image;
        for (int y = 0; y < height; ++y) {
            const uchar* line = bytes + qint64(y) * f.bytesPerLine;
            auto* out = reinterpret_cast<QRgb*>(image.scanLine(y));
            if (f.depth == 8) {
                for (int x = 0; x < width; ++x, line += 3)
                    out[x] = qRgb(line[0], line[1], line[2]);
            } else {
                for (int x = 0; x < width; ++x)
                    out[x] = qRgb(sample(line, 3 * x, f.depth), sample(line, 3 * x + 1, f.depth),
                                  sample(line, 3 * x + 2, f.depth));
            }
        }
        return image;
    }
    // A grey page, or one band of a three-pass colour page (where 1 is full intensity).
    QImage image(width, height, QImage::Format_Grayscale8);
    if (image.isNull())
        return image;
    for (int y = 0; y < height; ++y) {
        const uchar* line = bytes + qint64(y) * f.bytesPerLine;
        uchar* out = image.scanLine(y);
        if (f.depth == 8)
            std::memcpy(out, line, size_t(width));
        else
            for (int x = 0; x < width; ++x)
                out[x] = uchar(sample(line, x, f.depth));
    }
    return image;
}

QImage FrameAssembler::channelsToImage() const
{
    QImage red, green, blue;
    for (const Frame& frame : m_frames) {
        const QImage band = frameToImage(frame);
        if (frame.format.kind == FrameFormat::Kind::Red)
            red = band;
        else if (frame.format.kind == FrameFormat::Kind::Green)
            green = band;
        else if (frame.format.kind == FrameFormat::Kind::Blue)
            blue = band;
    }
    if (red.isNull() || green.isNull() || blue.isNull())
        return QImage();
    // A band that came short cuts the page to the lines all three have.
    const int width = qMin(red.width(), qMin(green.width(), blue.width()));
    const int height = qMin(red.height(), qMin(green.height(), blue.height()));
    QImage image(width, height, QImage::Format_RGB32);
    if (image.isNull())
        return image;
    for (int y = 0; y < height; ++y) {
        const uchar* r = red.constScanLine(y);
        const uchar* g = green.constScanLine(y);
        const uchar* b = blue.constScanLine(y);
        auto* out = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x)
            out[x] = qRgb(r[x], g[x], b[x]);
    }
    return image;
}

QImage FrameAssembler::image(double dpi) const
{
    if (m_frames.isEmpty())
        return QImage();
    const FrameFormat::Kind first = m_frames.first().format.kind;
    const bool bands = first == FrameFormat::Kind::Red || first == FrameFormat::Kind::Green ||
                       first == FrameFormat::Kind::Blue;
    // A single-band frame of 1-bit data is line art only when it is a grey page.
    QImage image = bands ? channelsToImage() : frameToImage(m_frames.last());
    if (!image.isNull() && dpi > 0) {
        const int dpm = qRound(dpi / 0.0254);
        image.setDotsPerMeterX(dpm);
        image.setDotsPerMeterY(dpm);
    }
    return image;
}

} // namespace qmr
