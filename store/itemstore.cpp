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
    const Recordset rs = m_db.openRecordset(sql, binds);
    QVector<ItemRow> rows;
    rows.reserve(rs.recordCount());
    for (int i = 0; i < rs.recordCount(); ++i) {
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
    const Recordset rs = m_db.openRecordset(
        QStringLiteral("SELECT * FROM %1 WHERE %2 = ?").arg(t.name(), t.id()), {id});
    ItemRow row;
    if (rs.recordCount() < 1)
        return row;
    row.id = id;
    row.name = rs.text(0, QStringLiteral("Name"));
    if (level == Level::Document)
        row.date = rs.date(0, QStringLiteral("DateOnDocument"));
    if (level == Level::Cabinet)
        row.password = rs.text(0, QStringLiteral("Password"));
    return row;
}

PageFacts ItemStore::pageFacts(qint32 pageId) const
{
    const Recordset rs =
        m_db.openRecordset(QStringLiteral("SELECT * FROM Page WHERE PageId = ?"), {pageId});
    PageFacts facts;
    if (rs.recordCount() < 1)
        return facts;
    facts.found = true;
    facts.scanDateStored = rs.text(0, QStringLiteral("ScanDate"));
    facts.scanDate = rs.date(0, QStringLiteral("ScanDate"));
    const QVariant size = rs.value(0, QStringLiteral("FileSize"));
    facts.hasFileSize = !size.isNull();
    facts.fileSize = size.toLongLong();
    facts.fileType = rs.text(0, QStringLiteral("Filetype"));
    facts.shortcut = rs.text(0, QStringLiteral("ShortcutYN")) == QLatin1String("Y");
    facts.filename = rs.text(0, QStringLiteral("Filename"));
    return facts;
}

void ItemStore::setPageNumber(qint32 pageId, qint32 number)
{
    m_db.execute(QStringLiteral("UPDATE Page SET PageNumber = ? WHERE PageId = ?"),
                 {number, pageId});
}

