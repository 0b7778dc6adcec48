#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>
#include <QVector>

#include "core/attempt.h"

namespace qmr {

// The layout of one frame of image data as the device describes it.
struct FrameFormat
{
    enum class Kind { Grey, Rgb, Red, Green, Blue, Jpeg, Other };
    Kind kind = Kind::Grey;
    int depth = 8;        // bits per sample: 1, 8 or 16
    int bytesPerLine = 0; // may hold padding beyond the pixels
    int pixelsPerLine = 0;
    int lines = -1; // -1 when the device does not know beforehand
};

// Turns the frames of one page into a QImage: 1-bit line art (1 is black), 8-bit grey,
// pixel-interleaved colour, and the three frames of a three-pass colour scan, with 16-bit
// samples (in the machine's byte order) scaled down to 8 and any padding at the line ends
// left out. The image carries the scan's resolution, so that it prints at its true size.
class FrameAssembler
{
public:
    // Fails, with the reason, for a layout that cannot be read.
    Attempt<> beginFrame(const FrameFormat& format);
    void append(const char* data, qsizetype length);
    void endFrame();

    // The bytes a frame should bring, 0 when unknown.
    qint64 expectedBytes() const;
    qint64 receivedBytes() const { return m_data.size(); }
    // The page once its last frame has ended; null when no whole line came.
    QImage image(double dpi) const;

private:
    struct Frame
    {
        FrameFormat format;
        QByteArray data;
    };
    QImage channelsToImage() const;
    static QImage frameToImage(const Frame& frame);

    FrameFormat m_current;
    QByteArray m_data;
    QVector<Frame> m_frames;
};

} // namespace qmr
