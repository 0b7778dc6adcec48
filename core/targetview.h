#pragma once

#include <QVector>

#include "core/nodekey.h"

namespace qmr {

// Which control spoke last: the tree, the container list or the page list.
enum class ContextSource { Tree, List, PageList };

// What commands may read of the main window's controls. The window implements it; commands
// and tests see only this.
class TargetView
{
public:
    virtual ~TargetView() = default;
    virtual NodeKey treeSelectedKey() const = 0;
    // The key of a tree node's parent; empty when the node is not in the tree.
    virtual NodeKey treeParentKey(const NodeKey& key) const = 0;
    virtual NodeKey listSelectedKey() const = 0;
    // The selected pages of the page pane, in the pane's order.
    virtual QVector<qint32> selectedPageIds() const = 0;
    // The page with the focus in the page pane, -1 for none.
    virtual qint32 currentPageId() const = 0;
    // The document whose pages the pane shows, -1 when the pane is hidden.
    virtual qint32 shownDocumentId() const = 0;
    // After a command's dialog the focus goes back to the control that spoke last.
    virtual void restoreFocus(ContextSource source) = 0;
};

} // namespace qmr
