#pragma once

#include <QSize>
#include <QString>

namespace qmr {

class Settings;

// What decides the size of a printed page besides its picture.
struct PrintScaleSettings
{
    int scanDpi = 150;     // the resolution of the kind of the last scan
    double widthPct = 100; // already limited to 10..200
    double heightPct = 100;
};

// The size a page is drawn at on the printer, in printer dots. A file resolution below 350
// on both axes is taken as true and used crossed (the horizontal resolution scales the
// height, the vertical one the width); one of 350 or more, or none stored (0), gives way to
// the scan resolution. Every step is rounded, and the result is 95% of the scaled size at
// 100%, a fixed margin of safety.
class PrintScale
{
public:
    static QSize printSize(const QSize& pixels, int fileDpiX, int fileDpiY, int printerDpiX,
                           int printerDpiY, const PrintScaleSettings& settings);

    // A stored percentage: below 10, above 200 or no number at all counts as 100.
    static double percentage(const QString& stored);
    // The document resolution when the last scan was of a document, else the picture one;
    // a value that is no positive number falls back to its default.
    static int scanResolution(const Settings& settings);
    static PrintScaleSettings fromSettings(const Settings& settings);
};

} // namespace qmr
