#include "navigator/navmenus.h"

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
          {"mnuScanSettings", "&Scanner Settings..."},
          {"mnuPrintSettings", "&Print Settings..."},
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
          {"mnuPopupPagePrint", "&Print"},
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
                const std::function<void()> run = command.value();
                QObject::connect(action, &QAction::triggered, bar, [run] { run(); });
            }
        }
    }
    // The found branch's menu only ever pops up.
    m_menus.value(QStringLiteral("mnuPopupFound"))->menuAction()->setVisible(false);
}

void NavMenus::run(const QString& name) const
{
    if (QAction* action = m_actions.value(name); action && action->isEnabled())
        action->trigger();
}

void NavMenus::showOnly(const QString& menuName)
{
    for (const QString& name : levelMenus())
        if (QMenu* m = m_menus.value(name))
            m->menuAction()->setVisible(name == menuName);
}

} // namespace qmr
