#pragma once

#include <QVector>

#include "core/targetview.h"

namespace qmr::test {

// The tree and the page list as a test sets them: a selected tree node and chosen pages;
// nothing else is selected.
class SetTargetView : public TargetView
{
public:
    NodeKey treeSelectedKey() const override { return tree; }
    NodeKey treeParentKey(const NodeKey&) const override { return NodeKey(); }
    NodeKey listSelectedKey() const override { return NodeKey(); }
    QVector<qint32> selectedPageIds() const override { return pages; }
    qint32 currentPageId() const override { return pages.value(0, -1); }
    qint32 shownDocumentId() const override { return -1; }
    void restoreFocus(ContextSource) override {}

    NodeKey tree;
    QVector<qint32> pages;
};

} // namespace qmr::test
