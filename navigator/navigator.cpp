#include "navigator/navigator.h"

#include <QContextMenuEvent>
#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QScopeGuard>

#include "core/prompter.h"
#include "core/runstate.h"
#include "filing/cabinetopener.h"
#include "filing/commandkeys.h"
#include "filing/defaultpageopener.h"
#include "navigator/containerlist.h"
#include "navigator/navmenus.h"
#include "navigator/navtree.h"
#include "navigator/pagelistview.h"
#include "navigator/pagepane.h"
#include "navigator/renamecontroller.h"
#include "resources/navicons.h"
#include "store/commandguard.h"
#include "store/session.h"
#include "store/textindex.h"

namespace qmr {

namespace {

const QString kRoot = QStringLiteral("ROOT");

QString levelMenu(Level level)
{
    return NavMenus::levelMenus().at(static_cast<int>(level) + 1);
}

// How the pop-ups and keys reach the list of pages inside the page pane.
QAbstractItemView* pageView(PagePane& pane)
{
    return pane.list()->currentView();
}

} // namespace

Navigator::Navigator(const CommandContext& base, NavTree& tree, ContainerList& list,
                     PagePane& pages, NavMenus& menus, NavIcons& icons, QWidget* window)
    : QObject(window), m_context{base.session,  base.state,    base.prompter,
                                 base.choosers, base.progress, base.view,
                                 &m_target,     this,          window},
      m_target(base.state.selection(), *this), m_tree(tree), m_list(list), m_pages(pages),
      m_menus(menus), m_icons(icons), m_window(window), m_filler(tree, list, icons, base.session),
      m_defaultOpener(
          std::make_unique<DefaultPageOpener>(base.session, base.prompter, base.choosers)),
      m_popups(menus), m_rename(new RenameController(m_context, tree, list, this))
{
    m_context.pageOpener = base.pageOpener ? base.pageOpener : m_defaultOpener.get();
    m_context.pageNotifier = base.pageNotifier;
    connect(&m_tree, &NavTree::expanding, this, [this](const QString& key) {
        guarded(m_context.prompter, [&] { m_filler.onExpand(NodeKey::parse(key)); });
    });
    connect(&m_tree, &NavTree::nodeClicked, this, &Navigator::nodeClick);
    connect(&m_tree, &NavTree::enterPressed, this, &Navigator::nodeClick);
    connect(&m_tree, &NavTree::contextRequested, this, &Navigator::onTreeMouseUp);
    connect(&m_tree, &NavTree::nodeDoubleClicked, this, &Navigator::onTreeDoubleClick);
    connect(&m_list, &ContainerList::openRequested, this, &Navigator::onListActivated);
    connect(&m_pages, &PagePane::pageActivated, this, &Navigator::openPage);
    connect(&m_pages, &PagePane::reloadRequested, this, &Navigator::reloadPages);
    // The lists tell which control spoke last, and give their own pop-up menus.
    for (QObject* watched : {static_cast<QObject*>(m_list.viewport()),
                             static_cast<QObject*>(&m_list), static_cast<QObject*>(&m_tree)})
        watched->installEventFilter(this);
    for (QObject* watched : m_pages.inputObjects())
        watched->installEventFilter(this);
}

Navigator::~Navigator() = default;

void Navigator::setPageOpener(PageOpener* opener)
{
    m_context.pageOpener = opener ? opener : m_defaultOpener.get();
}

// ---- building and restoring ---------------------------------------------------------------

void Navigator::loadNavTree()
{
    const QString unused = m_filler.loadNavTree(this);
    if (!unused.isEmpty())
        m_context.prompter.tell(unused);
}

void Navigator::refreshNavTree()
{
    guarded(m_context.prompter, [this] {
        hidePagePane();
        loadNavTree();
        m_tree.expandNode(kRoot);
    });
}

void Navigator::restoreLastNode()
{
    guarded(m_context.prompter, [this] {
        SelectionRecord& record = m_context.state.selection();
        const QString saved = m_context.session.settings().get(keys::LastNavTreeNodeKey);
        if (saved.isEmpty())
            return;
        record.lastNodeKey = saved;
        bool reached = false;
        const std::optional<Level> level = m_filler.restoreLastNode(saved, &reached);
        if (!level)
            return; // a key of another shape is not worth keeping
        m_restoreStopped = !reached;
        m_menus.showOnly(levelMenu(*level));
        if (!reached)
            return;
        const NodeKey key = NodeKey::parse(saved);
        if (*level == Level::Document)
            showPagesInListView(key.id());
        else
            showChildrenInList(*childLevel(*level), key.id());
        const NodeKey selected = treeSelectedKey();
        if (!selected.isEmpty())
            setRecordFromKey(selected);
    });
}

QString Navigator::lastNodeKeyToSave() const
{
    // The node in view is the one to come back to; when the walk at start stopped short (at
    // a locked cabinet, say) and nothing was clicked since, the place read at start is kept.
    const NodeKey selected = treeSelectedKey();
    if (m_restoreStopped && (selected.isEmpty() || selected.isRoot()))
        return m_context.state.selection().lastNodeKey;
    return selected.text();
}

// ---- clicks -------------------------------------------------------------------------------

void Navigator::nodeClick(const QString& key)
{
    m_target.setSource(ContextSource::Tree);
    tvwMainProcessNode(key);
}

bool Navigator::openCabinet(qint32 cabinetId)
{
    return CabinetOpener::openCabinet(m_context, cabinetId);
}

void Navigator::tvwMainProcessNode(const QString& text)
{
    SelectionRecord& record = m_context.state.selection();
    const NodeKey clicked = NodeKey::parse(text);
    bool proceed = true;
    if (clicked.level() == Level::Cabinet) {
        bool open = false;
        guarded(m_context.prompter, [&] {
            open =
                m_context.session.locks().isCabinetOpen(clicked.id()) || openCabinet(clicked.id());
        });
        proceed = open;
    }
    m_restoreStopped = false;
    if (proceed && text == record.lastNodeKey)
        return; // the node handled last: nothing is redone
    if (proceed) {
        m_nodeBusy = true;
        m_menus.showOnly(QString());
        record.clear();
        guarded(m_context.prompter, [&] {
            // The selected node counts, which may be a rebuilt cabinet node.
            const NodeKey key = treeSelectedKey();
            if (key.prefix() == QLatin1String("ROO")) {
                if (!key.isFoundRoot()) {
                    m_menus.showOnly(QStringLiteral("mnuPopupRoot"));
                    showCabinetsInListView();
                }
                return;
            }
            const std::optional<Level> level = key.level();
            if (level == Level::Cabinet && !openCabinet(key.id()))
                return;
            if (level && *level != Level::Page) {
                m_menus.showOnly(levelMenu(*level));
                // Opening may have rebuilt the node; what is selected now is the cabinet.
                setRecordFromKey(treeSelectedKey());
                m_filler.fillOnClick(*level, key.id());
                if (*level == Level::Document)
                    showPagesInListView(key.id());
                else
                    showChildrenInList(*childLevel(*level), key.id());
            } else if (key.foundLevel() == Level::Document) {
                showPagesInListView(key.id(), true);
            }
        });
    }
    record.lastNodeKey = text;
    m_nodeBusy = false;
}

void Navigator::setRecordFromKey(const NodeKey& key)
{
    const std::optional<Level> level = key.level();
    if (!level || *level == Level::Page)
        return;
    const qint32 parent =
        *level == Level::Cabinet ? -1 : NodeKey::parse(m_tree.parentKey(key.text())).id();
    m_context.state.selection().set(key, m_tree.nodeText(key.text()), parent);
}

void Navigator::onTreeDoubleClick(const QString& nodeKey)
{
    const NodeKey key = NodeKey::parse(nodeKey);
    if (!m_nodeBusy && key.level() == Level::Document) {
        emit documentActivated(key.id());
        m_tree.setFocus();
    }
}

void Navigator::onListActivated(const NodeKey& key)
{
    guarded(m_context.prompter, [&] {
        const std::optional<Level> level = key.level();
        if (!level || *level == Level::Page)
            return;
        if (*level == Level::Cabinet && !openCabinet(key.id()))
            return;
        // This path moves the tree's selection only; the record and menus stay as they were.
        if (*level == Level::Cabinet)
            m_filler.addChildNodes(Level::Cabinet, key.id());
        m_tree.selectNode(key.text());
        m_tree.expandNode(key.text());
        if (*level == Level::Document)
            showPagesInListView(key.id());
        else
            showChildrenInList(*childLevel(*level), key.id());
    });
}

// ---- the lists ----------------------------------------------------------------------------

void Navigator::hidePagePane()
{
    m_pages.hide();
    m_pages.clearPages();
    m_list.show();
}

void Navigator::showChildrenInList(Level childLevel, qint32 parentId)
{
    hidePagePane();
    m_list.showItems(childLevel, m_context.session.items().children(childLevel, parentId),
                     [this](Level level, qint32 id) { return m_filler.iconFor(level, id); });
}

void Navigator::showCabinetsInListView()
{
    showChildrenInList(Level::Cabinet, -1);
}

void Navigator::showPagesInListView(qint32 documentId, bool found)
{
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const auto restore = qScopeGuard([] { QGuiApplication::restoreOverrideCursor(); });
    m_list.hide();
    m_pages.show();
    // A found document shows the pages its search looked for.
    const FoundSet& search = m_context.state.foundSet();
    const PageFilter filter = found ? search.pageFilter : PageFilter();
    const QList<qint32> matched =
        found ? TextIndex::pagesWith(m_context.session.db(), documentId, search.pageWords)
              : QList<qint32>();
    m_pages.showPages(documentId, m_context.session.pages().pages(documentId, filter), found,
                      matched);
    // A caller that did not come from the tree leaves the tree in step; a found document's
    // node stays where it is.
    const QString key = NodeKey::of(Level::Document, documentId).text();
    if (!found && m_tree.selectedKey() != key)
        m_tree.selectNode(key);
}

void Navigator::reloadPages()
{
    // A change of view reads the document again and starts at its first block.
    const NodeKey selected = treeSelectedKey();
    guarded(m_context.prompter, [&] {
        if (selected.level() == Level::Document)
            showPagesInListView(selected.id());
        else if (selected.foundLevel() == Level::Document)
            showPagesInListView(selected.id(), true);
        else if (m_pages.documentId() >= 0)
            showPagesInListView(m_pages.documentId(), m_pages.isFound());
    });
}

void Navigator::openPage(qint32 pageId)
{
    if (pageId < 0 || !m_context.pageOpener)
        return;
    guarded(m_context.prompter, [&] {
        // From a found document the viewer shows where the words searched for are.
        const PageWords& words = m_context.state.foundSet().pageWords;
        if (m_pages.isFound() && !words.isEmpty())
            m_context.pageOpener->openFoundPage(pageId, words);
        else
            m_context.pageOpener->openPage(pageId);
    });
}

// ---- what dialogs and commands call back --------------------------------------------------

void Navigator::itemAdded(const CreatedItem& item)
{
    m_filler.addItemNode(item);
    if (item.level == Level::Cabinet)
        showChildren(Level::Cabinet, item.id);
}

void Navigator::itemRenamed(Level level, qint32 id, const QString& name, const QDate& date)
{
    if (level == Level::Page) {
        // The pane's texts follow the page's number and file, whatever the caller's text.
        Q_UNUSED(name)
        guarded(m_context.prompter, [&] {
            if (const std::optional<PageRow> row = m_context.session.pages().page(id))
                m_pages.updatePage(*row);
        });
    } else
        m_filler.renameItem(level, id, name, date);
}

void Navigator::itemRemoved(Level level, qint32 id)
{
    const NodeKey removed = NodeKey::of(level, id);
    // When the node in view goes, or one above it, the window moves up to the parent, so that
    // nothing on show and nothing a command would aim at is gone from the store.
    const bool inView = isWithin(treeSelectedKey(), removed);
    const NodeKey parent = treeParentKey(removed);
    SelectionRecord& record = m_context.state.selection();
    if (isWithin(record.node, removed))
        record.clear();
    m_filler.removeItem(level, id);
    if (inView && !parent.isEmpty() && m_tree.selectNode(parent.text()))
        tvwMainProcessNode(parent.text());
}

bool Navigator::isWithin(const NodeKey& key, const NodeKey& top) const
{
    for (NodeKey k = key; !k.isEmpty(); k = treeParentKey(k))
        if (k == top)
            return true;
    return false;
}

void Navigator::showChildren(Level level, qint32 id)
{
    const QString key = NodeKey::of(level, id).text();
    m_tree.selectNode(key);
    m_tree.expandNode(key);
    guarded(m_context.prompter, [&] {
        if (level == Level::Document)
            showPagesInListView(id);
        else if (level != Level::Page)
            showChildrenInList(*childLevel(level), id);
    });
}

void Navigator::refreshPages(qint32 documentId, qint32 selectPageId)
{
    if (!m_pages.isVisible() || m_pages.documentId() != documentId)
        return;
    guarded(m_context.prompter, [&] { showPagesInListView(documentId, m_pages.isFound()); });
    if (selectPageId >= 0)
        m_pages.selectPage(selectPageId);
}

void Navigator::cabinetOpened(qint32 cabinetId)
{
    m_filler.rebuildCabinetNode(cabinetId);
}

// ---- the target view ----------------------------------------------------------------------

NodeKey Navigator::treeSelectedKey() const
{
    return NodeKey::parse(m_tree.selectedKey());
}

NodeKey Navigator::treeParentKey(const NodeKey& key) const
{
    return NodeKey::parse(m_tree.parentKey(key.text()));
}

NodeKey Navigator::listSelectedKey() const
{
    return m_list.selectedKey();
}

QVector<qint32> Navigator::selectedPageIds() const
{
    return m_pages.isVisible() ? m_pages.selectedPageIds() : QVector<qint32>();
}

qint32 Navigator::currentPageId() const
{
    return m_pages.isVisible() ? m_pages.currentPageId() : -1;
}

qint32 Navigator::shownDocumentId() const
{
    return m_pages.isVisible() ? m_pages.documentId() : -1;
}

void Navigator::restoreFocus(ContextSource source)
{
    if (source == ContextSource::Tree)
        m_tree.setFocus();
    else if (source == ContextSource::List)
        (m_list.isVisible() ? static_cast<QWidget*>(&m_list) : &m_pages)->setFocus();
}

// ---- pop-ups and keys ---------------------------------------------------------------------

void Navigator::popup(const QString& menuName, const QPoint& at)
{
    QMenu* menu = m_menus.menu(menuName);
    if (!menu)
        return;
    menu->exec(at);
    // The menu bar shows the tree's keys.
    m_popups.showInsertKeys(ContextSource::Tree);
}

QPoint Navigator::keyboardPopupPoint(QAbstractItemView* view) const
{
    // Below the selected item, or at the control's corner when none is in sight.
    const QRect item = view->visualRect(view->currentIndex());
    const QRect shown = view->viewport()->rect();
    const QPoint at = item.isValid() && shown.intersects(item)
                          ? QPoint(item.left() + 8, qMin(item.bottom(), shown.bottom()))
                          : QPoint(8, 8);
    return view->viewport()->mapToGlobal(at);
}

void Navigator::onTreeMouseUp(Qt::MouseButton button)
{
    // After any button the commands find their target anew: from the menu's node after a
    // right click, else from the selected node.
    m_target.setSource(ContextSource::Tree);
    m_context.state.selection().clear();
    if (button == Qt::RightButton)
        treePopup(QCursor::pos());
}

void Navigator::treePopup(const QPoint& at)
{
    guarded(m_context.prompter, [&] {
        // The menu is for the selected node; a right click selects nothing by itself.
        const NodeKey key = treeSelectedKey();
        const bool open =
            key.level() != Level::Cabinet || m_context.session.locks().isCabinetOpen(key.id());
        const QString menu = m_popups.prepareTree(key, open);
        if (menu.isEmpty())
            return;
        // The record names the menu's node, so that its commands work on it.
        if (key.level())
            setRecordFromKey(key);
        popup(menu, at);
    });
}

void Navigator::onListMouseUp(Qt::MouseButton button)
{
    m_target.setSource(ContextSource::List);
    if (button == Qt::RightButton)
        listPopup(QCursor::pos());
}

void Navigator::listPopup(const QPoint& at)
{
    guarded(m_context.prompter, [&] {
        const NodeKey key = listSelectedKey();
        const bool open =
            key.level() != Level::Cabinet || m_context.session.locks().isCabinetOpen(key.id());
        const QString menu = m_popups.prepareList(key, open);
        if (!menu.isEmpty())
            popup(menu, at);
    });
}

void Navigator::onPagesMouseUp(Qt::MouseButton button)
{
    m_target.setSource(ContextSource::PageList);
    if (button == Qt::RightButton)
        pagesPopup(QCursor::pos());
}

void Navigator::pagesPopup(const QPoint& at)
{
    guarded(m_context.prompter, [&] {
        std::optional<bool> shortcut;
        if (const qint32 id = currentPageId(); id >= 0)
            if (const std::optional<PageRow> page = m_context.session.pages().page(id))
                shortcut = page->shortcut;
        popup(m_popups.preparePages(pageView(m_pages)->model()->rowCount() > 0, shortcut), at);
    });
}

bool Navigator::onControlKey(ContextSource control, const QKeyEvent& event)
{
    const Qt::KeyboardModifiers mods = event.modifiers() & ~Qt::KeypadModifier;
    const int key = event.key();
    // Shift+F10 and the Menu key open the pop-up of the control with the focus.
    if (key == Qt::Key_Menu || (key == Qt::Key_F10 && mods == Qt::ShiftModifier)) {
        if (control == ContextSource::Tree) {
            m_context.state.selection().clear();
            treePopup(keyboardPopupPoint(&m_tree));
        } else if (control == ContextSource::List) {
            listPopup(keyboardPopupPoint(&m_list));
        } else {
            pagesPopup(keyboardPopupPoint(pageView(m_pages)));
        }
        return true;
    }
    if (mods != Qt::NoModifier)
        return false;
    if (control == ContextSource::PageList) {
        if (key != Qt::Key_Delete)
            return false;
        m_menus.run(QStringLiteral("mnuPopupPageDelete"));
        return true;
    }
    const NodeKey selected = control == ContextSource::Tree ? treeSelectedKey() : listSelectedKey();
    if (key == Qt::Key_F2) {
        if (control == ContextSource::Tree)
            m_rename->startTreeEdit();
        else
            m_rename->startListEdit();
        return true;
    }
    QString command;
    if (key == Qt::Key_Insert)
        command = CommandKeys::insertCommand(control, selected);
    else if (key == Qt::Key_Delete)
        command = CommandKeys::deleteCommand(control, selected);
    else
        return false;
    if (!command.isEmpty())
        m_menus.run(command);
    (control == ContextSource::Tree ? static_cast<QWidget*>(&m_tree) : &m_list)->setFocus();
    return true;
}

bool Navigator::eventFilter(QObject* watched, QEvent* event)
{
    const bool pages = m_pages.isInput(watched);
    if (event->type() == QEvent::MouseButtonRelease) {
        const auto button = static_cast<QMouseEvent*>(event)->button();
        if (watched == m_list.viewport())
            onListMouseUp(button);
        else if (m_pages.isViewport(watched))
            onPagesMouseUp(button);
    } else if (event->type() == QEvent::KeyPress && m_rename->isEditing()) {
        // While a label is edited its keys are the editor's: the Enter that ends the edit
        // must not go on to open the item.
        const int key = static_cast<QKeyEvent*>(event)->key();
        if ((watched == &m_tree || watched == &m_list) &&
            (key == Qt::Key_Return || key == Qt::Key_Enter))
            return true;
    } else if (event->type() == QEvent::KeyPress) {
        const auto* keyEvent = static_cast<QKeyEvent*>(event);
        if (watched == &m_tree && keyEvent->key() != Qt::Key_F5)
            m_target.setSource(ContextSource::Tree);
        else if (watched == &m_list)
            m_target.setSource(ContextSource::List);
        else if (pages)
            m_target.setSource(ContextSource::PageList);
        if ((watched == &m_tree || watched == &m_list || pages) &&
            onControlKey(m_target.source(), *keyEvent))
            return true;
    } else if (event->type() == QEvent::ContextMenu &&
               (watched == &m_tree || watched == &m_list || pages) &&
               static_cast<QContextMenuEvent*>(event)->reason() == QContextMenuEvent::Keyboard) {
        return true; // the Menu key has opened the pop-up already
    }
    return QObject::eventFilter(watched, event);
}

} // namespace qmr
