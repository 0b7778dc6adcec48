#include "navigator/navmenus.h"

#include <QIcon>
#include <QMenu>
#include <QMenuBar>

namespace qmr {

namespace {

struct MenuEntry
{
    const char* name;
    const char* caption; // nullptr for a separator
};

struct MenuDef
{
    const char* name;
    const char* caption;
    std::initializer_list<MenuEntry> entries;
};

const std::initializer_list<MenuDef>& menuTable()
{
    static const std::initializer_list<MenuDef> table = {
        {"mnuFile",
         QT_TRANSLATE_NOOP("qmr::NavMenus", "&File"),
         {{"mnuFileScanPage", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Scan Page")},
          {"mnuFileScanPicture", QT_TRANSLATE_NOOP("qmr::NavMenus", "Scan &Picture")},
          {"mnuFileFind", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Find...")},
          {"mnuFileSep1", nullptr},
          {"mnuScanSettings", QT_TRANSLATE_NOOP("qmr::NavMenus", "S&canner Settings...")},
          {"mnuPrintSettings", QT_TRANSLATE_NOOP("qmr::NavMenus", "P&rint Settings...")},
          {"mnuEmailSettings", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Email Settings...")},
          {"mnuViewSettings", QT_TRANSLATE_NOOP("qmr::NavMenus", "&View Settings...")},
          {"mnuTextSettings", QT_TRANSLATE_NOOP("qmr::NavMenus", "Page &Text Settings...")},
          {"mnuFileDash1", nullptr},
          {"mnuFileExit", QT_TRANSLATE_NOOP("qmr::NavMenus", "E&xit")}}},
        {"mnuPopupRoot",
         QT_TRANSLATE_NOOP("qmr::NavMenus", "&Cabinets"),
         {{"mnuPopupRootNewFileCabinet", QT_TRANSLATE_NOOP("qmr::NavMenus", "&New File Cabinet")},
          {"mnuPopupRootRefresh", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Refresh")}}},
        {"mnuPopupCabinet",
         QT_TRANSLATE_NOOP("qmr::NavMenus", "&Cabinet"),
         {{"mnuPopupCabinetNewCabinet", QT_TRANSLATE_NOOP("qmr::NavMenus", "&New File Cabinet")},
          {"mnuPopupCabinetNewDrawer", QT_TRANSLATE_NOOP("qmr::NavMenus", "New &Drawer")},
          {"mnuPopupCabinetRename", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Rename")},
          {"mnuPopupCabinetDelete", QT_TRANSLATE_NOOP("qmr::NavMenus", "Delete")},
          {"mnuPopupCabinetDash1", nullptr},
          {"mnuPopupCabinetExport", QT_TRANSLATE_NOOP("qmr::NavMenus", "Export Cabinet")},
          {"mnuPopupCabinetImport", QT_TRANSLATE_NOOP("qmr::NavMenus", "Import Cabinet")},
          {"mnuPopupCabinetDash2", nullptr},
          {"mnuPopupCabinetProperties", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Properties")}}},
        {"mnuPopupDrawer",
         QT_TRANSLATE_NOOP("qmr::NavMenus", "&Drawer"),
         {{"mnuPopupDrawerNewDrawer", QT_TRANSLATE_NOOP("qmr::NavMenus", "&New Drawer")},
          {"mnuPopupDrawerNewFolder", QT_TRANSLATE_NOOP("qmr::NavMenus", "New &Folder")},
          {"mnuPopupDrawerRename", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Rename")},
          {"mnuPopupDrawerDelete", QT_TRANSLATE_NOOP("qmr::NavMenus", "Delete")},
          {"mnuPopupDrawerDash1", nullptr},
          {"mnuPopupDrawerProperties", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Properties")}}},
        {"mnuPopupFolder",
         QT_TRANSLATE_NOOP("qmr::NavMenus", "F&older"),
         {{"mnuPopupFolderNewFolder", QT_TRANSLATE_NOOP("qmr::NavMenus", "&New Folder")},
          {"mnuPopupFolderNewDocument", QT_TRANSLATE_NOOP("qmr::NavMenus", "New &Document")},
          {"mnuPopupFolderImportFiles", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Import Files")},
          {"mnuPopupFolderRename", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Rename")},
          {"mnuPopupFolderDelete", QT_TRANSLATE_NOOP("qmr::NavMenus", "Delete")},
          {"mnuPopupFolderDash1", nullptr},
          {"mnuPopupFolderProperties", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Properties")}}},
        {"mnuPopupDocument",
         QT_TRANSLATE_NOOP("qmr::NavMenus", "&Document"),
         {{"mnuPopupDocumentNewDocument", QT_TRANSLATE_NOOP("qmr::NavMenus", "&New Document")},
          {"mnuPopupDocumentScanPage", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Scan New Page")},
          {"mnuPopupDocumentDash1", nullptr},
          {"mnuPopupDocumentPrint", QT_TRANSLATE_NOOP("qmr::NavMenus", "Print Document")},
          {"mnuPopupDocumentSearchablePdf",
           QT_TRANSLATE_NOOP("qmr::NavMenus", "Save &as Searchable PDF...")},
          {"mnuPopupDocumentRepaginate", QT_TRANSLATE_NOOP("qmr::NavMenus", "Renumber Pages")},
          {"mnuPopupDocumentImportFiles", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Import Files")},
          {"mnuPopupDocumentRename", QT_TRANSLATE_NOOP("qmr::NavMenus", "Rename")},
          {"mnuPopupDocumentDelete", QT_TRANSLATE_NOOP("qmr::NavMenus", "Delete")},
          {"mnuPopupDocumentDash2", nullptr},
          {"mnuPopupDocumentPaste", QT_TRANSLATE_NOOP("qmr::NavMenus", "Paste")},
          {"mnuPopupDocumentDash3", nullptr},
          {"mnuPopupDocumentProperties", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Properties")}}},
        {"mnuPopupPage",
         QT_TRANSLATE_NOOP("qmr::NavMenus", "&Page"),
         {{"mnuPopupPageOpen", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Open")},
          {"mnuPopupPagePrint", QT_TRANSLATE_NOOP("qmr::NavMenus", "Pr&int")},
          {"mnuPopupPageRenumber", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Renumber")},
          {"mnuPopupPageDelete", QT_TRANSLATE_NOOP("qmr::NavMenus", "Delete")},
          {"mnuPopupPageDash1", nullptr},
          {"mnuPopupPageCut", QT_TRANSLATE_NOOP("qmr::NavMenus", "Cut")},
          {"mnuPopupPageCopy", QT_TRANSLATE_NOOP("qmr::NavMenus", "Copy")},
          {"mnuPopupPagePaste", QT_TRANSLATE_NOOP("qmr::NavMenus", "Paste")},
          {"mnuPopupPageDash2", nullptr},
          {"mnuPopupPageProperties", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Properties")}}},
        {"mnuTools",
         QT_TRANSLATE_NOOP("qmr::NavMenus", "&Tools"),
         {{"mnuToolsImportFiles", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Import File Cabinet...")},
          {"mnuToolsExportCabinet", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Export File Cabinet...")},
          {"mnuToolsDash1", nullptr},
          {"mnuToolsDrawerTemplates", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Drawer Templates...")},
          {"mnuToolsDash2", nullptr},
          {"mnuToolsCreateSampleCabinet",
           QT_TRANSLATE_NOOP("qmr::NavMenus", "Create &Sample Cabinet...")}}},
        {"mnuHelp",
         QT_TRANSLATE_NOOP("qmr::NavMenus", "&Help"),
         {{"mnuHelpHelpTopics", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Help Topics...")},
          {"mnuHelpDash1", nullptr},
          {"mnuHelpAbout", QT_TRANSLATE_NOOP("qmr::NavMenus", "&About...")}}},
        {"mnuPopupFound",
         QT_TRANSLATE_NOOP("qmr::NavMenus", "PopupFound"),
         {{"mnuPopupFoundClear", QT_TRANSLATE_NOOP("qmr::NavMenus", "Clear Results")},
          {"mnuPopupFoundDash1", nullptr},
          {"mnuPopupFoundProperties", QT_TRANSLATE_NOOP("qmr::NavMenus", "&Properties")}}},
    };
    return table;
}

// How an entry looks beyond its caption: a standard theme icon, and its keys. Window-wide
// keys work from anywhere in the window; the others are only shown (the control that has the
// focus handles them by its own table).
struct EntryLook
{
    const char* name;
    const char* icon; // nullptr: none
    QKeySequence keys;
    bool windowWide = false;
};

const QVector<EntryLook>& lookTable()
{
    static const QVector<EntryLook> table = {
        {"mnuFileScanPage", "scanner", {}},
        {"mnuFileScanPicture", "camera-photo", {}},
        {"mnuFileFind", "edit-find", QKeySequence(Qt::CTRL | Qt::Key_F), true},
        {"mnuPrintSettings", "document-page-setup", {}},
        {"mnuFileExit", "application-exit", QKeySequence(Qt::CTRL | Qt::Key_Q), true},
        {"mnuPopupRootNewFileCabinet", "document-new", {}},
        {"mnuPopupRootRefresh", "view-refresh", QKeySequence(Qt::Key_F5)},
        {"mnuPopupCabinetNewCabinet", "document-new", {}},
        {"mnuPopupCabinetNewDrawer", "document-new", {}},
        {"mnuPopupCabinetRename", nullptr, QKeySequence(Qt::Key_F2)},
        {"mnuPopupCabinetDelete", "edit-delete", QKeySequence(Qt::Key_Delete)},
        {"mnuPopupCabinetProperties", "document-properties", {}},
        {"mnuPopupDrawerNewDrawer", "document-new", {}},
        {"mnuPopupDrawerNewFolder", "folder-new", {}},
        {"mnuPopupDrawerRename", nullptr, QKeySequence(Qt::Key_F2)},
        {"mnuPopupDrawerDelete", "edit-delete", QKeySequence(Qt::Key_Delete)},
        {"mnuPopupDrawerProperties", "document-properties", {}},
        {"mnuPopupFolderNewFolder", "folder-new", {}},
        {"mnuPopupFolderNewDocument", "document-new", {}},
        {"mnuPopupFolderRename", nullptr, QKeySequence(Qt::Key_F2)},
        {"mnuPopupFolderDelete", "edit-delete", QKeySequence(Qt::Key_Delete)},
        {"mnuPopupFolderProperties", "document-properties", {}},
        {"mnuPopupDocumentNewDocument", "document-new", {}},
        {"mnuPopupDocumentScanPage", "scanner", {}},
        {"mnuPopupDocumentPrint", "document-print", {}},
        {"mnuPopupDocumentSearchablePdf", "document-save-as", {}},
        {"mnuPopupDocumentRename", nullptr, QKeySequence(Qt::Key_F2)},
        {"mnuPopupDocumentDelete", "edit-delete", QKeySequence(Qt::Key_Delete)},
        {"mnuPopupDocumentPaste", "edit-paste", QKeySequence(Qt::CTRL | Qt::Key_V)},
        {"mnuPopupDocumentProperties", "document-properties", {}},
        {"mnuPopupPageOpen", "document-open", QKeySequence(Qt::Key_Return)},
        {"mnuPopupPagePrint", "document-print", {}},
        {"mnuPopupPageRenumber", nullptr, QKeySequence(Qt::Key_R)},
        {"mnuPopupPageDelete", "edit-delete", QKeySequence(Qt::Key_Delete)},
        {"mnuPopupPageCut", "edit-cut", QKeySequence(Qt::CTRL | Qt::Key_X)},
        {"mnuPopupPageCopy", "edit-copy", QKeySequence(Qt::CTRL | Qt::Key_C)},
        {"mnuPopupPagePaste", "edit-paste", QKeySequence(Qt::CTRL | Qt::Key_V)},
        {"mnuPopupPageProperties", "document-properties", QKeySequence(Qt::Key_I)},
        {"mnuHelpHelpTopics", "help-contents", QKeySequence(Qt::Key_F1), true},
        {"mnuHelpAbout", "help-about", {}},
        {"mnuPopupFoundClear", "edit-clear", {}},
        {"mnuPopupFoundProperties", "document-properties", {}},
    };
    return table;
}

} // namespace

const QStringList& NavMenus::levelMenus()
{
    static const QStringList names = {
        QStringLiteral("mnuPopupRoot"),     QStringLiteral("mnuPopupCabinet"),
        QStringLiteral("mnuPopupDrawer"),   QStringLiteral("mnuPopupFolder"),
        QStringLiteral("mnuPopupDocument"), QStringLiteral("mnuPopupPage")};
    return names;
}

void NavMenus::build(QMenuBar* bar, const Commands& commands)
{
    m_bar = bar;
    for (const MenuDef& def : menuTable()) {
        const QString menuName = QLatin1String(def.name);
        auto* menu = new QMenu(tr(def.caption), bar);
        menu->setObjectName(menuName);
        menu->menuAction()->setObjectName(menuName);
        bar->addMenu(menu);
        m_menus.insert(menuName, menu);
        for (const MenuEntry& entry : def.entries) {
            const QString name = QLatin1String(entry.name);
            QAction* action =
                entry.caption ? menu->addAction(tr(entry.caption)) : menu->addSeparator();
            action->setObjectName(name);
            m_actions.insert(name, action);
            if (!entry.caption)
                continue;
            const auto command = commands.find(name);
            if (command == commands.end()) {
                action->setEnabled(false); // built by a later piece of work
            } else {
                m_commands.insert(name);
                const std::function<void()> run = command.value();
                QObject::connect(action, &QAction::triggered, bar, [run] { run(); });
            }
        }
    }
    for (const EntryLook& look : lookTable()) {
        QAction* action = m_actions.value(QLatin1String(look.name));
        if (!action)
            continue;
        if (look.icon)
            action->setIcon(QIcon::fromTheme(QLatin1String(look.icon)));
        if (look.windowWide) {
            action->setShortcutContext(Qt::WindowShortcut);
            action->setShortcut(look.keys);
        } else if (!look.keys.isEmpty()) {
            setKeyHint(action->objectName(), look.keys);
        }
    }
    // F3 finds as Ctrl+F does.
    if (QAction* find = m_actions.value(QStringLiteral("mnuFileFind")))
        find->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_F), QKeySequence(Qt::Key_F3)});
    // The found branch's menu only ever pops up.
    m_menus.value(QStringLiteral("mnuPopupFound"))->menuAction()->setVisible(false);
}

void NavMenus::run(const QString& name) const
{
    if (QAction* action = m_actions.value(name); action && action->isEnabled())
        action->trigger();
}

void NavMenus::setAvailable(const QString& name, bool available)
{
    if (QAction* action = m_actions.value(name))
        action->setEnabled(available && hasCommand(name));
}

void NavMenus::setKeyHint(const QString& name, const QKeySequence& keys)
{
    QAction* action = m_actions.value(name);
    if (!action)
        return;
    // Bound to the menu alone: the key reaches the control with the focus, whose own table
    // decides what it does there.
    action->setShortcutContext(Qt::WidgetShortcut);
    action->setShortcut(keys);
}

void NavMenus::showOnly(const QString& menuName)
{
    // The bar holds only the level menu on show: a hidden entry keeps its access key, so a
    // hidden Drawer would take Alt+D from the Document on show.
    QAction* before = m_menus.value(QStringLiteral("mnuTools"))->menuAction();
    for (const QString& name : levelMenus()) {
        QMenu* m = m_menus.value(name);
        if (!m)
            continue;
        QAction* entry = m->menuAction();
        const bool shown = name == menuName;
        entry->setVisible(shown);
        if (!shown)
            m_bar->removeAction(entry);
        else if (!m_bar->actions().contains(entry))
            m_bar->insertAction(before, entry);
    }
}

} // namespace qmr
