#include "navigator/filedrop.h"

#include <QCoreApplication>
#include <QCursor>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QScopeGuard>

#include "core/navigatorcallbacks.h"
#include "core/progress.h"
#include "core/prompter.h"
#include "navigator/itemmover.h"
#include "navigator/pagefileadder.h"
#include "store/commandcontext.h"
#include "store/commandguard.h"
#include "store/storeerror.h"

namespace qmr {

namespace {

const QString kTitle = QStringLiteral("Pasting files");

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
        true);
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
        false);
}

void FileDrop::runBatch(const QStringList& files, const std::function<void(const QString&)>& addOne,
                        const std::function<void()>& showPages, bool showAsTheyCome)
{
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    auto restore = qScopeGuard([] { QGuiApplication::restoreOverrideCursor(); });
    Progress& progress = m_context.progress;
    m_files.begin();
    progress.start(kTitle, 1, int(files.size()));
    progress.showCancel();
    QElapsedTimer sinceShown;
    sinceShown.start();
    for (const QString& file : files) {
        if (progress.stopped())
            break;
        progress.step(QStringLiteral("Pasting ") + QFileInfo(file).fileName());
        try {
            addOne(file);
        } catch (const StoreError& e) {
            m_files.skip(file, e.message());
        }
        QCoreApplication::processEvents();
        if (showAsTheyCome && sinceShown.elapsed() >= kShowEveryMs) {
            guarded(m_context.prompter, showPages);
            sinceShown.restart();
        }
    }
    // Cancel keeps what was added: the copies under way end, their thumbnails are left to
    // the page pane.
    if (progress.stopped())
        m_files.skipThumbnails();
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
