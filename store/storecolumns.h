#pragma once

#include <QString>
#include <QVector>
#include <optional>

#include "store/storeerror.h"

namespace qmr {

enum class ColumnType { Key, Parent, Text, Memo, Integer, Real, Date };

// One column of the store: its table, type, width (text columns) and the schema version that
// brought it (0: the first tables; n: added by the upgrade to version n).
struct StoreColumn
{
    const char* table;
    const char* name;
    ColumnType type;
    int width;
    int version;

    QString tableName() const { return QLatin1String(table); }
    QString columnName() const { return QLatin1String(name); }
    // The clause of CREATE TABLE and ALTER TABLE ADD COLUMN: a text column carries its width
    // as a named CHECK constraint ("Cabinet_Name_80") so the store itself refuses more.
    QString definition() const;
};

// The one table of columns that the schema, the upgrades, the width checks and the item
// reads all use.
class StoreColumns
{
public:
    static const QVector<StoreColumn>& all();
    static QStringList tables();
    // The columns of a table that exist at `version`, in table order.
    static QVector<StoreColumn> of(const QString& table, int version = 1 << 30);
    // The columns that the upgrade to `version` adds.
    static QVector<StoreColumn> addedIn(int version);
    // nullptr when the table has no such column (case is ignored).
    static const StoreColumn* find(const QString& table, const QString& column);

    // 0 when the column has no width.
    static int widthOf(const QString& table, const QString& column);
    // The length of a value in characters, counted as the store's CHECK constraints count.
    static qsizetype length(const QString& value);
    // Throws StoreError naming the column, with a plain message, when `value` is too long.
    static void check(const QString& table, const QString& column, const QString& value);
    static QString message(const QString& table, const QString& column, int width);
    // The error for an engine text "CHECK constraint failed: Table_Column_Width", naming the
    // column; nothing for any other text.
    static std::optional<StoreError> constraintError(const QString& engineText);
};

} // namespace qmr
