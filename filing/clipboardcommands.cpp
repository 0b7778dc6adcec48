#include "filing/clipboardcommands.h"

namespace qmr {

ClipboardCommands::ClipboardCommands(const CommandContext& context) : m_clipboard(context)
{
}

void ClipboardCommands::addTo(CommandTable& table)
{
    table.insert(QStringLiteral("mnuPopupPageCut"), [this] { m_clipboard.cut(); });
    table.insert(QStringLiteral("mnuPopupPageCopy"), [this] { m_clipboard.copySelectedPages(); });
    table.insert(QStringLiteral("mnuPopupPagePaste"), [this] { m_clipboard.pasteIntoDocument(); });
    table.insert(QStringLiteral("mnuPopupDocumentPaste"),
                 [this] { m_clipboard.pasteIntoDocument(); });
}

} // namespace qmr
