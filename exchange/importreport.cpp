#include "exchange/importreport.h"

#include "exchange/reportlist.h"

namespace qmr {

QString ImportReport::skippedText() const
{
    return reportList(skipped);
}

QString ImportReport::reportText() const
{
    QString text =
        tr("%1 files imported.\r\n%2 shortcuts created.").arg(filesImported).arg(shortcutsCreated);
    if (stopped)
        text += tr("\r\nImport stopped by user.");
    return text;
}

} // namespace qmr
