#include "store/documentsearch.h"

#include <QHash>
#include <QStringList>
#include <QVariantList>
#include <iterator>
#include <vector>

#include "core/findcriteria.h"
#include "store/database.h"
#include "store/pageconditions.h"
#include "store/textindex.h"
#include "store/wordindex.h"

namespace qmr {

namespace {

// The columns that both passes read, in this order: the ids of the places and of the
// document, then their names.
enum Column {
    CabinetId,
    DrawerId,
    FolderId,
    DocumentId,
    CabinetName,
    DrawerName,
    FolderName,
    DocumentName,
    ColumnCount // not a column: how many there are
};
struct ColumnInfo
{
    Column column;
    const char* expression;
    bool ofDocument;
};
constexpr ColumnInfo kColumnInfo[] = {
    {CabinetId, "Drawer.CabinetId", false}, {DrawerId, "Folder.DrawerId", false},
    {FolderId, "Folder.FolderId", false},   {DocumentId, "Document.DocumentId", true},
    {CabinetName, "Cabinet.Name", false},   {DrawerName, "Drawer.Name", false},
    {FolderName, "Folder.Name", false},     {DocumentName, "Document.Name", true},
};
// Each column stands at the position its name gives, so that a row is read by the names.
constexpr bool inColumnOrder()
{
    for (std::size_t i = 0; i < std::size(kColumnInfo); ++i)
        if (kColumnInfo[i].column != Column(i))
            return false;
    return std::size(kColumnInfo) == ColumnCount;
}
static_assert(inColumnOrder(), "one expression for each column, in the order of the names");

// The columns as a select list. A place read alone has no document: its columns are there,
// NULL, so that every row is read the same way.
QString columnList(bool withDocument)
{
    QStringList list;
    for (const ColumnInfo& c : kColumnInfo)
        list << (c.ofDocument && !withDocument ? QStringLiteral("NULL")
                                               : QString::fromLatin1(c.expression));
    return list.join(QStringLiteral(", "));
}

const QString kColumns = columnList(true);

const QString kPlaces = QStringLiteral("JOIN Drawer ON Drawer.DrawerId = Folder.DrawerId "
                                       "JOIN Cabinet ON Cabinet.CabinetId = Drawer.CabinetId");

// A statement's conditions and the values they bind, in order.
struct Conditions
{
    QStringList text;
    QVariantList binds;

    QString where() const
    {
        return text.isEmpty() ? QString() : QStringLiteral(" WHERE ") + text.join(" AND ");
    }
};

// A name or description holding any of the pieces. The pieces are bound as they are, so an
// apostrophe is an apostrophe, and % and _ typed into them stay wildcards. With `match`, the
// word index first narrows the rows to those that may hold a piece.
void addKeywords(Conditions& c, const QStringList& pieces, const QString& table, const QString& key,
                 const QString& match)
{
    if (pieces.isEmpty())
        return;
    if (!match.isEmpty()) {
        c.text << QStringLiteral("%1.%2 IN (SELECT rowid FROM %3 WHERE %3 MATCH ?)")
                      .arg(table, key, WordIndex::tableOf(table));
        c.binds << match;
    }
    QStringList tests;
    for (const QString& piece : pieces) {
        const QString pattern = QLatin1Char('%') + piece + QLatin1Char('%');
        tests << table + QStringLiteral(".Name LIKE ?")
              << table + QStringLiteral(".Description LIKE ?");
        c.binds << pattern << pattern;
    }
    c.text << QLatin1Char('(') + tests.join(QStringLiteral(" OR ")) + QLatin1Char(')');
}

// Documents with a page whose text holds every term, from the text index on this connection.
void addPageWords(Conditions& c, const PageWords& words)
{
    if (words.isEmpty())
        return;
    c.text << QStringLiteral("Document.DocumentId IN (SELECT Page.DocumentId FROM Page WHERE "
                             "Page.PageId IN (SELECT rowid FROM %1.PageTextWords WHERE "
                             "PageTextWords MATCH ?))")
                  .arg(TextIndex::attachedName());
    c.binds << TextIndex::matchExpression(words);
}

// The cabinet and folder in scope. A single cabinet is searched from its drawers; several are
// one pass over the table, which costs less than one per cabinet.
void addPlace(Conditions& c, const FindCriteria& criteria, const QVector<qint32>& cabinets)
{
    if (cabinets.size() == 1) {
        c.text << QStringLiteral("Drawer.CabinetId = ?");
        c.binds << cabinets.first();
    }
    if (criteria.folderId != 0) {
        c.text << QStringLiteral("Folder.FolderId = ?");
        c.binds << criteria.folderId;
    }
}

// The found documents of one cabinet, each pass apart.
struct CabinetHits
{
    int count = 0;
    QVector<FoundDocument> documentPass;
    QVector<FoundDocument> folderPass;
};

// Reads the found rows into the hits of their cabinets. The names of the places are read
// once each: many documents share them.
class HitReader
{
public:
    explicit HitReader(const QVector<qint32>& cabinets)
    {
        for (const qint32 id : cabinets)
            m_hits.insert(id, CabinetHits());
    }

