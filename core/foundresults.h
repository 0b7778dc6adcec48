#pragma once

#include <QString>
#include <QVector>
#include <QtGlobal>

namespace qmr {

// One document that a search found, with the chain of places above it and their names as
// the search read them ("" where a row was gone).
struct FoundDocument
{
    qint32 cabinetId = -1;
    qint32 drawerId = -1;
    qint32 folderId = -1;
    qint32 documentId = -1;
    QString cabinetName;
    QString drawerName;
    QString folderName;
    QString documentName;
};

// Where the result of a search is shown: the found branch of the main window's tree. The
// find feature reaches the window only through this.
class FoundResults
{
public:
    virtual ~FoundResults() = default;
    // Takes the branch away with all its nodes; nothing when there is none.
    virtual void clear() = 0;
    // Shows the branch "Found" with a copy of each document and of the places above it,
    // merged where they are shared, opened out and selected. With no documents the root
    // stands bare.
    virtual void show(const QVector<FoundDocument>& documents) = 0;
};

} // namespace qmr

// Kept in vectors of many thousands: moved by memory copy.
Q_DECLARE_TYPEINFO(qmr::FoundDocument, Q_RELOCATABLE_TYPE);
