#include "store/recordset.h"

#include <QCoreApplication>

#include "store/sqltext.h"
#include "store/storeerror.h"

namespace qmr {

Recordset::Recordset(QStringList columns, QVector<QVector<QVariant>> rows)
    : m_columns(std::move(columns)), m_rows(std::move(rows))
{
}

int Recordset::columnIndex(const QString& column) const
{
    for (int i = 0; i < m_columns.size(); ++i)
        if (m_columns.at(i).compare(column, Qt::CaseInsensitive) == 0)
            return i;
    throw StoreError(
        QCoreApplication::translate("qmr::Recordset", "The field %1 is not in the result.")
            .arg(column));
}

QVariant Recordset::value(int row, int column) const
{
    if (row < 0 || row >= m_rows.size() || column < 0 || column >= m_columns.size())
        throw StoreError(
            QCoreApplication::translate("qmr::Recordset", "No field %1 in row %2 of the result.")
                .arg(column)
                .arg(row));
    return m_rows.at(row).at(column);
}

QVariant Recordset::value(int row, const QString& column) const
{
    return value(row, columnIndex(column));
}

QString Recordset::text(int row, const QString& column) const
{
    return nullToString(value(row, column));
}

qint32 Recordset::integer(int row, const QString& column, qint32 ifNull) const
{
    const QVariant v = value(row, column);
    if (v.isNull())
        return ifNull;
    bool ok = false;
    const qint64 n = v.toLongLong(&ok);
    return ok ? static_cast<qint32>(n) : ifNull;
}

QDate Recordset::date(int row, const QString& column) const
{
    const QString t = text(row, column).trimmed();
    if (t.isEmpty())
        return QDate();
    return QDate::fromString(t.left(10), Qt::ISODate);
}

} // namespace qmr