    // The hits of the row's cabinet; null for a cabinet out of scope.
    CabinetHits* cabinetOf(const Database::Row& row)
    {
        const auto it = m_hits.find(qint32(row.integer(CabinetId)));
        return it == m_hits.end() ? nullptr : &*it;
    }
    FoundDocument document(const Database::Row& row)
    {
        FoundDocument d;
        d.cabinetId = qint32(row.integer(CabinetId));
        d.drawerId = qint32(row.integer(DrawerId));
        d.folderId = qint32(row.integer(FolderId));
        d.documentId = qint32(row.integer(DocumentId));
        d.cabinetName = m_places[0].name(d.cabinetId, row, CabinetName);
        d.drawerName = m_places[1].name(d.drawerId, row, DrawerName);
        d.folderName = m_places[2].name(d.folderId, row, FolderName);
        d.documentName = row.text(DocumentName);
        return d;
    }
    QHash<qint32, CabinetHits>& hits() { return m_hits; }

private:
    // The names of the places of one level met so far. Rows come place by place, so the
    // last one asked for is mostly the next one too.
    struct Names
    {
        QHash<qint32, QString> byId;
        qint32 lastId = -1;
        QString last;

        const QString& name(qint32 id, const Database::Row& row, int column)
        {
            if (id != lastId) {
                auto it = byId.find(id);
                if (it == byId.end())
                    it = byId.insert(id, row.text(column));
                lastId = id;
                last = *it;
            }
            return last;
        }
    };

