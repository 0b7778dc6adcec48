#pragma once

#include <QObject>
#include <optional>

#include "core/commandtable.h"
#include "core/level.h"
#include "core/nodekey.h"
#include "core/targetview.h"
#include "store/commandcontext.h"

class QAbstractItemView;

namespace qmr {

class ContainerList;
class NavTree;

// Renaming cabinets, drawers, folders and documents by editing their label in the tree or in
// the container list. It decides whether an edit may start, takes what was typed through the
// tests (bad characters are stripped with a message, an empty name changes nothing, a name
// another item bears is refused), writes the store and every node that shows the item. The
// tree refuses a drawer's or folder's name that another one in the same parent bears; the
// list one that any other in the store bears.
class RenameController : public QObject
{
    Q_OBJECT
public:
    RenameController(const CommandContext& context, NavTree& tree, ContainerList& list,
                     QObject* parent = nullptr);
    // The context is held by reference: a temporary one would be gone before its use.
    RenameController(CommandContext&& context, NavTree& tree, ContainerList& list,
                     QObject* parent = nullptr) = delete;

    // The Rename entries of the level menus.
    void addTo(CommandTable& table);
    // A Rename command: the list edits when the record holds no item of the level and the
    // list spoke last; the tree in every other case.
    void rename(Level level);
    // Starts editing the label of the tree's selected node, or of the list's selected item;
    // false when that is refused (a root, a found copy, a locked cabinet, nothing selected).
    bool startTreeEdit();
    bool startListEdit();
    bool isEditing() const { return m_control.has_value(); }

    // What happens to a label typed in `control` for the item `key`: false when the store
    // and the nodes stay as they were.
    bool afterLabelEdit(ContextSource control, const NodeKey& key, QString text);

signals:
    // An edit began (true) or ended (false). While it runs the window's own keys keep still,
    // so that Escape ends the edit and nothing else.
    void editing(bool on);

private:
    bool startEdit(ContextSource control, const NodeKey& key);
    void setEditable(ContextSource control, const NodeKey& key, bool editable);
    void endEdit();
    QAbstractItemView* view(ContextSource control) const;

    const CommandContext& m_context;
    NavTree& m_tree;
    ContainerList& m_list;
    std::optional<ContextSource> m_control; // the control whose label is being edited
    NodeKey m_key;
};

} // namespace qmr
