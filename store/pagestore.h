#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <QVector>
#include <optional>
#include <utility>

#include "core/pagefilter.h"

namespace qmr {

class Database;
class Progress;

// A page row with everything the page pane, the viewer and the page properties need.
struct PageRow
{
    qint32 id = -1;
    qint32 documentId = -1;
    qint32 pageNumber = 0;
    QString filename; // the stored path, "" for a page at its computed path
    bool hasFileSize = false;
    qint64 fileSize = 0;
    QString scanDateStored; // the stored text, "" for Null
    QDate scanDate;
    QString fileType;
    bool shortcut = false;
};

// Where a page is filed: its document and the names on the way down from the cabinet.
struct FiledPage
{
    qint32 pageId = -1;
    qint32 pageNumber = 0;
    qint32 documentId = -1;
    qint32 cabinetId = -1;
    QStringList names; // cabinet, drawer, folder, document
};

// The fields of a new page row.
struct NewPage
{
    QString name; // the Name column: "" for none (imported pages keep their file's name)
    qint32 pageNumber = 0;
    QDate scanDate;
    QString fileType = QStringLiteral("JPG");
    bool shortcut = false;
    QString filename;
    std::optional<qint64> fileSize;
};

// Owns the Page rows: listing, adding, numbering and file facts.
class PageStore
{
public:
    explicit PageStore(Database& db) : m_db(db) {}

    // A document's pages in page order (ties by id), in one query; with a filter, only the
    // pages that meet it (those a search looked for).
    QVector<PageRow> pages(qint32 documentId, const PageFilter& filter = {}) const;
    // The pages numbered from `from` to `to`, both included, in page order (ties by id).
    QVector<PageRow> pagesInRange(qint32 documentId, qint32 from, qint32 to) const;
    std::optional<PageRow> page(qint32 pageId) const;
    qint32 documentOf(qint32 pageId) const; // -1 when the row is gone
    int count(qint32 documentId) const;
    // Every page row of the store.
    qint64 countAll() const;
    // The highest page number of a document, 0 when it has none.
    qint32 highestNumber(qint32 documentId) const;
    // The number a page added at the end of a document takes: one past the highest, held at
    // the largest number a page can carry (an imported name can already use it).
    qint32 nextNumber(qint32 documentId) const;
    static qint32 numberAfter(qint32 pageNumber);
    qint32 lowestNumber(qint32 documentId) const;

    // The pages before and after a page in the viewer's order: the nearest lower (higher)
    // number first, ties by id, and a twin of the same number only when there is none.
    // -1 when there is no such page.
    qint32 previousPageId(qint32 documentId, qint32 pageNumber, qint32 pageId) const;
    qint32 nextPageId(qint32 documentId, qint32 pageNumber, qint32 pageId) const;

    qint32 insertPage(qint32 documentId, const NewPage& page);
    // Removes the row alone; the caller removes the files.
    void deletePage(qint32 pageId);
    // The first page of the document with this Name (without regard to case), -1 for none.
    qint32 pageNamed(qint32 documentId, const QString& name) const;
    // The pages of a cabinet, and the total of their stored file sizes.
    int countCabinetPages(qint32 cabinetId) const;
    qint64 sumCabinetBytes(qint32 cabinetId) const;
    void setPageNumber(qint32 pageId, qint32 number);
    // Puts a page into another document under a new number; its file stays where it is.
    void movePage(qint32 pageId, qint32 documentId, qint32 number);
    // Puts a page into another document keeping its number, which may then be shared.
    void moveToDocument(qint32 pageId, qint32 documentId);
    // Takes back a row whose file never arrived; its files are the caller's.
    void removeRow(qint32 pageId);
    // The pages other than `exceptId` whose image is the file at `path`: by their stored
    // Filename, or the page `computedId` (whose computed path `path` is) when it has none.
    QVector<qint32> pagesUsingFile(const QString& path, qint32 computedId, qint32 exceptId) const;
    // Where each of the pages is filed (pages that are gone are left out), ordered by the
    // names and then the page numbers.
    QVector<FiledPage> locations(const QList<qint32>& pageIds) const;
    // Every page's id and stored Filename ("" for its computed path), oldest page first:
    // what the text reader goes through.
    QVector<std::pair<qint32, QString>> pageFiles() const;
    // The same, a block at a time: at most `count` pages after `afterId`, so that a long look
    // holds the store for a moment a block.
    QVector<std::pair<qint32, QString>> pageFiles(qint32 afterId, int count) const;
    // Writes where the page's image lies ("" for its computed path) and its size.
    void setFile(qint32 pageId, const QString& filename, qint64 fileSize);

    // Numbers the pages 1, 2, 3 ... in their present order, ties by PageId, in two passes in
    // one transaction: an interrupted renumbering leaves the old numbers.
    void repaginateDocument(qint32 documentId, const QString& documentName, Progress& progress);

private:
    Database& m_db;
};

} // namespace qmr
