#pragma once

#include <QObject>
#include <QStringList>
#include <functional>

#include "filing/filedrop.h"
#include "filing/itemmover.h"
#include "filing/moveview.h"
#include "filing/pagefileadder.h"

class QDropEvent;
class QMimeData;
class QPoint;

namespace qmr {

class ContainerList;
class NavIcons;
class NavTree;
class PagePane;
struct CommandContext;

// The window's drag and drop, a thin layer over the mover: it starts a drag of a drawer,
// folder, document or pages with the left button, moves the selection along the valid
// targets under the pointer, and hands a drop to the mover; files dragged in from a file
// manager onto the tree, lvwMain or the page pane become pages. The work of a drop runs once
// the drop has returned, so the other program is not kept waiting.
class NavDragDrop : public QObject, public MoveView
{
    Q_OBJECT
public:
    // `context` is the navigator's, which outlives this.
    NavDragDrop(const CommandContext& context, NavTree& tree, ContainerList& list, PagePane& pages,
                QObject* parent = nullptr);
    ~NavDragDrop() override;

    // The type of the data of the window's own drags: the source's mark, then the keys, one
    // a line.
    static QString mimeType();

    // The state of a drag of the window's own from a control: the node or item under the
    // pointer (the selected one, which the press chose), or the selected pages of the page
    // list. False, and no drag, when that may not move.
    bool beginDrag(DropSource source);
    // EndDrag: the drag is over and its state goes.
    void endDrag();
    bool isDragging() const { return !m_dragKeys.isEmpty(); }
    const QStringList& dragKeys() const { return m_dragKeys; }
    // The data that the drag under way carries.
    QMimeData* dragData() const;

    ItemMover& mover() { return m_mover; }
    PageFileAdder& files() { return m_files; }

    // MoveView
    void expandNode(const NodeKey& key) override;
    void moveNode(const NodeKey& key, const NodeKey& newParent) override;
    void removePages(const QVector<qint32>& pageIds) override;
    void selectNode(const NodeKey& key) override;

signals:
    // A drop has been carried out (or found nothing to do).
    void dropDone();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class Control { None, Tree, List, Pages };

    Control controlOf(const QObject* viewport) const;
    void runDrag(DropSource source);
    NodeKey keyAt(Control control, const QPoint& pos) const;
    bool isOwnDrag(const QMimeData* data) const;
    // The key a drop at `pos` would go to; empty when it may not go there.
    NodeKey dropTarget(Control control, const QPoint& pos, const QMimeData* data) const;
    void dragOver(Control control, QDropEvent* event);
    void drop(Control control, QDropEvent* event);
    void later(const std::function<void()>& work);
    void carryOutMoves(DropSource source, const QStringList& keys, const NodeKey& target);
    void carryOutFiles(const QStringList& files, const NodeKey& target);
    void autoScroll(Control control, const QPoint& pos);

    const CommandContext& m_context;
    NavTree& m_tree;
    ContainerList& m_list;
    PagePane& m_pages;
    PageFileAdder m_files;
    ItemMover m_mover;
    FileDrop m_fileDrop;
    DropSource m_dragSource = DropSource::Tree;
    QStringList m_dragKeys;
    // The files of a drag from outside, read once when it enters.
    QStringList m_outsideFiles;
    bool m_inDrag = false;
    bool m_busy = false;
    std::function<void()> m_pending;
};

} // namespace qmr
