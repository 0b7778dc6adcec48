#pragma once

#include <QHash>
#include <QVector>

#include "core/foundresults.h"
#include "core/level.h"

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
    // A folder, drawer or cabinet above a found document: its parent's id (-1 for a cabinet,
    // or when the row is gone) and its name.
    struct Place
    {
        qint32 parentId = -1;
        QString name;
        bool exists = false;
    };
    void documentPass(const FindRecord& criteria, qint32 cabinetId, qint32 folderId,
                      FindOutcome& outcome);
    void folderPass(const FindRecord& criteria, qint32 cabinetId, qint32 folderId,
                    FindOutcome& outcome);
    void addFoundDocument(qint32 documentId, qint32 folderId, const QString& name,
                          FindOutcome& outcome);
    // Read once per search: many documents share their places.
    const Place& place(Level level, qint32 id);

    Session& m_session;
    QHash<qint32, Place> m_places[3]; // cabinets, drawers, folders
};

} // namespace qmr
