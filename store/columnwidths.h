#pragma once

#include <QString>

namespace qmr {

// The widths of the text columns. The store refuses longer values through named CHECK
// constraints ("Cabinet_Name_80"); writers test first so that the user reads a plain message.
class ColumnWidths
{
public:
    // 0 when the column has no width.
    static int widthOf(const QString& table, const QString& column);
    // The length of a value in characters, counted as the store's CHECK constraints count.
    static qsizetype length(const QString& value);
    // Throws StoreError with a clear message when `value` is too long for the column.
    static void check(const QString& table, const QString& column, const QString& value);
    // The message for a value that is too long.
    static QString message(const QString& table, const QString& column, int width);
    // The message for an engine text "CHECK constraint failed: Table_Column_Width", or "".
    static QString messageForConstraint(const QString& engineText);
    // The column definition clause: "Name VARCHAR(80) COLLATE NOCASE CONSTRAINT ...".
    static QString textColumn(const QString& table, const QString& column, int width);
};

} // namespace qmr
