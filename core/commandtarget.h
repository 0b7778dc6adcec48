#pragma once

#include "core/level.h"
#include "core/nodekey.h"
#include "core/selectionrecord.h"
#include "core/targetview.h"

namespace qmr {

// Decides what a command works on: the node that the selection record holds, else the
// selected item of the control that spoke last.
class CommandTarget
{
public:
    CommandTarget(SelectionRecord& record, TargetView& view) : m_record(record), m_view(view) {}

    ContextSource source() const { return m_source; }
    void setSource(ContextSource source) { m_source = source; }
    SelectionRecord& record() { return m_record; }
    const SelectionRecord& record() const { return m_record; }
    TargetView& view() { return m_view; }
    const TargetView& view() const { return m_view; }

    // The selected key of the control that spoke last: the tree's for the tree, else the
    // container list's.
    NodeKey contextKey() const;
    // The record's id of that level; when it holds none, the id of the context key when that
    // is of the level; else -1.
    qint32 targetId(Level level) const;
    // The tree parent of the context key's node.
    NodeKey contextParentKey() const;
    // Pages a page command works on: the page pane's selection.
    QVector<qint32> selectedPageIds() const { return m_view.selectedPageIds(); }
    void restoreFocus() { m_view.restoreFocus(m_source); }

private:
    SelectionRecord& m_record;
    TargetView& m_view;
    ContextSource m_source = ContextSource::Tree;
};

} // namespace qmr
