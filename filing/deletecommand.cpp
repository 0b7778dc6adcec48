#include "filing/deletecommand.h"

#include <QCoreApplication>

#include "core/commandtarget.h"
#include "core/navigatorcallbacks.h"
#include "core/progress.h"
#include "core/prompter.h"
#include "filing/cabinetopener.h"
#include "store/commandguard.h"
#include "store/deletion.h"
#include "store/session.h"
#include "store/storeerror.h"

namespace qmr {

namespace {

// Runs a deletion between the progress's start and end; the progress also ends when the
// deletion fails, and the failure goes on to the command's guard.
template <class Work> void withProgress(Progress& progress, Work work)
{
    try {
        work();
    } catch (const StoreError&) {
        progress.end();
        throw;
    }
    progress.end();
}

} // namespace

DeleteCommand::DeleteCommand(const CommandContext& context) : m_context(context)
{
}

void DeleteCommand::addTo(CommandTable& table)
{
    for (const Level level : {Level::Cabinet, Level::Drawer, Level::Folder, Level::Document})
        table.insert(QStringLiteral("mnuPopup") + QLatin1String(levelInfo(level).word) +
                         QStringLiteral("Delete"),
                     [this, level] { deleteItem(level); });
    table.insert(QStringLiteral("mnuPopupPageDelete"), [this] { deletePages(); });
}

QString DeleteCommand::pageName(const PageRow& page)
{
    if (page.shortcut || (!page.filename.isEmpty() && page.pageNumber == 0))
        return PagePaths::filePart(page.filename);
    return QCoreApplication::translate("qmr::DeleteCommand", "Page ") +
           QString::number(page.pageNumber);
}

void DeleteCommand::deleteItem(Level level)
{
    Session& session = m_context.session;
    guarded(m_context.prompter, [&] {
        const qint32 id = m_context.target->targetId(level);
        if (id < 0)
            return;
        // A locked cabinet goes only with its password.
        if (level == Level::Cabinet && !CabinetOpener::openCabinet(m_context, id))
            return;
        const ItemRow item = session.items().item(level, id);
        if (item.id < 0)
            return;
        if (!m_context.prompter.confirm(
                QCoreApplication::translate("qmr::DeleteCommand", "Delete '%1'?").arg(item.name)))
            return;
        Deletion deletion(session.db(), session.paths());
        Progress& progress = m_context.progress;
        const QString title = Deletion::progressTitle(level);
        withProgress(progress, [&] {
            // Counting a cabinet's pages walks all its drawers: the window shows it is busy.
            if (level == Level::Cabinet)
                progress.start(title, 1, 2);
            progress.start(title, 1, deletion.progressMaximum(level, id));
            deletion.deleteItem(level, id, progress);
        });
        if (NavigatorCallbacks* navigator = m_context.navigator) {
            navigator->itemRemoved(level, id);
            if (level == Level::Document)
                navigator->refreshPages(id);
        }
    });
    m_context.target->restoreFocus();
}

void DeleteCommand::deletePages()
{
    const CommandTarget& target = *m_context.target;
    QVector<qint32> ids;
    if (target.source() == ContextSource::PageList)
        ids = target.selectedPageIds();
    else if (const qint32 current = target.view().currentPageId(); current >= 0)
        ids = {current};
    if (!ids.isEmpty())
        guarded(m_context.prompter, [&] { deletePageIds(ids); });
    m_context.target->restoreFocus();
}

void DeleteCommand::deletePageIds(const QVector<qint32>& ids)
{
    Session& session = m_context.session;
    const std::optional<PageRow> first = session.pages().page(ids.first());
    if (!first)
        return;
    QString question;
    if (ids.size() > 1)
        question =
            QCoreApplication::translate("qmr::DeleteCommand", "Delete %1 pages?").arg(ids.size());
    else if (first->shortcut)
        question = QCoreApplication::translate("qmr::DeleteCommand", "Delete shortcut to '%1'?")
                       .arg(pageName(*first));
    else
        question =
            QCoreApplication::translate("qmr::DeleteCommand", "Delete '%1'?").arg(pageName(*first));
    if (!m_context.prompter.confirm(question))
        return;
    Deletion deletion(session.db(), session.paths());
    Progress& progress = m_context.progress;
    withProgress(progress, [&] {
        progress.start(Deletion::progressTitle(Level::Page), 1,
                       deletion.progressMaximum(Level::Page, -1, int(ids.size())));
        deletion.deletePages(ids, progress);
    });
    // The pages that remain keep their numbers; the list shows the gap.
    if (m_context.navigator)
        m_context.navigator->refreshPages(first->documentId);
}

} // namespace qmr
