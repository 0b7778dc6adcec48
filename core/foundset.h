#pragma once

#include <QString>
#include <QStringList>

namespace qmr {

// What a found document's page list keeps of the running search: its scan-date and
// file-size conditions, in the store's form. A new search empties them first; each cabinet
// searched writes them again.
struct FoundSet
{
    QString scanDateCondition;
    QString fileSizeCondition;

    void clear()
    {
        scanDateCondition.clear();
        fileSizeCondition.clear();
    }
    // The conditions that are set, scan date first.
    QStringList pageConditions() const
    {
        QStringList conditions;
        for (const QString& c : {scanDateCondition, fileSizeCondition})
            if (!c.isEmpty())
                conditions << c;
        return conditions;
    }
};

} // namespace qmr
