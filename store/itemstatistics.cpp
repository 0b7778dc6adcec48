#include "store/itemstatistics.h"

#include <QCoreApplication>
#include <QLocale>

#include "store/database.h"
#include "store/itemtable.h"

namespace qmr {

namespace {

// "FROM Drawer INNER JOIN Folder ON ... INNER JOIN Page ON ..." from `top` down to `bottom`.
QString joinChain(Level top, Level bottom)
{
    QString sql = ItemTable::of(top).name();
    for (int l = static_cast<int>(top) + 1; l <= static_cast<int>(bottom); ++l) {
        const ItemTable& child = ItemTable::of(static_cast<Level>(l));
        const ItemTable& parent = ItemTable::of(static_cast<Level>(l - 1));
        sql += QStringLiteral(" INNER JOIN %1 ON %2.%3 = %1.%4")
                   .arg(child.name(), parent.name(), parent.id(), child.parent());
    }
    return sql;
}

QLocale grouping()
{
    return QLocale(QLocale::English, QLocale::UnitedStates);
}

} // namespace

QString Statistics::bytesText() const
{
    return grouping().toString(bytes) +
           QCoreApplication::translate("qmr::ItemStatistics", " bytes");
}

QString Statistics::amountText() const
{
    const QString digits = grouping().toString(qAbs(amount), 'f', 2);
    return (amount < 0 ? QStringLiteral("-$") : QStringLiteral("$")) + digits;
}

Statistics ItemStatistics::of(Level level, qint32 id) const
{
    Statistics stats;
    stats.counts.fill(0, static_cast<int>(Level::Page) + 1);
    const ItemTable& top = ItemTable::of(level);
    const QString where = QStringLiteral(" WHERE %1.%2 = ?").arg(top.name(), top.id());
    auto aggregate = [&](const QString& expression, Level bottom) {
        return m_db.scalar(
            QStringLiteral("SELECT %1 FROM %2%3").arg(expression, joinChain(level, bottom), where),
            {id});
    };
    for (int l = static_cast<int>(level) + 1; l <= static_cast<int>(Level::Page); ++l) {
        const Level below = static_cast<Level>(l);
        const ItemTable& t = ItemTable::of(below);
        stats.counts[l] =
            aggregate(QStringLiteral("COUNT(%1.%2)").arg(t.name(), t.id()), below).toLongLong();
    }
    if (level < Level::Document)
        stats.amount =
            aggregate(QStringLiteral("SUM(Document.Amount)"), Level::Document).toDouble();
    if (level < Level::Page)
        stats.bytes = aggregate(QStringLiteral("SUM(Page.FileSize)"), Level::Page).toLongLong();
    return stats;
}

} // namespace qmr
