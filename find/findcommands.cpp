#include "find/findcommands.h"

#include "core/commandtarget.h"
#include "core/foundresults.h"
#include "find/finddialog.h"
#include "store/commandguard.h"

namespace qmr {

FindCommands::FindCommands(const CommandContext& context, FoundResults& results)
    : m_context(context), m_results(results)
{
}

void FindCommands::addTo(CommandTable& table)
{
    table.insert(QStringLiteral("cmdFind"), [this] { find(); });
    table.insert(QStringLiteral("mnuFileFind"), [this] { find(); });
    table.insert(QStringLiteral("mnuPopupFoundClear"), [this] { clearResults(); });
    // The result as a whole has no properties to show; the entry stays and does nothing.
    table.insert(QStringLiteral("mnuPopupFoundProperties"), [] {});
}

void FindCommands::find()
{
    guarded(m_context.prompter, [this] {
        FindDialog dialog(m_context, &m_results, m_context.parent);
        dialog.exec();
    });
    if (m_context.target)
        m_context.target->restoreFocus();
}

void FindCommands::clearResults()
{
    m_results.clear();
}

} // namespace qmr
