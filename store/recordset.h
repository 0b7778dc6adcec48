#pragma once

#include <QDate>
#include <QStringList>
#include <QVariant>
#include <QVector>

namespace qmr {

// A complete snapshot of a query's result: the record count is exact at once and the rows
// stay valid whatever happens to the store afterwards.
class Recordset
{
public:
    Recordset() = default;
    Recordset(QStringList columns, QVector<QVector<QVariant>> rows);

    int recordCount() const { return m_rows.size(); }
    bool isEmpty() const { return m_rows.isEmpty(); }
    const QStringList& columns() const { return m_columns; }

    // Fields by index or by name (names compare without regard to case).
    QVariant value(int row, int column) const;
    QVariant value(int row, const QString& column) const;
    QString text(int row, const QString& column) const; // NullToString of the field
    qint32 integer(int row, const QString& column, qint32 ifNull = -1) const;
    // A stored ISO date (or date-time); null when the field is Null or unreadable.
    QDate date(int row, const QString& column) const;

private:
    int columnIndex(const QString& column) const;

    QStringList m_columns;
    QVector<QVector<QVariant>> m_rows;
};

} // namespace qmr
