#include "filing/pageclipboard.h"

#include <QCoreApplication>
#include <QCursor>
#include <QGuiApplication>
#include <QScopeGuard>

#include "core/commandtarget.h"
#include "core/navigatorcallbacks.h"
#include "core/pagenotifier.h"
#include "core/progress.h"
#include "core/runstate.h"
#include "filing/clipboardfiles.h"
#include "store/commandcontext.h"
#include "store/commandguard.h"
#include "store/session.h"

namespace qmr {

PageClipboard::PageClipboard(const CommandContext& context)
    : m_context(context), m_files(context), m_drop(context, m_files)
{
}

void PageClipboard::cut()
{
    ClipPages& clip = m_context.state.clipPages();
    clip.clear();
    if (m_context.target)
        clip.ids = m_context.target->selectedPageIds();
}

void PageClipboard::copySelectedPages()
{
    m_context.state.clipPages().clear();
    if (!m_context.target)
        return;
    guarded(m_context.prompter, [this] {
        QStringList files;
        for (const qint32 id : m_context.target->selectedPageIds())
            if (const std::optional<PageRow> row = m_context.session.pages().page(id))
                files << m_context.session.paths().pagePath(id, row->filename);
        if (!files.isEmpty())
            ClipboardFiles::setClipboardFiles(files);
    });
}

bool PageClipboard::canPaste() const
{
    return !m_context.state.clipPages().isEmpty() || ClipboardFiles::clipboardHasFiles();
}

void PageClipboard::pasteIntoDocument()
{
    if (!m_context.target)
        return;
    // Always the document selected in the tree, also from the menu of one in lvwMain.
    const NodeKey selected = m_context.target->view().treeSelectedKey();
    if (selected.level() != Level::Document)
        return;
    const qint32 documentId = selected.id();
    guarded(m_context.prompter, [&] {
        // Pages cut win over files on the clipboard.
        if (!m_context.state.clipPages().isEmpty())
            pasteCutPages(documentId);
        else
            m_drop.pasteFiles(ClipboardFiles::getClipboardFiles(), documentId);
    });
}

void PageClipboard::pasteCutPages(qint32 documentId)
{
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const auto restore = qScopeGuard([] { QGuiApplication::restoreOverrideCursor(); });
    ClipPages& clip = m_context.state.clipPages();
    PageStore& pages = m_context.session.pages();
    Progress& progress = m_context.progress;
    const QString title = QCoreApplication::translate("qmr::PageClipboard", "Pasting files");
    progress.start(title, 1, clip.count());
    auto ended = qScopeGuard([&progress] { progress.end(); });
    // The pages move together or not at all; they keep their numbers, so two pages of the
    // document may now share one.
    QVector<qint32> arrived;
    Database::Transaction tx(m_context.session.db());
    for (const qint32 id : std::as_const(clip.ids)) {
        progress.step(title);
        const qint32 from = pages.documentOf(id);
        if (from < 0 || from == documentId)
            continue; // deleted since the cut, or there already
        pages.moveToDocument(id, documentId);
        arrived << id;
    }
    tx.commit();
    ended.dismiss();
    progress.end();
    clip.clear();
    if (m_context.pageNotifier)
        for (const qint32 id : std::as_const(arrived))
            m_context.pageNotifier->pageAdded(id);
    if (m_context.navigator)
        m_context.navigator->showChildren(Level::Document, documentId);
}

} // namespace qmr
