#pragma once

#include <QString>
#include <QVector>

#include "core/nodekey.h"
#include "filing/moverules.h"

namespace qmr {

class MoveView;
class PageFileAdder;
struct CommandContext;

// The moves of drawers, folders, documents and pages onto the item one level up, and the
// drop of an outside file that becomes a page. The store does the moving; the window, when
// there is one, is told through its MoveView. A move keeps the item's children; it tests no
// name and leaves lvwMain as it is until the next selection.
class ItemMover
{
public:
    // `context` is the navigator's, which outlives this; `view` may be null.
    ItemMover(const CommandContext& context, PageFileAdder& files, MoveView* view);

    // ProcessDrop: does what a drop of `sourceKey` on `targetKey` means. A file from outside
    // (source Outside, key "PAG") dropped on a folder first makes the document "New document"
    // and puts its key in `targetKey`, so the next files of the drop go there too. A store
    // failure is thrown as a StoreError.
    void processDrop(DropSource source, const QString& sourceKey, NodeKey& targetKey,
                     const QString& fileName = QString());

    // Each returns whether anything moved: not when the item is there already or is gone,
    // nor when the cabinet's password was not given.
    bool moveDrawer(qint32 drawerId, qint32 cabinetId);
    bool moveFolder(qint32 folderId, qint32 drawerId);
    bool moveDocument(qint32 documentId, qint32 folderId);
    // Puts the page at the end of the document and sends its notice; a page dragged out of
    // the page list leaves it, and the tree goes back to the node on show.
    bool movePage(qint32 pageId, qint32 documentId, DropSource source);

private:
    bool moveItem(Level level, qint32 id, qint32 parentId);
    void dropFile(NodeKey& targetKey, const QString& fileName);

    const CommandContext& m_context;
    PageFileAdder& m_files;
    MoveView* m_view;
};

} // namespace qmr
