#include "filing/commandkeys.h"

namespace qmr {

namespace {

// By level: cabinet, drawer, folder, document.
const char* const kTreeInsert[] = {"mnuPopupDrawerNewDrawer", "mnuPopupFolderNewFolder",
                                   "mnuPopupFolderNewDocument", "mnuPopupDocumentNewDocument"};
const char* const kListInsert[] = {"mnuPopupCabinetNewCabinet", "mnuPopupDrawerNewDrawer",
                                   "mnuPopupFolderNewFolder", "mnuPopupDocumentScanPage"};
const char* const kDelete[] = {"mnuPopupCabinetDelete", "mnuPopupDrawerDelete",
                               "mnuPopupFolderDelete", "mnuPopupDocumentDelete"};

// The row of an item of the filing tree above the pages; -1 for anything else.
int rowOf(const NodeKey& key)
{
    const std::optional<Level> level = key.level();
    return level && *level != Level::Page ? static_cast<int>(*level) : -1;
}

} // namespace

QString CommandKeys::insertCommand(ContextSource control, const NodeKey& key)
{
    if (control == ContextSource::Tree && key.isRoot())
        return QStringLiteral("mnuPopupCabinetNewCabinet");
    const int row = rowOf(key);
    if (row < 0 || control == ContextSource::PageList)
        return QString();
    return QLatin1String(control == ContextSource::Tree ? kTreeInsert[row] : kListInsert[row]);
}

QString CommandKeys::deleteCommand(ContextSource control, const NodeKey& key)
{
    const int row = rowOf(key);
    if (row < 0 || control == ContextSource::PageList)
        return QString();
    return QLatin1String(kDelete[row]);
}

} // namespace qmr
