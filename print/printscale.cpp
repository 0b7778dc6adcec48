#include "print/printscale.h"

#include <cmath>

#include "core/settings.h"

namespace qmr {

namespace {

constexpr int kTrustedBelow = 350;
constexpr double kSafety = 0.95;

int rounded(double value)
{
    return int(std::lround(value));
}

int positiveOr(double value, const SettingKey& key)
{
    if (value >= 1)
        return rounded(value);
    return QString::fromLatin1(key.defaultValue).toInt();
}

} // namespace

QSize PrintScale::printSize(const QSize& pixels, int fileDpiX, int fileDpiY, int printerDpiX,
                            int printerDpiY, const PrintScaleSettings& settings)
{
    const double w = pixels.width();
    const double h = pixels.height();
    int height = 0;
    int width = 0;
    if (fileDpiX > 0 && fileDpiY > 0 && fileDpiX < kTrustedBelow && fileDpiY < kTrustedBelow) {
        height = rounded(double(printerDpiY) / fileDpiX * h);
        width = rounded(double(printerDpiX) / fileDpiY * w);
    } else {
        const double scan = settings.scanDpi > 0 ? settings.scanDpi : 150;
        height = rounded(printerDpiY / scan * h);
        width = rounded(printerDpiX / scan * w);
    }
    height = rounded(height * kSafety * settings.heightPct / 100);
    width = rounded(width * kSafety * settings.widthPct / 100);
    return QSize(width, height);
}

double PrintScale::percentage(const QString& stored)
{
    bool isNumber = false;
    const double value = stored.trimmed().toDouble(&isNumber);
    if (!isNumber || value < 10 || value > 200)
        return 100;
    return value;
}

int PrintScale::scanResolution(const Settings& settings)
{
    if (settings.get(keys::ImageType).compare(QLatin1String("document"), Qt::CaseInsensitive) == 0)
        return positiveOr(settings.number(keys::DocDpi), keys::DocDpi);
    return positiveOr(settings.number(keys::PicDpi), keys::PicDpi);
}

PrintScaleSettings PrintScale::fromSettings(const Settings& settings)
{
    PrintScaleSettings s;
    s.scanDpi = scanResolution(settings);
    s.widthPct = percentage(settings.get(keys::PrintWidthPct));
    s.heightPct = percentage(settings.get(keys::PrintHeightPct));
    return s;
}

} // namespace qmr
