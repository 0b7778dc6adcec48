#include "core/selectionrecord.h"

namespace qmr {

void SelectionRecord::clear()
{
    currentCabinetId = currentDrawerId = currentFolderId = currentDocumentId = -1;
    currentParentId = -1;
    currentCabinetName.clear();
    currentDrawerName.clear();
    currentFolderName.clear();
    currentDocumentName.clear();
}

qint32& SelectionRecord::idOf(Level level)
{
    switch (level) {
    case Level::Cabinet:
        return currentCabinetId;
    case Level::Drawer:
        return currentDrawerId;
    case Level::Folder:
        return currentFolderId;
    default:
        return currentDocumentId;
    }
}

qint32 SelectionRecord::idOf(Level level) const
{
    return const_cast<SelectionRecord*>(this)->idOf(level);
}

QString& SelectionRecord::nameOf(Level level)
{
    switch (level) {
    case Level::Cabinet:
        return currentCabinetName;
    case Level::Drawer:
        return currentDrawerName;
    case Level::Folder:
        return currentFolderName;
    default:
        return currentDocumentName;
    }
}

} // namespace qmr
