#include "exchange/exportreport.h"

#include "exchange/reportlist.h"

namespace qmr {

QString ExportReport::reportText() const
{
    // An export that something ended early does not call itself complete.
    if (endedEarly())
        return tr("Export not complete. %1 pages copied before it ended.").arg(pagesCopied);
    return tr("Export complete. %1 pages copied.").arg(pagesCopied);
}

QStringList ExportReport::failures() const
{
    QStringList all = problems;
    if (!error.isEmpty() && !all.contains(error))
        all << error;
    return all;
}

QString ExportReport::messageText() const
{
    const QStringList failed = failures();
    if (failed.isEmpty())
        return reportText();
    return reportText() + QStringLiteral("\r\n\r\n") + reportList(failed);
}

} // namespace qmr
