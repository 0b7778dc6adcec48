#include "viewer/viewerpageopener.h"

#include <QCoreApplication>
#include <QFile>

#include "core/choosers.h"
#include "core/prompter.h"
#include "store/commandguard.h"
#include "store/session.h"
#include "viewer/pageviewwindow.h"

namespace qmr {

namespace {

QString missingFile(const QString& path)
{
    return QCoreApplication::translate("qmr::ViewerPageOpener", "Missing file '%1'.").arg(path);
}

} // namespace

void ViewerPageOpener::openShortcut(const CommandContext& context, const PageRow& page)
{
    if (page.filename.isEmpty()) {
        context.prompter.tell(tr("This shortcut has no filename."));
        return;
    }
    if (!QFile::exists(page.filename)) {
        context.prompter.tell(missingFile(page.filename));
        return;
    }
    if (const std::optional<QString> failure = context.choosers.openFile(page.filename))
        context.prompter.tell(*failure);
}

PageViewWindow* ViewerPageOpener::viewer() const
{
    return m_viewer;
}

void ViewerPageOpener::openPage(qint32 pageId)
{
    open(pageId, PageWords());
}

void ViewerPageOpener::openFoundPage(qint32 pageId, const PageWords& words)
{
    open(pageId, words);
}

void ViewerPageOpener::open(qint32 pageId, const PageWords& words)
{
    guarded(m_context.prompter, [&] {
        const std::optional<PageRow> page = m_context.session.pages().page(pageId);
        if (!page)
            return;
        if (page->shortcut) {
            openShortcut(m_context, *page);
            return;
        }
        const QString path = m_context.session.paths().pagePath(pageId, page->filename);
        if (!QFile::exists(path)) {
            m_context.prompter.tell(missingFile(path));
            return;
        }
        if (!m_viewer || m_viewer->mode() != ViewerMode::Edit) {
            m_viewer = new PageViewWindow(m_context, m_context.parent);
            if (m_printHandler)
                m_viewer->setPrintHandler(m_printHandler);
        }
        m_viewer->setWindowFlag(Qt::Window);
        m_viewer->openPage(pageId, words);
    });
}

} // namespace qmr
