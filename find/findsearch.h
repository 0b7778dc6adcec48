#pragma once

#include <QVector>

#include "store/documentsearch.h"

namespace qmr {

class Session;
struct FindRecord;
struct FoundSet;

// Runs a search of the find dialog against the store: for each cabinet in scope the document
// pass, then the folder pass. Locked cabinets are left out without a word. The run's
// found set receives what the search asked of the pages.
class FindSearch
{
public:
    FindSearch(Session& session, FoundSet& found);

    // `cabinetId` 0 searches every cabinet open in this run; `folderId` 0 every folder.
    FindOutcome run(const FindRecord& record, qint32 cabinetId, qint32 folderId);
    // The cabinets a search visits, lowest id first.
    QVector<qint32> cabinetsToSearch(qint32 cabinetId) const;

private:
    Session& m_session;
    FoundSet& m_found;
};

} // namespace qmr
