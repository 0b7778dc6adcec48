#pragma once

#include <QString>
#include <QVector>

#include "core/level.h"

namespace qmr {

class Database;

// What lies below one item: the count at each deeper level, the bytes of its pages and the
// sum of its documents' amounts.
struct Statistics
{
    QVector<qint64> counts; // index = level (Drawer .. Page); levels above the item stay 0
    qint64 bytes = 0;       // 64-bit: the sum of many 32-bit sizes
    double amount = 0;      // documents with no amount add nothing

    qint64 count(Level level) const { return counts.value(static_cast<int>(level)); }
    // "1,234,567 bytes"; "0 bytes" when there is nothing.
    QString bytesText() const;
    // "$1,234.50"; "$0.00" when there is nothing.
    QString amountText() const;
};

class ItemStatistics
{
public:
    explicit ItemStatistics(Database& db) : m_db(db) {}
    Statistics of(Level level, qint32 id) const;

private:
    Database& m_db;
};

} // namespace qmr
