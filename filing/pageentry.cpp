#include "filing/pageentry.h"

#include <QLocale>

#include "store/itemrules.h"
#include "store/pagepaths.h"
#include "store/pagestore.h"

namespace qmr {

PageEntry PageEntry::fromRow(const PageRow& row, const PagePaths& paths)
{
    PageEntry e;
    e.pageId = row.id;
    e.pageNumber = row.pageNumber;
    e.filename = row.filename.isEmpty() ? paths.computedPagePath(row.id) : row.filename;
    e.scanDate = ItemRules::displayDate(row.scanDate);
    e.fileSize = row.hasFileSize ? QLocale().toString(row.fileSize) : QString();
    e.fileType = row.fileType;
    e.shortcut = row.shortcut;
    e.pagePath = paths.pagePath(row.id, row.filename);
    if (!row.shortcut)
        e.thumbPath = paths.thumbPath(row.id, row.filename);
    return e;
}

QString PageEntry::thumbnailText() const
{
    if (shortcut || pageNumber == 0)
        return PagePaths::filePart(filename);
    return QStringLiteral("Page ") + QString::number(pageNumber);
}

QString PageEntry::listText() const
{
    return shortcut ? QString() : QString::number(pageNumber);
}

QString PageEntry::sortKey() const
{
    const QString digits =
        QStringLiteral("%1").arg(qAbs(qint64(pageNumber)), 2, 10, QLatin1Char('0'));
    return pageNumber < 0 ? QLatin1Char('-') + digits : digits;
}

} // namespace qmr
