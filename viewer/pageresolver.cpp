#include "viewer/pageresolver.h"

#include "core/navigatorcallbacks.h"
#include "core/prompter.h"
#include "mail/pagenotice.h"
#include "store/session.h"

namespace qmr {

qint32 PageResolver::makeDocument(qint32 folderId)
{
    Session& session = m_context.session;
    const QString name = QStringLiteral("New document");
    const qint32 id = session.items().insertItem(Level::Document, folderId, name);
    m_madeDocumentId = id;
    if (session.settings().mode(keys::GetDocInfo) == DocInfoTime::BeforeScan) {
        if (m_context.navigator)
            m_context.navigator->itemAdded(CreatedItem{Level::Document, folderId, id, name, {}});
        m_newDocument = true;
    }
    return id;
}

qint32 PageResolver::makePage(qint32 documentId)
{
    PageStore& pages = m_context.session.pages();
    NewPage page;
    page.pageNumber = pages.nextNumber(documentId);
    page.scanDate = QDate::currentDate();
    page.fileType = QStringLiteral("JPG");
    m_madePageId = pages.insertPage(documentId, page);
    // The folder hears of the page as soon as its row exists.
    PageNotice::sendPageNotice(m_context, m_madePageId);
    return m_madePageId;
}

bool PageResolver::resolve(ViewerMode mode, const NodeKey& key, PageLocation& location)
{
    Session& session = m_context.session;
    ItemStore& items = session.items();
    PageStore& pages = session.pages();
    location = PageLocation();
    location.storage = 0;

    if (mode != ViewerMode::Add) {
        if (key.level() != Level::Page)
            return false;
        location.pageId = key.id();
        location.documentId = pages.documentOf(location.pageId);
    } else if (m_madePageId >= 0) {
        // The rows of this page exist: they are never made twice.
        location.pageId = m_madePageId;
        location.documentId = pages.documentOf(m_madePageId);
    } else {
        const std::optional<Level> level = key.level();
        if (level == Level::Folder) {
            location.folderId = key.id();
            location.documentId = m_madeDocumentId >= 0 ? m_madeDocumentId : makeDocument(key.id());
        } else if (level == Level::Document) {
            location.documentId = key.id();
        } else if (level == Level::Page) {
            location.documentId = pages.documentOf(key.id());
        } else {
            m_context.prompter.tell(tr("Error!"));
            return false;
        }
        if (location.documentId < 0) {
            m_context.prompter.tell(tr("Error!"));
            return false;
        }
        location.pageId = makePage(location.documentId);
    }

    if (const std::optional<PageRow> row = pages.page(location.pageId))
        location.pageNumber = row->pageNumber;
    location.prevPageId =
        pages.previousPageId(location.documentId, location.pageNumber, location.pageId);
    location.nextPageId =
        pages.nextPageId(location.documentId, location.pageNumber, location.pageId);

    location.folderId = items.folderOfDocument(location.documentId);
    location.drawerId = items.drawerOfFolder(location.folderId);
    location.cabinetId = items.cabinetOfDrawer(location.drawerId);
    if (const std::optional<ItemFields> cabinet =
            items.fields(Level::Cabinet, location.cabinetId)) {
        location.storage = cabinet->storage;
        location.storagePath = cabinet->storagePath;
    }
    return true;
}

} // namespace qmr
