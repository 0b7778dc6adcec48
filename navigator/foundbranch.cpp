#include "navigator/foundbranch.h"

#include <QTreeWidgetItem>

#include "core/nodekey.h"
#include "navigator/navicons.h"
#include "navigator/navtree.h"

namespace qmr {

namespace {

void makeFixed(QTreeWidgetItem* item)
{
    item->setFlags(item->flags() &
                   ~(Qt::ItemIsEditable | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled));
}

} // namespace

FoundBranch::FoundBranch(NavTree& tree, NavIcons& icons) : m_tree(tree), m_icons(icons)
{
}

void FoundBranch::clear()
{
    m_tree.removeNode(NodeKey::foundRoot().text());
}

void FoundBranch::addCopy(const QString& parentKey, const QString& key, const QString& text,
                          const char* icon)
{
    if (QTreeWidgetItem* item =
            m_tree.addNode(parentKey, key, text, m_icons.icon(QLatin1String(icon))))
        makeFixed(item);
}

void FoundBranch::show(const QVector<FoundDocument>& documents)
{
    const QString rootKey = NodeKey::foundRoot().text();
    clear();
    addCopy(QString(), rootKey, QStringLiteral("Found"), "found");
    QStringList places;
    for (const FoundDocument& d : documents) {
        const QString cabinet = NodeKey::found(Level::Cabinet, d.cabinetId).text();
        const QString drawer = NodeKey::found(Level::Drawer, d.drawerId).text();
        const QString folder = NodeKey::found(Level::Folder, d.folderId).text();
        // A found cabinet was open to the search, so it never shows the lock.
        addCopy(rootKey, cabinet, d.cabinetName, "cabinet");
        addCopy(cabinet, drawer, d.drawerName, "drawer");
        addCopy(drawer, folder, d.folderName, "folder");
        addCopy(folder, NodeKey::found(Level::Document, d.documentId).text(), d.documentName,
                "document");
        places << cabinet << drawer << folder;
    }
    // The result stands open down to its documents.
    places.removeDuplicates();
    for (const QString& key : std::as_const(places))
        if (QTreeWidgetItem* item = m_tree.node(key))
            item->setExpanded(true);
    m_tree.expandNode(rootKey);
    m_tree.selectNode(rootKey);
}

} // namespace qmr
