#include "filing/filedrop.h"

#include <QCoreApplication>
#include <QCursor>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QScopeGuard>
#include <optional>

#include "core/navigatorcallbacks.h"
#include "core/progress.h"
#include "core/prompter.h"
#include "filing/itemmover.h"
#include "filing/pagefileadder.h"
#include "store/commandcontext.h"
#include "store/commandguard.h"
#include "store/database.h"
#include "store/session.h"
#include "store/storeerror.h"

namespace qmr {

namespace {

QString title()
{
    return QCoreApplication::translate("qmr::FileDrop", "Pasting files");
}

} // namespace

FileDrop::FileDrop(const CommandContext& context, PageFileAdder& files)
    : m_context(context), m_files(files)
{
}

void FileDrop::dropFiles(const QStringList& files, NodeKey target, ItemMover& mover)
{
    QStringList importable;
    for (const QString& file : files)
        if (PageFileAdder::isImportableFile(file))
            importable << file;
    const QString page = QStringLiteral("PAG");
    if (importable.isEmpty() || !MoveRules::canDrop(page, target.text()))
        return;
    runBatch(
        importable,
        [&](const QString& file) { mover.processDrop(DropSource::Outside, page, target, file); },
        [&] {
            // After the first file a folder's drop has its document, whose pages show.
            if (target.level() == Level::Document && m_context.navigator)
                m_context.navigator->showChildren(Level::Document, target.id());
        },
        true,
        // A folder's first file makes the document, which the tree shows at once: that file
        // commits alone, so no node stands for a document rolled back later.
        [&] { return target.level() == Level::Document; });
}

void FileDrop::pasteFiles(const QStringList& files, qint32 documentId)
{
    if (files.isEmpty())
        return;
    runBatch(
        files, [&](const QString& file) { m_files.addPageFromFile(file, documentId); },
        [&] {
            if (m_context.navigator)
                m_context.navigator->showChildren(Level::Document, documentId);
        },
        false, [] { return true; });
}

void FileDrop::runBatch(const QStringList& files, const std::function<void(const QString&)>& addOne,
                        const std::function<void()>& showPages, bool showAsTheyCome,
                        const std::function<bool()>& canGroup)
{
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    auto restore = qScopeGuard([] { QGuiApplication::restoreOverrideCursor(); });
    Progress& progress = m_context.progress;
    m_files.begin();
    progress.start(title(), 1, int(files.size()));
    progress.showCancel();
    QElapsedTimer sinceShown;
    sinceShown.start();
    // The rows of several files share one commit: each commit waits for the disk, and a
    // commit for every file kept the window's thread busy for much of a large drop. A group
    // that cannot commit names its files, and the next group tries again.
    std::optional<Database::Transaction> group;
    QElapsedTimer groupAge;
    int groupRows = kFirstGroupRows;
    const auto endGroup = [&] {
        if (!group)
            return;
        groupRows = qMin(2 * groupRows, kGroupRows);
        try {
            group->commit();
            group.reset();
            m_files.releaseDeliveries();
        } catch (const StoreError& e) {
            group.reset();
            m_files.dropDeliveries(e.message());
        }
    };
    for (const QString& file : files) {
        if (progress.stopped() || m_files.halted())
            break;
        if (!group && canGroup()) {
            try {
                group.emplace(m_context.session.db());
                m_files.holdDeliveries();
                groupAge.start();
            } catch (const StoreError&) {
                // Each row then commits on its own.
            }
        }
        progress.step(QCoreApplication::translate("qmr::FileDrop", "Pasting %1")
                          .arg(QFileInfo(file).fileName()));
        try {
            addOne(file);
        } catch (const StoreError& e) {
            m_files.skip(file, e.message());
        }
        if (m_files.held() >= groupRows || (group && groupAge.elapsed() >= kGroupMs))
            endGroup();
        QCoreApplication::processEvents();
        if (showAsTheyCome && !group && sinceShown.elapsed() >= kShowEveryMs) {
            guarded(m_context.prompter, showPages);
            sinceShown.restart();
        }
    }
    // Cancel keeps what was added: the copies under way end, their thumbnails are left to
    // the page pane.
    if (progress.stopped())
        m_files.skipThumbnails();
    endGroup();
    m_files.finish();
    progress.end();
    guarded(m_context.prompter, showPages);
    restore.dismiss();
    QGuiApplication::restoreOverrideCursor();
    const QString report = m_files.report();
    if (!report.isEmpty())
        m_context.prompter.tell(report);
}

} // namespace qmr
