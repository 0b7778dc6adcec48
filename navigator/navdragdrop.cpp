#include "navigator/navdragdrop.h"

#include <QAbstractItemView>
#include <QDrag>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QTimer>

#include "core/prompter.h"
#include "filing/clipboardfiles.h"
#include "navigator/containerlist.h"
#include "navigator/navtree.h"
#include "navigator/pagelistview.h"
#include "navigator/pagepane.h"
#include "resources/navicons.h"
#include "store/commandcontext.h"
#include "store/commandguard.h"
#include "store/session.h"

namespace qmr {

namespace {

// Near the top or bottom edge by this much, the control scrolls under a drag.
constexpr int kScrollMargin = 16;

QString dragIconKey(const QString& key)
{
    const QString prefix = key.left(3);
    if (prefix == QLatin1String("DRW"))
        return QStringLiteral("drawer");
    if (prefix == QLatin1String("FLD"))
        return QStringLiteral("folder");
    if (prefix == QLatin1String("DOC"))
        return QStringLiteral("document");
    return QStringLiteral("page");
}

QList<QAbstractItemView*> pageViews(const PagePane& pages)
{
    QList<QAbstractItemView*> views;
    for (QObject* input : pages.inputObjects())
        if (auto* view = qobject_cast<QAbstractItemView*>(input))
            views << view;
    return views;
}

} // namespace

NavDragDrop::NavDragDrop(const CommandContext& context, NavTree& tree, ContainerList& list,
                         PagePane& pages, QObject* parent)
    : QObject(parent), m_context(context), m_tree(tree), m_list(list), m_pages(pages),
      m_files(context), m_mover(context, m_files, this), m_fileDrop(context, m_files)
{
    QList<QAbstractItemView*> views{&m_tree, &m_list};
    views << pageViews(m_pages);
    for (QAbstractItemView* view : views) {
        view->setDragEnabled(true);
        view->setAcceptDrops(true);
        view->viewport()->setAcceptDrops(true);
        view->viewport()->installEventFilter(this);
    }
    connect(&m_tree, &NavTree::dragRequested, this, [this] { runDrag(DropSource::Tree); });
    connect(&m_list, &ContainerList::dragRequested, this, [this] { runDrag(DropSource::List); });
    connect(m_pages.list(), &PageListView::dragRequested, this,
            [this] { runDrag(DropSource::PageList); });
}

NavDragDrop::~NavDragDrop() = default;

QString NavDragDrop::mimeType()
{
    return QStringLiteral("application/x-quillmere-items");
}

// ---- the window's own drags ---------------------------------------------------------------

bool NavDragDrop::beginDrag(DropSource source)
{
    endDrag();
    QStringList keys;
    switch (source) {
    case DropSource::Tree:
        keys << m_tree.selectedKey();
        break;
    case DropSource::List:
        keys << m_list.selectedKey().text();
        break;
    case DropSource::PageList:
        // The pages of a search result stay where they are.
        if (m_pages.isFound())
            return false;
        for (const qint32 id : m_pages.selectedPageIds())
            keys << NodeKey::of(Level::Page, id).text();
        break;
    case DropSource::Outside:
        return false;
    }
    if (keys.isEmpty() || !MoveRules::canDrag(keys.first()))
        return false;
    m_dragSource = source;
    m_dragKeys = keys;
    return true;
}

void NavDragDrop::endDrag()
{
    m_dragKeys.clear();
}

QMimeData* NavDragDrop::dragData() const
{
    auto* data = new QMimeData;
    const QString text =
        MoveRules::mark(m_dragSource) + QLatin1Char('\n') + m_dragKeys.join(QLatin1Char('\n'));
    data->setData(mimeType(), text.toUtf8());
    return data;
}

void NavDragDrop::runDrag(DropSource source)
{
    // Only the left button drags; a drop in the middle of another drop's work waits.
    if (m_busy || !(QGuiApplication::mouseButtons() & Qt::LeftButton) || !beginDrag(source))
        return;
    QWidget* from = source == DropSource::Tree   ? static_cast<QWidget*>(&m_tree)
                    : source == DropSource::List ? static_cast<QWidget*>(&m_list)
                                                 : m_pages.list()->currentView();
    auto* drag = new QDrag(from);
    drag->setMimeData(dragData());
    const QPixmap icon = NavIcons::pixmap(dragIconKey(m_dragKeys.first()), 32);
    drag->setPixmap(icon);
    drag->setHotSpot(QPoint(icon.width() / 2, icon.height() / 2));
    {
        const QScopedValueRollback<bool> inDrag(m_inDrag, true);
        drag->exec(Qt::MoveAction);
    }
    endDrag();
    if (m_pending) {
        const std::function<void()> work = std::move(m_pending);
        m_pending = nullptr;
        work();
    }
}

bool NavDragDrop::isOwnDrag(const QMimeData* data) const
{
    return data && data->hasFormat(mimeType()) && isDragging();
}

// ---- over the controls --------------------------------------------------------------------

NavDragDrop::Control NavDragDrop::controlOf(const QObject* viewport) const
{
    if (viewport == m_tree.viewport())
        return Control::Tree;
    if (viewport == m_list.viewport())
        return Control::List;
    if (m_pages.isViewport(viewport))
        return Control::Pages;
    return Control::None;
}

NodeKey NavDragDrop::keyAt(Control control, const QPoint& pos) const
{
    switch (control) {
    case Control::Tree:
        return NodeKey::parse(m_tree.keyAt(pos));
    case Control::List:
        return ContainerList::keyOf(m_list.itemAt(pos));
    case Control::Pages:
        // Files dropped on the page list go to the node of the tree, the document on show.
        return NodeKey::parse(m_tree.selectedKey());
    case Control::None:
        break;
    }
    return NodeKey();
}

NodeKey NavDragDrop::dropTarget(Control control, const QPoint& pos, const QMimeData* data) const
{
    if (isOwnDrag(data)) {
        // The window's own items go on a node or an item, never on the page list.
        if (control == Control::Pages)
            return NodeKey();
        const NodeKey key = keyAt(control, pos);
        return MoveRules::canDrop(m_dragKeys.first(), key.text()) ? key : NodeKey();
    }
    if (m_outsideFiles.isEmpty())
        return NodeKey();
    NodeKey key = keyAt(control, pos);
    // Files dropped on the list's free room (all of an empty folder's list) go to the folder
    // on show, as files dropped on the page list go to its document.
    if (key.isEmpty() && control == Control::List)
        key = NodeKey::parse(m_tree.selectedKey());
    return MoveRules::canDrop(QStringLiteral("PAG"), key.text()) ? key : NodeKey();
}

void NavDragDrop::dragOver(Control control, QDropEvent* event)
{
    const QPoint pos = event->position().toPoint();
    autoScroll(control, pos);
    const bool own = isOwnDrag(event->mimeData());
    const NodeKey target = dropTarget(control, pos, event->mimeData());
    // Files are copied, never moved: the file manager must not take them away afterwards.
    if (target.isEmpty() || (!own && !(event->possibleActions() & Qt::CopyAction))) {
        event->ignore();
        return;
    }
    // The selection follows the pointer over the targets and stays on the last one; nothing
    // that a click does happens.
    if (control == Control::Tree)
        m_tree.setCurrentNode(target.text());
    else if (control == Control::List && own)
        m_list.setCurrentItem(m_list.itemOf(target));
    event->setDropAction(own ? Qt::MoveAction : Qt::CopyAction);
    event->accept();
}

void NavDragDrop::drop(Control control, QDropEvent* event)
{
    const bool own = isOwnDrag(event->mimeData());
    const NodeKey target = dropTarget(control, event->position().toPoint(), event->mimeData());
    if (target.isEmpty() || m_busy || (!own && !(event->possibleActions() & Qt::CopyAction))) {
        event->ignore();
        endDrag();
        return;
    }
    event->setDropAction(own ? Qt::MoveAction : Qt::CopyAction);
    event->accept();
    if (own) {
        const DropSource source = m_dragSource;
        const QStringList keys = m_dragKeys;
        later([this, source, keys, target] { carryOutMoves(source, keys, target); });
    } else {
        const QStringList files = m_outsideFiles;
        later([this, files, target] { carryOutFiles(files, target); });
    }
    m_outsideFiles.clear();
    endDrag();
}

void NavDragDrop::later(const std::function<void()>& work)
{
    // A drag of the window's own is carried out when it has returned; one from outside once
    // the event loop is back, so the file manager's drop ends at once.
    if (m_inDrag)
        m_pending = work;
    else
        QTimer::singleShot(0, this, work);
}

void NavDragDrop::carryOutMoves(DropSource source, const QStringList& keys, const NodeKey& target)
{
    if (m_busy)
        return;
    const QScopedValueRollback<bool> busy(m_busy, true);
    guarded(m_context.prompter, [&] {
        for (const QString& key : keys) {
            NodeKey into = target;
            m_mover.processDrop(source, key, into);
        }
    });
    emit dropDone();
}

void NavDragDrop::carryOutFiles(const QStringList& files, const NodeKey& target)
{
    if (m_busy)
        return;
    const QScopedValueRollback<bool> busy(m_busy, true);
    guarded(m_context.prompter, [&] { m_fileDrop.dropFiles(files, target, m_mover); });
    emit dropDone();
}

void NavDragDrop::autoScroll(Control control, const QPoint& pos)
{
    QAbstractItemView* view = control == Control::Tree   ? static_cast<QAbstractItemView*>(&m_tree)
                              : control == Control::List ? static_cast<QAbstractItemView*>(&m_list)
                                                         : nullptr;
    if (!view)
        return;
    QScrollBar* bar = view->verticalScrollBar();
    if (pos.y() < kScrollMargin)
        bar->setValue(bar->value() - bar->singleStep());
    else if (pos.y() > view->viewport()->height() - kScrollMargin)
        bar->setValue(bar->value() + bar->singleStep());
}

bool NavDragDrop::eventFilter(QObject* watched, QEvent* event)
{
    const Control control = controlOf(watched);
    if (control == Control::None)
        return QObject::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::DragEnter: {
        auto* enter = static_cast<QDragEnterEvent*>(event);
        if (!isOwnDrag(enter->mimeData())) {
            m_outsideFiles.clear();
            for (const QString& file : ClipboardFiles::filesOf(enter->mimeData()))
                if (PageFileAdder::isImportableFile(file))
                    m_outsideFiles << file;
            if (m_outsideFiles.isEmpty()) {
                enter->ignore();
                return true;
            }
        }
        // Taken, so that the moves over the control follow; each says where it may land.
        enter->accept();
        return true;
    }
    case QEvent::DragMove:
        dragOver(control, static_cast<QDragMoveEvent*>(event));
        return true;
    case QEvent::DragLeave:
        event->accept();
        return true;
    case QEvent::Drop:
        drop(control, static_cast<QDropEvent*>(event));
        return true;
    default:
        return QObject::eventFilter(watched, event);
    }
}

// ---- what the moves change in the window ---------------------------------------------------

void NavDragDrop::expandNode(const NodeKey& key)
{
    m_tree.expandNode(key.text());
}

void NavDragDrop::moveNode(const NodeKey& key, const NodeKey& newParent)
{
    // Below a parent that is not in the tree it would stand in the wrong place: it goes,
    // and comes back when that parent is filled.
    if (!m_tree.moveNode(key.text(), newParent.text()) && !m_tree.hasNode(newParent.text()))
        m_tree.removeNode(key.text());
}

void NavDragDrop::removePages(const QVector<qint32>& pageIds)
{
    m_pages.removePages(pageIds);
}

void NavDragDrop::selectNode(const NodeKey& key)
{
    m_tree.selectNode(key.text());
}

} // namespace qmr
