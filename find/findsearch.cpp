#include "find/findsearch.h"

#include <algorithm>

#include "core/findrecord.h"
#include "find/findquery.h"
#include "store/session.h"

namespace qmr {

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
    m_chains.clear();
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
    for (int i = 0; i < rs.recordCount(); ++i)
        addFoundDocument(rs.integer(i, QStringLiteral("DocumentId")),
                         rs.integer(i, QStringLiteral("FolderId")),
                         rs.text(i, QStringLiteral("Name")), outcome);
}

void FindSearch::folderPass(const FindRecord& criteria, qint32 cabinetId, qint32 folderId,
                            FindOutcome& outcome)
{
    // No guard and no date, amount or size: every document of a matching folder counts.
    const Recordset rs = m_session.db().openRecordset(
        FindQuery::forStore(FindQuery::folderStatement(criteria, cabinetId, folderId)));
    outcome.foundCount += rs.recordCount();
    for (int i = 0; i < rs.recordCount(); ++i) {
        const qint32 folder = rs.integer(i, QStringLiteral("FolderId"));
        for (const ItemRow& document : m_session.items().children(Level::Document, folder))
            addFoundDocument(document.id, folder, document.name, outcome);
    }
}

const FindSearch::Chain& FindSearch::chainOf(qint32 folderId)
{
    if (const auto known = m_chains.constFind(folderId); known != m_chains.constEnd())
        return *known;
    ItemStore& items = m_session.items();
    Chain chain;
    chain.drawerId = items.drawerOfFolder(folderId);
    if (chain.drawerId >= 0)
        chain.cabinetId = items.cabinetOfDrawer(chain.drawerId);
    if (chain.cabinetId >= 0) {
        chain.cabinetName = items.item(Level::Cabinet, chain.cabinetId).name;
        chain.drawerName = items.item(Level::Drawer, chain.drawerId).name;
        chain.folderName = items.item(Level::Folder, folderId).name;
    }
    return *m_chains.insert(folderId, chain);
}

void FindSearch::addFoundDocument(qint32 documentId, qint32 folderId, const QString& name,
                                  FindOutcome& outcome)
{
    const Chain& chain = chainOf(folderId);
    if (chain.cabinetId < 0)
        return; // its places are gone: there is nothing to hang it on
    outcome.documents << FoundDocument{
        chain.cabinetId,   chain.drawerId,   folderId,         documentId,
        chain.cabinetName, chain.drawerName, chain.folderName, name};
}

} // namespace qmr
