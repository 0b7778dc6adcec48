#include "mail/mailcommands.h"

#include "mail/emailsettingsdialog.h"
#include "store/session.h"

namespace qmr {

void MailCommands::addTo(CommandTable& commands) const
{
    const MailCommands self = *this;
    commands.insert(QStringLiteral("mnuEmailSettings"), [self] { self.emailSettings(); });
}

void MailCommands::emailSettings() const
{
    EmailSettingsDialog dialog(m_context.session.settings(), m_context.prompter, m_context.parent);
    dialog.exec();
}

} // namespace qmr
