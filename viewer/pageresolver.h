#pragma once

#include <QCoreApplication>
#include <QString>
#include <QtGlobal>

#include "core/nodekey.h"
#include "store/commandcontext.h"

namespace qmr {

// "Add": a page being born (a scan); "Edit": a page that exists.
enum class ViewerMode { Add, Edit };

// Where the page of a viewer stands: its ids, its number, its neighbours in the document and
// its cabinet's storage.
struct PageLocation
{
    qint32 pageId = -1;
    qint32 documentId = -1;
    qint32 folderId = -1;
    qint32 drawerId = -1;
    qint32 cabinetId = -1;
    qint32 pageNumber = -1;
    qint32 prevPageId = -1;
    qint32 nextPageId = -1;
    int storage = 0;
    QString storagePath;
};

// Turns the viewer's mode and key into a PageLocation. In mode "Add" the first run makes the
// rows of the new page (a document "New document" for a folder, then the page with the next
// number and today's date) and mails the folder's notice; every later run resolves the rows
// already made, until startNextPage() asks for the next page.
class PageResolver
{
    Q_DECLARE_TR_FUNCTIONS(qmr::PageResolver)

public:
    explicit PageResolver(const CommandContext& context) : m_context(context) {}
    // The context is held by reference: a temporary one would be gone before its use.
    PageResolver(CommandContext&& context) = delete;

    // False when nothing could be resolved: an "Add" key that names no folder, document or
    // page (after the message "Error!"), or an "Edit" key that names no page.
    bool resolve(ViewerMode mode, const NodeKey& key, PageLocation& location);

    // The next resolve in mode "Add" makes another page, in the document made for the first
    // one when the key is a folder's.
    void startNextPage() { m_madePageId = -1; }
    // Whether a document was made for the page and the node was announced (document details
    // asked before the scan), so that the next scan goes into it.
    bool newDocument() const { return m_newDocument; }
    qint32 madePageId() const { return m_madePageId; }
    qint32 madeDocumentId() const { return m_madeDocumentId; }

private:
    qint32 makeDocument(qint32 folderId);
    qint32 makePage(qint32 documentId);

    const CommandContext& m_context;
    qint32 m_madePageId = -1;
    qint32 m_madeDocumentId = -1;
    bool m_newDocument = false;
};

} // namespace qmr
