#include "store/itemstore.h"

#include "store/cipher.h"
#include "store/database.h"
#include "store/itemtable.h"
#include "store/storecolumns.h"

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
            StoreColumns::check(table, column,
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

void ItemStore::moveItem(Level level, qint32 id, qint32 newParentId)
{
    const ItemTable& t = ItemTable::of(level);
    if (!*t.parentColumn)
        return;
    m_db.execute(
        QStringLiteral("UPDATE %1 SET %2 = ? WHERE %3 = ?").arg(t.name(), t.parent(), t.id()),
        {newParentId, id});
}

bool ItemStore::nameTaken(Level level, qint32 parentId, const QString& name, qint32 exceptId) const
{
    const ItemTable& t = ItemTable::of(level);
    QString sql =
        QStringLiteral("SELECT COUNT(*) FROM %1 WHERE Name = ? COLLATE NOCASE AND %2 <> ?")
            .arg(t.name(), t.id());
    QVariantList binds{name, exceptId};
    if (level != Level::Cabinet) {
        sql += QStringLiteral(" AND %1 = ?").arg(t.parent());
        binds << parentId;
    }
    return m_db.scalar(sql, binds).toInt() > 0;
}

bool ItemStore::nameTakenAnywhere(Level level, const QString& name, qint32 exceptId) const
{
    const ItemTable& t = ItemTable::of(level);
    return m_db.scalar(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE Name = ? COLLATE NOCASE AND "
                                      "%2 <> ?")
                           .arg(t.name(), t.id()),
                       {name, exceptId})
               .toInt() > 0;
}

void ItemStore::renameItem(Level level, qint32 id, const QString& name)
{
    const ItemTable& t = ItemTable::of(level);
    StoreColumns::check(t.name(), QStringLiteral("Name"), name);
    m_db.execute(QStringLiteral("UPDATE %1 SET Name = ? WHERE %2 = ?").arg(t.name(), t.id()),
                 {name, id});
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

qint32 ItemStore::insertNamed(Level level, qint32 parentId, const QString& name)
{
    const ItemTable& t = ItemTable::of(level);
    StoreColumns::check(t.name(), QStringLiteral("Name"), name);
    m_db.execute(
        QStringLiteral("INSERT INTO %1 (%2, Name) VALUES (?, ?)").arg(t.name(), t.parent()),
        {parentId, name});
    return m_db.lastInsertId();
}

qint32 ItemStore::childNamed(Level level, qint32 parentId, const QString& name) const
{
    const ItemTable& t = ItemTable::of(level);
    QString sql =
        QStringLiteral("SELECT %1 FROM %2 WHERE Name = ? COLLATE NOCASE").arg(t.id(), t.name());
    QVariantList binds{name};
    if (level != Level::Cabinet) {
        sql += QStringLiteral(" AND %1 = ?").arg(t.parent());
        binds << parentId;
    }
    sql += QStringLiteral(" ORDER BY %1").arg(t.id());
    const QVariant v = m_db.scalar(sql, binds);
    return v.isNull() ? -1 : v.toInt();
}

namespace {

ItemManifest manifestAt(const Recordset& rs, int i, Level level)
{
    ItemManifest m;
    m.id = rs.integer(i, ItemTable::of(level).id());
    m.name = rs.text(i, QStringLiteral("Name"));
    const QVariant description = rs.value(i, QStringLiteral("Description"));
    if (!description.isNull())
        m.description = description.toString();
    if (level == Level::Document) {
        if (!rs.value(i, QStringLiteral("DateOnDocument")).isNull())
            m.dateOnDocument = rs.date(i, QStringLiteral("DateOnDocument"));
        const QVariant amount = rs.value(i, QStringLiteral("Amount"));
        if (!amount.isNull())
            m.amount = amount.toDouble();
    }
    return m;
}

} // namespace

ItemManifest ItemStore::manifest(Level level, qint32 id) const
{
    const ItemTable& t = ItemTable::of(level);
    const Recordset rs = m_db.openRecordset(
        QStringLiteral("SELECT * FROM %1 WHERE %2 = ?").arg(t.name(), t.id()), {id});
    return rs.recordCount() < 1 ? ItemManifest() : manifestAt(rs, 0, level);
}

QVector<ItemManifest> ItemStore::childManifests(Level level, qint32 parentId) const
{
    const ItemTable& t = ItemTable::of(level);
    const Recordset rs =
        m_db.openRecordset(QStringLiteral("SELECT * FROM %1 WHERE %2 = ? ORDER BY Name, %3")
                               .arg(t.name(), t.parent(), t.id()),
                           {parentId});
    QVector<ItemManifest> rows;
    rows.reserve(rs.recordCount());
    for (int i = 0; i < rs.recordCount(); ++i)
        rows << manifestAt(rs, i, level);
    return rows;
}

void ItemStore::setDescription(Level level, qint32 id, const QString& description)
{
    const ItemTable& t = ItemTable::of(level);
    m_db.execute(QStringLiteral("UPDATE %1 SET Description = ? WHERE %2 = ?").arg(t.name(), t.id()),
                 {description, id});
}

void ItemStore::setDocumentManifest(qint32 documentId, const std::optional<QDate>& dateOnDocument,
                                    const QString& description, double amount)
{
    if (dateOnDocument)
        m_db.execute(QStringLiteral("UPDATE Document SET DateOnDocument = ?, Description = ?, "
                                    "Amount = ? WHERE DocumentId = ?"),
                     {*dateOnDocument, description, amount, documentId});
    else
        m_db.execute(QStringLiteral("UPDATE Document SET Description = ?, Amount = ? "
                                    "WHERE DocumentId = ?"),
                     {description, amount, documentId});
}

bool ItemStore::cabinetNameExists(const QString& name) const
{
    return m_db.scalar(QStringLiteral("SELECT COUNT(*) FROM Cabinet WHERE Name = ? COLLATE NOCASE"),
                       {name})
               .toInt() > 0;
}

} // namespace qmr