QVector<PageRow> ItemStore::pages(qint32 documentId) const
{
    const Recordset rs = m_db.openRecordset(
        QStringLiteral("SELECT PageId, PageNumber, Filename, FileSize, ScanDate, ShortcutYN "
                       "FROM Page WHERE DocumentId = ? ORDER BY PageNumber, PageId"),
        {documentId});
    QVector<PageRow> rows;
    for (int i = 0; i < rs.recordCount(); ++i) {
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

namespace {

// The stored columns of a level's fields, in statement order, with their values.
QVector<QPair<QString, QVariant>> fieldColumns(Level level, const ItemFields& f)
{
    QVector<QPair<QString, QVariant>> columns{{QStringLiteral("Name"), f.name},
                                              {QStringLiteral("Description"), f.description}};
    switch (level) {
    case Level::Cabinet:
        columns << qMakePair(QStringLiteral("Password"),
                             QVariant(encryptText(f.password, Cipher::key())))
                << qMakePair(QStringLiteral("Storage"), QVariant(f.storage))
                << qMakePair(QStringLiteral("StoragePath"), QVariant(f.storagePath));
        break;
    case Level::Folder:
        columns << qMakePair(QStringLiteral("Email"), QVariant(f.email));
        break;
    case Level::Document:
        columns << qMakePair(QStringLiteral("DateOnDocument"),
                             f.dateOnDocument.isValid() ? QVariant(f.dateOnDocument) : QVariant())
                << qMakePair(QStringLiteral("Amount"),
                             f.hasAmount ? QVariant(f.amount) : QVariant());
        break;
    default:
        break;
    }
    return columns;
}

} // namespace

void ItemStore::checkWidths(Level level, const ItemFields& fields)
{
    const QString table = ItemTable::of(level).name();
    for (const auto& [column, value] : fieldColumns(level, fields))
        if (value.typeId() == QMetaType::QString)
            ColumnWidths::check(table, column,
                                column == QLatin1String("Password") ? fields.password
                                                                    : value.toString());
}

std::optional<ItemFields> ItemStore::fields(Level level, qint32 id) const
{
    const ItemTable& t = ItemTable::of(level);
    const Recordset rs = m_db.openRecordset(
        QStringLiteral("SELECT * FROM %1 WHERE %2 = ?").arg(t.name(), t.id()), {id});
    if (rs.recordCount() < 1)
        return std::nullopt;
    ItemFields f;
    f.name = rs.text(0, QStringLiteral("Name"));
    f.description = rs.text(0, QStringLiteral("Description"));
    if (level == Level::Cabinet) {
        f.password = decryptText(rs.text(0, QStringLiteral("Password")), Cipher::key());
        f.storage = rs.integer(0, QStringLiteral("Storage"), 0) == 1 ? 1 : 0;
        f.storagePath = rs.text(0, QStringLiteral("StoragePath"));
    } else if (level == Level::Folder) {
        f.email = rs.text(0, QStringLiteral("Email"));
    } else if (level == Level::Document) {
        f.dateOnDocument = rs.date(0, QStringLiteral("DateOnDocument"));
        const QVariant amount = rs.value(0, QStringLiteral("Amount"));
        f.hasAmount = !amount.isNull();
        f.amount = amount.toDouble();
    }
    return f;
}

qint32 ItemStore::insertItem(Level level, qint32 parentId, const ItemFields& fields)
{
    checkWidths(level, fields);
    const ItemTable& t = ItemTable::of(level);
    QStringList names;
    QVariantList values;
    if (level != Level::Cabinet) {
        names << t.parent();
        values << parentId;
    }
    for (const auto& [column, value] : fieldColumns(level, fields)) {
        names << column;
        values << value;
    }
    const QString marks =
        QStringList(QList<QString>(names.size(), QStringLiteral("?"))).join(QStringLiteral(", "));
    m_db.execute(QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                     .arg(t.name(), names.join(QStringLiteral(", ")), marks),
                 values);
    return m_db.lastInsertId();
}

void ItemStore::updateItem(Level level, qint32 id, const ItemFields& fields)
{
    checkWidths(level, fields);
    const ItemTable& t = ItemTable::of(level);
    QStringList sets;
    QVariantList values;
    for (const auto& [column, value] : fieldColumns(level, fields)) {
        sets << column + QStringLiteral(" = ?");
        values << value;
    }
    values << id;
    m_db.execute(QStringLiteral("UPDATE %1 SET %2 WHERE %3 = ?")
                     .arg(t.name(), sets.join(QStringLiteral(", ")), t.id()),
                 values);
}

bool ItemStore::nameTaken(Level level, qint32 parentId, const QString& name, qint32 exceptId) const
{
    const ItemTable& t = ItemTable::of(level);
    QString sql =
        QStringLiteral("SELECT COUNT(*) FROM %1 WHERE Name = ? AND %2 <> ?").arg(t.name(), t.id());
    QVariantList binds{name, exceptId};
    if (level != Level::Cabinet) {
        sql += QStringLiteral(" AND %1 = ?").arg(t.parent());
        binds << parentId;
    }
    return m_db.scalar(sql, binds).toInt() > 0;
}

qint32 ItemStore::insertItem(Level level, qint32 parentId, const QString& name)
{
    ItemFields fields;
    fields.name = name;
    return insertItem(level, parentId, fields);
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

void ItemStore::repaginateDocument(qint32 documentId, const QString& documentName,
                                   Progress& progress)
{
    const int count =
        m_db.scalar(QStringLiteral("SELECT COUNT(*) FROM Page WHERE DocumentId = ?"), {documentId})
            .toInt();
    if (count < 1)
        return;
    const QString title = QStringLiteral("Repaginate ") + documentName;
    progress.start(title, 1, 2 * count);
    const Recordset rs = m_db.openRecordset(
        QStringLiteral("SELECT PageId FROM Page WHERE DocumentId = ? ORDER BY PageNumber, PageId"),
        {documentId});
    // Both passes in one transaction: an interrupted renumbering leaves the old numbers.
    Database::Transaction tx(m_db);
    const QString update = QStringLiteral("UPDATE Page SET PageNumber = ? WHERE PageId = ?");
    // First out of the way, from the top down, so that no two pages meet mid-way.
    int number = 9999999;
    for (int i = rs.recordCount() - 1; i >= 0; --i) {
        progress.step(title);
        m_db.execute(update, {number--, rs.integer(i, QStringLiteral("PageId"))});
    }
    number = 1;
    for (int i = 0; i < rs.recordCount(); ++i) {
        progress.step(title);
        m_db.execute(update, {number++, rs.integer(i, QStringLiteral("PageId"))});
    }
    tx.commit();
    progress.end();
}

} // namespace qmr
