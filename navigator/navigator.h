#pragma once

#include <QObject>
#include <memory>

#include "core/commandtarget.h"
#include "core/navigatorcallbacks.h"
#include "core/targetview.h"
#include "navigator/popupmenus.h"
#include "navigator/treefiller.h"
#include "store/commandcontext.h"

class QAbstractItemView;
class QKeyEvent;
class QListWidgetItem;

namespace qmr {

class ContainerList;
class DefaultPageOpener;
class NavIcons;
class NavMenus;
class NavTree;
class PagePane;
class RenameController;

// The main window's behaviour over its three controls: what a click, a key or a right click
// in the tree, the container list or the page list does to the selection record, the menus
// and the lists, and how commands find their target. It is the navigator that dialogs and
// feature commands call back.
class Navigator : public QObject, public NavigatorCallbacks, public TargetView
{
    Q_OBJECT
public:
    // `base` holds the session and the seams; the navigator adds itself and its target.
    Navigator(const CommandContext& base, NavTree& tree, ContainerList& list, PagePane& pages,
              NavMenus& menus, NavIcons& icons, QWidget* window);
    ~Navigator() override;

    // The context that commands and dialogs receive.
    const CommandContext& context() const { return m_context; }
    CommandTarget& target() { return m_target; }
    TreeFiller& filler() { return m_filler; }
    // How pages open; nothing puts back the desktop's program. Set it before the commands
    // that copy the context are made.
    void setPageOpener(PageOpener* opener);
    // Which pop-up each control shows, and how its entries stand.
    PopupMenus& popups() { return m_popups; }
    // In-place renaming in the tree and the list.
    RenameController& rename() { return *m_rename; }

    // Builds the tree, then walks back to the last node of the previous run.
    void loadNavTree();
    void refreshNavTree();
    void restoreLastNode();

    // A left click (or Enter) on a node.
    void nodeClick(const QString& key);
    void tvwMainProcessNode(const QString& key);
    void showCabinetsInListView();
    // Lists the children of a container in lvwMain (cabinets for Level::Cabinet).
    void showChildrenInList(Level childLevel, qint32 parentId);
    // Shows a document's pages in the page pane; `found`: the document of a found node, whose
    // selection in the tree stays and whose pages are those its search looked for.
    void showPagesInListView(qint32 documentId, bool found = false);
    // Double click, Enter and Open on a page.
    void openPage(qint32 pageId);
    void hidePagePane();
    // The key to come back to at the next start.
    QString lastNodeKeyToSave() const;

    // NavigatorCallbacks
    void itemAdded(const CreatedItem& item) override;
    void itemRenamed(Level level, qint32 id, const QString& name, const QDate& date) override;
    void itemRemoved(Level level, qint32 id) override;
    void showChildren(Level level, qint32 id) override;
    void refreshPages(qint32 documentId, qint32 selectPageId = -1) override;
    void cabinetOpened(qint32 cabinetId) override;

    // TargetView
    NodeKey treeSelectedKey() const override;
    NodeKey treeParentKey(const NodeKey& key) const override;
    NodeKey listSelectedKey() const override;
    QVector<qint32> selectedPageIds() const override;
    qint32 currentPageId() const override;
    qint32 shownDocumentId() const override;
    void restoreFocus(ContextSource source) override;

signals:
    // A double click on a document node: its properties.
    void documentActivated(qint32 documentId);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setRecordFromKey(const NodeKey& key);
    // Whether `key` is the tree node `top` or lies below it.
    bool isWithin(const NodeKey& key, const NodeKey& top) const;
    void onTreeMouseUp(Qt::MouseButton button);
    void onListMouseUp(Qt::MouseButton button);
    void onPagesMouseUp(Qt::MouseButton button);
    void onListActivated(const NodeKey& key);
    void reloadPages();
    // Each control's pop-up, at a point of the screen.
    void treePopup(const QPoint& at);
    void listPopup(const QPoint& at);
    void pagesPopup(const QPoint& at);
    QPoint keyboardPopupPoint(QAbstractItemView* view) const;
    void onTreeDoubleClick(const QString& nodeKey);
    // Insert, Delete, F2 and the pop-up keys of a control; true when the key was used.
    bool onControlKey(ContextSource control, const QKeyEvent& event);
    void popup(const QString& menuName, const QPoint& at);
    bool openCabinet(qint32 cabinetId);

    CommandContext m_context;
    CommandTarget m_target;
    NavTree& m_tree;
    ContainerList& m_list;
    PagePane& m_pages;
    NavMenus& m_menus;
    NavIcons& m_icons;
    QWidget* m_window;
    TreeFiller m_filler;
    std::unique_ptr<DefaultPageOpener> m_defaultOpener;
    PopupMenus m_popups;
    RenameController* m_rename; // a child of the navigator
    bool m_nodeBusy = false;
    // The walk at start stopped short (a locked cabinet, a gone item): until a click, the
    // place read at start is the one to save.
    bool m_restoreStopped = false;
};

} // namespace qmr
