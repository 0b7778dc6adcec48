#pragma once

#include <QHash>
#include <QVector>

#include "core/foundresults.h"

namespace qmr {

class Session;
struct FindRecord;

// What a search found: every document of every pass in the order found (a document found by
// both passes comes twice), and the sum of the passes' record counts, which counts a folder
// hit even when the folder holds no document.
struct FindOutcome
{
    int foundCount = 0;
    QVector<FoundDocument> documents;
};

// Runs a search against the store: for each cabinet in scope the document pass, then the
// folder pass. Locked cabinets are left out without a word. The session's found set receives
// the page conditions of the search.
class FindSearch
{
public:
    explicit FindSearch(Session& session);

    // `cabinetId` 0 searches every cabinet open in this run; `folderId` 0 every folder.
    FindOutcome run(const FindRecord& criteria, qint32 cabinetId, qint32 folderId);
    // The cabinets a search visits, lowest id first.
    QVector<qint32> cabinetsToSearch(qint32 cabinetId) const;

private:
    struct Chain
    {
        qint32 cabinetId = -1;
        qint32 drawerId = -1;
        QString cabinetName;
        QString drawerName;
        QString folderName;
    };
    void documentPass(const FindRecord& criteria, qint32 cabinetId, qint32 folderId,
                      FindOutcome& outcome);
    void folderPass(const FindRecord& criteria, qint32 cabinetId, qint32 folderId,
                    FindOutcome& outcome);
    void addFoundDocument(qint32 documentId, qint32 folderId, const QString& name,
                          FindOutcome& outcome);
    // The places above a folder with their names, read once per search.
    const Chain& chainOf(qint32 folderId);

    Session& m_session;
    QHash<qint32, Chain> m_chains;
};

} // namespace qmr
