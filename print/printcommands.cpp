#include "print/printcommands.h"

#include "core/commandtarget.h"
#include "print/printdialog.h"
#include "print/printdocumentdialog.h"
#include "print/printsettingsdialog.h"
#include "store/commandguard.h"
#include "store/session.h"

namespace qmr {

PrintCommands::PrintCommands(const CommandContext& context, std::optional<QStringList> printers)
    : m_context(context), m_printers(std::move(printers))
{
}

void PrintCommands::addTo(CommandTable& table)
{
    table.insert(QStringLiteral("mnuPopupPagePrint"), [this] { printSelectedPage(); });
    table.insert(QStringLiteral("mnuPopupDocumentPrint"), [this] { printDocument(); });
    table.insert(QStringLiteral("mnuPrintSettings"), [this] { printSettings(); });
}

QStringList PrintCommands::printers() const
{
    return m_printers ? *m_printers : PrinterChoice::systemPrinters();
}

void PrintCommands::printPage(qint32 pageId)
{
    if (pageId < 0)
        return;
    guarded(m_context.prompter, [&] {
        PrintDialog dialog(m_context, m_layouts, pageId, printers(), m_context.parent);
        dialog.exec();
    });
}

void PrintCommands::printSelectedPage()
{
    if (!m_context.target)
        return;
    qint32 pageId = m_context.target->view().currentPageId();
    // The tree and the container list hold no pages, but a page key there is honoured.
    if (m_context.target->source() != ContextSource::PageList) {
        const NodeKey key = m_context.target->contextKey();
        if (key.level() == Level::Page)
            pageId = key.id();
    }
    printPage(pageId);
    m_context.target->restoreFocus();
}

void PrintCommands::printDocument()
{
    if (!m_context.target)
        return;
    const qint32 documentId = m_context.target->targetId(Level::Document);
    if (documentId >= 0) {
        guarded(m_context.prompter, [&] {
            PrintDocumentDialog dialog(m_context, m_layouts, documentId, printers(),
                                       m_context.parent);
            dialog.exec();
        });
    }
    m_context.target->restoreFocus();
}

void PrintCommands::printSettings()
{
    PrintSettingsDialog dialog(m_context.session.settings(), m_context.prompter, m_context.parent);
    dialog.exec();
}

} // namespace qmr
