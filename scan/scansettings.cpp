#include "scan/scansettings.h"

#include "core/settings.h"

namespace qmr {

QString ScanSettings::letterOf(const QString& scanType)
{
    const QString t = scanType.toLower();
    if (t == QLatin1String("black & white"))
        return QStringLiteral("B");
    if (t == QLatin1String("grayscale"))
        return QStringLiteral("G");
    return QStringLiteral("C");
}

ScanColour ScanSettings::colourOf(const QString& letter)
{
    if (letter == QLatin1String("B"))
        return ScanColour::LineArt;
    if (letter == QLatin1String("G"))
        return ScanColour::Grey;
    return ScanColour::Colour;
}

QString ScanSettings::picScanType() const
{
    return letterOf(m_settings.get(keys::PicScanType));
}

QString ScanSettings::docScanType() const
{
    return letterOf(m_settings.get(keys::DocScanType));
}

int ScanSettings::picDpi() const
{
    return int(m_settings.number(keys::PicDpi));
}

int ScanSettings::docDpi() const
{
    return int(m_settings.number(keys::DocDpi));
}

int ScanSettings::picQuality() const
{
    return int(m_settings.number(keys::PicQuality));
}

int ScanSettings::docQuality() const
{
    return int(m_settings.number(keys::DocQuality));
}

QString ScanSettings::imageType() const
{
    return m_settings.get(keys::ImageType).toLower();
}

bool ScanSettings::usesPictureValues() const
{
    const QString type = imageType();
    return type == QLatin1String("picture") || type == QLatin1String("camera");
}

QString ScanSettings::source() const
{
    return m_settings.get(isCamera() ? keys::CameraSource : keys::ScanSource);
}

ScanRequest ScanSettings::request() const
{
    ScanRequest r;
    r.device = source();
    const bool picture = usesPictureValues();
    r.dpi = picture ? picDpi() : docDpi();
    r.colour = colourOf(picture ? picScanType() : docScanType());
    r.feeder = !isCamera() && m_settings.flag(keys::ScanFeeder);
    r.duplex = r.feeder && m_settings.flag(keys::ScanDuplex);
    return r;
}

} // namespace qmr
