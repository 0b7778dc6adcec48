#pragma once

#include <QCoreApplication>
#include <QDate>
#include <QIcon>
#include <optional>

#include "core/level.h"
#include "core/navigatorcallbacks.h"
#include "core/nodekey.h"

namespace qmr {

class ContainerList;
class NavIcons;
class NavTree;
class Session;
struct SelectionRecord;

// Fills tvwMain from the store: the whole tree at load, a level further at a click or an
// expansion, the walk back to the last node at start, and the nodes of items that commands
// add, rename, remove or unlock. A node already in the tree is left alone, so every fill may
// run twice.
class TreeFiller
{
    Q_DECLARE_TR_FUNCTIONS(qmr::TreeFiller)

public:
    TreeFiller(NavTree& tree, ContainerList& list, NavIcons& icons, Session& session);

    // Builds everything from nothing: the root, every cabinet (in the list too), and the
    // drawers of the cabinets without a password. A store without cabinets gets the first
    // sample cabinet, shown through `navigator`; returns the message naming the lines of the
    // sample that could not be used, "" for none.
    QString loadNavTree(NavigatorCallbacks* navigator);
    // What a click on a cabinet or drawer loads below it.
    void fillOnClick(Level level, qint32 id);
    // What an expansion loads: folders below a cabinet's drawers, documents below a drawer's
    // folders.
    void onExpand(const NodeKey& key);
    void addChildNodes(Level parentLevel, qint32 parentId);

    // The walk back to LastNavTreeNodeKey: selects and expands the chain down to the saved
    // node, asking no password. Returns the saved node's level (its menu is shown even when
    // the walk stops), or nothing for a key of another shape; `reached` tells whether the
    // saved node was selected.
    std::optional<Level> restoreLastNode(const QString& saved, bool* reached);

    QString getCabinetIcon(qint32 cabinetId) const;
    QIcon iconFor(Level level, qint32 id) const;
    static QString nodeText(Level level, const QString& name, const QDate& date);

    // The updates that dialogs and commands ask for.
    bool addItemNode(const CreatedItem& item);
    void renameItem(Level level, qint32 id, const QString& name, const QDate& date);
    void removeItem(Level level, qint32 id);
    // Removes and re-adds an opened cabinet's node, selected and expanded, with the drawers
    // and folders a click would load.
    void rebuildCabinetNode(qint32 cabinetId);

private:
    void addFoldersToDrawerNodes(qint32 cabinetId);
    void addDocumentsToFolderNodes(qint32 drawerId);

    NavTree& m_tree;
    ContainerList& m_list;
    NavIcons& m_icons;
    Session& m_session;
};

} // namespace qmr
