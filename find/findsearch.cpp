#include "find/findsearch.h"

#include <algorithm>

#include "core/findcriteria.h"
#include "core/findrecord.h"
#include "core/foundset.h"
#include "store/session.h"

namespace qmr {

FindSearch::FindSearch(Session& session, FoundSet& found) : m_session(session), m_found(found)
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

FindOutcome FindSearch::run(const FindRecord& record, qint32 cabinetId, qint32 folderId)
{
    m_found.clear();
    const FindCriteria criteria = FindCriteria::fromRecord(record, folderId);
    // One read of the store from the list of cabinets to the names of the places found.
    Database::Transaction read(m_session.db());
    const QVector<qint32> cabinets = cabinetsToSearch(cabinetId);
    FindOutcome outcome = DocumentSearch(m_session.db()).run(criteria, cabinets);
    read.commit();
    // A found document's page list is narrowed by what this search asked of its pages.
    if (!cabinets.isEmpty()) {
        m_found.pageFilter = criteria.pages;
        m_found.pageWords = criteria.pageWords;
    }
    return outcome;
}

} // namespace qmr
