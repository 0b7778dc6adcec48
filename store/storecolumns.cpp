#include "store/storecolumns.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include "store/storeerror.h"

namespace qmr {

namespace {

using T = ColumnType;

const QVector<StoreColumn> kColumns = {
    {"Cabinet", "CabinetId", T::Key, 0, 0},     {"Cabinet", "Name", T::Text, 80, 0},
    {"Cabinet", "Password", T::Text, 10, 0},    {"Cabinet", "Description", T::Memo, 0, 0},
    {"Cabinet", "Storage", T::Integer, 0, 1},   {"Cabinet", "StoragePath", T::Text, 250, 1},
    {"Drawer", "DrawerId", T::Key, 0, 0},       {"Drawer", "CabinetId", T::Parent, 0, 0},
    {"Drawer", "Name", T::Text, 80, 0},         {"Drawer", "Description", T::Memo, 0, 0},
    {"Folder", "FolderId", T::Key, 0, 0},       {"Folder", "DrawerId", T::Parent, 0, 0},
    {"Folder", "Name", T::Text, 80, 0},         {"Folder", "Description", T::Memo, 0, 0},
    {"Folder", "Email", T::Text, 100, 4},       {"Document", "DocumentId", T::Key, 0, 0},
    {"Document", "FolderId", T::Parent, 0, 0},  {"Document", "Name", T::Text, 80, 0},
    {"Document", "Description", T::Memo, 0, 0}, {"Document", "DateOnDocument", T::Date, 0, 0},
    {"Document", "Amount", T::Real, 0, 0},      {"Page", "PageId", T::Key, 0, 0},
    {"Page", "DocumentId", T::Parent, 0, 0},    {"Page", "Name", T::Text, 80, 0},
    {"Page", "PageNumber", T::Integer, 0, 0},   {"Page", "FileSize", T::Integer, 0, 0},
    {"Page", "ZoomFactor", T::Integer, 0, 0},   {"Page", "XOff", T::Integer, 0, 0},
    {"Page", "YOff", T::Integer, 0, 0},         {"Page", "InternalStatus", T::Text, 2, 0},
    {"Page", "ScanDate", T::Date, 0, 0},        {"Page", "Filename", T::Text, 250, 1},
    {"Page", "Filetype", T::Text, 3, 2},        {"Page", "ShortcutYN", T::Text, 1, 3},
    {"Version", "Version", T::Integer, 0, 0},
};

// The words a message uses for a column.
QString spokenName(const QString& column)
{
    if (column == QLatin1String("StoragePath"))
        return QCoreApplication::translate("qmr::StoreColumns", "storage path");
    if (column == QLatin1String("Filename"))
        return QCoreApplication::translate("qmr::StoreColumns", "file name");
    if (column == QLatin1String("Email"))
        return QCoreApplication::translate("qmr::StoreColumns", "email address");
    return column.toLower();
}

} // namespace

QString StoreColumn::definition() const
{
    const QString column = columnName();
    switch (type) {
    case ColumnType::Key:
        return column + QStringLiteral(" INTEGER PRIMARY KEY AUTOINCREMENT");
    case ColumnType::Parent:
        return column + QStringLiteral(" INTEGER NOT NULL");
    case ColumnType::Text:
        return QStringLiteral(
                   "%2 VARCHAR(%3) COLLATE NOCASE CONSTRAINT %1_%2_%3 CHECK (length(%2) <= %3)")
            .arg(tableName(), column)
            .arg(width);
    case ColumnType::Memo:
        return column + QStringLiteral(" TEXT COLLATE NOCASE");
    case ColumnType::Integer:
        // The version table's one column is never Null.
        return column + (QLatin1String(table) == QLatin1String("Version")
                             ? QStringLiteral(" INTEGER NOT NULL")
                             : QStringLiteral(" INTEGER"));
    case ColumnType::Real:
        return column + QStringLiteral(" REAL");
    case ColumnType::Date:
        return column + QStringLiteral(" TEXT");
    }
    return column;
}

const QVector<StoreColumn>& StoreColumns::all()
{
    return kColumns;
}

QStringList StoreColumns::tables()
{
    QStringList names;
    for (const StoreColumn& c : kColumns)
        if (!names.contains(c.tableName()))
            names << c.tableName();
    return names;
}

QVector<StoreColumn> StoreColumns::of(const QString& table, int version)
{
    QVector<StoreColumn> columns;
    for (const StoreColumn& c : kColumns)
        if (c.version <= version && table.compare(QLatin1String(c.table), Qt::CaseInsensitive) == 0)
            columns << c;
    return columns;
}

QVector<StoreColumn> StoreColumns::addedIn(int version)
{
    QVector<StoreColumn> columns;
    for (const StoreColumn& c : kColumns)
        if (c.version == version && version > 0)
            columns << c;
    return columns;
}

const StoreColumn* StoreColumns::find(const QString& table, const QString& column)
{
    for (const StoreColumn& c : kColumns)
        if (table.compare(QLatin1String(c.table), Qt::CaseInsensitive) == 0 &&
            column.compare(QLatin1String(c.name), Qt::CaseInsensitive) == 0)
            return &c;
    return nullptr;
}

int StoreColumns::widthOf(const QString& table, const QString& column)
{
    const StoreColumn* c = find(table, column);
    return c ? c->width : 0;
}

QString StoreColumns::message(const QString& table, const QString& column, int width)
{
    return QCoreApplication::translate(
               "qmr::StoreColumns", "The %1 is too long: a %2's %1 can have at most %3 characters.")
        .arg(spokenName(column), table.toLower())
        .arg(width);
}

qsizetype StoreColumns::length(const QString& value)
{
    // As the store's length() counts: one for a character beyond 16 bits (most emoji), which
    // a QString holds in two units.
    return value.toUcs4().size();
}

void StoreColumns::check(const QString& table, const QString& column, const QString& value)
{
    const int width = widthOf(table, column);
    if (width > 0 && length(value) > width)
        throw StoreError(message(table, column, width), table, column);
}

std::optional<StoreError> StoreColumns::constraintError(const QString& engineText)
{
    static const QRegularExpression re(QStringLiteral("([A-Za-z]+)_([A-Za-z]+)_(\\d+)"));
    const QRegularExpressionMatch m = re.match(engineText);
    if (!m.hasMatch())
        return std::nullopt;
    return StoreError(message(m.captured(1), m.captured(2), m.captured(3).toInt()), m.captured(1),
                      m.captured(2));
}

} // namespace qmr
