#include "filing/itemmover.h"

#include <QCoreApplication>

#include "core/navigatorcallbacks.h"
#include "core/pagenotifier.h"
#include "core/runstate.h"
#include "filing/cabinetopener.h"
#include "filing/moveview.h"
#include "filing/pagefileadder.h"
#include "store/commandcontext.h"
#include "store/session.h"

namespace qmr {

namespace {

const QString kNewDocument = QStringLiteral("New document");

} // namespace

ItemMover::ItemMover(const CommandContext& context, PageFileAdder& files, MoveView* view)
    : m_context(context), m_files(files), m_view(view)
{
}

void ItemMover::processDrop(DropSource source, const QString& sourceKey, NodeKey& targetKey,
                            const QString& fileName)
{
    if (!MoveRules::canDrop(sourceKey, targetKey.text()))
        return;
    if (source != DropSource::Outside && m_view) {
        // Opening the target loads its children, so the moved node joins them.
        m_view->expandNode(targetKey);
        QCoreApplication::processEvents();
    }
    const QString prefix = sourceKey.left(3);
    const qint32 id = NodeKey::parse(sourceKey).id();
    const qint32 target = targetKey.id();
    const std::optional<Level> targetLevel = targetKey.level();
    if (prefix == QLatin1String("DRW"))
        moveDrawer(id, target);
    else if (prefix == QLatin1String("FLD"))
        moveFolder(id, target);
    else if (prefix == QLatin1String("DOC"))
        moveDocument(id, target);
    else if (source == DropSource::Outside)
        dropFile(targetKey, fileName);
    else if (targetLevel == Level::Document)
        movePage(id, target, source);
    // A page of the window dropped on a folder does nothing: that target is for files.
}

void ItemMover::dropFile(NodeKey& targetKey, const QString& fileName)
{
    if (targetKey.level() == Level::Document) {
        m_files.addPageFromFile(fileName, targetKey.id());
        return;
    }
    // On a folder: the document and the first page are written together.
    const qint32 folderId = targetKey.id();
    Database::Transaction tx(m_context.session.db());
    const qint32 documentId =
        m_context.session.items().insertItem(Level::Document, folderId, kNewDocument);
    const std::optional<PageFileAdder::NewRow> row = m_files.insertRow(fileName, documentId);
    tx.commit();
    if (m_context.navigator)
        m_context.navigator->itemAdded(
            CreatedItem{Level::Document, folderId, documentId, kNewDocument, QDate()});
    targetKey = NodeKey::of(Level::Document, documentId);
    if (row)
        m_files.deliver(*row);
}

bool ItemMover::moveItem(Level level, qint32 id, qint32 parentId)
{
    ItemStore& items = m_context.session.items();
    const qint32 current = items.parentOf(level, id);
    if (current < 0 || current == parentId)
        return false;
    items.moveItem(level, id, parentId);
    if (m_view)
        m_view->moveNode(NodeKey::of(level, id), NodeKey::of(*parentLevel(level), parentId));
    return true;
}

bool ItemMover::moveDrawer(qint32 drawerId, qint32 cabinetId)
{
    // Into a locked cabinet only with its password, asked before anything else.
    if (!CabinetOpener::openCabinet(m_context, cabinetId))
        return false;
    return moveItem(Level::Drawer, drawerId, cabinetId);
}

bool ItemMover::moveFolder(qint32 folderId, qint32 drawerId)
{
    return moveItem(Level::Folder, folderId, drawerId);
}

bool ItemMover::moveDocument(qint32 documentId, qint32 folderId)
{
    return moveItem(Level::Document, documentId, folderId);
}

bool ItemMover::movePage(qint32 pageId, qint32 documentId, DropSource source)
{
    PageStore& pages = m_context.session.pages();
    const qint32 current = pages.documentOf(pageId);
    if (current < 0 || current == documentId)
        return false;
    // At the end of its new document; the numbers of the one it left are not closed up.
    pages.movePage(pageId, documentId, pages.nextNumber(documentId));
    if (m_context.pageNotifier)
        m_context.pageNotifier->pageAdded(pageId);
    if (source == DropSource::PageList && m_view) {
        m_view->removePages({pageId});
        // The drag moved the tree's selection over its targets; the node on show comes back.
        m_view->selectNode(NodeKey::parse(m_context.state.selection().lastNodeKey));
    }
    return true;
}

} // namespace qmr
