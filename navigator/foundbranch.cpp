#include "navigator/foundbranch.h"

#include <QCoreApplication>
#include <QSet>
#include <charconv>
#include <cstring>
#include <optional>

#include "core/nodekey.h"
#include "navigator/navtree.h"
#include "resources/navicons.h"

namespace qmr {

FoundBranch::FoundBranch(NavTree& tree, NavIcons& icons) : m_tree(tree), m_icons(icons)
{
}

void FoundBranch::clear()
{
    m_tree.removeNode(NodeKey::foundRoot().text());
}

void FoundBranch::show(const QVector<FoundDocument>& documents)
{
    const QString rootKey = NodeKey::foundRoot().text();
    clear();
    // The copies are fixed: no rename, no drag, no drop.
    const Qt::ItemFlags fixed = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    const QIcon cabinetIcon = m_icons.icon(QStringLiteral("cabinet"));
    const QIcon drawerIcon = m_icons.icon(QStringLiteral("drawer"));
    const QIcon folderIcon = m_icons.icon(QStringLiteral("folder"));
    const QIcon documentIcon = m_icons.icon(QStringLiteral("document"));
    QVector<NavTree::NewNode> nodes;
    nodes.reserve(1 + documents.size());
    nodes.append({QString(), rootKey, QCoreApplication::translate("qmr::FoundBranch", "Found"),
                  m_icons.icon(QStringLiteral("found")), false, fixed});
    // A place or document already there keeps its node: documents that share a folder share
    // its chain, and a document found by both passes stands once.
    QSet<qint32> seen[4];
    const auto isNew = [&seen](Level level, qint32 id) {
        QSet<qint32>& ids = seen[int(level)];
        if (ids.contains(id))
            return false;
        ids.insert(id);
        return true;
    };
    // Documents come place by place, so a place's key is made once for the run of its
    // documents, and each key with one allocation: a search can find a hundred thousand.
    std::optional<qint32> lastIds[4];
    QString lastKeys[4];
    const auto key = [&lastIds, &lastKeys](Level level, qint32 id) -> const QString& {
        const int l = int(level);
        if (lastIds[l] != id) {
            char text[16];
            const char* prefix = levelInfo(level).foundPrefix;
            const std::size_t length = std::strlen(prefix);
            std::memcpy(text, prefix, length);
            const auto end = std::to_chars(text + length, text + sizeof text, id).ptr;
            lastIds[l] = id;
            lastKeys[l] = QString::fromLatin1(text, end - text);
        }
        return lastKeys[l];
    };
    for (const FoundDocument& d : documents) {
        // A found cabinet was open to the search, so it never shows the lock.
        if (isNew(Level::Cabinet, d.cabinetId))
            nodes.append({rootKey, key(Level::Cabinet, d.cabinetId), d.cabinetName, cabinetIcon,
                          true, fixed});
        if (isNew(Level::Drawer, d.drawerId))
            nodes.append({key(Level::Cabinet, d.cabinetId), key(Level::Drawer, d.drawerId),
                          d.drawerName, drawerIcon, true, fixed});
        if (isNew(Level::Folder, d.folderId))
            nodes.append({key(Level::Drawer, d.drawerId), key(Level::Folder, d.folderId),
                          d.folderName, folderIcon, true, fixed});
        if (isNew(Level::Document, d.documentId))
            nodes.append({key(Level::Folder, d.folderId), key(Level::Document, d.documentId),
                          d.documentName, documentIcon, false, fixed});
    }
    m_tree.addNodes(nodes);
    m_tree.expandNode(rootKey);
    m_tree.selectNode(rootKey);
}

} // namespace qmr
