#include "help/helpcommands.h"

#include "core/prompter.h"
#include "help/aboutdialog.h"
#include "help/helpwindow.h"
#include "store/commandguard.h"
#include "store/session.h"

namespace qmr {

HelpCommands::HelpCommands(const CommandContext& context, std::optional<HelpLocator> locator)
    : m_context(context), m_locator(std::move(locator))
{
}

void HelpCommands::addTo(CommandTable& table)
{
    table.insert(QStringLiteral("mnuHelpHelpTopics"), [this] { helpTopics(); });
    table.insert(QStringLiteral("mnuHelpAbout"), [this] { about(); });
}

void HelpCommands::helpTopics()
{
    const HelpLocator locator =
        m_locator ? *m_locator : HelpLocator::forRun(m_context.session.home());
    const QString path = locator.locate();
    if (path.isEmpty()) {
        m_context.prompter.tell(tr("Cannot find help file QMRHELP.TXT."));
        return;
    }
    HelpWindow window(path, m_context.parent);
    window.exec();
}

void HelpCommands::about()
{
    qint64 count = 0;
    if (!guarded(m_context.prompter, [&] { count = m_context.session.pages().countAll(); }))
        return;
    AboutDialog dialog(count, m_context.parent);
    dialog.exec();
}

} // namespace qmr
