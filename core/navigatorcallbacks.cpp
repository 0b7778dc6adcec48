#include "core/navigatorcallbacks.h"

namespace qmr {

void NavigatorCallbacks::announce(const QVector<CreatedItem>& items)
{
    for (const CreatedItem& c : items) {
        switch (c.level) {
        case Level::Cabinet:
            AddCabinetToNavTree(c.id, c.name);
            break;
        case Level::Drawer:
            AddDrawerToNavTree(c.parentId, c.id, c.name);
            break;
        case Level::Folder:
            AddFolderToNavTree(c.parentId, c.id, c.name);
            break;
        case Level::Document:
            AddDocumentToNavTree(c.parentId, c.id, c.name, c.date);
            break;
        case Level::Page:
            break;
        }
    }
}

} // namespace qmr
