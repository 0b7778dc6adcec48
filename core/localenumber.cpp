#include "core/localenumber.h"

#include <QLocale>
#include <cmath>

namespace qmr {

std::optional<double> LocaleNumber::read(const QString& text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return std::nullopt;
    // The user's own form first: in a locale with a decimal comma "1.234" is a thousand.
    for (const QLocale& locale : {QLocale(), QLocale::c()}) {
        bool ok = false;
        const double value = locale.toDouble(trimmed, &ok);
        if (ok && std::isfinite(value))
            return value;
    }
    return std::nullopt;
}

} // namespace qmr
