#include "store/pageconditions.h"

#include "core/pagefilter.h"

namespace qmr {

void PageConditions::add(const PageFilter& filter, QStringList& conditions, QVariantList& binds)
{
    // Dates bind as the stored text of their midnight.
    if (filter.scanDate) {
        conditions << QStringLiteral("Page.ScanDate BETWEEN ? AND ?");
        binds << filter.scanDate->from << filter.scanDate->thru;
    }
    if (filter.fileSize) {
        conditions << QStringLiteral("Page.FileSize BETWEEN ? AND ?");
        binds << qlonglong(filter.fileSize->from) << qlonglong(filter.fileSize->thru);
    }
}

} // namespace qmr
