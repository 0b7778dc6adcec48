#pragma once

#include <QCoreApplication>
#include <QString>
#include <functional>
#include <optional>

#include "core/nodekey.h"
#include "core/targetview.h"

namespace qmr {

class NavMenus;

// Which pop-up menu the tree, the container list and the page list show for their selected
// item, and how its entries stand: which are visible, which enabled, how Delete reads, and
// which entry Insert runs in that control.
class PopupMenus
{
    Q_DECLARE_TR_FUNCTIONS(qmr::PopupMenus)

public:
    explicit PopupMenus(NavMenus& menus);

    // Whether pages can be pasted: the clipboard holds files, or pages were cut or copied. The
    // clipboard's commands supply the answer; until then there is nothing to paste.
    void setPasteQuery(std::function<bool()> query) { m_pasteQuery = std::move(query); }
    bool pasteAvailable() const { return m_pasteQuery && m_pasteQuery(); }
    // Enables both Paste entries as pasteAvailable() says.
    void updatePaste();

    // The menu for a tree node, made ready; "" for none. `cabinetOpen` tells whether a
    // cabinet node's cabinet is open (a locked one has no menu).
    QString prepareTree(const NodeKey& key, bool cabinetOpen);
    // The same for the container list's selected item.
    QString prepareList(const NodeKey& key, bool cabinetOpen);
    // The page list's menu. `hasPages`: the list holds any; `selectedShortcut`: whether the
    // selected page is a shortcut, nothing when no page is selected.
    QString preparePages(bool hasPages, std::optional<bool> selectedShortcut);
    // Shows Insert beside the entry that the key runs in `control` (the menu bar shows the
    // tree's).
    void showInsertKeys(ContextSource control);

private:
    void setVisible(const char* name, bool visible);

    NavMenus& m_menus;
    std::function<bool()> m_pasteQuery;
};

} // namespace qmr
