#pragma once

#include <QVector>

#include "core/nodekey.h"

namespace qmr {

// What a move changes in the window besides the store: the tree's nodes, the page pane's
// items and the tree's selection. The drag-and-drop layer implements it over the controls;
// without a window (tests, batch runs) there is none.
class MoveView
{
public:
    virtual ~MoveView() = default;
    // Opens a node, which loads its children, before something is put below it.
    virtual void expandNode(const NodeKey& key) = 0;
    // Puts a node below another with its children and their expanded state, as it stands;
    // a node that is not in the tree is left out.
    virtual void moveNode(const NodeKey& key, const NodeKey& newParent) = 0;
    // Pages that left the document on show: their items leave the page pane.
    virtual void removePages(const QVector<qint32>& pageIds) = 0;
    // Selects a node again, without what a click does.
    virtual void selectNode(const NodeKey& key) = 0;
};

} // namespace qmr
