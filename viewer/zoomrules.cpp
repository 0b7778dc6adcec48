#include "viewer/zoomrules.h"

#include <QtMath>

namespace qmr {

std::optional<double> ZoomRules::zoomIn(double percent)
{
    if (percent < kMaximum)
        return percent * 1.25;
    return std::nullopt;
}

std::optional<double> ZoomRules::zoomOut(double percent)
{
    if (percent > kMinimum)
        return percent * 0.75;
    return std::nullopt;
}

double ZoomRules::fit(int controlPixels, int imagePixels)
{
    if (imagePixels <= 0)
        return 100;
    const double percent = qRound(controlPixels * 15.0 / (imagePixels * 16.0) * 100.0);
    if (percent > kMaximum || percent < kMinimum)
        return 100;
    return percent;
}

} // namespace qmr
