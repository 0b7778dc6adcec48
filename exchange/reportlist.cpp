#include "exchange/reportlist.h"

#include <QCoreApplication>

namespace qmr {

namespace {
constexpr int kNamedEntries = 15;
} // namespace

QString reportList(const QStringList& entries)
{
    QStringList lines = entries.mid(0, kNamedEntries);
    if (entries.size() > kNamedEntries)
        lines << QCoreApplication::translate("qmr::ReportList", "... and %1 more.")
                     .arg(entries.size() - kNamedEntries);
    return lines.join(QStringLiteral("\r\n"));
}

} // namespace qmr
