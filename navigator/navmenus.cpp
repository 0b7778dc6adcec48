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
         "&File",
         {{"mnuFileScanPage", "&Scan Page"},
          {"mnuFileScanPicture", "Scan &Picture"},
          {"mnuFileFind", "&Find..."},
          {"mnuFileSep1", nullptr},
          {"mnuScanSettings", "S&canner Settings..."},
          {"mnuPrintSettings", "P&rint Settings..."},
          {"mnuEmailSettings", "&Email Settings..."},
          {"mnuViewSettings", "&View Settings..."},
          {"mnuFileDash1", nullptr},
          {"mnuFileExit", "E&xit"}}},
        {"mnuPopupRoot",
         "&Cabinets",
         {{"mnuPopupRootNewFileCabinet", "&New File Cabinet"},
          {"mnuPopupRootRefresh", "&Refresh"}}},
        {"mnuPopupCabinet",
         "&Cabinet",
         {{"mnuPopupCabinetNewCabinet", "&New File Cabinet"},
          {"mnuPopupCabinetNewDrawer", "New &Drawer"},
          {"mnuPopupCabinetRename", "&Rename"},
          {"mnuPopupCabinetDelete", "Delete"},
          {"mnuPopupCabinetDash1", nullptr},
          {"mnuPopupCabinetExport", "Export Cabinet"},
          {"mnuPopupCabinetImport", "Import Cabinet"},
          {"mnuPopupCabinetDash2", nullptr},
          {"mnuPopupCabinetProperties", "&Properties"}}},
        {"mnuPopupDrawer",
         "&Drawer",
         {{"mnuPopupDrawerNewDrawer", "&New Drawer"},
          {"mnuPopupDrawerNewFolder", "New &Folder"},
          {"mnuPopupDrawerRename", "&Rename"},
          {"mnuPopupDrawerDelete", "Delete"},
          {"mnuPopupDrawerDash1", nullptr},
          {"mnuPopupDrawerProperties", "&Properties"}}},
        {"mnuPopupFolder",
         "F&older",
         {{"mnuPopupFolderNewFolder", "&New Folder"},
          {"mnuPopupFolderNewDocument", "New &Document"},
          {"mnuPopupFolderImportFiles", "&Import Files"},
          {"mnuPopupFolderRename", "&Rename"},
          {"mnuPopupFolderDelete", "Delete"},
          {"mnuPopupFolderDash1", nullptr},
          {"mnuPopupFolderProperties", "&Properties"}}},
        {"mnuPopupDocument",
         "&Document",
         {{"mnuPopupDocumentNewDocument", "&New Document"},
          {"mnuPopupDocumentScanPage", "&Scan New Page"},
          {"mnuPopupDocumentDash1", nullptr},
          {"mnuPopupDocumentPrint", "Print Document"},
          {"mnuPopupDocumentRepaginate", "Renumber Pages"},
          {"mnuPopupDocumentImportFiles", "&Import Files"},
          {"mnuPopupDocumentRename", "Rename"},
          {"mnuPopupDocumentDelete", "Delete"},
          {"mnuPopupDocumentDash2", nullptr},
          {"mnuPopupDocumentPaste", "Paste"},
          {"mnuPopupDocumentDash3", nullptr},
          {"mnuPopupDocumentProperties", "&Properties"}}},
        {"mnuPopupPage",
         "&Page",
         {{"mnuPopupPageOpen", "&Open"},
          {"mnuPopupPagePrint", "Pr&int"},
          {"mnuPopupPageRenumber", "&Renumber"},
          {"mnuPopupPageDelete", "Delete"},
          {"mnuPopupPageDash1", nullptr},
          {"mnuPopupPageCut", "Cut"},
          {"mnuPopupPageCopy", "Copy"},
          {"mnuPopupPagePaste", "Paste"},
          {"mnuPopupPageDash2", nullptr},
          {"mnuPopupPageProperties", "&Properties"}}},
        {"mnuTools",
         "&Tools",
         {{"mnuToolsImportFiles", "&Import File Cabinet..."},
          {"mnuToolsExportCabinet", "&Export File Cabinet..."},
          {"mnuToolsDash1", nullptr},
          {"mnuToolsDrawerTemplates", "&Drawer Templates..."},
          {"mnuToolsDash2", nullptr},
          {"mnuToolsCreateSampleCabinet", "Create &Sample Cabinet..."}}},
        {"mnuHelp",
         "&Help",
         {{"mnuHelpHelpTopics", "&Help Topics..."},
          {"mnuHelpDash1", nullptr},
          {"mnuHelpAbout", "&About..."}}},
        {"mnuPopupFound",
         "PopupFound",
         {{"mnuPopupFoundClear", "Clear Results"},
          {"mnuPopupFoundDash1", nullptr},
          {"mnuPopupFoundProperties", "&Properties"}}},
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
        auto* menu = new QMenu(QString::fromUtf8(def.caption), bar);
        menu->setObjectName(menuName);
        menu->menuAction()->setObjectName(menuName);
        bar->addMenu(menu);
        m_menus.insert(menuName, menu);
        for (const MenuEntry& entry : def.entries) {
            const QString name = QLatin1String(entry.name);
            QAction* action = entry.caption ? menu->addAction(QString::fromUtf8(entry.caption))
                                            : menu->addSeparator();
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
