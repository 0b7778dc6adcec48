#include "find/findsearch.h"

#include <algorithm>

#include "core/findrecord.h"
#include "find/findquery.h"
#include "store/session.h"
#include "store/sqltext.h"

namespace qmr {

namespace {

// The position of a field in a result, looked up once rather than row by row.
int column(const Recordset& rs, const QString& name)
{
    const QStringList& columns = rs.columns();
    for (int i = 0; i < columns.size(); ++i)
        if (columns.at(i).compare(name, Qt::CaseInsensitive) == 0)
            return i;
    return -1; // reading it fails with the store's message
}

// The documents of a result (fields DocumentId, FolderId and Name), in order.
template <typename Add> void eachDocument(const Recordset& rs, Add add)
{
    const int id = column(rs, QStringLiteral("DocumentId"));
    const int folder = column(rs, QStringLiteral("FolderId"));
    const int name = column(rs, QStringLiteral("Name"));
    for (int i = 0; i < rs.recordCount(); ++i)
        add(rs.value(i, id).toInt(), rs.value(i, folder).toInt(), nullToString(rs.value(i, name)));
}

} // namespace

FindSearch::FindSearch(Session& session) : m_session(session)
{
}

QVector<qint32> FindSearch::cabinetsToSearch(qint32 cabinetId) const
{
    if (cabinetId != 0)
        return {cabinetId};
    QVector<qint32> ids;
    for (const ItemRow& cabinet : m_session.items().children(Level::Cabinet, -1))
        if (m_session.locks().isCabinetOpen(cabinet.id))
            ids << cabinet.id;
    std::sort(ids.begin(), ids.end());
    return ids;
}

FindOutcome FindSearch::run(const FindRecord& criteria, qint32 cabinetId, qint32 folderId)
{
    for (QHash<qint32, Place>& places : m_places)
        places.clear();
    m_session.foundSet().clear();
    FindOutcome outcome;
    for (const qint32 cabinet : cabinetsToSearch(cabinetId)) {
        documentPass(criteria, cabinet, folderId, outcome);
        folderPass(criteria, cabinet, folderId, outcome);
    }
    return outcome;
}

void FindSearch::documentPass(const FindRecord& criteria, qint32 cabinetId, qint32 folderId,
                              FindOutcome& outcome)
{
    // A found document's page list is narrowed by what this search asked of its pages.
    FoundSet& found = m_session.foundSet();
    found.scanDateCondition = FindQuery::forStore(FindQuery::buildScanDateClause(criteria));
    found.fileSizeCondition = FindQuery::forStore(FindQuery::buildFileSizeClause(criteria));

    const Recordset rs = m_session.db().openRecordset(
        FindQuery::forStore(FindQuery::documentStatement(criteria, cabinetId, folderId)));
    outcome.foundCount += rs.recordCount();
    eachDocument(rs, [&](qint32 id, qint32 folder, const QString& name) {
        addFoundDocument(id, folder, name, outcome);
    });
}

void FindSearch::folderPass(const FindRecord& criteria, qint32 cabinetId, qint32 folderId,
                            FindOutcome& outcome)
{
    // No guard and no date, amount or size: every document of a matching folder counts, and
    // so does a matching folder without documents.
    Database& db = m_session.db();
    const Recordset folders = db.openRecordset(
        FindQuery::forStore(FindQuery::folderStatement(criteria, cabinetId, folderId)));
    outcome.foundCount += folders.recordCount();
    if (folders.isEmpty())
        return;
    for (int i = 0; i < folders.recordCount(); ++i)
        m_places[int(Level::Folder)].insert(folders.integer(i, QStringLiteral("FolderId")),
                                            Place{folders.integer(i, QStringLiteral("DrawerId")),
                                                  folders.text(i, QStringLiteral("Name")), true});
    // Their documents all at once rather than folder by folder: the same rows, and a search
    // without keywords, which matches every folder, stays quick.
    const Recordset documents = db.openRecordset(
        FindQuery::forStore(FindQuery::folderDocumentsStatement(criteria, cabinetId, folderId)));
    eachDocument(documents, [&](qint32 id, qint32 folder, const QString& name) {
        addFoundDocument(id, folder, name, outcome);
    });
}

const FindSearch::Place& FindSearch::place(Level level, qint32 id)
{
    QHash<qint32, Place>& places = m_places[int(level)];
    if (const auto known = places.constFind(id); known != places.constEnd())
        return *known;
    ItemStore& items = m_session.items();
    Place place;
    const ItemRow row = items.item(level, id);
    place.exists = row.id >= 0;
    place.name = row.name;
    if (place.exists && level != Level::Cabinet)
        place.parentId = items.parentOf(level, id);
    return *places.insert(id, place);
}

void FindSearch::addFoundDocument(qint32 documentId, qint32 folderId, const QString& name,
                                  FindOutcome& outcome)
{
    const Place& folder = place(Level::Folder, folderId);
    const Place& drawer = place(Level::Drawer, folder.parentId);
    const Place& cabinet = place(Level::Cabinet, drawer.parentId);
    if (!folder.exists || !drawer.exists || !cabinet.exists)
        return; // its places are gone: there is nothing to hang it on
    outcome.documents << FoundDocument{drawer.parentId, folder.parentId, folderId,    documentId,
                                       cabinet.name,    drawer.name,     folder.name, name};
}

} // namespace qmr
