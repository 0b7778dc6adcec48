#include "store/columnwidths.h"

#include "store/storeerror.h"

#include <QRegularExpression>
#include <array>

namespace qmr {

namespace {
struct Width
{
    const char* table;
    const char* column;
    int width;
};
constexpr std::array<Width, 13> kWidths{{
    {"Cabinet", "Name", 80},
    {"Cabinet", "Password", 10},
    {"Cabinet", "StoragePath", 250},
    {"Drawer", "Name", 80},
    {"Folder", "Name", 80},
    {"Folder", "Email", 100},
    {"Document", "Name", 80},
    {"Page", "Name", 80},
    {"Page", "InternalStatus", 2},
    {"Page", "Filename", 250},
    {"Page", "Filetype", 3},
    {"Page", "ShortcutYN", 1},
    {"Version", "", 0},
}};
} // namespace

int ColumnWidths::widthOf(const QString& table, const QString& column)
{
    for (const Width& w : kWidths)
        if (table.compare(QLatin1String(w.table), Qt::CaseInsensitive) == 0 &&
            column.compare(QLatin1String(w.column), Qt::CaseInsensitive) == 0)
            return w.width;
    return 0;
}

QString ColumnWidths::message(const QString& table, const QString& column, int width)
{
    QString what = column == QLatin1String("StoragePath") ? QStringLiteral("storage path")
                   : column == QLatin1String("Filename")  ? QStringLiteral("file name")
                   : column == QLatin1String("Email")     ? QStringLiteral("email address")
                                                          : column.toLower();
    return QStringLiteral("The %1 is too long: a %2's %1 can have at most %3 characters.")
        .arg(what, table.toLower())
        .arg(width);
}

qsizetype ColumnWidths::length(const QString& value)
{
    // As the store's length() counts: one for a character beyond 16 bits (most emoji), which
    // a QString holds in two units.
    return value.toUcs4().size();
}

void ColumnWidths::check(const QString& table, const QString& column, const QString& value)
{
    const int width = widthOf(table, column);
    if (width > 0 && length(value) > width)
        throw StoreError(message(table, column, width));
}

QString ColumnWidths::messageForConstraint(const QString& engineText)
{
    static const QRegularExpression re(QStringLiteral("([A-Za-z]+)_([A-Za-z]+)_(\\d+)"));
    const QRegularExpressionMatch m = re.match(engineText);
    if (!m.hasMatch())
        return QString();
    return message(m.captured(1), m.captured(2), m.captured(3).toInt());
}

QString ColumnWidths::textColumn(const QString& table, const QString& column, int width)
{
    return QStringLiteral(
               "%2 VARCHAR(%3) COLLATE NOCASE CONSTRAINT %1_%2_%3 CHECK (length(%2) <= %3)")
        .arg(table, column)
        .arg(width);
}

} // namespace qmr
