#pragma once

#include "core/level.h"

#include <QString>
#include <QtGlobal>

namespace qmr {

// Where the user is in the hierarchy, as the last tree click left it. Only one of the four
// level ids is set at a time; the parent id comes from the key of the node's parent.
struct SelectionRecord
{
    qint32 currentCabinetId = -1;
    qint32 currentDrawerId = -1;
    qint32 currentFolderId = -1;
    qint32 currentDocumentId = -1;
    qint32 currentParentId = -1;
    QString currentCabinetName;
    QString currentDrawerName;
    QString currentFolderName;
    QString currentDocumentName;
    QString lastNodeKey;

    // Sets the five ids to -1 and the four names to empty; lastNodeKey stays.
    void clear();
    // The id and name fields of one level (Cabinet to Document).
    qint32& idOf(Level level);
    QString& nameOf(Level level);
    qint32 idOf(Level level) const;
};

} // namespace qmr
