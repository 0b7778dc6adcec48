#include "navigator/popupmenus.h"

#include <QAction>
#include <QKeySequence>

#include "navigator/navmenus.h"

namespace qmr {

namespace {

const char* const kLevelMenus[] = {"mnuPopupCabinet", "mnuPopupDrawer", "mnuPopupFolder",
                                   "mnuPopupDocument"};

// The entries of the page menu that an empty page list has no use for.
const char* const kPageEntries[] = {
    "mnuPopupPageDash1", "mnuPopupPageDash2",      "mnuPopupPageDelete",  "mnuPopupPageOpen",
    "mnuPopupPagePrint", "mnuPopupPageProperties", "mnuPopupPageRenumber"};

// The menu of a level (cabinet to document); "" for any other key.
QString levelMenu(const NodeKey& key)
{
    const std::optional<Level> level = key.level();
    if (!level || *level == Level::Page)
        return QString();
    return QLatin1String(kLevelMenus[static_cast<int>(*level)]);
}

} // namespace

PopupMenus::PopupMenus(NavMenus& menus) : m_menus(menus)
{
}

void PopupMenus::setVisible(const char* name, bool visible)
{
    if (QAction* action = m_menus.action(QLatin1String(name)))
        action->setVisible(visible);
}

void PopupMenus::updatePaste()
{
    const bool paste = pasteAvailable();
    m_menus.setAvailable(QStringLiteral("mnuPopupDocumentPaste"), paste);
    m_menus.setAvailable(QStringLiteral("mnuPopupPagePaste"), paste);
}

QString PopupMenus::prepareTree(const NodeKey& key, bool cabinetOpen)
{
    showInsertKeys(ContextSource::Tree);
    if (key.isFoundRoot())
        return QStringLiteral("mnuPopupFound");
    if (key.isRoot())
        return QStringLiteral("mnuPopupRoot");
    const std::optional<Level> level = key.level();
    if (!level || *level == Level::Page || (*level == Level::Cabinet && !cabinetOpen))
        return QString();
    // The entries that make something below the node.
    switch (*level) {
    case Level::Cabinet:
        setVisible("mnuPopupCabinetNewCabinet", true);
        setVisible("mnuPopupCabinetNewDrawer", true);
        break;
    case Level::Drawer:
        setVisible("mnuPopupDrawerNewDrawer", true);
        setVisible("mnuPopupDrawerNewFolder", true);
        break;
    case Level::Folder:
        setVisible("mnuPopupFolderNewDocument", true);
        setVisible("mnuPopupFolderNewFolder", true);
        setVisible("mnuPopupFolderImportFiles", true);
        break;
    default:
        setVisible("mnuPopupDocumentImportFiles", true);
        setVisible("mnuPopupDocumentScanPage", true);
        updatePaste();
        break;
    }
    return levelMenu(key);
}

QString PopupMenus::prepareList(const NodeKey& key, bool cabinetOpen)
{
    showInsertKeys(ContextSource::List);
    const std::optional<Level> level = key.level();
    if (!level || *level == Level::Page || (*level == Level::Cabinet && !cabinetOpen))
        return QString(); // the found branch's items have no menu
    if (*level == Level::Document)
        updatePaste();
    return levelMenu(key);
}

QString PopupMenus::preparePages(bool hasPages, std::optional<bool> selectedShortcut)
{
    for (const char* name : kPageEntries)
        setVisible(name, hasPages);
    updatePaste();
    if (hasPages && selectedShortcut) {
        // A shortcut's file is not the program's: it is no page to number or print here.
        QAction* remove = m_menus.action(QStringLiteral("mnuPopupPageDelete"));
        remove->setText(*selectedShortcut ? tr("Delete shortcut") : tr("Delete"));
        setVisible("mnuPopupPageRenumber", !*selectedShortcut);
        setVisible("mnuPopupPagePrint", !*selectedShortcut);
    }
    return QStringLiteral("mnuPopupPage");
}

void PopupMenus::showInsertKeys(ContextSource control)
{
    // In each level's menu, the entry that does what Insert does on a node or item of that
    // level: a child in the tree, a sibling in the list (a new page for a document).
    static const QStringList tree = {
        QStringLiteral("mnuPopupRootNewFileCabinet"), QStringLiteral("mnuPopupCabinetNewDrawer"),
        QStringLiteral("mnuPopupDrawerNewFolder"), QStringLiteral("mnuPopupFolderNewDocument"),
        QStringLiteral("mnuPopupDocumentNewDocument")};
    static const QStringList list = {
        QStringLiteral("mnuPopupCabinetNewCabinet"), QStringLiteral("mnuPopupDrawerNewDrawer"),
        QStringLiteral("mnuPopupFolderNewFolder"), QStringLiteral("mnuPopupDocumentScanPage")};
    const QStringList& shown = control == ContextSource::Tree ? tree : list;
    for (const QStringList* entries : {&tree, &list})
        for (const QString& entry : *entries)
            m_menus.setKeyHint(entry, shown.contains(entry) ? QKeySequence(Qt::Key_Insert)
                                                            : QKeySequence());
}

} // namespace qmr
