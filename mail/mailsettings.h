#pragma once

#include <QString>

namespace qmr {

class Settings;

// The mail route of the settings: "MAPI" hands messages to the system's sendmail program,
// "CDONTS" sends them to an SMTP server.
enum class MailSystem { None, Mapi, Cdonts };

// What a send needs to know of the settings, read once, or taken from the email settings
// dialog for its test.
struct MailSettings
{
    MailSystem system = MailSystem::None;
    QString fromAddress;
    QString smtpServer = QStringLiteral("localhost");
    int smtpPort = 25;
    QString smtpSecurity = QStringLiteral("none"); // "none", "starttls", "tls"
    QString smtpUser;
    QString smtpPassword;
    QString sendmailPath = QStringLiteral("/usr/sbin/sendmail");

    static MailSettings read(const Settings& settings);
    // Writes every field, and keeps the settings file to its owner: it holds a password.
    void write(Settings& settings) const;

    // "MAPI", "CDONTS"; anything else is none.
    static MailSystem systemOf(const QString& setting);
    static QString nameOf(MailSystem system);
};

} // namespace qmr
