#include "filing/defaultpageopener.h"

#include <QCoreApplication>
#include <QFileInfo>

#include "core/choosers.h"
#include "core/prompter.h"
#include "store/session.h"

namespace qmr {

void DefaultPageOpener::openPage(qint32 pageId)
{
    const std::optional<PageRow> page = m_session.pages().page(pageId);
    if (!page)
        return;
    if (page->shortcut && page->filename.isEmpty()) {
        m_prompter.tell(QCoreApplication::translate("qmr::DefaultPageOpener",
                                                    "This shortcut has no filename."));
        return;
    }
    const QString path = m_session.paths().pagePath(page->id, page->filename);
    if (!QFileInfo(path).isFile()) {
        m_prompter.tell(
            QCoreApplication::translate("qmr::DefaultPageOpener", "Missing file '%1'.").arg(path));
        return;
    }
    if (const std::optional<QString> failure = m_choosers.openFile(path))
        m_prompter.tell(*failure);
}

} // namespace qmr
