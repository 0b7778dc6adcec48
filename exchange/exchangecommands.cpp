#include "exchange/exchangecommands.h"

#include "core/choosers.h"
#include "core/commandtarget.h"
#include "core/navigatorcallbacks.h"
#include "core/progress.h"
#include "core/prompter.h"
#include "core/settings.h"
#include "exchange/cabinetimporter.h"
#include "exchange/diskfilesystem.h"
#include "exchange/exportdialog.h"
#include "exchange/filetypesdialog.h"
#include "exchange/importdialog.h"
#include "exchange/nativename.h"
#include "exchange/promptedquestions.h"
#include "store/commandguard.h"
#include "store/session.h"

namespace qmr {

ExchangeCommands::ExchangeCommands(const CommandContext& context) : m_context(context)
{
}

void ExchangeCommands::addTo(CommandTable& table)
{
    table.insert(QStringLiteral("mnuToolsExportCabinet"), [this] { exportCabinet(); });
    table.insert(QStringLiteral("mnuToolsImportFiles"), [this] { importCabinet(); });
    table.insert(QStringLiteral("mnuPopupCabinetExport"), [this] {
        if (const qint32 id = popupCabinet(); id >= 0)
            exportCabinet(id);
    });
    table.insert(QStringLiteral("mnuPopupCabinetImport"), [this] {
        if (const qint32 id = popupCabinet(); id >= 0)
            importCabinet(id);
    });
    table.insert(QStringLiteral("mnuPopupFolderImportFiles"),
                 [this] { importFiles(Level::Folder); });
    table.insert(QStringLiteral("mnuPopupDocumentImportFiles"),
                 [this] { importFiles(Level::Document); });
}

qint32 ExchangeCommands::popupCabinet() const
{
    if (!m_context.target)
        return -1;
    const CommandTarget& target = *m_context.target;
    const qint32 id = target.record().idOf(Level::Cabinet);
    if (id != -1)
        return id;
    // Only the container list is asked besides the record: a cabinet pop-up from the tree
    // always fills the record.
    if (target.source() != ContextSource::List)
        return -1;
    const NodeKey key = target.view().listSelectedKey();
    return key.level() == Level::Cabinet ? key.id() : -1;
}

void ExchangeCommands::exportCabinet(qint32 cabinetId)
{
    guarded(m_context.prompter, [&] {
        ExportDialog dialog(m_context, m_context.parent);
        if (cabinetId >= 0)
            dialog.selectCabinet(cabinetId);
        dialog.exec();
    });
    if (m_context.target)
        m_context.target->restoreFocus();
}

void ExchangeCommands::importCabinet(qint32 cabinetId)
{
    guarded(m_context.prompter, [&] {
        ImportDialog dialog(m_context, m_context.parent);
        if (cabinetId >= 0)
            dialog.selectCabinet(cabinetId);
        dialog.exec();
    });
    if (m_context.target)
        m_context.target->restoreFocus();
}

void ExchangeCommands::importFiles(Level level)
{
    Settings& settings = m_context.session.settings();
    const QString start = m_importFilesPath.isEmpty()
                              ? settings.getSetting(QStringLiteral("PathSelect"))
                              : m_importFilesPath;
    const std::optional<QString> dir = m_context.choosers.chooseDirectory(start);
    if (!dir)
        return;
    m_importFilesPath = *dir;
    settings.saveSetting(QStringLiteral("PathSelect"), *dir);

    DiskFileSystem fs;
    QStringList names = fs.fileNames(*dir);
    for (QString& name : names)
        name = NativeName::display(name);
    FileTypesDialog types(FileTypeFilter::typesIn(names), m_context.parent);
    types.exec();
    if (!types.filter())
        return;
    const qint32 targetId = m_context.target ? m_context.target->targetId(level) : -1;
    if (targetId < 0)
        return;
    guarded(m_context.prompter, [&] {
        PromptedQuestions questions(m_context.prompter);
        CabinetImporter importer(m_context.session, fs, questions, m_context.navigator);
        const ImportReport report =
            importer.importFiles(targetId, level, *dir, *types.filter(), m_context.progress);
        // No report: the tree and the lists show what came in. What they cannot show is told:
        // a failure, and what was passed over on purpose (a link, which is never followed).
        if (!report.error.isEmpty())
            m_context.prompter.tell(report.error);
        if (!report.skipped.isEmpty())
            m_context.prompter.tell(report.skippedText());
        if (m_context.navigator && level == Level::Folder)
            m_context.navigator->showChildren(Level::Folder, targetId);
    });
    if (m_context.target)
        m_context.target->restoreFocus();
}

} // namespace qmr
