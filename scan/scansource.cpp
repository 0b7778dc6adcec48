#include "scan/scansource.h"

namespace qmr {

QString ScanDevice::label() const
{
    const QString maker = (vendor + QLatin1Char(' ') + model).trimmed();
    return maker.isEmpty() ? name : maker + QStringLiteral(" (") + name + QLatin1Char(')');
}

} // namespace qmr