    QHash<qint32, CabinetHits> m_hits;
    Names m_places[3]; // cabinets, drawers, folders
};

const QString kFolderPassFrom =
    QStringLiteral(" FROM Folder ") + kPlaces +
    QStringLiteral(" LEFT JOIN Document ON Document.FolderId = Folder.FolderId");

// The folder pass of a few folders: their documents through the index of their folder.
void readMatchingFolders(Database& db, const Conditions& folders, HitReader& reader)
{
    qint32 lastFolder = -1;
    db.forEachRow(QStringLiteral("SELECT ") + kColumns + kFolderPassFrom + folders.where(),
                  folders.binds, [&](const Database::Row& row) {
                      CabinetHits* hits = reader.cabinetOf(row);
                      if (!hits)
                          return;
                      // A folder's rows come together, each document of it in one.
                      const qint32 folder = qint32(row.integer(FolderId));
                      if (folder != lastFolder) {
                          lastFolder = folder;
                          ++hits->count;
                      }
                      if (row.isNull(DocumentId))
                          return; // a folder without documents
                      hits->folderPass << reader.document(row);
                  });
}

// The folder pass of every folder in scope of several cabinets (no keyword, no words on the
// pages, no one folder): every document comes. The folders are read first, then the documents in
// one pass over their table, which costs half as much as looking each one up from its folder. The
// documents go on folder after folder, as the look-up handed them on.
void readEveryFolder(Database& db, const Conditions& folders, HitReader& reader)
{
    struct FolderHits
    {
        CabinetHits* hits;
        FoundDocument place; // the folder and the places above it
        QVector<FoundDocument> documents;
    };
    std::vector<FolderHits> inScope;
    QHash<qint32, std::size_t> slotOf;
    db.forEachRow(QStringLiteral("SELECT ") + columnList(false) + QStringLiteral(" FROM Folder ") +
                      kPlaces + folders.where(),
                  folders.binds, [&](const Database::Row& row) {
                      CabinetHits* hits = reader.cabinetOf(row);
                      if (!hits)
                          return;
                      ++hits->count;
                      slotOf.insert(qint32(row.integer(FolderId)), inScope.size());
                      inScope.push_back({hits, reader.document(row), {}});
                  });
    if (inScope.empty())
        return;
    qint32 lastFolder = -1;
    FolderHits* last = nullptr;
    db.forEachRow(QStringLiteral("SELECT FolderId, DocumentId, Name FROM Document"), {},
                  [&](const Database::Row& row) {
                      const qint32 folder = qint32(row.integer(0));
                      if (folder != lastFolder) {
                          lastFolder = folder;
                          const auto it = slotOf.constFind(folder);
                          last = it == slotOf.cend() ? nullptr : &inScope[*it];
                      }
                      if (!last)
                          return; // a folder out of scope
                      FoundDocument d = last->place;
                      d.documentId = qint32(row.integer(1));
                      d.documentName = row.text(2);
                      last->documents << std::move(d);
                  });
    for (FolderHits& f : inScope)
        f.hits->folderPass.append(std::move(f.documents));
}

} // namespace

FindOutcome DocumentSearch::run(const FindCriteria& criteria, const QVector<qint32>& cabinets)
{
    FindOutcome outcome;
    if (cabinets.isEmpty())
        return outcome;
    const QStringList pieces = criteria.keywordPieces();
    // Words on the pages with no text read in this run: no page can hold them.
    if (!criteria.pageWords.isEmpty() && !TextIndex::isAttached(m_db))
        return outcome;
    HitReader reader(cabinets);
    Database::Transaction read(m_db);
    const QString match = WordIndex::present(m_db) ? WordIndex::matchFor(pieces) : QString();

    // The document pass. A document without pages cannot meet a range, not even one that is
    // not about pages.
    Conditions documents;
    addKeywords(documents, pieces, QStringLiteral("Document"), QStringLiteral("DocumentId"), match);
    addPlace(documents, criteria, cabinets);
    addPageWords(documents, criteria.pageWords);
    if (criteria.documentDate) {
        documents.text << QStringLiteral("Document.DateOnDocument BETWEEN ? AND ?");
        documents.binds << criteria.documentDate->from << criteria.documentDate->thru;
    }
    if (criteria.amount) {
        documents.text << QStringLiteral("Document.Amount BETWEEN ? AND ?");
        documents.binds << criteria.amount->from << criteria.amount->thru;
    }
    if (criteria.needsPages()) {
        Conditions pages;
        pages.text << QStringLiteral("Page.DocumentId = Document.DocumentId");
        PageConditions::add(criteria.pages, pages.text, pages.binds);
        documents.text << QStringLiteral("EXISTS (SELECT 1 FROM Page") + pages.where() +
                              QLatin1Char(')');
        documents.binds << pages.binds;
    }
    m_db.forEachRow(QStringLiteral("SELECT ") + kColumns +
                        QStringLiteral(" FROM Document JOIN Folder ON Folder.FolderId = "
                                       "Document.FolderId ") +
                        kPlaces + documents.where(),
                    documents.binds, [&](const Database::Row& row) {
                        if (CabinetHits* hits = reader.cabinetOf(row)) {
                            ++hits->count;
                            hits->documentPass << reader.document(row);
                        }
                    });

    // The folder pass: no range, so every document of a matching folder comes, and a
    // matching folder counts even when it holds none.
    Conditions folders;
    addKeywords(folders, pieces, QStringLiteral("Folder"), QStringLiteral("FolderId"), match);
    addPlace(folders, criteria, cabinets);
    addPageWords(folders, criteria.pageWords);
    // Only the place is asked of the folders, for more than one cabinet: most of the table.
    if (pieces.isEmpty() && criteria.pageWords.isEmpty() && criteria.folderId == 0 &&
        cabinets.size() > 1)
        readEveryFolder(m_db, folders, reader);
    else
        readMatchingFolders(m_db, folders, reader);
    read.commit();

    qsizetype total = 0;
    for (const CabinetHits& hits : std::as_const(reader.hits()))
        total += hits.documentPass.size() + hits.folderPass.size();
    outcome.documents.reserve(total);
    for (const qint32 id : cabinets) {
        CabinetHits& hits = reader.hits()[id];
        outcome.foundCount += hits.count;
        outcome.documents.append(std::move(hits.documentPass));
        outcome.documents.append(std::move(hits.folderPass));
        hits = CabinetHits(); // a cabinet listed twice comes once
    }
    return outcome;
}

} // namespace qmr
