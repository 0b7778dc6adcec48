#include "mail/mailsettings.h"

#include <QFile>

#include "core/settings.h"
#include "mail/smtppassword.h"

namespace qmr {

MailSystem MailSettings::systemOf(const QString& setting)
{
    if (setting == QLatin1String("MAPI"))
        return MailSystem::Mapi;
    if (setting == QLatin1String("CDONTS"))
        return MailSystem::Cdonts;
    return MailSystem::None;
}

QString MailSettings::nameOf(MailSystem system)
{
    switch (system) {
    case MailSystem::Mapi:
        return QStringLiteral("MAPI");
    case MailSystem::Cdonts:
        return QStringLiteral("CDONTS");
    case MailSystem::None:
        break;
    }
    return QString();
}

MailSettings MailSettings::read(const Settings& settings)
{
    MailSettings m;
    m.system = systemOf(settings.get(keys::EmailSystem));
    m.fromAddress = settings.get(keys::EmailAddress).trimmed();
    m.smtpServer = settings.get(keys::SmtpServer).trimmed();
    bool ok = false;
    const int port = settings.get(keys::SmtpPort).trimmed().toInt(&ok);
    m.smtpPort = ok && port > 0 && port < 65536 ? port : 25;
    m.smtpSecurity = settings.get(keys::SmtpSecurity).trimmed().toLower();
    m.smtpUser = settings.get(keys::SmtpUser);
    m.sendmailPath = settings.get(keys::SendmailPath).trimmed();
    return m;
}

MailSettings MailSettings::forSending(Settings& settings)
{
    MailSettings m = read(settings);
    if (m.system == MailSystem::Cdonts && !m.smtpUser.isEmpty())
        m.smtpPassword = SmtpPassword(settings).read().password;
    return m;
}

void MailSettings::write(Settings& settings) const
{
    settings.set(keys::EmailSystem, nameOf(system));
    settings.set(keys::EmailAddress, fromAddress);
    settings.set(keys::SmtpServer, smtpServer);
    settings.set(keys::SmtpPort, QString::number(smtpPort));
    settings.set(keys::SmtpSecurity, smtpSecurity);
    settings.set(keys::SmtpUser, smtpUser);
    SmtpPassword(settings).write(smtpPassword);
    settings.set(keys::SendmailPath, sendmailPath);
    settings.sync();
    QFile::setPermissions(settings.fileName(), QFile::ReadOwner | QFile::WriteOwner);
}

} // namespace qmr
