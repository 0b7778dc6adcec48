#pragma once

#include <QPoint>
#include <QTreeWidgetItem>

#include "navigator/navtree.h"

namespace qmr::test {

// Where a node stands in the tree's viewport, its parents opened: on the text's start, as a
// long name may reach past the visible width. (-1, -1) when there is no such node.
inline QPoint nodePoint(NavTree& tree, const QString& key)
{
    QTreeWidgetItem* item = tree.node(key);
    if (!item)
        return QPoint(-1, -1);
    for (QTreeWidgetItem* p = item->parent(); p; p = p->parent())
        p->setExpanded(true);
    tree.scrollToItem(item);
    const QRect r = tree.visualItemRect(item);
    return QPoint(qMin(r.left() + 12, tree.viewport()->width() - 2), r.center().y());
}

} // namespace qmr::test
