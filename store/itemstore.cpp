#include "store/itemstore.h"

#include "core/progress.h"
#include "store/cipher.h"
#include "store/columnwidths.h"
#include "store/database.h"
#include "store/itemtable.h"

namespace qmr {

QVector<ItemRow> ItemStore::children(Level level, qint32 parentId) const
{
    const ItemTable& t = ItemTable::of(level);
    const bool isCabinet = level == Level::Cabinet;
    const QString extra = level == Level::Document ? QStringLiteral(", DateOnDocument")
                          : isCabinet              ? QStringLiteral(", Password")
                                                   : QString();
    QString sql = QStringLiteral("SELECT %1, Name%2 FROM %3").arg(t.id(), extra, t.name());
    QVariantList binds;
    if (!isCabinet) {
        sql += QStringLiteral(" WHERE %1 = ?").arg(t.parent());
        binds << parentId;
    }
    sql += QStringLiteral(" ORDER BY Name, %1").arg(t.id());
    const Recordset rs = m_db.OpenRecordset(sql, binds);
    QVector<ItemRow> rows;
    rows.reserve(rs.RecordCount());
    for (int i = 0; i < rs.RecordCount(); ++i) {
        ItemRow row;
        row.id = rs.integer(i, t.id());
        row.name = rs.text(i, QStringLiteral("Name"));
        if (level == Level::Document)
            row.date = rs.date(i, QStringLiteral("DateOnDocument"));
        if (isCabinet)
            row.password = rs.text(i, QStringLiteral("Password"));
        rows << row;
    }
    return rows;
}

ItemRow ItemStore::item(Level level, qint32 id) const
{
    const ItemTable& t = ItemTable::of(level);
    const Recordset rs = m_db.OpenRecordset(
        QStringLiteral("SELECT * FROM %1 WHERE %2 = ?").arg(t.name(), t.id()), {id});
    ItemRow row;
    if (rs.RecordCount() < 1)
        return row;
    row.id = id;
    row.name = rs.text(0, QStringLiteral("Name"));
    if (level == Level::Document)
        row.date = rs.date(0, QStringLiteral("DateOnDocument"));
    if (level == Level::Cabinet)
        row.password = rs.text(0, QStringLiteral("Password"));
    return row;
}

QVector<PageRow> ItemStore::pages(qint32 documentId) const
{
    const Recordset rs = m_db.OpenRecordset(
        QStringLiteral("SELECT PageId, PageNumber, Filename, FileSize, ScanDate, ShortcutYN "
                       "FROM Page WHERE DocumentId = ? ORDER BY PageNumber, PageId"),
        {documentId});
    QVector<PageRow> rows;
    for (int i = 0; i < rs.RecordCount(); ++i) {
        PageRow row;
        row.id = rs.integer(i, QStringLiteral("PageId"));
        row.pageNumber = rs.integer(i, QStringLiteral("PageNumber"), 0);
        row.filename = rs.text(i, QStringLiteral("Filename"));
        row.fileSize = rs.value(i, QStringLiteral("FileSize")).toLongLong();
        row.scanDate = rs.date(i, QStringLiteral("ScanDate"));
        row.shortcut = rs.text(i, QStringLiteral("ShortcutYN")) == QLatin1String("Y");
        rows << row;
    }
    return rows;
}

qint32 ItemStore::parentOf(Level level, qint32 id) const
{
    const ItemTable& t = ItemTable::of(level);
    if (!*t.parentColumn)
        return -1;
    const QVariant v = m_db.scalar(
        QStringLiteral("SELECT %1 FROM %2 WHERE %3 = ?").arg(t.parent(), t.name(), t.id()), {id});
    return v.isNull() ? -1 : v.toInt();
}

qint32 ItemStore::insertItem(Level level, qint32 parentId, const QString& name)
{
    const ItemTable& t = ItemTable::of(level);
    ColumnWidths::check(t.name(), QStringLiteral("Name"), name);
    if (level == Level::Cabinet) {
        m_db.execute(QStringLiteral("INSERT INTO Cabinet (Name, Password) VALUES (?, ?)"),
                     {name, EncryptText(QString(), Cipher::key())});
    } else {
        m_db.execute(
            QStringLiteral("INSERT INTO %1 (%2, Name) VALUES (?, ?)").arg(t.name(), t.parent()),
            {parentId, name});
    }
    return m_db.lastInsertId();
}

int ItemStore::count(Level level) const
{
    return m_db.scalar(QStringLiteral("SELECT COUNT(*) FROM %1").arg(ItemTable::of(level).name()))
        .toInt();
}

bool ItemStore::cabinetNameExists(const QString& name) const
{
    return m_db.scalar(QStringLiteral("SELECT COUNT(*) FROM Cabinet WHERE Name = ?"), {name})
               .toInt() > 0;
}

void ItemStore::RepaginateDocument(qint32 documentId, const QString& documentName,
                                   Progress& progress)
{
    const int count =
        m_db.scalar(QStringLiteral("SELECT COUNT(*) FROM Page WHERE DocumentId = ?"), {documentId})
            .toInt();
    if (count < 1)
        return;
    const QString title = QStringLiteral("Repaginate ") + documentName;
    progress.start(title, 1, 2 * count);
    const Recordset rs = m_db.OpenRecordset(
        QStringLiteral("SELECT PageId FROM Page WHERE DocumentId = ? ORDER BY PageNumber, PageId"),
        {documentId});
    // Both passes in one transaction: an interrupted renumbering leaves the old numbers.
    Database::Transaction tx(m_db);
    const QString update = QStringLiteral("UPDATE Page SET PageNumber = ? WHERE PageId = ?");
    // First out of the way, from the top down, so that no two pages meet mid-way.
    int number = 9999999;
    for (int i = rs.RecordCount() - 1; i >= 0; --i) {
        progress.step(title);
        m_db.execute(update, {number--, rs.integer(i, QStringLiteral("PageId"))});
    }
    number = 1;
    for (int i = 0; i < rs.RecordCount(); ++i) {
        progress.step(title);
        m_db.execute(update, {number++, rs.integer(i, QStringLiteral("PageId"))});
    }
    tx.commit();
    progress.end();
}

} // namespace qmr
