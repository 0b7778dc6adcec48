#pragma once

#include <optional>

#include "core/commandtable.h"
#include "print/printerchoice.h"
#include "store/commandcontext.h"

namespace qmr {

// The print entries of the menus (a page, a document, the print settings) and the entry
// point of the page viewer's Print button.
class PrintCommands
{
public:
    // `printers`: the printers the windows list; the system's when none are given.
    explicit PrintCommands(const CommandContext& context,
                           std::optional<QStringList> printers = std::nullopt);
    // The context is held by reference: a temporary one would be gone before its use.
    PrintCommands(CommandContext&& context,
                  std::optional<QStringList> printers = std::nullopt) = delete;

    void addTo(CommandTable& table);

    // frmPrint for one page.
    void printPage(qint32 pageId);
    // frmPrint for the page the page pane's context points at.
    void printSelectedPage();
    // frmPrintDocument for the target document, over its lowest to highest page number.
    void printDocument();
    void printSettings();

private:
    QStringList printers() const;

    const CommandContext& m_context;
    PageLayouts m_layouts;
    std::optional<QStringList> m_printers;
};

} // namespace qmr
