#include "store/pagestore.h"

#include <QCoreApplication>
#include <limits>

#include "core/progress.h"
#include "store/database.h"
#include "store/pageconditions.h"
#include "store/storecolumns.h"

namespace qmr {

namespace {

const QString kColumns = QStringLiteral("PageId, DocumentId, PageNumber, Filename, FileSize, "
                                        "ScanDate, Filetype, ShortcutYN");

PageRow rowAt(const Recordset& rs, int i)
{
    PageRow row;
    row.id = rs.integer(i, QStringLiteral("PageId"));
    row.documentId = rs.integer(i, QStringLiteral("DocumentId"));
    row.pageNumber = rs.integer(i, QStringLiteral("PageNumber"), 0);
    row.filename = rs.text(i, QStringLiteral("Filename"));
    const QVariant size = rs.value(i, QStringLiteral("FileSize"));
    row.hasFileSize = !size.isNull();
    row.fileSize = size.toLongLong();
    row.scanDateStored = rs.text(i, QStringLiteral("ScanDate"));
    row.scanDate = rs.date(i, QStringLiteral("ScanDate"));
    row.fileType = rs.text(i, QStringLiteral("Filetype"));
    row.shortcut = rs.text(i, QStringLiteral("ShortcutYN")) == QLatin1String("Y");
    return row;
}

} // namespace

QVector<PageRow> PageStore::pages(qint32 documentId, const PageFilter& filter) const
{
    QStringList conditions{QStringLiteral("Page.DocumentId = ?")};
    QVariantList binds{documentId};
    PageConditions::add(filter, conditions, binds);
    const Recordset rs = m_db.openRecordset(
        QStringLiteral("SELECT %1 FROM Page WHERE %2 ORDER BY PageNumber, PageId")
            .arg(kColumns, conditions.join(QStringLiteral(" AND "))),
        binds);
    QVector<PageRow> rows;
    rows.reserve(rs.recordCount());
    for (int i = 0; i < rs.recordCount(); ++i)
        rows << rowAt(rs, i);
    return rows;
}

QVector<PageRow> PageStore::pagesInRange(qint32 documentId, qint32 from, qint32 to) const
{
    const Recordset rs = m_db.openRecordset(
        QStringLiteral("SELECT %1 FROM Page WHERE DocumentId = ? AND PageNumber BETWEEN ? AND ? "
                       "ORDER BY PageNumber, PageId")
            .arg(kColumns),
        {documentId, from, to});
    QVector<PageRow> rows;
    rows.reserve(rs.recordCount());
    for (int i = 0; i < rs.recordCount(); ++i)
        rows << rowAt(rs, i);
    return rows;
}

std::optional<PageRow> PageStore::page(qint32 pageId) const
{
    const Recordset rs = m_db.openRecordset(
        QStringLiteral("SELECT %1 FROM Page WHERE PageId = ?").arg(kColumns), {pageId});
    if (rs.recordCount() < 1)
        return std::nullopt;
    return rowAt(rs, 0);
}

qint32 PageStore::documentOf(qint32 pageId) const
{
    const QVariant v =
        m_db.scalar(QStringLiteral("SELECT DocumentId FROM Page WHERE PageId = ?"), {pageId});
    return v.isNull() ? -1 : v.toInt();
}

int PageStore::count(qint32 documentId) const
{
    return m_db
        .scalar(QStringLiteral("SELECT COUNT(*) FROM Page WHERE DocumentId = ?"), {documentId})
        .toInt();
}

qint64 PageStore::countAll() const
{
    return m_db.scalar(QStringLiteral("SELECT COUNT(*) FROM Page")).toLongLong();
}

qint32 PageStore::highestNumber(qint32 documentId) const
{
    return m_db
        .scalar(QStringLiteral("SELECT MAX(PageNumber) FROM Page WHERE DocumentId = ?"),
                {documentId})
        .toInt();
}

qint32 PageStore::numberAfter(qint32 pageNumber)
{
    return pageNumber < std::numeric_limits<qint32>::max() ? pageNumber + 1 : pageNumber;
}

qint32 PageStore::nextNumber(qint32 documentId) const
{
    return numberAfter(highestNumber(documentId));
}

qint32 PageStore::lowestNumber(qint32 documentId) const
{
    return m_db
        .scalar(QStringLiteral("SELECT MIN(PageNumber) FROM Page WHERE DocumentId = ?"),
                {documentId})
        .toInt();
}

qint32 PageStore::previousPageId(qint32 documentId, qint32 pageNumber, qint32 pageId) const
{
    QVariant v = m_db.scalar(QStringLiteral("SELECT PageId FROM Page WHERE DocumentId = ? AND "
                                            "PageNumber < ? AND PageId <> ? "
                                            "ORDER BY PageNumber DESC, PageId DESC LIMIT 1"),
                             {documentId, pageNumber, pageId});
    if (v.isNull())
        v = m_db.scalar(
            QStringLiteral("SELECT PageId FROM Page WHERE DocumentId = ? AND "
                           "PageNumber = ? AND PageId < ? ORDER BY PageId DESC LIMIT 1"),
            {documentId, pageNumber, pageId});
    return v.isNull() ? -1 : v.toInt();
}

qint32 PageStore::nextPageId(qint32 documentId, qint32 pageNumber, qint32 pageId) const
{
    QVariant v = m_db.scalar(QStringLiteral("SELECT PageId FROM Page WHERE DocumentId = ? AND "
                                            "PageNumber > ? AND PageId <> ? "
                                            "ORDER BY PageNumber, PageId LIMIT 1"),
                             {documentId, pageNumber, pageId});
    if (v.isNull())
        v = m_db.scalar(QStringLiteral("SELECT PageId FROM Page WHERE DocumentId = ? AND "
                                       "PageNumber = ? AND PageId > ? ORDER BY PageId LIMIT 1"),
                        {documentId, pageNumber, pageId});
    return v.isNull() ? -1 : v.toInt();
}

void PageStore::deletePage(qint32 pageId)
{
    m_db.execute(QStringLiteral("DELETE FROM Page WHERE PageId = ?"), {pageId});
}

qint32 PageStore::insertPage(qint32 documentId, const NewPage& page)
{
    StoreColumns::check(QStringLiteral("Page"), QStringLiteral("Filename"), page.filename);
    StoreColumns::check(QStringLiteral("Page"), QStringLiteral("Name"), page.name);
    m_db.execute(QStringLiteral("INSERT INTO Page (DocumentId, Name, PageNumber, ScanDate, "
                                "Filetype, ShortcutYN, Filename, FileSize) "
                                "VALUES (?, ?, ?, ?, ?, ?, ?, ?)"),
                 {documentId, page.name.isEmpty() ? QVariant() : QVariant(page.name),
                  page.pageNumber, page.scanDate.isValid() ? QVariant(page.scanDate) : QVariant(),
                  page.fileType, page.shortcut ? QVariant(QStringLiteral("Y")) : QVariant(),
                  page.filename.isEmpty() ? QVariant() : QVariant(page.filename),
                  page.fileSize ? QVariant(qlonglong(*page.fileSize)) : QVariant()});
    return m_db.lastInsertId();
}

qint32 PageStore::pageNamed(qint32 documentId, const QString& name) const
{
    const QVariant v = m_db.scalar(QStringLiteral("SELECT PageId FROM Page WHERE DocumentId = ? "
                                                  "AND Name = ? COLLATE NOCASE ORDER BY PageId"),
                                   {documentId, name});
    return v.isNull() ? -1 : v.toInt();
}

namespace {

const QString kCabinetPages =
    QStringLiteral("FROM Drawer JOIN Folder ON Folder.DrawerId = Drawer.DrawerId "
                   "JOIN Document ON Document.FolderId = Folder.FolderId "
                   "JOIN Page ON Page.DocumentId = Document.DocumentId "
                   "WHERE Drawer.CabinetId = ?");

} // namespace

int PageStore::countCabinetPages(qint32 cabinetId) const
{
    return m_db.scalar(QStringLiteral("SELECT COUNT(Page.PageId) ") + kCabinetPages, {cabinetId})
        .toInt();
}

qint64 PageStore::sumCabinetBytes(qint32 cabinetId) const
{
    return m_db.scalar(QStringLiteral("SELECT SUM(Page.FileSize) ") + kCabinetPages, {cabinetId})
        .toLongLong();
}

void PageStore::setPageNumber(qint32 pageId, qint32 number)
{
    m_db.execute(QStringLiteral("UPDATE Page SET PageNumber = ? WHERE PageId = ?"),
                 {number, pageId});
}

void PageStore::movePage(qint32 pageId, qint32 documentId, qint32 number)
{
    m_db.execute(QStringLiteral("UPDATE Page SET DocumentId = ?, PageNumber = ? WHERE PageId = ?"),
                 {documentId, number, pageId});
}

void PageStore::moveToDocument(qint32 pageId, qint32 documentId)
{
    m_db.execute(QStringLiteral("UPDATE Page SET DocumentId = ? WHERE PageId = ?"),
                 {documentId, pageId});
}

void PageStore::removeRow(qint32 pageId)
{
    m_db.execute(QStringLiteral("DELETE FROM Page WHERE PageId = ?"), {pageId});
}

QVector<qint32> PageStore::pagesUsingFile(const QString& path, qint32 computedId,
                                          qint32 exceptId) const
{
    const Recordset rs = m_db.openRecordset(
        QStringLiteral("SELECT PageId FROM Page WHERE PageId <> ? AND (Filename = ? OR "
                       "(PageId = ? AND (Filename IS NULL OR Filename = '')))"),
        {exceptId, path, computedId});
    QVector<qint32> ids;
    for (int i = 0; i < rs.recordCount(); ++i)
        ids << rs.integer(i, QStringLiteral("PageId"));
    return ids;
}

QVector<FiledPage> PageStore::locations(const QList<qint32>& pageIds) const
{
    QStringList ids;
    ids.reserve(pageIds.size());
    for (const qint32 id : pageIds)
        ids << QString::number(id);
    QVector<FiledPage> found;
    // The ids travel as one bound JSON array, however many there are.
    m_db.forEachRow(
        QStringLiteral(
            "SELECT p.PageId, p.PageNumber, d.DocumentId, c.CabinetId, c.Name, r.Name, f.Name, "
            "d.Name FROM Page p JOIN Document d ON d.DocumentId = p.DocumentId JOIN Folder f ON "
            "f.FolderId = d.FolderId JOIN Drawer r ON r.DrawerId = f.DrawerId JOIN Cabinet c ON "
            "c.CabinetId = r.CabinetId WHERE p.PageId IN (SELECT value FROM json_each(?)) ORDER "
            "BY c.Name, r.Name, f.Name, d.Name, d.DocumentId, p.PageNumber"),
        {QLatin1Char('[') + ids.join(QLatin1Char(',')) + QLatin1Char(']')},
        [&](const Database::Row& row) {
            found.push_back({qint32(row.integer(0)),
                             qint32(row.integer(1)),
                             qint32(row.integer(2)),
                             qint32(row.integer(3)),
                             {row.text(4), row.text(5), row.text(6), row.text(7)}});
        });
    return found;
}

QVector<std::pair<qint32, QString>> PageStore::pageFiles() const
{
    QVector<std::pair<qint32, QString>> files;
    m_db.forEachRow(QStringLiteral("SELECT PageId, Filename FROM Page ORDER BY PageId"), {},
                    [&](const Database::Row& row) {
                        files.push_back({qint32(row.integer(0)), row.text(1)});
                    });
    return files;
}

QVector<std::pair<qint32, QString>> PageStore::pageFiles(qint32 afterId, int count) const
{
    QVector<std::pair<qint32, QString>> files;
    m_db.forEachRow(
        QStringLiteral(
            "SELECT PageId, Filename FROM Page WHERE PageId > ? ORDER BY PageId LIMIT ?"),
        {afterId, count}, [&](const Database::Row& row) {
            files.push_back({qint32(row.integer(0)), row.text(1)});
        });
    return files;
}

void PageStore::setFile(qint32 pageId, const QString& filename, qint64 fileSize)
{
    StoreColumns::check(QStringLiteral("Page"), QStringLiteral("Filename"), filename);
    m_db.execute(
        QStringLiteral("UPDATE Page SET Filename = ?, FileSize = ? WHERE PageId = ?"),
        {filename.isEmpty() ? QVariant() : QVariant(filename), qlonglong(fileSize), pageId});
}

void PageStore::repaginateDocument(qint32 documentId, const QString& documentName,
                                   Progress& progress)
{
    const QVector<PageRow> rows = pages(documentId);
    if (rows.isEmpty())
        return;
    const QString title =
        QCoreApplication::translate("qmr::PageStore", "Repaginate %1").arg(documentName);
    progress.start(title, 1, 2 * int(rows.size()));
    Database::Transaction tx(m_db);
    const QString update = QStringLiteral("UPDATE Page SET PageNumber = ? WHERE PageId = ?");
    // First out of the way, from the top down, so that no two pages meet mid-way.
    int number = 9999999;
    for (auto it = rows.crbegin(); it != rows.crend(); ++it) {
        progress.step(title);
        m_db.execute(update, {number--, it->id});
    }
    number = 1;
    for (const PageRow& row : rows) {
        progress.step(title);
        m_db.execute(update, {number++, row.id});
    }
    tx.commit();
    progress.end();
}

} // namespace qmr
