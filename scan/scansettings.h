#pragma once

#include <QString>

#include "scan/scansource.h"

namespace qmr {

class Settings;

// The scan settings as the scan reads them, each with its default: the colour letters, the
// resolutions and qualities by kind of page, and the request that a kind of scan makes.
class ScanSettings
{
public:
    explicit ScanSettings(const Settings& settings) : m_settings(settings) {}

    // "B" for "black & white", "G" for "grayscale", "C" for "color", read from the
    // lower-cased setting; anything else is "C".
    QString picScanType() const;
    QString docScanType() const;
    int picDpi() const;
    int docDpi() const;
    int picQuality() const;
    int docQuality() const;

    // The kind of the current scan: "document", "picture" or "camera", lower-cased.
    QString imageType() const;
    bool isCamera() const { return imageType() == QLatin1String("camera"); }
    // Pictures and the camera take the picture values; everything else the document values.
    bool usesPictureValues() const;
    // The device of the current kind: the camera's for "camera", else the scanner's.
    QString source() const;
    // The request of the current kind: its device, resolution and colour, and the feeder
    // (never for the camera) with duplex where the feeder is on and "ScanDuplex" is "Y".
    ScanRequest request() const;

    static QString letterOf(const QString& scanType);
    static ScanColour colourOf(const QString& letter);

private:
    const Settings& m_settings;
};

} // namespace qmr
